// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Theme.h"

#include <korvane/Contrast.h>
#include <korvane/Language.h>
#include <korvane/platform/Ports.h>

#include <QFontDatabase>
#include <QQmlEngine>
#include <algorithm>

#include "sdk/ChangeNotifications.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// The named face, or the family that it belongs to, or what stands in for it: first a geometric sans-serif
/// with real Medium and Bold cuts, then the device's own sans-serif. Behind it a family of the same weight
/// for Arabic, which none of them draws.
QStringList families(const QString& face) {
    const QStringList installed = QFontDatabase::families();
    QStringList chosen;
    for (const QString& family : {face, QStringLiteral("Avenir Next"), QStringLiteral("Manrope"),
                                  QStringLiteral("Nunito Sans"), QStringLiteral("sans-serif")}) {
        chosen = {family};
        if (installed.contains(family)) break;
    }
    for (const QString& family :
         {QStringLiteral("Noto Sans Arabic UI"), QStringLiteral("Noto Sans Arabic")}) {
        if (installed.contains(family)) chosen.append(family);
    }
    return chosen;
}

Color fromQt(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

}  // namespace

QColor mixed(const QColor& one, const QColor& other, double part) {
    const auto mix = [part](float from, float to) { return static_cast<float>(from + (to - from) * part); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

double contrast(const QColor& one, const QColor& other) {
    return contrastRatio(fromQt(one), fromQt(other));
}

Theme::Theme(QObject* parent)
    : QObject(parent),
      bold_(families(QStringLiteral("AvenirNext-Bold"))),
      medium_(families(QStringLiteral("AvenirNext-Medium"))),
      appearance_(NotificationCenter::defaultCenter().observe(NotificationAppearanceChanged,
                                                              [this](const auto&) { refresh(); })),
      language_(NotificationCenter::defaultCenter().observe(NotificationLanguageChanged,
                                                            [this](const auto&) { refresh(); })) {
    if (portsInstalled()) refresh();
    const auto follow = [this] {
        setTextScale(desktop_.textScale());
        setReducedMotion(desktop_.reducedMotion());
    };
    connect(&desktop_, &DesktopSettings::changed, this, follow);
    follow();
}

Theme* Theme::of(const QObject* object) {
    QQmlEngine* const engine = qmlEngine(object);
    return engine ? engine->singletonInstance<Theme*>(qmlTypeId("Korvane", 1, 0, "Theme")) : nullptr;
}

void Theme::refresh() {
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (colors_ != config.colors || radii_ != config.cornerRadii) {
        colors_ = config.colors;
        radii_ = config.cornerRadii;
        emit changed();
    }
    if (mirrored_ != isRightToLeft()) {
        mirrored_ = !mirrored_;
        emit mirroredChanged();
    }
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

void Theme::setTextScale(double scale) {
    scale = std::clamp(scale, 1.0, 2.0);
    if (textScale_ == scale) return;
    textScale_ = scale;
    emit changed();
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

QFont Theme::font(const QStringList& families, QFont::Weight weight, int pixelSize) const {
    QFont font(families);
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(static_cast<int>(std::lround(pixelSize * textScale_)));
    font.setWeight(weight);
    return font;
}

}  // namespace korvane
