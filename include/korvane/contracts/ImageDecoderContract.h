// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/ImageDecoder.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace korvane::testing {

/// What the suite has to be given: the decoder, and a hand on its main queue. Every case makes a driver of
/// its own, on the main thread.
/// - `decoder`, a `std::shared_ptr` which alone owns the decoder: a callback destroys it.
/// - `runUntil(condition)` turns the main loop until the condition holds, for 20 s at most.
/// - `settle()` gives a callback that should not come its chance: it turns the loop, or sleeps a moment.
template <class Driver>
concept ImageDecoderDriver = std::default_initializable<Driver> &&
    requires(Driver driver, bool (*condition)()) {
    { *driver.decoder } -> std::convertible_to<ImageDecoder&>;
    driver.decoder.reset();
    driver.runUntil(condition);
    driver.settle();
};

/// What every image decoder keeps to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, ImageDecoderContract, MyDriver);`
/// Limits on size and area are for the port's own tests.
/// @tparam Driver  an `ImageDecoderDriver`
template <class Driver>
class ImageDecoderContract : public ::testing::Test {
    static_assert(ImageDecoderDriver<Driver>);

  protected:
    /// Receives what a decoding gave.
    using Done = ImageDecoder::Done;

    /// Starts to decode these bytes.
    std::unique_ptr<ImageDecoding> start(std::string_view bytes, Done done) {
        const auto* const begin = reinterpret_cast<const std::byte*>(bytes.data());
        return driver.decoder->decode(
            std::make_shared<const std::vector<std::byte>>(begin, begin + bytes.size()), std::move(done));
    }
    /// Decodes them to the end.
    bool isPicture(std::string_view bytes) {
        int replies = 0;
        bool decoded = false;
        const auto handle = start(bytes, [&](const auto& image) {
            decoded = image != nullptr;
            ++replies;
        });
        EXPECT_EQ(replies, 0) << "never from inside";
        driver.runUntil([&] { return replies > 0; });
        driver.settle();
        EXPECT_EQ(replies, 1);
        return decoded;
    }

    /// A grey pixel as a PNG of 67 bytes.
    const std::string png = bytes(
        "89504e470d0a1a0a 0000000d4948445200000001000000010800000000 3a7e9b55"
        "0000000a49444154 78da6368000000820081 da45083b 0000000049454e44ae426082");
    /// A grey pixel as a baseline JPEG of 126 bytes.
    const std::string jpeg =
        bytes("ffd8 ffdb004300" + std::string(128, '1') +
              "ffc0000b080001000101011100 ffc4001400 01000000000000000000000000000000 00"
              "ffc4001410 01000000000000000000000000000000 00 ffda0008010100003f00 3f ffd9");
    /// Made anew for each case.
    Driver driver;

  private:
    static std::string bytes(std::string hex) {
        std::erase(hex, ' ');
        std::string result;
        for (std::size_t i = 0; i < hex.size(); i += 2)
            result += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        return result;
    }
};

/// @cond cases: their names say what a port must do
TYPED_TEST_SUITE_P(ImageDecoderContract);

TYPED_TEST_P(ImageDecoderContract, TakesPngAndJpegAndNothingElse) {
    EXPECT_TRUE(this->isPicture(this->png));
    EXPECT_TRUE(this->isPicture(this->jpeg));
    for (const std::string_view other :
         {"", "\x89PNG\r\n", "\xFF\xD8", "GIF89a\1\0\1\0\0\0\0;", "<svg xmlns='http://www.w3.org/2000/svg'/>",
          "RIFF\x1A\0\0\0WEBPVP8L", "BM\x3A", "II*"})
        EXPECT_FALSE(this->isPicture(other)) << other;
    EXPECT_FALSE(this->isPicture(" " + this->png));
}

TYPED_TEST_P(ImageDecoderContract, AReleasedDecodingNeverCallsBack) {
    int calls = 0;
    for (int round = 0; round < 100; ++round) {
        auto target = std::make_unique<int>(0);  // goes with the handle: a late callback is a use after free
        auto handle = this->start(round % 3 ? this->png : "none", [p = target.get(), &calls](const auto&) {
            ++*p;
            ++calls;
        });
        if (round % 4 == 1) std::this_thread::yield();
        if (round % 4 > 1) this->driver.settle();
        handle.reset();
        target.reset();
    }
    const int before = calls;
    this->driver.settle();
    EXPECT_EQ(calls, before);
}

TYPED_TEST_P(ImageDecoderContract, CallsBackInOrderOnTheMainThread) {
    std::vector<int> order;
    std::vector<std::unique_ptr<ImageDecoding>> handles;
    for (int i = 0; i < 50; ++i) {
        handles.push_back(this->start(i % 2 ? this->jpeg : "none",
                                      [&order, i, main = std::this_thread::get_id()](const auto& image) {
                                          EXPECT_EQ(std::this_thread::get_id(), main);
                                          EXPECT_EQ(image != nullptr, i % 2 == 1);
                                          order.push_back(i);
                                      }));
    }
    this->driver.runUntil([&] { return order.size() == 50; });
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TYPED_TEST_P(ImageDecoderContract, AHandleMayBeReleasedInItsOwnCallback) {
    const auto held = std::make_shared<int>();
    std::unique_ptr<ImageDecoding> handle;
    handle = this->start(this->png, [&handle, held](const auto&) { handle.reset(); });
    this->driver.runUntil([&] { return held.use_count() == 1; });
    EXPECT_EQ(held.use_count(), 1) << "a callback stays in memory after it ran";
    EXPECT_FALSE(handle);
}

TYPED_TEST_P(ImageDecoderContract, HandlesMayOutliveTheDecoderAndNeverCallBack) {
    const auto held = std::make_shared<int>();
    int calls = 0;
    std::vector<std::unique_ptr<ImageDecoding>> handles;
    for (int i = 0; i < 20; ++i)
        handles.push_back(this->start(this->png, [&calls, held](const auto&) { ++calls; }));
    this->driver.decoder.reset();
    EXPECT_EQ(held.use_count(), 1) << "a dropped callback stays in memory";
    this->driver.settle();
    EXPECT_EQ(calls, 0);
}

TYPED_TEST_P(ImageDecoderContract, ACallbackThatDestroysTheDecoderIsTheLast) {
    const auto held = std::make_shared<int>();
    int calls = 0;
    std::vector<std::unique_ptr<ImageDecoding>> handles;
    for (int i = 0; i < 5; ++i) {
        handles.push_back(this->start(this->png, [&calls, held, this](const auto&) {
            this->driver.decoder.reset();
            ++calls;
        }));
    }
    this->driver.runUntil([&] { return calls > 0; });
    this->driver.settle();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(held.use_count(), 1) << "a dropped callback stays in memory";
}

REGISTER_TYPED_TEST_SUITE_P(ImageDecoderContract, TakesPngAndJpegAndNothingElse,
                            AReleasedDecodingNeverCallsBack, CallsBackInOrderOnTheMainThread,
                            AHandleMayBeReleasedInItsOwnCallback, HandlesMayOutliveTheDecoderAndNeverCallBack,
                            ACallbackThatDestroysTheDecoderIsTheLast);
/// @endcond

}  // namespace korvane::testing
