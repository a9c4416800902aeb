// SPDX-License-Identifier: Apache-2.0
// One short field enciphered, and one request's body of six of them.
#include <benchmark/benchmark.h>

#include <array>

#include "benchmarks/BareEvp.h"
#include "benchmarks/CardReply.h"
#include "sdk/SdkConfig.h"
#include "transport/FieldCipher.h"
#include "transport/Json.h"

namespace korvane::bench {
namespace {

/// The fields of a physical card's activation, and one more.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> fields{{
    {"encryptedCardId", "card-physical-00"},
    {"encryptedCVV", "8642"},
    {"encryptedPIN", "1357"},
    {"encryptedLastFourOfPan", "9197"},
    {"encryptedTwoFactorCode", "824193"},
    {"encryptedPciToken", "pci-6f1d2c3b4a59"},
}};

std::size_t bareEncrypt(std::string_view text) {
    std::array<std::uint8_t, 48> out;
    const std::size_t size =
        bench::bareEncrypt({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, out.data());
    benchmark::DoNotOptimize(out);
    return size;
}

void fieldOurs(benchmark::State& state) {
    prepareComponent();
    for (auto _ : state) benchmark::DoNotOptimize(encryptField(iv(), "card-physical-00"));
}
BENCHMARK(fieldOurs)->Name("field16/ours");

void fieldEvp(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(bareEncrypt("card-physical-00"));
}
BENCHMARK(fieldEvp)->Name("field16/evp");

void requestOurs(benchmark::State& state) {
    prepareComponent();
    const SdkConfig& config = SdkConfig::sharedInstance();
    for (auto _ : state) {
        TextMap body;
        body.set("offsetId", config.ivIdStr);
        for (const auto& [name, text] : fields) body.set(name, encryptField(config.ivByteArray, text));
        body.set("UUID", config.trackingUUID);
        body.set("brandId", config.brandId);
        benchmark::DoNotOptimize(encodeTexts(body));
    }
}
BENCHMARK(requestOurs)->Name("request6/ours");

void requestEvp(benchmark::State& state) {
    for (auto _ : state) {
        for (const auto& field : fields) benchmark::DoNotOptimize(bareEncrypt(field.second));
    }
}
BENCHMARK(requestEvp)->Name("request6/evp");

}  // namespace
}  // namespace korvane::bench
