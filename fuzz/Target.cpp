// SPDX-License-Identifier: Apache-2.0
// The entry of one target. Without libFuzzer it runs the given files once.
#include <fstream>
#include <iterator>

#include "fuzz/Input.h"

namespace korvane::fuzz {
void KORVANE_FUZZ_TARGET(Input& input);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korvane::fuzz::Input input{{reinterpret_cast<const char*>(data), size}};
    korvane::fuzz::KORVANE_FUZZ_TARGET(input);
    return 0;
}

#ifdef KORVANE_FUZZ_REPLAY
int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::fprintf(stderr, "%s\n", argv[i]);
        std::ifstream file(argv[i], std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return argc > 1 ? 0 : 1;
}
#endif
