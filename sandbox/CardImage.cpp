// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CardImage.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane::sandbox {
namespace {

constexpr int width = 642;
constexpr int height = 405;
constexpr double cornerRadius = 24;

using Bytes = std::vector<std::uint8_t>;

struct Colour {
    int red, green, blue;
};

struct Look {
    std::string_view type;
    Colour left, right;
};

constexpr std::array<Look, 5> looks{{
    {"physical", {22, 50, 92}, {52, 120, 170}},
    {"virtual", {72, 30, 110}, {170, 70, 160}},
    {"wearable", {16, 84, 72}, {70, 170, 120}},
    {"paywallet", {120, 62, 20}, {220, 140, 60}},
    {"", {70, 70, 78}, {140, 140, 150}},  // any other type
}};

constexpr Colour chip{214, 184, 110};

void putNumber(Bytes& out, std::size_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(number >> shift));
}

void putChunk(Bytes& file, std::string_view name, const Bytes& data) {
    putNumber(file, data.size());
    const std::size_t checked = file.size();
    file.insert(file.end(), name.begin(), name.end());
    file.insert(file.end(), data.begin(), data.end());
    putNumber(file, crc32(0, file.data() + checked, static_cast<uInt>(file.size() - checked)));
}

/// How much of the pixel lies inside the card: 0 to 1, so that the round corners are smooth.
double coverage(int x, int y) {
    const double dx = std::max(0.0, std::abs(x + 0.5 - width / 2.0) - (width / 2.0 - cornerRadius));
    const double dy = std::max(0.0, std::abs(y + 0.5 - height / 2.0) - (height / 2.0 - cornerRadius));
    return std::clamp(cornerRadius + 0.5 - std::hypot(dx, dy), 0.0, 1.0);
}

Colour colourAt(const Look& look, int x, int y) {
    if (x >= 60 && x < 148 && y >= 140 && y < 206) {
        const bool line = x % 29 == 2 || (y - 140) % 22 == 21;
        return line ? Colour{150, 124, 62} : chip;
    }
    const double way = (x + 0.6 * y) / (width + 0.6 * height) + 0.03 * std::sin(x / 40.0 + y / 25.0);
    const auto mix = [way](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * way));
    };
    const auto clamped = [](int value) { return std::clamp(value, 0, 255); };
    return {clamped(mix(look.left.red, look.right.red)), clamped(mix(look.left.green, look.right.green)),
            clamped(mix(look.left.blue, look.right.blue))};
}

}  // namespace

Bytes cardImagePng(std::string_view type) {
    const auto found = std::ranges::find(looks, type, &Look::type);
    const Look& look = found == looks.end() ? looks.back() : *found;
    Bytes rows;
    rows.reserve(height * (1 + width * 4));
    for (int y = 0; y < height; ++y) {
        rows.push_back(0);  // no filter
        for (int x = 0; x < width; ++x) {
            const Colour colour = colourAt(look, x, y);
            for (const int channel : {colour.red, colour.green, colour.blue}) {
                rows.push_back(static_cast<std::uint8_t>(channel));
            }
            rows.push_back(static_cast<std::uint8_t>(std::lround(255 * coverage(x, y))));
        }
    }
    uLongf size = compressBound(rows.size());
    Bytes compressed(size);
    if (compress2(compressed.data(), &size, rows.data(), rows.size(), Z_BEST_SPEED) != Z_OK) return {};
    compressed.resize(size);

    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes header;
    putNumber(header, width);
    putNumber(header, height);
    header.insert(header.end(),
                  {8, 6, 0, 0, 0});  // depth, red-green-blue-alpha, deflate, filters by row, no interlace
    putChunk(file, "IHDR", header);
    putChunk(file, "IDAT", compressed);
    putChunk(file, "IEND", {});
    return file;
}

}  // namespace korvane::sandbox
