// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/PictureFile.h"

#include <QtEndian>
#include <string_view>

namespace korvane {
namespace {

std::string_view textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

QByteArray copyOf(std::string_view text) {
    QByteArray copy;
    copy.reserve(static_cast<qsizetype>(text.size()));
    return copy;
}

void append(QByteArray& to, std::string_view text) {
    to.append(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QByteArray pngPixels(std::span<const std::byte> png) {
    constexpr std::size_t signature = 8, header = 8, checksum = 4;
    const std::string_view file = textOf(png);
    QByteArray pixels = copyOf(file);
    append(pixels, file.substr(0, signature));
    for (std::size_t at = signature; file.size() - at >= header;) {
        const std::size_t size = header + qFromBigEndian<quint32>(file.data() + at) + checksum;
        if (size > file.size() - at) return {};
        const std::string_view type = file.substr(at + 4, 4);
        const bool isCritical = (type[0] & 0x20) == 0;  // ISO/IEC 15948, 5.4
        if (isCritical || type == "tRNS") append(pixels, file.substr(at, size));
        if (type == "IEND") return pixels;
        at += size;
    }
    return {};
}

QByteArray jpegPixels(std::span<const std::byte> jpeg, int maxScans) {
    const std::string_view file = textOf(jpeg);
    QByteArray pixels = copyOf(file);
    append(pixels, file.substr(0, 2));
    for (std::size_t at = 2; file.size() - at >= 4;) {
        if (file[at] != '\xFF') return {};
        const auto marker = static_cast<quint8>(file[at + 1]);
        if (marker == 0xFF) {  // fill byte
            ++at;
            continue;
        }
        if (marker == 0xDA) {
            // Data, and tables between scans. Within data, 0xFF never stands before 0xDA.
            int scans = 0;
            for (auto scan = at; scan != file.npos; scan = file.find("\xFF\xDA", scan + 2)) ++scans;
            if (scans > maxScans) return {};
            append(pixels, file.substr(at));
            return pixels;
        }
        const std::size_t size = 2u + qFromBigEndian<quint16>(file.data() + at + 2);
        if (size < 4 || size > file.size() - at) return {};
        const bool isApplications = marker >= 0xE0 && marker <= 0xEF && marker != 0xE0 && marker != 0xEE;
        if (!isApplications && marker != 0xFE) append(pixels, file.substr(at, size));
        at += size;
    }
    return {};
}

}  // namespace korvane
