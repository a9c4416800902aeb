// SPDX-License-Identifier: Apache-2.0
#include "sandbox/SeedCards.h"

#include <array>
#include <string_view>

#include "sandbox/MagicCards.h"

namespace korvane::sandbox {
namespace {

/// The check digit of ISO/IEC 7812-1 behind `digits`.
std::string withCheckDigit(std::string digits) {
    int sum = 0;
    bool doubled = true;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, doubled = !doubled) {
        const int value = (*digit - '0') * (doubled ? 2 : 1);
        sum += value > 9 ? value - 9 : value;
    }
    digits += static_cast<char>('0' + (10 - sum % 10) % 10);
    return digits;
}

std::string padded(int number, std::size_t width) {
    const std::string text = std::string(width, '0') + std::to_string(number);
    return text.substr(text.size() - width);
}

struct Name {
    const char* first;
    const char* middle;
    const char* last;
};

constexpr std::array<Name, 4> names{{
    {"Alex", "Jordan", "Rivera"},
    {"Inés", "María", "Núñez"},  // names are not ASCII
    {"Sam", "", "Okafor"},       // and a middle name is not for everybody
    {"Ludmila", "Anna", "van den Heuvel-Szczepańska"},
}};

}  // namespace

std::vector<Card> seedCards() {
    std::vector<Card> cards;
    const auto add = [&cards](std::string id, std::string type, std::string status) {
        const int number = static_cast<int>(cards.size()) + 1;
        const bool isLong = type == "paywallet";
        const Name& name = names[cards.size() % names.size()];
        Card card;
        card.id = std::move(id);
        card.type = std::move(type);
        card.status = std::move(status);
        card.statusBeforeFreeze = card.status == "BT" ? "A1" : "";
        card.pin = card.status == "P2" ? "" : padded(4826 + number, 4);
        card.pan = withCheckDigit("555555" + padded(number * 7919, isLong ? 12 : 9));
        card.cvv = padded(101 + number * 31, isLong ? 4 : 3);
        card.expiry = "12/" + padded(29 + number % 4, 2);
        card.firstName = name.first;
        card.middleName = name.middle;
        card.lastName = name.last;
        card.network = card.type == "virtual" ? "visa" : "mastercard";
        cards.push_back(std::move(card));
    };
    for (const char* type : {"physical", "virtual", "wearable", "paywallet"}) {
        const std::string prefix = std::string("card-") + type;
        add(prefix + "-active", type, "A1");
        add(prefix + "-frozen", type, "BT");
        add(prefix + "-new", type, "P2");
    }
    add("card-unknown-type", "sticker", "A1");
    add("card-unknown-status", "physical", "X9");
    for (const MagicCard& magic : magicCards()) {
        add(std::string(magic.id), "physical", std::string(magic.status));
    }
    return cards;
}

}  // namespace korvane::sandbox
