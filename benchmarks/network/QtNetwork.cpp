// SPDX-License-Identifier: Apache-2.0
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <utility>

#include "benchmarks/network/Clients.h"
#include "benchmarks/support/BareCipher.h"
#include "benchmarks/support/Fatal.h"

namespace korvane::bench {
namespace {

class QtNetwork final : public Client {
  public:
    explicit QtNetwork(Call call) : call_(std::move(call)) {
        request_.setUrl(QUrl(QString::fromStdString(call_.request.url)));
        for (const auto& [name, value] : call_.request.headers)
            request_.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
        if (call_.caFile.empty()) return;
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(QString::fromStdString(call_.caFile)));
        request_.setSslConfiguration(tls);
    }

    void setPin() override {
        const QJsonObject body{{"offsetId", QString::fromStdString(call_.ivId)},
                               {"encryptedCardId", enciphered(call_.cardId)},
                               {"encryptedPIN", enciphered("7391")},
                               {"encryptedPciToken", enciphered(call_.pciToken)},
                               {"UUID", ""},
                               {"brandId", ""}};
        QNetworkReply* const reply =
            manager_.post(request_, QJsonDocument(body).toJson(QJsonDocument::Compact));
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        require(reply->error() == QNetworkReply::NoError,
                "Qt's client failed: " + reply->errorString().toStdString());
        const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
        require(deciphered(answer["encryptedResult"].toString()) == "Success", "Qt's client read no success");
        delete reply;
    }

  private:
    QString enciphered(const std::string& plain) const {
        return QString::fromLatin1(QByteArray::fromStdString(encipher(plain, call_.iv)).toBase64());
    }
    std::string deciphered(const QString& text) const {
        return decipher(QByteArray::fromBase64(text.toLatin1()).toStdString(), call_.iv);
    }

    const Call call_;
    QNetworkAccessManager manager_;
    QNetworkRequest request_;
};

}  // namespace

std::unique_ptr<Client> qtNetwork(const Call& call) {
    return std::make_unique<QtNetwork>(call);
}

}  // namespace korvane::bench
