// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/Journey.h>
#include <korvane/platform/Ports.h>

#include <string>
#include <utility>

// For tests that are compiled twice, with the adapters: as a release build and as one for development.
#ifdef NDEBUG
#define BUILD LogOfAReleaseBuild
#else
#define BUILD LogOfADevelopmentBuild
#endif

namespace korvane::testing {

inline constexpr const char* card = "card-4711";
#ifdef NDEBUG
inline constexpr bool showsByBuild = false;
#else
inline constexpr bool showsByBuild = true;
#endif

/// Whether the log of a journey shows its values.
inline bool hasValues(const std::string& log) {
    EXPECT_NE(log.find("SetPIN init - cardID param = "), log.npos) << log;
    return log.find(card) != log.npos;
}

/// The same of a journey with these ports, on standard output.
inline bool portsLogValues(Ports ports) {
    installPorts(std::move(ports));
    ::testing::internal::CaptureStdout();
    { const Journey journey(JourneyKind::setPIN, card); }
    const std::string log = ::testing::internal::GetCapturedStdout();
    uninstallPorts();
    return hasValues(log);
}

/// For a function that makes ports, in each way that it can be called.
#define EXPECT_PORTS_TO_LOG_BY_BUILD(makePorts)                                              \
    EXPECT_EQ(portsLogValues(makePorts()), showsByBuild);                                    \
    EXPECT_EQ(portsLogValues(makePorts({})), showsByBuild);                                  \
    EXPECT_EQ(portsLogValues(makePorts("")), showsByBuild);                                  \
    EXPECT_EQ(portsLogValues(makePorts(std::string())), showsByBuild);                       \
    EXPECT_EQ(portsLogValues(makePorts({.logValues = LogValues::byBuild})), showsByBuild);   \
    EXPECT_FALSE(portsLogValues(makePorts({.caFile = "", .logValues = LogValues::masked}))); \
    EXPECT_TRUE(portsLogValues(makePorts({.logValues = LogValues::clear})))

}  // namespace korvane::testing
