// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>
#include <korvane/QtPorts.h>

#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QQmlApplicationEngine>
#include <QSslConfiguration>

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() != 5) return qCritical("usage: quick-host SERVICE KEY IV-URL CA-FILE"), 2;

    // The bank's own server hands out initialisation vectors.
    QNetworkAccessManager bank;
    QNetworkRequest question{QUrl(arguments[3])};
    question.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    QSslConfiguration tls = question.sslConfiguration();
    tls.setCaCertificates(QSslCertificate::fromPath(arguments[4]));
    question.setSslConfiguration(tls);
    const auto ivCallback = [&](korvane::IvReply reply) {
        QNetworkReply* const answer = bank.post(question, "{}");
        QObject::connect(answer, &QNetworkReply::finished, [answer, reply] {
            answer->deleteLater();
            const QJsonObject iv = QJsonDocument::fromJson(answer->readAll()).object();
            if (answer->error() != QNetworkReply::NoError) return reply(std::nullopt, std::nullopt);
            reply(iv["ivId"].toString().toStdString(), iv["iv"].toString().toStdString());
        });
    };

    korvane::installPorts(korvane::qtPorts(arguments[4].toStdString()));
    if (!korvane::initialize(arguments[2].toStdString(), arguments[1].toStdString(), ivCallback, false, {},
                             {}))
        return qCritical("The key is not base64."), 2;
    auto engine = std::make_unique<QQmlApplicationEngine>(QUrl("qrc:/Main.qml"));
    const int status = engine->rootObjects().isEmpty() ? 2 : app.exec();
    engine.reset();
    korvane::uninstallPorts();
    return status;
}
