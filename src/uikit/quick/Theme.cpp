// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Theme.h"

#include <QFontDatabase>
#include <QQmlEngine>
#include <algorithm>
#include <cmath>

#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// The named face where the device has it, else the family that stands in for it.
QString installedFamily(const QStringList& wanted) {
    const QStringList families = QFontDatabase::families();
    for (const QString& family : wanted) {
        if (families.contains(family)) return family;
    }
    return wanted.last();
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

QColor mixed(const QColor& one, const QColor& other, double part) {
    const auto mix = [part](float from, float to) { return static_cast<float>(from + (to - from) * part); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

Theme::Theme(QObject* parent)
    : QObject(parent),
      bold_(installedFamily({"AvenirNext-Bold", "Avenir Next", "Manrope"})),
      medium_(installedFamily({"AvenirNext-Medium", "Avenir Next", "Manrope"})) {}

Theme* Theme::of(const QObject* object) {
    QQmlEngine* const engine = qmlEngine(object);
    return engine ? engine->singletonInstance<Theme*>(qmlTypeId("Korvane", 1, 0, "Theme")) : nullptr;
}

void Theme::refresh() {
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (colors_ == config.colors && radii_ == config.cornerRadii) return;
    colors_ = config.colors;
    radii_ = config.cornerRadii;
    emit changed();
}

QColor Theme::errorText() const {
    constexpr double smallText = 4.5;
    QColor tone = error();
    for (int step = 1; step <= 10 && contrast(tone, background()) < smallText; ++step) {
        tone = mixed(error(), colorOnBackground(), step / 10.0);
    }
    return tone;
}

QColor Theme::primaryPressed() const {
    return mixed(primary(), colorOnPrimary(), 0.16);
}
QColor Theme::secondaryPressed() const {
    return mixed(secondary(), colorOnSecondary(), 0.12);
}
QColor Theme::disabledFill() const {
    return mixed(background(), colorOnBackground(), 0.10);
}
QColor Theme::disabledText() const {
    return mixed(background(), colorOnBackground(), 0.52);
}
QColor Theme::outline() const {
    return mixed(background(), colorOnBackground(), 0.14);
}
QColor Theme::backdrop() const {
    return mixed(background(), colorOnBackground(), 0.05);
}
QColor Theme::scrim() const {
    return QColor::fromRgbF(0, 0, 0, 0.48F);
}

void Theme::setReducedMotion(bool reduced) {
    if (reducedMotion_ == reduced) return;
    reducedMotion_ = reduced;
    emit reducedMotionChanged();
}

QColor Theme::toQt(const Color& color) {
    // A host's arithmetic may stray outside; QColor would turn such a colour invalid, which draws black.
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.opacity));
}

QFont Theme::font(const QString& family, QFont::Weight weight, int pixelSize) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

}  // namespace korvane
