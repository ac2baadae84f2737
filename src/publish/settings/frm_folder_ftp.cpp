#include "publish/settings/frm_folder_ftp.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

namespace kv {
namespace {

constexpr int nameRole = Qt::UserRole;  // the bytes of a name
constexpr std::string_view serverBusy = "Attendere...";

std::string nameOf(const QListWidgetItem& item) { return item.data(nameRole).toByteArray().toStdString(); }

}  // namespace

frmFolderFTP::frmFolderFTP(std::string_view title, ConnectionSettings settings, Transfer& transfer, UserPort& user,
                           QWidget* parent)
    : FormDialog(title, parent),
      settings_(std::move(settings)),
      picker_(transfer, user, [this] { return processEvents(); }) {
  makeControls();
  setBusy(false);
  sizeInCharacters(60, 24);
}

void frmFolderFTP::makeControls() {
  txtPath_ = named(new QLineEdit(), "txtPath");
  txtPath_->setReadOnly(true);
  cmdUP_ = named(new QPushButton(toQt("Cartella &superiore")), "cmdUP");
  cmdUP_->setAutoDefault(false);
  lstCartelle_ = named(new QListWidget(), "lstCartelle");
  txtSelFolder_ = named(new QLineEdit(), "txtSelFolder");
  lblStato_ = named(new QLabel(), "lblStato");
  QDialogButtonBox* buttons = makeButtons();
  ok_ = buttons->button(QDialogButtonBox::Ok);
  auto* path = new QHBoxLayout();
  path->addWidget(txtPath_, 1);
  path->addWidget(cmdUP_);
  auto* column = new QVBoxLayout(this);
  column->addWidget(labelFor("Cartella &attuale:", txtPath_));
  column->addLayout(path);
  column->addWidget(labelFor("&Cartelle:", lstCartelle_));
  column->addWidget(lstCartelle_, 1);
  column->addWidget(labelFor("Cartella s&elezionata:", txtSelFolder_));
  column->addWidget(txtSelFolder_);
  column->addWidget(lblStato_);
  column->addWidget(buttons);
  connect(cmdUP_, &QPushButton::clicked, this, [this] { browse([this] { return picker_.up(); }); });
  connect(lstCartelle_, &QListWidget::itemClicked, this, [this](const QListWidgetItem* item) {
    picker_.select(nameOf(*item));
    txtSelFolder_->setText(toQt(picker_.selected()));
  });
  connect(lstCartelle_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
    browse([this, name = nameOf(*item)] { return picker_.enter(name); });
  });
  connect(txtSelFolder_, &QLineEdit::textEdited, this, [this](const QString& text) { picker_.type(fromQt(text)); });
  connect(buttons, &QDialogButtonBox::accepted, this, &frmFolderFTP::accepted);
}

void frmFolderFTP::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  constexpr int paintTime = 100;
  if (!started_) QTimer::singleShot(paintTime, this, &frmFolderFTP::start);
}

void frmFolderFTP::start() {
  if (started_ || !isVisible()) return;
  started_ = true;
  browse([this] { return picker_.open(settings_); });
}

void frmFolderFTP::browse(const std::function<bool()>& step) {
  if (busy_) return;
  setBusy(true);
  lstCartelle_->clear();
  const bool goesOn = step();
  setBusy(false);
  if (left_) return;
  if (!goesOn) return FormDialog::reject();
  showFolder();
}

void frmFolderFTP::showFolder() {
  txtPath_->setText(toQt(picker_.current()));
  txtSelFolder_->setText(toQt(picker_.selected()));
  for (const ServerEntry& entry : picker_.entries()) {
    auto* item = new QListWidgetItem(toQt(entry.shown), lstCartelle_);
    item->setData(nameRole, QByteArray::fromStdString(entry.name));
  }
  lstCartelle_->setFocus();
}

void frmFolderFTP::setBusy(bool busy) {
  busy_ = busy;
  for (QWidget* control : std::initializer_list<QWidget*>{cmdUP_, lstCartelle_, txtSelFolder_, ok_}) {
    control->setEnabled(!busy && started_);
  }
  lblStato_->setText(busy ? toQt(serverBusy) : QString());
  setCursor(busy ? Qt::BusyCursor : Qt::ArrowCursor);
}

bool frmFolderFTP::processEvents() {
  if (!left_ && pump_.isDue()) pump_.processEvents(true);
  return !left_;
}

void frmFolderFTP::accepted() {
  const std::string choice = picker_.result();
  picker_.close();
  finish(choice);
}

void frmFolderFTP::reject() {
  left_ = true;
  picker_.abort();
  FormDialog::reject();
}

}  // namespace kv
