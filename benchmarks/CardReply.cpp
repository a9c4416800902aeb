// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/CardReply.h"

#include <korvane/platform/RedactingConsole.h>

#include <map>
#include <random>

#include "base/Base64.h"
#include "sdk/SdkConfig.h"
#include "transport/AesCbc.h"

namespace korvane::bench {
namespace {

Bytes encipher(std::string_view text) {
    return aesCbcEncrypt(key(), iv(), {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()})
        .value();
}

Bytes picture(std::size_t size) {
    Bytes bytes(size);
    std::mt19937 random(1);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    const std::string_view signature = "\x89PNG\r\n\x1A\n";
    std::copy(signature.begin(), signature.end(), bytes.begin());
    return bytes;
}

}  // namespace

const Bytes& key() {
    static const Bytes bytes(32, 7);
    return bytes;
}

const Bytes& iv() {
    static const Bytes bytes(16, 9);
    return bytes;
}

const FakePorts& prepareComponent() {
    static const FakePorts device;
    static const bool once = [] {
        Ports quiet = ports();
        device.console->keepLines(false);
        quiet.console = std::make_shared<RedactingConsole>(device.console);
        installPorts(std::move(quiet));
        SdkConfig& config = SdkConfig::sharedInstance();
        config.preSharedKeyByteArray = key();
        config.ivByteArray = iv();
        config.ivIdStr = "3f6e0a52-9d1c-4a4e-8a55-7c1b2f0d9e44";
        config.trackingUUID = "b1a7c0de-1111-4222-8333-444455556666";
        config.brandId = "bank";
        config.currentPciToken = "pci-token";
        config.apiUrl = "https://cards.example";
        return true;
    }();
    static_cast<void>(once);
    return device;
}

CardReply::CardReply(std::size_t imageSize)
    : image(picture(imageSize)), enciphered(encipher(base64Encode(image))) {
    const auto add = [this](std::string_view field, std::string_view value) {
        json.append(json.empty() ? "{\"" : ",\"").append(field).append("\":\"").append(value).append("\"");
    };
    add("encryptedResult", base64Encode(encipher("Success")));
    add("encryptedCardImage", base64Encode(enciphered));
    for (const auto& [field, text] : std::map<std::string_view, std::string_view>{
             {"encryptedCardDisclosures",
              R"({"CardDisclosures":[{"Language":"English","CardDisclosure":"t"}]})"},
             {"encryptedPan", "5555550000079197"},
             {"encryptedCvv", "8642"},
             {"encryptedExpiryDate", "12/31"},
             {"encryptedFirstName", "Sam"},
             {"encryptedMiddleName", ""},
             {"encryptedLastName", "Okafor"},
             {"encryptedCardNetwork", "MasterCard"},
         }) {
        add(field, base64Encode(encipher(text)));
    }
    json += '}';
}

const CardReply& cardReply(std::size_t imageSize) {
    static std::map<std::size_t, CardReply> replies;
    return replies.try_emplace(imageSize, imageSize).first->second;
}

}  // namespace korvane::bench
