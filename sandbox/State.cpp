// SPDX-License-Identifier: Apache-2.0
#include "sandbox/State.h"

namespace korvane::sandbox {
namespace {

/// How long an expired IV or token is still told from an unknown one.
constexpr std::chrono::hours memory{24};

}  // namespace

std::int64_t now() {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

std::int64_t after(std::chrono::seconds life) {
    return now() + std::chrono::milliseconds(life).count();
}

Iv newIv(State& state) {
    Iv iv{state.random.hex(16), state.random.bytes(16), after(state.options.ivLife)};
    state.database.forgetExpiredBefore(now() - std::chrono::milliseconds(memory).count());
    state.database.addIv(iv);
    return iv;
}

std::string displayName(const Card& card) {
    std::string name = card.type + " card " + card.pan.substr(card.pan.size() - 4);
    if (name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return name;
}

}  // namespace korvane::sandbox
