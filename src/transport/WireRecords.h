// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/DecryptedCardDisclosure.h"

namespace korvane {

// The records that the service answers with. A field's name is its JSON key; each holds an enciphered text
// and is absent when the key is missing or null. `fields` is the one list that reading and writing JSON go
// by.

using WireText = std::optional<std::string>;

template <class Record>
struct WireField {
    std::string_view key;
    WireText Record::*value;
};

struct RestBearerToken {
    WireText encryptedResult;
    WireText encryptedAccessToken;
    WireText encryptedExpiration;

    static constexpr std::array<WireField<RestBearerToken>, 3> fields{{
        {"encryptedResult", &RestBearerToken::encryptedResult},
        {"encryptedAccessToken", &RestBearerToken::encryptedAccessToken},
        {"encryptedExpiration", &RestBearerToken::encryptedExpiration},
    }};
};

struct RestPciTokenRequest {
    WireText encryptedPciSmsToken;
    WireText encryptedResult;

    static constexpr std::array<WireField<RestPciTokenRequest>, 2> fields{{
        {"encryptedPciSmsToken", &RestPciTokenRequest::encryptedPciSmsToken},
        {"encryptedResult", &RestPciTokenRequest::encryptedResult},
    }};
};

struct RestPciTokenSubmission {
    WireText encryptedResult;
    WireText encryptedPciToken;
    WireText encryptedPciTokenExpiration;
    WireText encryptedBiometricsAuthenticationTimer;

    static constexpr std::array<WireField<RestPciTokenSubmission>, 4> fields{{
        {"encryptedResult", &RestPciTokenSubmission::encryptedResult},
        {"encryptedPciToken", &RestPciTokenSubmission::encryptedPciToken},
        {"encryptedPciTokenExpiration", &RestPciTokenSubmission::encryptedPciTokenExpiration},
        {"encryptedBiometricsAuthenticationTimer",
         &RestPciTokenSubmission::encryptedBiometricsAuthenticationTimer},
    }};
};

struct RestGetCardStatus {
    WireText encryptedResult;
    WireText encryptedCardStatus;
    WireText encryptedCardType;

    static constexpr std::array<WireField<RestGetCardStatus>, 3> fields{{
        {"encryptedResult", &RestGetCardStatus::encryptedResult},
        {"encryptedCardStatus", &RestGetCardStatus::encryptedCardStatus},
        {"encryptedCardType", &RestGetCardStatus::encryptedCardType},
    }};
};

struct RestGetCardImage {
    WireText encryptedResult;
    WireText encryptedCardImage;
    WireText encryptedCardDisclosures;  // deciphered: the JSON text of a DecryptedCardDisclosure
    WireText encryptedPan;
    WireText encryptedCvv;
    WireText encryptedExpiryDate;
    WireText encryptedFirstName;
    WireText encryptedMiddleName;
    WireText encryptedLastName;
    WireText encryptedCardNetwork;

    static constexpr std::array<WireField<RestGetCardImage>, 10> fields{{
        {"encryptedResult", &RestGetCardImage::encryptedResult},
        {"encryptedCardImage", &RestGetCardImage::encryptedCardImage},
        {"encryptedCardDisclosures", &RestGetCardImage::encryptedCardDisclosures},
        {"encryptedPan", &RestGetCardImage::encryptedPan},
        {"encryptedCvv", &RestGetCardImage::encryptedCvv},
        {"encryptedExpiryDate", &RestGetCardImage::encryptedExpiryDate},
        {"encryptedFirstName", &RestGetCardImage::encryptedFirstName},
        {"encryptedMiddleName", &RestGetCardImage::encryptedMiddleName},
        {"encryptedLastName", &RestGetCardImage::encryptedLastName},
        {"encryptedCardNetwork", &RestGetCardImage::encryptedCardNetwork},
    }};
};

struct RestPinSet {
    WireText encryptedResult;

    static constexpr std::array<WireField<RestPinSet>, 1> fields{
        {{"encryptedResult", &RestPinSet::encryptedResult}}};
};

struct RestSetCardStatus {
    WireText encryptedResult;

    static constexpr std::array<WireField<RestSetCardStatus>, 1> fields{
        {{"encryptedResult", &RestSetCardStatus::encryptedResult}}};
};

struct RestPhysicalCardActivationAndPinSet {
    WireText encryptedResult;

    static constexpr std::array<WireField<RestPhysicalCardActivationAndPinSet>, 1> fields{
        {{"encryptedResult", &RestPhysicalCardActivationAndPinSet::encryptedResult}}};
};

struct RestVirtualCardActivationAndPinSet {
    WireText encryptedResult;

    static constexpr std::array<WireField<RestVirtualCardActivationAndPinSet>, 1> fields{
        {{"encryptedResult", &RestVirtualCardActivationAndPinSet::encryptedResult}}};
};

struct RestWearableCardActivationAndPinSet {
    WireText encryptedResult;

    static constexpr std::array<WireField<RestWearableCardActivationAndPinSet>, 1> fields{
        {{"encryptedResult", &RestWearableCardActivationAndPinSet::encryptedResult}}};
};

/// The list of `Record`; a record that stands in a lower folder has its list here.
template <class Record>
inline constexpr const auto& fieldsOf = Record::fields;

inline constexpr std::array<WireField<DecryptedCardDisclosureItem>, 2> disclosureItemFields{{
    {"Language", &DecryptedCardDisclosureItem::Language},
    {"CardDisclosure", &DecryptedCardDisclosureItem::CardDisclosure},
}};
template <>
inline constexpr const auto& fieldsOf<DecryptedCardDisclosureItem> = disclosureItemFields;

}  // namespace korvane
