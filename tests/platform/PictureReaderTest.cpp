// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/PictureReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QImageWriter>
#include <chrono>
#include <ctime>

#include "platform/fakes/FakeMainQueue.h"
#include "platform/qt/QtImageDecoder.h"
#include "tests/support/PeakGrowth.h"
#include "tests/support/Pictures.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {
namespace {

double seconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Whatever the picture, within 1 s and `limit` MiB.
QImage read(const std::string& file, long limit = 300) {
    const PeakGrowth growth;
    const double begin = seconds(CLOCK_THREAD_CPUTIME_ID);
    QImage image = readPicture(std::as_bytes(std::span{file}));
    EXPECT_LT(seconds(CLOCK_THREAD_CPUTIME_ID) - begin, 1);
    EXPECT_LT(growth.mebibytes(), limit);
    return image;
}

std::string written(const QImage& image, const char* format, bool progressive = false) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    EXPECT_TRUE(writer.write(image)) << format;
    return bytes.toStdString();
}

/// Colours in all directions, half of it transparent.
QImage motley(QSize size, QImage::Format format) {
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgba(x * 255 / size.width(), y * 255 / size.height(), x ^ y, y % 2 * 255));
    }
    return image.convertToFormat(format);
}

TEST(PictureReader, RefusesByTheHeaderWhatIsTooLargeOrTooLong) {
    // Sound in all else.
    for (const auto& [width, height] : {std::pair{1u, 4000u},
                                        {4000u, 1u},
                                        {4097u, 2000u},
                                        {2000u, 4097u},
                                        {4001u, 4000u},
                                        {401u, 100u},
                                        {100u, 401u}})
        EXPECT_TRUE(read(blankPng(width, height), 25).isNull()) << width << " x " << height;
    for (const std::uint32_t side : {0u, 16'000u, 65'535u, 0x7FFFFFFFu})
        EXPECT_TRUE(read(png(side, side), 5).isNull()) << side;
    for (const QSize size : {QSize(1, 1000), QSize(1000, 1), QSize(4100, 2000)})
        EXPECT_TRUE(read(written(QImage(size, QImage::Format_RGB32), "jpeg")).isNull()) << size.width();
    for (const auto& [width, height] : {std::pair{4000u, 4000u}, {4096u, 1024u}, {100u, 400u}, {1u, 1u}})
        EXPECT_FALSE(read(blankPng(width, height)).isNull()) << width << " x " << height;
}

TEST(PictureReader, AnotherPluginNeverSeesTheBytes) {
    const TemporaryFolder folder;
    QImage(20, 20, QImage::Format_RGB32).save(QString::fromStdString(folder / "local.png"));
    const std::string queue = folder / "queue";  // whoever opens it waits for ever
    ASSERT_EQ(mkfifo(queue.c_str(), 0600), 0);
    std::vector<std::string> others;
    for (const std::string& target : {std::string("/dev/ptmx"), queue, folder / "local.png"}) {
        others.push_back(R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="20" )"
                         R"(xmlns:xlink="http://www.w3.org/1999/xlink"><image xlink:href=")" +
                         target + R"(" width="20" height="20"/></svg>)");
    }
    // A bomb as an svgz file is (RFC 1952); zlib's own form is nearly that.
    const std::string bomb = deflated("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>" +
                                      std::string(50'000'000, ' ') + "</svg>");
    others.push_back("\x1F\x8B\x08" + std::string(7, '\0') + bomb.substr(2));
    const QImage image = motley({20, 20}, QImage::Format_RGB32);
    const QList<QByteArray> readable = QImageReader::supportedImageFormats();
    for (const char* const format : {"svg", "svgz", "gif"})
        EXPECT_TRUE(readable.contains(format)) << "no plug-in would have read " << format;
    for (const char* const format : {"ico", "tiff", "webp", "bmp", "ppm", "xpm"})
        others.push_back(written(image, format));
    others.push_back("GIF89a\1\0\1\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2D\1\0;");

    for (const std::string& file : others) {
        for (const std::string& front : {std::string(), std::string("\x89PNG\r\n\x1A\n"),
                                         std::string("\xFF\xD8\xFF"), png(20, 20).substr(0, 33)})
            EXPECT_TRUE(read(front + file).isNull()) << file.substr(0, 40);
    }
    // The bytes behind a picture's end are nobody's.
    EXPECT_EQ(read(written(image, "png") + others.front()), image);
}

TEST(PictureReader, ExpandsNothingThatIsNotDrawn) {
    const std::string bomb = "Comment" + std::string(2, '\0') + deflated(std::string(7'900'000, ' '));
    std::string extras, profiles = "\xFF\xD8";
    for (int i = 0; i < 200; ++i) {
        extras += pngChunk("zTXt", bomb);
        profiles += "\xFF\xE2\xFF\xFF" + std::string(65'533, 'p');
    }
    EXPECT_EQ(read(png(20, 20, {}, std::string(21 * 20, '\0'), extras)).size(), QSize(20, 20));
    const QImage image = motley({20, 20}, QImage::Format_RGB32);
    const std::string jpeg = written(image, "jpeg");
    EXPECT_EQ(read(profiles + jpeg.substr(2)), read(jpeg));

    // Each scan, even an empty one, costs a walk over every pixel (ITU-T T.81, G.1).
    const std::string progressive = written(QImage(4000, 4000, QImage::Format_RGB32), "jpeg", true);
    const std::size_t last = progressive.rfind("\xFF\xDA");
    const std::string begin = progressive.substr(0, last);
    const std::string scan = progressive.substr(last, progressive.size() - 2 - last);
    const auto withScans = [&](int count) {
        std::string file = begin;
        for (int i = 0; i < count; ++i) file += scan;
        return file + "\xFF\xD9";
    };
    EXPECT_EQ(read(progressive).width(), 2048);
    EXPECT_EQ(read(withScans(50)).width(), 2048);
    EXPECT_TRUE(read(withScans(2'000)).isNull());
}

TEST(PictureReader, LargerPicturesThanNeededComeSmaller) {
    EXPECT_EQ(read(blankPng(4000, 4000, {16, 6, true})).size(), QSize(2048, 2048));
    EXPECT_EQ(read(blankPng(1000, 4000)).size(), QSize(1000, 4000)) << "its width is needed";
}

TEST(PictureReader, PicturesLookAsQtWouldHaveDrawnThem) {
    const auto plainly = [](const std::string& file) {
        QImage image = QImage::fromData(QByteArray::fromStdString(file));
        image.setColorSpace({});
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
    };
    for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Indexed8,
                              QImage::Format_Grayscale8, QImage::Format_Mono, QImage::Format_RGBA64}) {
        QImage image = motley({160, 101}, format);
        image.setText("Comment", QString(5000, u'x'));
        image.setColorSpace(QColorSpace::AdobeRgb);
        for (const char* const type : {"png", "jpeg"}) {
            for (const bool progressive : {false, true}) {
                const std::string file = written(image, type, progressive);
                const QImage got = read(file);
                EXPECT_FALSE(got.isNull());
                EXPECT_EQ(got.convertToFormat(plainly(file).format()), plainly(file)) << type << format;
                EXPECT_TRUE(got.text().isEmpty());
                EXPECT_TRUE(std::string_view(type) == "jpeg" ||
                            read(file.substr(0, file.size() / 2)).isNull())
                    << "cut short";
            }
        }
    }
}

TEST(QtImageDecoder, LeavesTheMainThreadAlone) {
    const auto queue = std::make_shared<FakeMainQueue>();
    QtImageDecoder decoder(queue);
    const std::string file = blankPng(3000, 3000, {16, 6});
    const auto bytes = std::as_bytes(std::span{file});
    const double all = seconds(CLOCK_PROCESS_CPUTIME_ID), main = seconds(CLOCK_THREAD_CPUTIME_ID);
    std::shared_ptr<const DecodedImage> image;
    const auto handle = decoder.decode(std::make_shared<std::vector<std::byte>>(bytes.begin(), bytes.end()),
                                       [&image](auto decoded) { image = std::move(decoded); });
    while (queue->runAll() == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ASSERT_TRUE(image);
    EXPECT_LT(seconds(CLOCK_THREAD_CPUTIME_ID) - main, 0.3 * (seconds(CLOCK_PROCESS_CPUTIME_ID) - all));
}

}  // namespace
}  // namespace korvane::testing
