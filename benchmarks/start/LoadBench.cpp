// SPDX-License-Identifier: Apache-2.0
// korvane-bench-load ROUND NAME LIBRARY: what it takes to load a library into a process that has all that the
// library itself needs: the linker's work and the library's own before its first call. In microseconds.
#include <dlfcn.h>

#include <chrono>
#include <cstdlib>

#include "benchmarks/support/Fatal.h"
#include "benchmarks/support/Samples.h"

int main(int argc, char** argv) {
    using namespace korvane::bench;
    require(argc == 4, "korvane-bench-load ROUND NAME LIBRARY");
    // Its own library is not what is measured, but it must not be loaded along with it either.
    require(dlopen("libcrypto.so.3", RTLD_NOW) != nullptr, "no libcrypto");
    const auto start = std::chrono::steady_clock::now();
    const bool loaded = dlopen(argv[3], RTLD_NOW) != nullptr;
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    require(loaded, std::string("cannot load ") + argv[3]);
    printSample(std::string("load/") + argv[2], std::atoi(argv[1]), {{"us", time.count()}});
}
