// The program of the window tests: one application without a screen, in which every test opens its own windows.
#include <gtest/gtest.h>

#include <QApplication>
#include <iostream>

#include "shell/window/look/frm_style.h"

namespace {

/// The screen in memory complains of what it lacks at every window; nothing of it is about the windows.
void writeMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.startsWith(QStringLiteral("This plugin does not support"))) std::cerr << text.toStdString() << '\n';
}

}  // namespace

// The font library and Qt's plug-ins keep what they allocate until the process ends. What else is lost is ours.
// Source: LeakSanitizer, "Suppressions".
extern "C" const char* __lsan_default_suppressions();   // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig.so\nleak:libQt6Gui.so\n";
}

int main(int count, char** values) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(writeMessage);
  testing::InitGoogleTest(&count, values);
  const QApplication application(count, values);
  kv::wearWorkbenchStyle();
  return RUN_ALL_TESTS();
}
