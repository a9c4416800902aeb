// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <korvane/Journey.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/fakes/FakeConsole.h"
#include "sandbox/CardService.h"
#include "sandbox/Wire.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

using namespace std::chrono_literals;
using sandbox::WireFault;
using Kind = WireFault::Kind;

/// Journeys as an app has them (main loop, HTTP session, card service), with a wire before the service. No
/// turn of the main loop may keep a tap waiting for more than 50 ms; the time that the thread could have run
/// and other threads had the processor does not count.
class RealStack {
  public:
    /// A request is given up after `timeout`, where an app waits for 60 s.
    explicit RealStack(bool tls, std::chrono::milliseconds timeout = 20s);
    ~RealStack();
    RealStack(const RealStack&) = delete;

    /// Leads the component elsewhere, with these authorities to trust.
    void call(const std::string& url, const std::string& caFile);
    /// Of the wire.
    std::string url() const;
    std::string caFile() const { return folder_ / "ca.pem"; }

    /// Shows another journey, with the bearer and PCI token of a cardholder who was here a moment ago.
    void start(JourneyKind kind = JourneyKind::setPIN);
    /// To just before the request, and the step that sends it.
    void reach(const std::string& endpoint);
    void send(const std::string& endpoint);
    void tap(const std::string& control) { EXPECT_EQ(journey->perform(control), Journey::Outcome::done); }
    void type(const std::string& digits) { EXPECT_EQ(journey->replaceText(digits), Journey::Outcome::done); }

    /// Lets the loop run until something else is shown, at rest, and tells its view: "still …" when that does
    /// not come to pass.
    std::string shown();
    /// The lines printed since the last journey began, one below the other.
    std::string printed() const;

    const std::string cardId = "card-physical-active";
    sandbox::CardService service;
    sandbox::Wire wire;
    std::unique_ptr<Journey> journey;
    int journeys = 0;

  private:
    void turn();
    std::chrono::nanoseconds waitedForProcessor() const;

    const TemporaryFolder folder_;
    const std::shared_ptr<FakeConsole> console_ = std::make_shared<FakeConsole>();
    const std::chrono::milliseconds timeout_;
    std::string bearerToken_, pciToken_;
    std::uint64_t instance_ = 0;  // of the screen before the last step
    std::chrono::nanoseconds longestTurn_{};
    int schedule_ = -1;
};

}  // namespace korvane::testing
