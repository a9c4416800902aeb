// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>
#include <korvane/CloseNotification.h>

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QFont>
#include <QObject>
#include <QStringList>
#include <memory>

#include "uikit/quick/DesktopSettings.h"

namespace korvane {

/// The look of everything that the module draws: the host's colours and corner radii, the tones that follow
/// from them, the type scale and the pace of motion. One per QML engine; main thread.
///
/// It takes over what `initialize` stores as soon as it is stored: a later call repaints what is on screen.
/// Before the first one it has the default palette.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QColor primary READ primary NOTIFY changed)
    Q_PROPERTY(QColor colorOnPrimary READ colorOnPrimary NOTIFY changed)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY changed)
    Q_PROPERTY(QColor colorOnSecondary READ colorOnSecondary NOTIFY changed)
    Q_PROPERTY(QColor background READ background NOTIFY changed)
    Q_PROPERTY(QColor colorOnBackground READ colorOnBackground NOTIFY changed)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed)
    Q_PROPERTY(QColor colorOnSurface READ colorOnSurface NOTIFY changed)
    Q_PROPERTY(QColor error READ error NOTIFY changed)
    Q_PROPERTY(QColor onError READ onError NOTIFY changed)
    Q_PROPERTY(QColor success READ success NOTIFY changed)
    Q_PROPERTY(QColor hintText READ hintText NOTIFY changed)
    Q_PROPERTY(QColor inputText READ inputText NOTIFY changed)
    Q_PROPERTY(QColor inputLabel READ inputLabel NOTIFY changed)
    Q_PROPERTY(QColor inputBorder READ inputBorder NOTIFY changed)

    /// Radii in device-independent pixels. `full` is infinite: draw the smaller of it and half the height.
    Q_PROPERTY(double buttonRadius READ buttonRadius NOTIFY changed)
    Q_PROPERTY(double textFieldRadius READ textFieldRadius NOTIFY changed)

    /// `error`, mixed with the text colour until small text on the background is legible
    /// (WCAG 2.1, 1.4.3: 4.5 to 1).
    Q_PROPERTY(QColor errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QColor primaryPressed READ primaryPressed NOTIFY changed)
    Q_PROPERTY(QColor secondaryPressed READ secondaryPressed NOTIFY changed)
    Q_PROPERTY(QColor disabledFill READ disabledFill NOTIFY changed)
    Q_PROPERTY(QColor disabledText READ disabledText NOTIFY changed)
    /// Hairlines and the outline of quiet surfaces.
    Q_PROPERTY(QColor outline READ outline NOTIFY changed)
    /// Behind the panel that holds the journey in a wide window.
    Q_PROPERTY(QColor backdrop READ backdrop NOTIFY changed)
    /// Over a screen that a sheet covers.
    Q_PROPERTY(QColor scrim READ scrim NOTIFY changed)

    // "AvenirNext-Bold" for titles and buttons, "AvenirNext-Medium" for the rest, or what stands in for them.
    Q_PROPERTY(QFont title READ title NOTIFY changed)
    Q_PROPERTY(QFont titleCompact READ titleCompact NOTIFY changed)
    Q_PROPERTY(QFont body READ body NOTIFY changed)
    Q_PROPERTY(QFont button READ button NOTIFY changed)
    Q_PROPERTY(QFont caption READ caption NOTIFY changed)
    /// How much larger than designed all text is, from 1 to 2 (WCAG 2.2, 1.4.4). It follows the desktop's
    /// setting; a host with a setting of its own may write it.
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale NOTIFY changed)

    /// The language in use runs from right to left.
    Q_PROPERTY(bool mirrored READ mirrored NOTIFY mirroredChanged)

    /// No slides, fades or turning: for people whom motion disturbs, and for pictures. It follows the
    /// desktop's setting; a host may write it.
    Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
    /// Length of a move in ms; 0 with reduced motion.
    Q_PROPERTY(int moveDuration READ moveDuration NOTIFY reducedMotionChanged)

  public:
    explicit Theme(QObject* parent = nullptr);

    /// The theme of the engine that `object` belongs to; none for an object made without QML.
    static Theme* of(const QObject* object);

    /// Takes over the palette and radii that `initialize` stored, and the direction of the language. Needs
    /// installed ports.
    void refresh();

    bool mirrored() const { return mirrored_; }

    QColor primary() const { return toQt(colors_.primary); }
    QColor colorOnPrimary() const { return toQt(colors_.colorOnPrimary); }
    QColor secondary() const { return toQt(colors_.secondary); }
    QColor colorOnSecondary() const { return toQt(colors_.colorOnSecondary); }
    QColor background() const { return toQt(colors_.background); }
    QColor colorOnBackground() const { return toQt(colors_.colorOnBackground); }
    QColor surface() const { return toQt(colors_.surface); }
    QColor colorOnSurface() const { return toQt(colors_.colorOnSurface); }
    QColor error() const { return toQt(colors_.error); }
    QColor onError() const { return toQt(colors_.onError); }
    QColor success() const { return toQt(colors_.success); }
    QColor hintText() const { return toQt(colors_.hintText); }
    QColor inputText() const { return toQt(colors_.inputText); }
    QColor inputLabel() const { return toQt(colors_.inputLabel); }
    QColor inputBorder() const { return toQt(colors_.inputBorder); }

    double buttonRadius() const { return cornerRadius(radii_.buttonCorner); }
    double textFieldRadius() const { return cornerRadius(radii_.textFieldCorner); }

    QColor errorText() const;
    QColor primaryPressed() const;
    QColor secondaryPressed() const;
    QColor disabledFill() const;
    QColor disabledText() const;
    QColor outline() const;
    QColor backdrop() const;
    QColor scrim() const;

    QFont title() const { return font(bold_, QFont::Bold, 28); }
    QFont titleCompact() const { return font(bold_, QFont::Bold, 24); }
    QFont body() const { return font(medium_, QFont::Medium, 16); }
    QFont button() const { return font(bold_, QFont::Bold, 16); }
    QFont caption() const { return font(medium_, QFont::Medium, 14); }
    /// The digits in the boxes.
    QFont digits(int pixelSize) const { return font(bold_, QFont::Bold, pixelSize); }
    double textScale() const { return textScale_; }
    void setTextScale(double scale);

    bool reducedMotion() const { return reducedMotion_; }
    void setReducedMotion(bool reduced);
    int moveDuration() const { return reducedMotion_ ? 0 : 240; }

  signals:
    void changed();
    void mirroredChanged();
    void reducedMotionChanged();

  private:
    static QColor toQt(const Color& color);
    QFont font(const QStringList& families, QFont::Weight weight, int pixelSize) const;

    KorvaneColors colors_;
    KorvaneCornerRadii radii_;
    QStringList bold_;
    QStringList medium_;
    bool mirrored_ = false;
    DesktopSettings desktop_;
    double textScale_ = 1;
    bool reducedMotion_ = false;
    std::shared_ptr<NotificationCenter::Observation> appearance_;
    std::shared_ptr<NotificationCenter::Observation> language_;
};

/// `one` with a part of `other` in it: 0 is `one`, 1 is `other`. Opaque.
QColor mixed(const QColor& one, const QColor& other, double part);
/// Contrast ratio of two opaque colours, from 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor& one, const QColor& other);

}  // namespace korvane
