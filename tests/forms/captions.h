#pragma once
// The words that a dialog shows: those that are part of the design are held by tests.

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QString>
#include <initializer_list>
#include <string>

namespace kv::test {

/// All captions and notes of a window, each on a line of its own, without the marks of keys and of bold text.
inline QString captionsOf(const QWidget& window) {
  QString all;
  const auto add = [&all](QString text) {
    all +=
        text.remove(QStringLiteral("<b>")).remove(QStringLiteral("</b>")).remove(QLatin1Char('&')) + QLatin1Char('\n');
  };
  for (const auto* one : window.findChildren<QLabel*>()) add(one->text());
  for (const auto* one : window.findChildren<QAbstractButton*>()) add(one->text());
  for (const auto* one : window.findChildren<QGroupBox*>()) add(one->title());
  return all;
}

/// Those of the captions that a window doesn't show, a line each.
inline std::string missingCaptions(const QWidget& window, std::initializer_list<const char*> captions) {
  const QString all = captionsOf(window);
  std::string missing;
  for (const char* caption : captions) {
    if (!all.contains(QString::fromUtf8(caption))) missing += std::string(caption) + "\n";
  }
  return missing;
}

}  // namespace kv::test
