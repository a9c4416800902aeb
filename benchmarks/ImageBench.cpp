// SPDX-License-Identifier: Apache-2.0
// A card picture's reply turned into the picture's bytes, for pictures of many sizes.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "benchmarks/BareEvp.h"
#include "benchmarks/CardReply.h"
#include "benchmarks/PeakMemory.h"
#include "flows/CardPictureReading.h"
#include "operations/Operations.h"
#include "platform/Background.h"
#include "sdk/JourneyState.h"
#include "transport/FieldCipher.h"
#include "transport/Json.h"

namespace korvane::bench {
namespace {

void count(benchmark::State& state, const CardReply& reply) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(reply.json.size()));
}

bool same(const CardPicture& picture, const Bytes& wanted) {
    return picture.image && std::ranges::equal(*picture.image, std::as_bytes(std::span{wanted}));
}

/// A turn of the main queue further on.
CardPicture readPicture(const StatePtr& state) {
    const Handle reading = readCardPicture(state, [] {});
    static_cast<FakeMainQueue&>(*ports().mainQueue).runAll();
    return state->cardPicture;
}

/// The steps that the operation and the viewer take with the reply's body.
CardPicture pictureOf(const std::string& json) {
    auto record = decodeRecord<RestGetCardImage>(json);
    std::string& text = *std::get<RestGetCardImage>(record).encryptedCardImage;
    const auto state = std::make_shared<JourneyState>(SdkConfig::sharedInstance(), cardId);
    decryptFieldInPlace(state->sdk.ivByteArray, text);
    state->decCardImage = std::move(text);
    return readPicture(state);
}

/// The whole operation, from the reply that the network hands over to the picture that the viewer holds.
std::size_t peakOfOperation(const CardReply& reply) {
    const FakePorts& device = prepareComponent();
    device.urlSession->recordRequests(false);
    device.urlSession->answerWith([&reply](const UrlRequest&) { return UrlReply{200, reply.json, ""}; });
    return peakMemory([&] {
        CardPicture picture;
        const auto state = std::make_shared<JourneyState>(SdkConfig::sharedInstance(), cardId);
        const Handle call = doCardImage(state, [](const KorvaneRetStruct&) {});
        device.mainQueue->runAll();
        finishBackgroundWork();  // a long body is read there
        device.mainQueue->runAll();
        picture = readPicture(state);
        if (!same(picture, reply.image)) std::abort();
    });
}

void ours(benchmark::State& state, std::size_t size) {
    prepareComponent();
    const CardReply& reply = cardReply(size);
    if (!same(pictureOf(reply.json), reply.image)) state.SkipWithError("not the picture");
    state.counters["peak_over_reply"] =
        static_cast<double>(peakOfOperation(reply)) / static_cast<double>(reply.json.size());
    for (auto _ : state) benchmark::DoNotOptimize(pictureOf(reply.json));
    count(state, reply);
}

void aesOnly(benchmark::State& state, std::size_t size) {
    const CardReply& reply = cardReply(size);
    Bytes plain(reply.enciphered.size() + 16);
    for (auto _ : state) benchmark::DoNotOptimize(bareDecrypt(reply.enciphered, plain.data()));
    count(state, reply);
}

[[maybe_unused]] const bool registered = [] {
    // The allocator keeps what it got: measured is the work, on both sides, and not how the kernel hands out
    // pages. For the largest pictures those would take more than all the rest.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    benchmark::RegisterBenchmark("image500k/ours", ours, usualImage);
    benchmark::RegisterBenchmark("image500k/aes_only", aesOnly, usualImage);
    const std::pair<const char*, std::size_t> sizes[] = {{"10k", 10'000},   {"50k", 50'000},
                                                         {"250k", 250'000}, {"1m", 1'000'000},
                                                         {"4m", 4'000'000}, {"16m", 16'000'000}};
    for (const auto& [name, size] : sizes) {
        benchmark::RegisterBenchmark((std::string("image/ours/") + name).c_str(), ours, size);
        benchmark::RegisterBenchmark((std::string("image/aes_only/") + name).c_str(), aesOnly, size);
    }
    return true;
}();

}  // namespace
}  // namespace korvane::bench
