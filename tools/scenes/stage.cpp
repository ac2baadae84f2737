#include "stage.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMenu>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <iostream>

#include "platform/qt/frm_dialog.h"
#include "shell/program/frm_dialogs.h"
#include "shell/program/frm_program.h"
#include "shell/workbench/commands/command_rows.h"
#include "store/shop/server_path.h"
#include "store/shop/session_start.h"

namespace kv::scenes {
namespace {

constexpr int titleHeight = 30;  // of the frame that a desktop would draw
constexpr int eventRounds = 12;
constexpr int patience = 20000;  // milliseconds until a window that was asked for is shown
// The shop is in a folder with a random name, which would make each picture another.
const QString shopShown = QStringLiteral("~/negozi/bottega");
const QColor desk(0x5b, 0x6b, 0x78);
const QColor frameColour(0x17, 0x1b, 0x1f);
const QColor edgeColour(0x7a, 0x86, 0x90);
const QColor titleColour(0xe8, 0xea, 0xec);

bool isFramed(const QWidget& window) {
  const Qt::WindowFlags kind = window.windowFlags() & Qt::WindowType_Mask;
  return kind == Qt::Window || kind == Qt::Dialog || kind == Qt::Tool;
}

void drawWindow(QPainter& painter, QWidget& window, const QString& shop) {
  const QRect place = window.geometry();
  if (isFramed(window)) {
    const QRect title(place.left(), place.top() - titleHeight, place.width(), titleHeight);
    painter.fillRect(title.united(place).adjusted(-1, -1, 1, 1), edgeColour);
    painter.fillRect(title, frameColour);
    painter.setPen(titleColour);
    painter.drawText(title.adjusted(12, 0, -12, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     QString(window.windowTitle()).replace(shop, shopShown));
  } else {
    painter.fillRect(place.adjusted(-1, -1, 1, 1), edgeColour);
  }
  painter.drawPixmap(place.topLeft(), window.grab());
}

/// A window that was opened over another has it among its parents, and is above it.
int depthOf(const QWidget& window) {
  int depth = 0;
  for (const QWidget* parent = window.parentWidget(); parent != nullptr; parent = parent->parentWidget()) ++depth;
  return depth;
}

/// A dialog without a window manager may open outside what the picture shows.
void keepInside(QWidget& window, const QSize& size) {
  QRect place = window.geometry();
  place.moveRight(std::min(place.right(), size.width() - 2));
  place.moveBottom(std::min(place.bottom(), size.height() - 2));
  place.moveLeft(std::max(place.left(), 1));
  place.moveTop(std::max(place.top(), titleHeight + 1));
  if (place.topLeft() != window.pos()) window.move(place.topLeft());
}

/// Whether a window with its frame has room on a screen.
bool fits(const QWidget& window, const QSize& screen) {
  return window.width() <= screen.width() && window.height() + titleHeight <= screen.height();
}

QWidget* opened() {
  QWidget* popup = QApplication::activePopupWidget();
  return popup != nullptr ? popup : QApplication::activeModalWidget();
}

/// Closing a dialog may ask whether what was typed is thrown away; here it always is.
void answerYes() {
  const QWidget* question = QApplication::activeModalWidget();
  if (question == nullptr) return;
  auto* yes = question->findChild<QAbstractButton*>(QStringLiteral("cmdSi"));
  if (yes != nullptr) yes->click();
}

void closeIt(QWidget& window) {
  QTimer asked;
  QObject::connect(&asked, &QTimer::timeout, &asked, &answerYes);
  asked.start(10);
  if (auto* dialog = qobject_cast<QDialog*>(&window)) {
    dialog->reject();
  } else {
    window.close();
  }
}

}  // namespace

Stage::Stage(const StageOptions& options)
    : options_(options), env_{user_, settings_, systemClock(), systemRandom(), options.applicationFolder, {}} {}

Stage::~Stage() {
  user_.setMainWindow(nullptr);
  closeSession(session_, env_);
}

bool Stage::open() {
  WorkbenchPorts ports;
  ports.commands = allCommands();
  ports.open = [](const std::string&, const std::string&) { return openedWell; };
  window_ = std::make_unique<frmMain>(session_, env_, std::move(ports));
  Workbench& workbench = window_->workbench();
  wireSession(*window_, session_, env_);
  ignore(writeServerPath(env_.applicationFolder, options_.shop), "the window is placed without it");
  if (startSession(session_, env_) != LoadResult::Opened) return false;
  workbench.showShop();
  user_.setMainWindow(window_.get());
  window_->setGeometry(0, titleHeight, options_.size.width(), options_.size.height() - titleHeight);
  window_->show();
  QApplication::setActiveWindow(window_.get());
  processEvents();
  return true;
}

void Stage::processEvents() {
  for (int turn = 0; turn < eventRounds; ++turn) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
  }
}

void Stage::choose(std::string_view name) {
  window_->menus().action(name)->trigger();
  processEvents();
}

void Stage::show(Tab tab) {
  window_->workbench().selectTab(tab);
  processEvents();
}

void Stage::take(const QString& name) {
  processEvents();
  const qreal ratio = window_->devicePixelRatioF();
  QImage picture(options_.size * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(desk);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::TextAntialiasing);
  QWidgetList windows = QApplication::topLevelWidgets();
  std::stable_sort(windows.begin(), windows.end(),
                   [](const QWidget* one, const QWidget* other) { return depthOf(*one) < depthOf(*other); });
  // The main window is the lowest; dialogs follow in the order in which they were made.
  const QString shop = toQt(options_.shop);
  drawWindow(painter, *window_, shop);
  for (QWidget* window : windows) {
    if (window == window_.get() || !window->isVisible() || qobject_cast<QMenu*>(window) != nullptr) continue;
    if (!fits(*window, options_.size)) {
      fail(QStringLiteral("larger than the screen: ") + name);
    }
    keepInside(*window, options_.size);
    drawWindow(painter, *window, shop);
  }
  for (QWidget* window : windows) {
    if (window->isVisible() && qobject_cast<QMenu*>(window) != nullptr) drawWindow(painter, *window, shop);
  }
  painter.end();
  const QString file = options_.pictures + QLatin1Char('/') + name + QStringLiteral(".png");
  if (picture.save(file)) {
    ++taken_;
  } else {
    fail(QStringLiteral("not written: ") + file);
  }
}

void Stage::fail(const QString& why) {
  failed_ = true;
  std::cerr << fromQt(why) << '\n';
}

void Stage::during(const std::function<void()>& opens, const std::function<void(QWidget&)>& meanwhile) {
  QTimer poll;
  QElapsedTimer since;
  since.start();
  bool stood = false;
  bool looking = false;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    QWidget* standing = opened();
    if (looking || standing == nullptr || !standing->isVisible()) return;
    // What comes up after it was looked at, or too late, would otherwise stand for ever: nobody sits at this screen.
    if (stood || since.elapsed() > patience) {
      closeIt(*standing);
      return;
    }
    stood = looking = true;
    processEvents();
    meanwhile(*standing);
    looking = false;
    // What it led to is closed before it.
    for (QWidget* last = opened(); last != nullptr && last->isVisible(); last = opened()) {
      closeIt(*last);
      if (last == standing) break;
    }
  });
  poll.start(10);
  opens();
  processEvents();
  if (!stood) fail(QStringLiteral("a window did not open"));
}

}  // namespace kv::scenes
