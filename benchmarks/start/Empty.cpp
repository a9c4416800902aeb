// SPDX-License-Identifier: Apache-2.0
// What every shared library costs: nothing but one name in it.
extern "C" __attribute__((visibility("default"))) const int korvane_bench_nothing;
const int korvane_bench_nothing = 0;
