// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/CardModel.h"

#include <korvane/platform/Ports.h>

#include "base/Secret.h"
#include "platform/qt/QtImageDecoder.h"

namespace korvane {
namespace {

QString text(std::string_view key) {
    return QString::fromStdString(ports().stringTable->text(key));
}

bool same(const CardFace& one, const CardFace& other) {
    return one.image == other.image && one.name == other.name && one.networkLogo == other.networkLogo &&
           one.frozen == other.frozen && one.message == other.message;
}

bool same(const DetailRow& one, const DetailRow& other) {
    return one.id == other.id && one.value == other.value && one.masked == other.masked;
}

}  // namespace

void CardModel::update(const CardFace& face, ControlModel* button) {
    if (same(face_, face) && button_ == button) return;
    face_ = face;
    button_ = button;
    emit changed();
}

QString CardModel::name() const {
    return face_.name.empty() ? text("sdk.cardtype.none") : QString::fromStdString(face_.name);
}

QString CardModel::description() const {
    // A name, the same in every language.
    return face_.networkLogo == "mastercard_logo" ? name() + QStringLiteral(", Mastercard") : name();
}

QImage CardModel::picture() const {
    const auto* const read = dynamic_cast<const QtDecodedImage*>(face_.decoded.get());
    return read ? read->image : QImage();
}

QList<QString> CardModel::message() const {
    QList<QString> lines;
    for (const std::string& key : face_.message) lines.append(text(key));
    return lines;
}

DetailModel::DetailModel(const DetailRow& row, ControlModel* control, QObject* parent)
    : QObject(parent), row_(row), control_(control) {}

DetailModel::~DetailModel() {
    wipe(row_.value);
}

QString DetailModel::spokenValue() const {
    if (row_.value.empty()) return text("sdk.cardviewer.device.details.missing");
    if (row_.secret) return text(row_.masked ? "sdk.accessibility.hidden" : "sdk.accessibility.shown");
    return QString::fromStdString(row_.value);
}

void DetailModel::update(const DetailRow& row, ControlModel* control) {
    if (same(row_, row) && control_ == control) return;
    wipe(row_.value);
    row_ = row;
    control_ = control;
    emit changed();
}

void DetailModel::forgetSecret() {
    if (!revealed()) return;
    wipe(row_.value);
    emit changed();
}

}  // namespace korvane
