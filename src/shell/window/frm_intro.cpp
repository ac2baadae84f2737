#include "shell/window/frm_intro.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHideEvent>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/frm_screen.h"
#include "shell/window/intro_steps.h"
#include "shell/window/look/frm_appearance.h"

namespace kv {
namespace {

const QColor plainColour(Qt::white);
const QColor characterColour(Qt::black);  // on both, in a dark palette too
constexpr int narrowest = 36;             // average characters

}  // namespace

frmIntro::frmIntro(IntroTarget& target, QWidget* parent) : FormDialog(introTitle, parent), target_(target) {
  setModal(false);
  auto* inside = new QWidget();
  auto* texts = new QVBoxLayout(inside);
  QLabel* heading = wrappedText(introHeading);
  QFont large = heading->font();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  large.setBold(true);
  heading->setFont(large);
  texts->addWidget(heading);
  texts->addWidget(wrappedText(introOpening));
  texts->addWidget(wrappedText(introHint));
  texts->addWidget(makeSteps());
  texts->addWidget(wrappedText(introClosing));
  texts->addWidget(wrappedText(introAgain));
  texts->addStretch();
  auto* scroller = named(new QScrollArea(), "scrPassi", "Per iniziare");
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroller->setFocusPolicy(Qt::TabFocus);  // the texts below the last number are reached by the arrows
  scroller->setWidgetResizable(true);
  scroller->setWidget(inside);
  auto* column = new QVBoxLayout(this);
  column->addWidget(scroller, 1);
  QDialogButtonBox* buttons = makeClose();
  column->addWidget(buttons);
  colour(cmdStep_.size());
  const QMargins frame = column->contentsMargins();
  const int width = fontMetrics().averageCharWidth() * 60;
  const int inner = width - frame.left() - frame.right();
  const int height =
      inside->heightForWidth(inner) + buttons->sizeHint().height() + column->spacing() + frame.top() + frame.bottom();
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  resize(width, std::min(height, screen.height() * 9 / 10));
}

QWidget* frmIntro::makeSteps() {
  auto* rows = new QWidget();
  auto* grid = new QGridLayout(rows);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setColumnStretch(1, 1);
  for (const IntroStep& step : introSteps()) {
    const std::size_t index = cmdStep_.size();
    const std::string number = std::to_string(index + 1);
    auto* button = named(new QPushButton("&" + toQt(number)), "cmdStep" + std::to_string(index));
    button->setAccessibleName(toQt("Passo " + number + ": " + std::string(step.text)));
    button->setAutoDefault(false);
    button->setFixedWidth(fontMetrics().averageCharWidth() * 6);
    connect(button, &QPushButton::clicked, this, [this, index] { showStep(index); });
    grid->addWidget(button, static_cast<int>(index), 0, Qt::AlignTop);
    grid->addWidget(wrappedText(step.text), static_cast<int>(index), 1);
    cmdStep_.push_back(button);
  }
  return rows;
}

void frmIntro::showStep(std::size_t step) {
  lit_ = true;
  colour(step);
  showIntroStep(step, target_);
  raise();
}

void frmIntro::colour(std::size_t lit) {
  for (std::size_t i = 0; i < cmdStep_.size(); ++i) {
    QPalette palette = cmdStep_[i]->palette();
    palette.setColor(QPalette::Button, i == lit ? litColour : plainColour);
    palette.setColor(QPalette::ButtonText, characterColour);
    cmdStep_[i]->setPalette(palette);
  }
}

void frmIntro::hideEvent(QHideEvent* event) {
  FormDialog::hideEvent(event);
  if (event->spontaneous()) return;
  widenMain();
  if (!lit_) return;
  lit_ = false;
  colour(cmdStep_.size());
  target_.DisattivaTextBox();
}

/// The main window makes room where it can: what the steps light is not to lie under the guide.
void frmIntro::narrowMain(QWidget& mainWindow, const QRect& room) {
  const QSize rim = mainWindow.frameGeometry().size() - mainWindow.size();
  const int whole = mainWindow.frameGeometry().width();
  const int width =
      widthBesideIntro(room.width(), whole, frameGeometry().width(), mainWindow.minimumWidth() + rim.width());
  if (width == whole) return;
  mainBefore_ = mainWindow.saveGeometry();
  main_ = &mainWindow;
  if (mainWindow.isMaximized() || mainWindow.isFullScreen()) {
    mainWindow.showNormal();
    mainWindow.move(room.topLeft());
    mainWindow.resize(width - rim.width(), room.height() - rim.height());
  } else {
    mainWindow.resize(width - rim.width(), mainWindow.height());
  }
  mainNarrow_ = mainWindow.width();
}

/// Gives the main window its geometry back, unless the user has sized it meanwhile.
void frmIntro::widenMain() {
  if (main_ != nullptr && main_->width() == mainNarrow_) main_->restoreGeometry(mainBefore_);
  main_ = nullptr;
}

/// Beside a main window as narrow as it can be.
void frmIntro::narrowSelf(const QWidget& mainWindow, const QRect& room) {
  const int mainRim = mainWindow.frameGeometry().width() - mainWindow.width();
  const int rim = frameGeometry().width() - width();
  const int most = room.width() - mainWindow.minimumWidth() - mainRim - rim;
  const int least = fontMetrics().averageCharWidth() * narrowest;
  if (width() > most) resize(std::max(most, least), height());
}

void frmIntro::placeBeside(QWidget& mainWindow) {
  const QRect room = mainWindow.screen()->availableGeometry();
  // Placed again, it starts from what the user had.
  widenMain();
  bringOnScreen(*this);
  narrowSelf(mainWindow, room);
  narrowMain(mainWindow, room);
  const QRect frame = mainWindow.frameGeometry();
  const QRect own = frameGeometry();
  const IntroPlacement places = placeIntro(room.width(), frame.left() - room.left(), frame.width(), own.width());
  const int lowest = std::max(room.top(), room.bottom() + 1 - own.height());
  mainWindow.move(room.left() + places.mainLeft, frame.top());
  move(room.left() + places.introLeft, std::clamp(frame.top(), room.top(), lowest));
}

}  // namespace kv
