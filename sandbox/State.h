// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "sandbox/CardService.h"
#include "sandbox/Database.h"
#include "sandbox/Faults.h"
#include "sandbox/Journal.h"
#include "sandbox/Random.h"

namespace korvane::sandbox {

/// All that the request handlers share. Whoever touches a field holds `mutex`, but for those that never
/// change.
struct State {
    State(const CardServiceOptions& given, std::vector<FaultRule> startFaults)
        : options(given), random(given.seed), database(given.databaseFile), faults(std::move(startFaults)) {}

    const CardServiceOptions options;
    const std::string pageToken = Random(std::nullopt).hex(16);  ///< for changes by the inspection page
    std::mutex mutex;
    std::condition_variable stop;  ///< ends delays
    bool stopping = false;
    std::vector<std::uint8_t> key;
    Random random;
    Database database;
    Faults faults;
    Journal journal;
    std::map<std::string, std::string> pictures;  ///< base64, by the cards' type: drawn once
    std::function<void(std::string cardId, std::string code)> smsCallback;
};

/// Milliseconds since 1970.
std::int64_t now();

/// The time `life` from now.
std::int64_t after(std::chrono::seconds life);

/// Hands out a new IV of 16 bytes.
Iv newIv(State& state);

/// The type and the last four digits.
std::string displayName(const Card& card);

}  // namespace korvane::sandbox
