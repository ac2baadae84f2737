// The program of the window tests: one application without a screen, in which every test opens its own windows.
#include <gtest/gtest.h>

#include <QApplication>
#include <iostream>

namespace {

/// The screen in memory complains of what it lacks at every window; nothing of it is about the windows.
void writeMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.startsWith(QStringLiteral("This plugin does not support"))) std::cerr << text.toStdString() << '\n';
}

}  // namespace

// Qt and the font library keep what they allocate until the process ends; the sanitizer would take that for leaks.
// Source: AddressSanitizer, "Run-time flags".
extern "C" const char* __asan_default_options();                              // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }  // NOLINT(bugprone-reserved-identifier)

int main(int count, char** values) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(writeMessage);
  testing::InitGoogleTest(&count, values);
  const QApplication application(count, values);
  return RUN_ALL_TESTS();
}
