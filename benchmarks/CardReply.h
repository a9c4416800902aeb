// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/fakes/FakePorts.h"

namespace korvane::bench {

using Bytes = std::vector<std::uint8_t>;

const Bytes& key();  ///< 32 bytes
const Bytes& iv();

/// Installs fake ports, with a console that is told no secrets as in a release build, and puts key and IV in
/// the shared state. The same ports at each call.
const FakePorts& prepareComponent();

/// The card that operations are for.
inline constexpr const char* cardId = "card-physical-active";

/// A card picture's way over the wire, and what stands at each step of it.
struct CardReply {
    explicit CardReply(std::size_t imageSize);

    Bytes image;       ///< begins as a PNG does; the rest is random
    Bytes enciphered;  ///< of the image's base64 text
    std::string json;  ///< the body of the service's answer
};

/// The reply for an image of this size; made once.
const CardReply& cardReply(std::size_t imageSize);

inline constexpr std::size_t usualImage = 500'000;

}  // namespace korvane::bench
