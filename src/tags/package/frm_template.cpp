#include "tags/package/frm_template.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>

namespace kv {

frmTemplate::frmTemplate(const std::string& applicationFolder, const std::string& current, HelpOpener help,
                         QWidget* parent)
    : FormDialog(templateTitle, parent), choice_(applicationFolder, current) {
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeList(), 2);
  sides->addWidget(makeSample(), 3);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  QDialogButtonBox* buttons = makeButtons();
  addHelp(buttons, std::move(help), templateHelp);
  ok_ = buttons->button(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmTemplate::choose);
  column->addWidget(buttons);
  txtTemplate_->setText(toQt(choice_.selected() ? choice_.selectedName() : current));
  showChoice();
  txtTemplate_->selectAll();
  sizeInCharacters(100, 30);
}

QWidget* frmTemplate::makeList() {
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  txtTemplate_ = named(new QLineEdit(), "txtTemplate");
  lstTemplate_ = named(new QListWidget(), "lstTemplate", "Template installati");
  for (const std::string& name : choice_.packages()) lstTemplate_->addItem(toQt(name));
  column->addWidget(labelFor("&Template:", txtTemplate_));
  column->addWidget(txtTemplate_);
  column->addWidget(lstTemplate_, 1);
  connect(txtTemplate_, &QLineEdit::textEdited, this, [this](const QString& text) {
    choice_.type(fromQt(text));
    showChoice();
  });
  connect(lstTemplate_, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    choice_.select(static_cast<std::size_t>(row));
    txtTemplate_->setText(toQt(choice_.selectedName()));
    showChoice();
  });
  connect(lstTemplate_, &QListWidget::itemDoubleClicked, this, &frmTemplate::choose);
  return side;
}

QWidget* frmTemplate::makeSample() {
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  auto* frame = new QFrame();
  frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  frame->setMinimumSize(300, 190);
  auto* inside = new QVBoxLayout(frame);
  picPreview_ = named(new QLabel(), "picPreview", "Anteprima del template");
  picPreview_->setAlignment(Qt::AlignCenter);
  picPreview_->setMinimumSize(1, 1);
  inside->addWidget(picPreview_);
  txtNote_ = named(new QPlainTextEdit(), "txtNote");
  txtNote_->setReadOnly(true);
  txtNote_->setTabChangesFocus(true);
  auto* heading = new QLabel(toQt("Anteprima:"));
  heading->setBuddy(picPreview_);
  column->addWidget(heading);
  column->addWidget(frame, 3);
  column->addWidget(labelFor("&Note:", txtNote_));
  column->addWidget(txtNote_, 2);
  return side;
}

void frmTemplate::showChoice() {
  const QSignalBlocker quiet(lstTemplate_);
  const auto index = choice_.selected();
  lstTemplate_->setCurrentRow(index ? static_cast<int>(*index) : -1);
  txtNote_->setPlainText(toQt(choice_.note()));
  ok_->setEnabled(choice_.canAccept());
  showPreview();
}

void frmTemplate::showPreview() {
  const std::string path = choice_.preview();
  QPixmap picture(path.empty() ? QString() : toQt(path));
  picPreview_->setVisible(!picture.isNull());
  if (picture.isNull()) return;
  const QSize room = picPreview_->parentWidget()->contentsRect().size() * devicePixelRatioF();
  const bool fits = picture.width() <= room.width() && picture.height() <= room.height();
  if (!fits) picture = picture.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  if (!fits) picture.setDevicePixelRatio(devicePixelRatioF());
  picPreview_->setPixmap(picture);
}

void frmTemplate::resizeEvent(QResizeEvent* event) {
  FormDialog::resizeEvent(event);
  showPreview();
}

void frmTemplate::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  showPreview();
}

void frmTemplate::choose() {
  if (choice_.canAccept()) finish(choice_.accept());
}

}  // namespace kv
