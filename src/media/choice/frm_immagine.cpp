#include "media/choice/frm_immagine.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QStandardPaths>
#include <QTabWidget>
#include <QVBoxLayout>

#include "media/choice/frm_picture_edits.h"
#include "media/choice/frm_picture_frame.h"
#include "media/choice/picture_names.h"
#include "platform/files/files.h"

namespace kv {
namespace {

constexpr std::string_view pictureTitle = "Korvane - Scelta dell'immagine";
constexpr const char* picturePrompt = "Selezionare la cartella delle immagini:";

std::string locationOf(QStandardPaths::StandardLocation location) {
  return fromQt(QStandardPaths::writableLocation(location));
}

void fill(QListWidget& list, const std::vector<std::string>& names) {
  list.clear();
  for (const std::string& name : names) {
    auto* item = new QListWidgetItem(toQt(name), &list);
    item->setData(Qt::UserRole, QByteArray::fromStdString(name));  // a name that is no text isn't shown as it is
  }
}

std::string nameOf(const QListWidgetItem* item) {
  return item == nullptr ? std::string() : item->data(Qt::UserRole).toByteArray().toStdString();
}

}  // namespace

frmImmagine::frmImmagine(Settings& settings, UserPort& user, const std::string& folder, const std::string& current,
                         QWidget* parent)
    : FormDialog(pictureTitle, parent), choice_(settings, user, folder, current), user_(user) {
  tabOrigine_ = named(new QTabWidget(), "tabOrigine", "Origine dell'immagine");
  tabOrigine_->addTab(makeDiskTab(), toQt("&Disco"));
  tabOrigine_->addTab(makeShopTab(), toQt("Immagini del &negozio"));
  auto* side = new QVBoxLayout();
  side->addWidget(makePreview());
  side->addWidget(makeBox());
  editing_ = new PictureEditing(choice_, *picAnteprima_);
  side->addWidget(editing_);
  side->addStretch();
  auto* sides = new QHBoxLayout();
  sides->addWidget(tabOrigine_, 1);
  sides->addLayout(side);
  QDialogButtonBox* buttons = makeButtons();
  cmdOk_ = named(buttons->button(QDialogButtonBox::Ok), "cmdOk");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmImmagine::accepted);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  column->addWidget(buttons);
  editing_->changed = [this] { showPreview(); };
  connect(tabOrigine_, &QTabWidget::currentChanged, this, [this](int tab) {
    choice_.tab = tab == 0 ? PictureTab::Disk : PictureTab::Shop;
    showPreview();
  });
  showFolder(firstPictureFolder(
      {choice_.values.path, locationOf(QStandardPaths::PicturesLocation), locationOf(QStandardPaths::HomeLocation)}));
  boxTicked(choice_.values.fits);
  showPreview();
  txtCartella_->setFocus();  // a list that gets the focus selects its first line
  sizeInCharacters(110, 30);
}

QWidget* frmImmagine::makeDiskTab() {
  txtCartella_ = named(new QLineEdit(), "txtCartella");
  lstCartelle_ = named(new QListWidget(), "lstCartelle");
  lstFile_ = named(new QListWidget(), "lstFile");
  auto* cmdDesktop = named(new QPushButton(toQt("Des&ktop")), "cmdDesktop");
  auto* cmdSfoglia = named(new QPushButton(toQt("&Sfoglia...")), "cmdSfoglia");
  auto* page = new QWidget();
  auto* grid = new QGridLayout(page);
  grid->addWidget(labelFor("Ca&rtella:", txtCartella_), 0, 0);
  grid->addWidget(txtCartella_, 0, 1, 1, 2);
  grid->addWidget(cmdSfoglia, 0, 3);
  grid->addWidget(cmdDesktop, 0, 4);
  grid->addWidget(labelFor("S&ottocartelle:", lstCartelle_), 1, 0, 1, 2);
  grid->addWidget(labelFor("&Immagini:", lstFile_), 1, 2, 1, 3);
  grid->addWidget(lstCartelle_, 2, 0, 1, 2);
  grid->addWidget(lstFile_, 2, 2, 1, 3);
  grid->setRowStretch(2, 1);
  for (QPushButton* button : {cmdDesktop, cmdSfoglia}) button->setAutoDefault(false);
  connect(cmdDesktop, &QPushButton::clicked, this, [this] { openFolder(locationOf(QStandardPaths::DesktopLocation)); });
  connect(cmdSfoglia, &QPushButton::clicked, this, &frmImmagine::browse);
  connect(txtCartella_, &QLineEdit::editingFinished, this, [this] {
    if (fromQt(txtCartella_->text()) != folder_.path) openFolder(fromQt(txtCartella_->text()));
  });
  connect(lstCartelle_, &QListWidget::itemActivated, this,
          [this](const QListWidgetItem* item) { openFolder(joinPath(folder_.path, nameOf(item))); });
  connect(lstFile_, &QListWidget::currentRowChanged, this, &frmImmagine::showPreview);
  connect(lstFile_, &QListWidget::itemDoubleClicked, this, &frmImmagine::accepted);
  return page;
}

QWidget* frmImmagine::makeShopTab() {
  lstNegozio_ = named(new QListWidget(), "lstNegozio");
  auto* page = new QWidget();
  auto* column = new QVBoxLayout(page);
  column->addWidget(labelFor("I&mmagini:", lstNegozio_));
  column->addWidget(lstNegozio_, 1);
  fill(*lstNegozio_, pictureFiles(choice_.folder()));
  const auto found = lstNegozio_->findItems(toQt(choice_.current()), Qt::MatchFixedString);
  if (!found.isEmpty()) lstNegozio_->setCurrentItem(found.front());
  connect(lstNegozio_, &QListWidget::currentRowChanged, this, &frmImmagine::showPreview);
  connect(lstNegozio_, &QListWidget::itemDoubleClicked, this, &frmImmagine::accepted);
  return page;
}

QWidget* frmImmagine::makePreview() {
  picAnteprima_ = named(new PictureFrame(), "picAnteprima", "Anteprima");
  lblDimensioni_ = named(new QLabel(), "lblDimensioni");
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(picAnteprima_);
  column->addWidget(lblDimensioni_);
  return side;
}

QLineEdit* frmImmagine::makeLimit(std::string_view name, int value) {
  auto* field = named(new QLineEdit(QString::number(value)), name);
  field->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), field));
  field->setMaxLength(9);
  return field;
}

QWidget* frmImmagine::makeBox() {
  chkAdatta_ = named(new QCheckBox(toQt("&Adatta alle dimensioni massime:")), "chkAdatta");
  chkAdatta_->setChecked(choice_.values.fits);
  txtLarghezza_ = makeLimit("txtLarghezza", choice_.values.limits.width);
  txtAltezza_ = makeLimit("txtAltezza", choice_.values.limits.height);
  auto* side = new QWidget();
  auto* grid = new QGridLayout(side);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->addWidget(chkAdatta_, 0, 0, 1, 4);
  grid->addWidget(labelFor("&Larghezza:", txtLarghezza_), 1, 0);
  grid->addWidget(txtLarghezza_, 1, 1);
  grid->addWidget(labelFor("Al&tezza:", txtAltezza_), 1, 2);
  grid->addWidget(txtAltezza_, 1, 3);
  chkLuogo_ = named(new QCheckBox(toQt("Ometti il l&uogo dello scatto")), "chkLuogo");
  chkLuogo_->setToolTip(toQt("La foto dice dove è stata scattata, e chiunque visiti il negozio può leggerlo"));
  chkLuogo_->setChecked(choice_.values.dropsLocation);
  chkLuogo_->hide();
  grid->addWidget(chkLuogo_, 2, 0, 1, 4);
  connect(chkLuogo_, &QCheckBox::toggled, this, [this](bool ticked) { choice_.values.dropsLocation = ticked; });
  connect(chkAdatta_, &QCheckBox::toggled, this, &frmImmagine::boxTicked);
  connect(txtLarghezza_, &QLineEdit::editingFinished, this, [this] { leaveLimit(txtLarghezza_, &ImageSize::width); });
  connect(txtAltezza_, &QLineEdit::editingFinished, this, [this] { leaveLimit(txtAltezza_, &ImageSize::height); });
  return side;
}

void frmImmagine::openFolder(const std::string& path) {
  if (auto opened = openPictureFolder(path)) {
    showFolder(std::move(*opened));
  } else {
    txtCartella_->setText(toQt(folder_.path));
  }
}

void frmImmagine::showFolder(PictureFolder opened) {
  folder_ = std::move(opened);
  choice_.values.path = folder_.path;
  txtCartella_->setText(toQt(folder_.path));
  fill(*lstCartelle_, folder_.folders);
  fill(*lstFile_, folder_.files);
}

void frmImmagine::browse() {
  const std::string path = user_.chooseFolder(picturePrompt, folder_.path);
  if (!path.empty()) openFolder(path);
}

std::string frmImmagine::selected() const {
  const bool isOfDisk = choice_.tab == PictureTab::Disk;
  const std::string name = nameOf((isOfDisk ? lstFile_ : lstNegozio_)->currentItem());
  return name.empty() ? name : joinPath(isOfDisk ? folder_.path : choice_.folder(), name);
}

void frmImmagine::showPreview() {
  if (cmdOk_ == nullptr) return;  // the window is still being made
  const std::string path = selected();
  cmdOk_->setEnabled(!path.empty());
  editing_->takeUp(path);
  if (editing_->isCutting()) {
    chkLuogo_->hide();
    return showSize(choice_.copySize(editing_->showCut()), baseName(path));
  }
  const PicturePreview shown = path.empty() ? PicturePreview() : choice_.preview(path);
  picAnteprima_->showPicture(shown.picture.pixels());
  chkLuogo_->setVisible(shown.tellsLocation);
  const bool isShown = shown.picture.Width() > 0;
  if (!isShown) picAnteprima_->showReason(toQt(choice_.sizeRefusal(path)));
  showSize(isShown ? shown.size : ImageSize(), baseName(path));
}

void frmImmagine::showSize(ImageSize size, std::string_view name) {
  lblDimensioni_->setText(size.width > 0 ? tr("%1 x %2").arg(size.width).arg(size.height) : QString());
  picAnteprima_->setAccessibleName(tr("Anteprima: ") + toQt(name.empty() ? "nessuna" : name) + QStringLiteral(" ") +
                                   lblDimensioni_->text());
}

void frmImmagine::leaveLimit(QLineEdit* field, int ImageSize::*side) {
  if (!isVisible()) return;  // Annulla takes the focus away as well
  int& holding = choice_.values.limits.*side;
  const std::string text = fromQt(field->text());
  if (text == std::to_string(holding)) return;
  const bool isTaken = side == &ImageSize::width ? choice_.leaveWidth(text) : choice_.leaveHeight(text);
  if (isTaken) {
    showPreview();
    return;
  }
  field->setText(QString::number(holding));
  field->selectAll();
  field->setFocus();
}

void frmImmagine::boxTicked(bool ticked) {
  choice_.values.fits = ticked;
  txtLarghezza_->setEnabled(ticked);
  txtAltezza_->setEnabled(ticked);
  showPreview();
}

void frmImmagine::accepted() {
  const std::string path = selected();
  if (path.empty()) return;
  const WaitCursor busy;
  if (const auto name = choice_.accept(path)) finish(*name);
}

}  // namespace kv
