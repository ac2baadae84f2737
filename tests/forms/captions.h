#pragma once
// The words that a dialog shows: those that are part of the design are held by tests.

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QString>
#include <QTabBar>
#include <initializer_list>
#include <map>
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

/// The characters that more than one visible control of a window takes as its key, with Alt: there the second press is
/// needed, and a button is only given the focus.
inline std::string repeatedKeys(const QWidget& window) {
  std::map<QChar, int> counts;
  const auto count = [&counts](const QString& text) {
    const QString own = QString(text).remove(QStringLiteral("&&"));
    const auto mark = own.indexOf(QLatin1Char('&'));
    if (mark >= 0 && mark + 1 < own.size()) ++counts[own[mark + 1].toLower()];
  };
  for (const auto* one : window.findChildren<QLabel*>()) {
    if (one->isVisible() && one->buddy() != nullptr) count(one->text());
  }
  for (const auto* one : window.findChildren<QAbstractButton*>()) {
    if (one->isVisible()) count(one->text());
  }
  for (const auto* one : window.findChildren<QTabBar*>()) {
    for (int tab = 0; one->isVisible() && tab < one->count(); ++tab) count(one->tabText(tab));
  }
  std::string repeated;
  for (const auto& [key, times] : counts) {
    if (times > 1) repeated += QString(key).toStdString();
  }
  return repeated;
}

}  // namespace kv::test
