// The program of the window tests: one application without a screen, in which every test opens its own windows. A test
// in which the toolkit warns of a wrong call fails.
#include <gtest/gtest.h>

#include <QApplication>
#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>

#include "shell/window/look/frm_style.h"

namespace {

/// What the toolkit says of the machine that the tests run on, and not of our windows: all of this kind, and these.
constexpr std::string_view kindOfTheMachine = "qt.qpa.";
constexpr std::array ofTheMachine = {
    "This plugin does not support",     // the screen in memory lacks something, at every window
    "QStandardPaths: XDG_RUNTIME_DIR",  // nobody is logged in, or the folder is somebody else's
};

void writeMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  const auto begins = [&text](const char* start) { return text.startsWith(QLatin1String(start)); };
  if (std::ranges::any_of(ofTheMachine, begins)) return;
  const bool isOurs =
      !std::string_view(context.category == nullptr ? "" : context.category).starts_with(kindOfTheMachine);
  const bool isWarning = type == QtWarningMsg || type == QtCriticalMsg;
  if (isOurs && isWarning && testing::UnitTest::GetInstance()->current_test_info() != nullptr) {
    ADD_FAILURE() << "the toolkit warns: " << text.toStdString();
  } else {
    std::cerr << text.toStdString() << '\n';
  }
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
