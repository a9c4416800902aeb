// SPDX-License-Identifier: Apache-2.0
// The same reply, taken apart with what Qt brings; it has no cipher, so that is EVP.
#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include "benchmarks/BareEvp.h"
#include "benchmarks/CardReply.h"

namespace korvane::bench {
namespace {

QByteArray decodeBase64(const QByteArray& text) {
    return *QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
}

QByteArray pictureOf(const QByteArray& json) {
    const QString text = QJsonDocument::fromJson(json).object().value("encryptedCardImage").toString();
    const QByteArray enciphered = decodeBase64(text.toLatin1());
    QByteArray plain(enciphered.size() + 16, Qt::Uninitialized);
    plain.resize(
        static_cast<qsizetype>(bareDecrypt({reinterpret_cast<const std::uint8_t*>(enciphered.constData()),
                                            static_cast<std::size_t>(enciphered.size())},
                                           reinterpret_cast<std::uint8_t*>(plain.data()))));
    const QString image = QString::fromUtf8(plain);
    return decodeBase64(image.toLatin1());
}

void qt(benchmark::State& state) {
    const CardReply& reply = cardReply(usualImage);
    const QByteArray json = QByteArray::fromStdString(reply.json);
    if (pictureOf(json).toStdString() != std::string(reply.image.begin(), reply.image.end()))
        state.SkipWithError("not the picture");
    for (auto _ : state) benchmark::DoNotOptimize(pictureOf(json));
}
BENCHMARK(qt)->Name("image500k/qt");

}  // namespace
}  // namespace korvane::bench
