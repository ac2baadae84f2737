#include "media/choice/frm_picture_edits.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include "media/choice/frm_picture_frame.h"
#include "platform/qt/frm_dialog.h"

namespace kv {

PictureEditing::PictureEditing(PictureChoice& choice, PictureFrame& frame, QWidget* parent)
    : QWidget(parent), choice_(choice), frame_(frame) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  addTurns(*grid);
  addCut(*grid);
  frame_.drawn = [this](PixelPoint from, PixelPoint to) { take(partBetween(whole(), from, to, shape())); };
  start({});
}

void PictureEditing::addTurns(QGridLayout& grid) {
  cmdRuotaSinistra_ = named(new QPushButton(toQt("Ruota a sinistra")), "cmdRuotaSinistra");
  cmdRuotaDestra_ = named(new QPushButton(toQt("Ruota a destra")), "cmdRuotaDestra");
  grid.addWidget(cmdRuotaSinistra_, 0, 0, 1, 2);
  grid.addWidget(cmdRuotaDestra_, 0, 2, 1, 2);
  for (QPushButton* button : {cmdRuotaSinistra_, cmdRuotaDestra_}) button->setAutoDefault(false);
  connect(cmdRuotaSinistra_, &QPushButton::clicked, this, [this] { turn(3); });
  connect(cmdRuotaDestra_, &QPushButton::clicked, this, [this] { turn(1); });
}

void PictureEditing::addCut(QGridLayout& grid) {
  chkRitaglia_ = named(new QCheckBox(toQt("Rita&glia")), "chkRitaglia");
  cboProporzioni_ = named(new QComboBox(), "cboProporzioni");
  for (const CropShape& each : cropShapes) cboProporzioni_->addItem(toQt(each.caption));
  grid.addWidget(chkRitaglia_, 1, 0, 1, 2);
  grid.addWidget(labelFor("&Proporzioni:", cboProporzioni_), 2, 0);
  grid.addWidget(cboProporzioni_, 2, 1, 1, 3);
  numbers_ = {addNumber(grid, "Da sinistra:", "numSinistra", 0), addNumber(grid, "Dall'alto:", "numAlto", 1),
              addNumber(grid, "Larga:", "numLarga", 2), addNumber(grid, "Alta:", "numAlta", 3)};
  connect(chkRitaglia_, &QCheckBox::toggled, this, &PictureEditing::cutTicked);
  connect(cboProporzioni_, &QComboBox::currentIndexChanged, this, [this] {
    if (isCutting()) startPart();
  });
}

QSpinBox* PictureEditing::addNumber(QGridLayout& grid, const char* caption, std::string_view name, int index) {
  auto* number = named(new QSpinBox(), name);
  number->setKeyboardTracking(false);
  const int row = 3 + index / 2, column = index % 2 * 2;
  grid.addWidget(labelFor(caption, number), row, column);
  grid.addWidget(number, row, column + 1);
  connect(number, &QSpinBox::valueChanged, this, [this] {
    const auto value = [this](std::size_t at) { return numbers_[at]->value(); };
    take(fittedPart(whole(), {value(0), value(1), value(2), value(3)}, shape()));
  });
  return number;
}

void PictureEditing::takeUp(const std::string& path) {
  if (path != path_) start(path);
}

void PictureEditing::start(const std::string& path) {
  path_ = path;
  choice_.edits = {};
  const QSignalBlocker quiet(chkRitaglia_);
  chkRitaglia_->setChecked(false);
  enableCut(false);
  const bool isPicture = !path.empty() && !choice_.turnedPicture(path).isEmpty();
  for (QWidget* control : std::initializer_list<QWidget*>{cmdRuotaSinistra_, cmdRuotaDestra_, chkRitaglia_}) {
    control->setEnabled(isPicture);
  }
}

void PictureEditing::enableCut(bool enabled) {
  cboProporzioni_->setEnabled(enabled);
  for (QSpinBox* number : numbers_) number->setEnabled(enabled);
}

bool PictureEditing::isCutting() const { return chkRitaglia_->isChecked(); }

ImageSize PictureEditing::whole() const { return choice_.turnedPicture(path_).size(); }

const CropShape& PictureEditing::shape() const {
  return cropShapes[static_cast<std::size_t>(std::max(cboProporzioni_->currentIndex(), 0))];
}

ImageSize PictureEditing::showCut() {
  const ImageSize size = whole();
  const PixelPart part = choice_.edits.part.value_or(PixelPart{0, 0, size.width, size.height});
  frame_.showPart(choice_.turnedPicture(path_), part);
  return {part.width, part.height};
}

void PictureEditing::turn(int quarters) {
  choice_.edits.quarters = (choice_.edits.quarters + quarters) % 4;
  if (isCutting()) return startPart();
  if (changed) changed();
}

void PictureEditing::cutTicked(bool ticked) {
  enableCut(ticked);
  if (ticked) return startPart();
  choice_.edits.part.reset();
  if (changed) changed();
}

void PictureEditing::startPart() { take(largestPart(whole(), shape())); }

// A part that is the whole picture cuts nothing off: the file may be copied as it is.
void PictureEditing::take(const PixelPart& part) {
  const ImageSize size = whole();
  const bool isAll = part == PixelPart{0, 0, size.width, size.height};
  choice_.edits.part = isAll ? std::nullopt : std::optional(part);
  const std::array<int, 4> values{part.x, part.y, part.width, part.height};
  const std::array<int, 4> most{size.width - 1, size.height - 1, size.width, size.height};
  for (std::size_t at = 0; at < numbers_.size(); ++at) {
    const QSignalBlocker quiet(numbers_[at]);
    numbers_[at]->setRange(at < 2 ? 0 : 1, most[at]);
    numbers_[at]->setValue(values[at]);
  }
  if (changed) changed();
}

}  // namespace kv
