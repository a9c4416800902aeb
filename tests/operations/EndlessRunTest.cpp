// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>

#include <algorithm>
#include <cstdint>

#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class EndlessRun : public ServiceFixture {};

TEST_F(EndlessRun, AHundredThousandRefusedIvsCostNoStackAndNoMemory) {
    constexpr int runs = 100'000;
    device.console->keepLines(false);
    device.urlSession->recordRequests(false);
    std::uintptr_t lowest = UINTPTR_MAX;
    std::uintptr_t highest = 0;
    const auto measureStack = [&] {
        const auto address = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
        lowest = std::min(lowest, address);
        highest = std::max(highest, address);
    };
    config.ivCallback = [&](const IvReply& reply) {
        measureStack();
        reply("iv-" + std::to_string(++ivsSupplied), ivText);
    };
    const UrlReply refusal = result("Failure: IV is expired");
    const UrlReply success = result("Success");
    int ended = 0;
    device.urlSession->answerWith([&](const UrlRequest&) { return ivsSupplied < runs ? refusal : success; });
    doPinSet("1357", [&](const KorvaneRetStruct& record) { ended += record.error ? 0 : 1; });

    // Past the first thousand everything that is kept for good has been made.
    while (ivsSupplied < 1000) device.mainQueue->runOne();
    const auto before = static_cast<std::ptrdiff_t>(mallinfo2().uordblks);
    const std::uintptr_t depth = highest - lowest;
    while (ivsSupplied < runs) device.mainQueue->runOne();
    const auto after = static_cast<std::ptrdiff_t>(mallinfo2().uordblks);
    EXPECT_EQ(highest - lowest, depth);
    EXPECT_LT(after - before,
              1 << 20);  // bytes of the C library's heap; sanitizers bring their own, read as 0
    EXPECT_EQ(ended, 0);
    settle();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(ivsSupplied, runs);
}

}  // namespace
}  // namespace korvane
