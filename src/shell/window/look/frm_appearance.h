#pragma once
// Light or dark: the windows follow the desktop, unless the merchant has chosen one of the two. Where the platform
// brings no palette of its own, the desktop is asked what it prefers.

#include <QColor>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QObject>
#include <QPalette>
#include <optional>

#include "shell/workbench/appearance.h"

namespace kv {

/// What a step of the guide lights: its fields, its buttons and its own number. Its text is black.
inline constexpr QColor litColour(0xb9, 0xf2, 0xb0);

/// The two palettes of the program's own, for desktops that have a preference and no colours.
QPalette lightPalette();
QPalette darkPalette();

/// Whether text is lighter than its background.
bool isDark(const QPalette& palette);

/// The contrast of two colours, 1 to 21. Source: WCAG 2.1, definition of "contrast ratio".
double contrastOf(const QColor& one, const QColor& other);
/// The colour of what tells where the keyboard is and which of several is in use: the highlight, made lighter or darker
/// until it has a contrast of 3:1 at least with every ground of the palette.
/// Source of the limit: WCAG 2.1, success criterion 1.4.11.
QColor markColour(const QPalette& palette);
/// The colour of the edges of check boxes and radio buttons, by the same rule.
QColor edgeColour(const QPalette& palette);

/// Sets the palette of the program's windows. `Desktop` gives the platform's own back; when that is light and the
/// desktop prefers dark, the dark one.
void applyAppearance(Appearance appearance, bool desktopPrefersDark);

/// Keeps to the appearance that is chosen, and follows the desktop while the program runs. The desktop's preference is
/// "color-scheme" of the settings portal, 1 for dark; nothing is asked where there is no session bus.
/// Source: XDG Desktop Portal, org.freedesktop.portal.Settings.
class DesktopAppearance final : public QObject {
  Q_OBJECT
 public:
  explicit DesktopAppearance(Appearance chosen, QObject* parent = nullptr);

  /// What the merchant has chosen.
  Appearance chosen() const { return chosen_; }
  /// Changes the choice, and all windows at once.
  void choose(Appearance appearance);
  /// Takes the desktop's answer if it has come by now: before the first window shows, so that it needn't change colour.
  void takeEarlyAnswer();

 private slots:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask();
  void take(const QVariant& scheme);

  Appearance chosen_;
  bool prefersDark_ = false;
  std::optional<QDBusPendingCall> answer_;
};

}  // namespace kv
