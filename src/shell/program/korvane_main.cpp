// korvane: the workbench with its window.

#include <QApplication>
#include <QIcon>
#include <iostream>
#include <string>
#include <vector>

#include "platform/files/private_file.h"
#include "shell/program/frm_program.h"
#include "shell/program/installed_data.h"

int main(int count, char** values) {
  kv::forbidCoreFiles();
  QCoreApplication::setApplicationName(QStringLiteral("korvane"));
  QCoreApplication::setApplicationVersion(QStringLiteral(KORVANE_VERSION));
  QGuiApplication::setApplicationDisplayName(QString());
  // Under this name the desktop finds the program's entry, and with it its icon.
  QGuiApplication::setDesktopFileName(QStringLiteral("it.korvane.Korvane"));
  const std::vector<std::string> typed(values + (count > 0 ? 1 : 0), values + count);
  for (const std::string& argument : typed) {
    // These need no display.
    if (argument == "--help" || argument == "-h") {
      std::cout << kv::windowUsage();
      return 0;
    }
    if (argument == "--version") {
      std::cout << "korvane " << KORVANE_VERSION << '\n';
      return 0;
    }
  }
  const QApplication application(count, values);
  QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/korvane.svg")));
  std::vector<std::string> arguments;
  for (const QString& argument : QCoreApplication::arguments().mid(1)) {
    arguments.push_back(argument.toUtf8().toStdString());
  }
  const auto read = kv::parseWindowArguments(arguments);
  if (!read) {
    std::cerr << "korvane: " << read.error().what << "\n\n" << kv::windowUsage();
    return 2;
  }
  return kv::runWindow(*read, kv::programFolder());
}
