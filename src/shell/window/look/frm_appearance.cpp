#include "shell/window/look/frm_appearance.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <array>
#include <cmath>

namespace kv {
namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString schemeGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");
constexpr uint schemeDark = 1;
constexpr int patienceMilliseconds = 3000;

/// Asking for a bus where there is none may start one.
bool hasSessionBus() {
  if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return true;
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  return !runtime.isEmpty() && QFile::exists(QDir(runtime).filePath(QStringLiteral("bus")));
}

struct RoleColour {
  QPalette::ColorRole role;
  QRgb rgb;
};

QPalette paletteOf(std::initializer_list<RoleColour> colours, QRgb faded, QRgb fadedGround) {
  QPalette palette;
  for (const RoleColour& colour : colours) palette.setColor(colour.role, QColor(colour.rgb));
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
    palette.setColor(QPalette::Disabled, role, QColor(faded));
  }
  // A field that is off is nearly the ground around it, and still a field.
  const QColor ground = palette.color(QPalette::Window);
  palette.setColor(QPalette::Disabled, QPalette::Base, isDark(palette) ? ground.darker(115) : ground);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(fadedGround));
  return palette;
}

double luminanceOf(const QColor& colour) {
  const auto part = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

/// A colour brought away from the grounds of the palette until it can be told from each.
QColor distinguishable(QColor colour, const QPalette& palette) {
  constexpr double least = 3.2;  // a little more than the limit, for edges that are drawn smooth
  constexpr int steps = 64;
  const bool dark = isDark(palette);
  const auto isFaint = [&] {
    return std::ranges::any_of(std::array{QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button},
                               [&](auto role) { return contrastOf(colour, palette.color(role)) < least; });
  };
  for (int i = 0; i < steps && isFaint(); ++i) {
    const int lightness = colour.lightness() + (dark ? 4 : -4);
    colour.setHsl(colour.hslHue(), colour.hslSaturation(), std::clamp(lightness, 0, 255));
  }
  return colour.toRgb();
}

}  // namespace

double contrastOf(const QColor& one, const QColor& other) {
  constexpr double flare = 0.05;
  const double first = luminanceOf(one), second = luminanceOf(other);
  return (std::max(first, second) + flare) / (std::min(first, second) + flare);
}

QColor markColour(const QPalette& palette) {
  return distinguishable(palette.color(QPalette::Active, QPalette::Highlight), palette);
}

QColor edgeColour(const QPalette& palette) {
  return distinguishable(palette.color(QPalette::Active, QPalette::Mid), palette);
}

QPalette lightPalette() {
  return paletteOf({{QPalette::Window, 0xefefef},      {QPalette::WindowText, 0x1c2227},
                    {QPalette::Base, 0xffffff},        {QPalette::AlternateBase, 0xf5f6f7},
                    {QPalette::Text, 0x1c2227},        {QPalette::PlaceholderText, 0x6b7279},
                    {QPalette::Button, 0xefefef},      {QPalette::ButtonText, 0x1c2227},
                    {QPalette::BrightText, 0xffffff},  {QPalette::Light, 0xffffff},
                    {QPalette::Midlight, 0xf7f7f7},    {QPalette::Mid, 0xb8b8b8},
                    {QPalette::Dark, 0x9f9f9f},        {QPalette::Shadow, 0x767676},
                    {QPalette::Highlight, 0x1f6fa8},   {QPalette::HighlightedText, 0xffffff},
                    {QPalette::Link, 0x1f5f8b},        {QPalette::LinkVisited, 0x6a4b8a},
                    {QPalette::ToolTipBase, 0xfffbe6}, {QPalette::ToolTipText, 0x1c2227}},
                   0x8d9298, 0x919aa1);
}

QPalette darkPalette() {
  return paletteOf({{QPalette::Window, 0x363b41},      {QPalette::WindowText, 0xe8e6e1},
                    {QPalette::Base, 0x23272b},        {QPalette::AlternateBase, 0x2a2f34},
                    {QPalette::Text, 0xe8e6e1},        {QPalette::PlaceholderText, 0x9aa0a6},
                    {QPalette::Button, 0x474d54},      {QPalette::ButtonText, 0xe8e6e1},
                    {QPalette::BrightText, 0xffffff},  {QPalette::Light, 0x5c636b},
                    {QPalette::Midlight, 0x4c5259},    {QPalette::Mid, 0x2a2e33},
                    {QPalette::Dark, 0x202428},        {QPalette::Shadow, 0x101214},
                    {QPalette::Highlight, 0x2f74a8},   {QPalette::HighlightedText, 0xffffff},
                    {QPalette::Link, 0x8cc3e8},        {QPalette::LinkVisited, 0xc3a6e0},
                    {QPalette::ToolTipBase, 0x3c4248}, {QPalette::ToolTipText, 0xe8e6e1}},
                   0x8b9198, 0x545c64);
}

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

void applyAppearance(Appearance appearance, bool desktopPrefersDark) {
  if (appearance == Appearance::Light) return QApplication::setPalette(lightPalette());
  if (appearance == Appearance::Dark) return QApplication::setPalette(darkPalette());
  QApplication::setPalette(QPalette());
  if (desktopPrefersDark && !isDark(QApplication::palette())) QApplication::setPalette(darkPalette());
}

DesktopAppearance::DesktopAppearance(Appearance chosen, QObject* parent) : QObject(parent), chosen_(chosen) {
  if (hasSessionBus()) ask();
  if (chosen_ != Appearance::Desktop) applyAppearance(chosen_, prefersDark_);
}

void DesktopAppearance::ask() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(portalService, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  QDBusMessage read = QDBusMessage::createMethodCall(portalService, portalPath, portalSettings, QStringLiteral("Read"));
  read << schemeGroup << schemeKey;
  answer_ = bus.asyncCall(read, patienceMilliseconds);
  auto* watcher = new QDBusPendingCallWatcher(*answer_, this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    takeEarlyAnswer();
    watcher->deleteLater();
  });
}

void DesktopAppearance::takeEarlyAnswer() {
  if (!answer_ || !answer_->isFinished()) return;
  const QDBusMessage reply = answer_->reply();
  answer_.reset();
  if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) take(reply.arguments().constFirst());
}

void DesktopAppearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  if (group == schemeGroup && key == schemeKey) take(value.variant());
}

/// `Read` wraps its value twice, the signal once.
void DesktopAppearance::take(const QVariant& scheme) {
  QVariant value = scheme;
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  const bool dark = value.toUInt() == schemeDark;
  if (dark == prefersDark_) return;
  prefersDark_ = dark;
  if (chosen_ == Appearance::Desktop) applyAppearance(chosen_, prefersDark_);
}

void DesktopAppearance::choose(Appearance appearance) {
  chosen_ = appearance;
  applyAppearance(chosen_, prefersDark_);
}

}  // namespace kv
