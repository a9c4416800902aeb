// SPDX-License-Identifier: Apache-2.0
#include <korvane/korvane.h>

#include <cstddef>

#include "platform/linux/LinuxPorts.h"
#include "tests/support/LogOfABuild.h"

namespace korvane::testing {
namespace {

TEST(BUILD, OfLinuxPorts) {
    EXPECT_PORTS_TO_LOG_BY_BUILD(linuxPorts);
    EXPECT_EQ(portsLogValues(linuxPorts({}, nullptr)), showsByBuild);
    EXPECT_EQ(portsLogValues(linuxPorts("", nullptr, nullptr)), showsByBuild);
}

/// The same of a host that speaks C.
bool showsValues(const korvane_host& like) {
    korvane_host host = like;
    std::string log;
    host.context = &log;
    host.log_line = [](void* lines, const char* line) { *static_cast<std::string*>(lines) += line; };
    EXPECT_EQ(korvane_set_up(&host), KORVANE_OK);
    korvane_journey* journey = nullptr;
    EXPECT_EQ(korvane_journey_create(KORVANE_SET_PIN, card, &journey), KORVANE_OK);
    korvane_journey_destroy(journey);
    EXPECT_EQ(korvane_tear_down(), KORVANE_OK);
    return hasValues(log);
}

TEST(BUILD, OfTheCInterfaceAlsoForHostsOfItsFirstVersion) {
    korvane_host host{};
    host.size = offsetof(korvane_host, prompt_message) + sizeof host.prompt_message;
    host.log_values = KORVANE_LOG_CLEAR;  // behind the end of such a host's struct
    EXPECT_EQ(showsValues(host), showsByBuild);
    host.mask_secrets = 1;
    EXPECT_FALSE(showsValues(host));

    host.size = sizeof host;
    EXPECT_FALSE(showsValues(host)) << "mask_secrets masks";
    host.mask_secrets = 0;
    EXPECT_TRUE(showsValues(host));
    host.log_values = KORVANE_LOG_MASKED;
    EXPECT_FALSE(showsValues(host));
    host.log_values = KORVANE_LOG_BY_BUILD;
    EXPECT_EQ(showsValues(host), showsByBuild);

    for (const int unknown : {-1, 3}) {
        host.log_values = unknown;
        EXPECT_EQ(korvane_set_up(&host), KORVANE_BAD_ARGUMENT);
    }
    host.log_values = 0;
    for (const std::size_t size : {std::size_t{0}, host.size - 1, host.size + 8}) {
        host.size = size;
        EXPECT_EQ(korvane_set_up(&host), KORVANE_BAD_ARGUMENT);
    }
}

}  // namespace
}  // namespace korvane::testing
