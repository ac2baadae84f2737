// korvane-screenshots: pictures of every window of the program over a shop.
//   korvane-screenshots --app FOLDER --shop FOLDER --out FOLDER [--size 1280x800] [--dark] [--font PERCENT] [NAME...]
//   korvane-screenshots --list
// NAME: only these pictures. The shop is worked with, so it should be one made for the purpose. The scale of the
// screen is Qt's own QT_SCALE_FACTOR. tools/screenshots calls this for all sizes and palettes.
#include <unistd.h>
#include <QApplication>
#include <QCommandLineParser>
#include <QFont>
#include <QIcon>
#include <csignal>
#include <cstring>
#include <iostream>

#include "platform/qt/frm_dialog.h"
#include "scenes.h"
#include "shell/program/frm_program.h"
#include "shell/window/look/frm_appearance.h"
#include "shell/window/look/frm_style.h"

namespace {

using kv::scenes::Scene;

QSize sizeOf(const QString& text) {
  const QStringList sides = text.split(QLatin1Char('x'));
  return sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
}

bool isWanted(const Scene& scene, const QStringList& names) {
  return names.isEmpty() || names.contains(QString::fromUtf8(scene.name));
}

constexpr unsigned sceneSeconds = 300;
const char* sceneNow = "";

/// A scene without an end names itself, instead of standing until someone looks.
void endScene(int /*signal*/) {
  for (const char* text : {"korvane-screenshots: no end of the scene ", sceneNow, "\n"}) {
    if (write(STDERR_FILENO, text, std::strlen(text)) < 0) break;
  }
  _exit(1);
}

void dress(const QCommandLineParser& arguments) {
  QApplication::setStyle(QStringLiteral("Fusion"));
  kv::wearWorkbenchStyle();
  kv::applyAppearance(arguments.isSet(QStringLiteral("dark")) ? kv::Appearance::Dark : kv::Appearance::Light, false);
  QFont letters = QApplication::font();
  letters.setPointSizeF(letters.pointSizeF() * arguments.value(QStringLiteral("font")).toDouble() / 100);
  QApplication::setFont(letters);
  QApplication::setCursorFlashTime(0);
  kv::speakItalian();
}

}  // namespace

int main(int count, char** values) {
  for (int i = 1; i < count; ++i) {
    if (std::string(values[i]) != "--list") continue;
    for (const Scene& scene : kv::scenes::sceneTable()) std::cout << scene.name << '\n';
    return 0;
  }
  QApplication application(count, values);
  QGuiApplication::setApplicationDisplayName(QString());
  QCommandLineParser arguments;
  arguments.addOptions({{QStringLiteral("app"), QString(), QStringLiteral("folder")},
                        {QStringLiteral("shop"), QString(), QStringLiteral("folder")},
                        {QStringLiteral("out"), QString(), QStringLiteral("folder")},
                        {QStringLiteral("size"), QString(), QStringLiteral("size"), QStringLiteral("1280x800")},
                        {QStringLiteral("font"), QString(), QStringLiteral("percent"), QStringLiteral("100")},
                        {QStringLiteral("dark"), QString()}});
  arguments.process(application);
  const QSize size = sizeOf(arguments.value(QStringLiteral("size")));
  if (size.isEmpty()) {
    std::cerr << "korvane-screenshots: --size takes WIDTHxHEIGHT\n";
    return 2;
  }
  dress(arguments);
  kv::scenes::Stage stage({kv::fromQt(arguments.value(QStringLiteral("app"))),
                           kv::fromQt(arguments.value(QStringLiteral("shop"))), arguments.value(QStringLiteral("out")),
                           size});
  if (!stage.open()) {
    std::cerr << "korvane-screenshots: the shop can't be opened\n";
    return 1;
  }
  QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/korvane.svg")));
  std::signal(SIGALRM, endScene);
  for (const Scene& scene : kv::scenes::sceneTable()) {
    if (!isWanted(scene, arguments.positionalArguments())) continue;
    sceneNow = scene.name;
    alarm(sceneSeconds);
    scene.play(stage, QString::fromUtf8(scene.name));
  }
  alarm(0);
  return stage.failed() || stage.taken() == 0 ? 1 : 0;
}
