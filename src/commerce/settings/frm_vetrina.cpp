#include "commerce/settings/frm_vetrina.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/ports/failure_text.h"

namespace kv {
namespace {

/// A list of the numbers from 1 on. What is stored out of them stays on offer.
QComboBox* numberList(const char* name, int most) {
  auto* box = named(new QComboBox(), name);
  for (int number = 1; number <= most; ++number) box->addItem(QString::number(number), number);
  return box;
}

void showNumber(QComboBox& box, int number) {
  if (number != 0 && box.findData(number) < 0) box.addItem(QString::number(number), number);
  box.setCurrentIndex(number == 0 ? -1 : box.findData(number));
}

int numberOf(const QComboBox& box) { return box.currentIndex() < 0 ? 0 : box.currentData().toInt(); }

}  // namespace

frmVetrina::frmVetrina(Session& session, Environment& env, HelpOpener help, QWidget* parent)
    : FormDialog(showcaseTitle, parent), session_(session), env_(env) {
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeAlignment());
  sides->addWidget(makeFields());
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmVetrina::store);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides);
  column->addWidget(makeSizes());
  column->addWidget(makeLinks());
  column->addStretch();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/sito.htm");
  show(loadShowcase(session.catalogue).value_or(ShowcaseForm()));
}

QWidget* frmVetrina::makeAlignment() {
  auto* group = new QGroupBox(toQt("Allineamento"));
  auto* column = new QVBoxLayout(group);
  optAllineamento_ = new QButtonGroup(this);
  int index = 0;
  for (const ShowcaseAlignment& alignment : showcaseAlignments) {
    auto* option = named(new QRadioButton(toQt(alignment.caption)), "optAllineamento" + std::to_string(index));
    optAllineamento_->addButton(option, index++);
    column->addWidget(option);
  }
  return group;
}

QWidget* frmVetrina::makeFields() {
  auto* group = new QGroupBox(toQt("Campi visualizzati"));
  auto* column = new QVBoxLayout(group);
  column->addWidget(new QLabel(toQt(showcasePicture)));
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) {
    chkCampo_[i] = named(new QCheckBox(toQt(showcaseFields[i])), "chkCampo" + std::to_string(i));
    column->addWidget(chkCampo_[i]);
  }
  return group;
}

QWidget* frmVetrina::makeSizes() {
  auto* sizes = new QWidget();
  auto* form = new QFormLayout(sizes);
  form->setContentsMargins(0, 0, 0, 0);
  cboFont_ = numberList("cboFont", largestShowcaseFont);
  cboColonne_ = numberList("cboColonne", mostShowcaseColumns);
  form->addRow(labelFor("Dimensione del &carattere:", cboFont_), cboFont_);
  form->addRow(labelFor("&Prodotti per riga:", cboColonne_), cboColonne_);
  return sizes;
}

QWidget* frmVetrina::makeLinks() {
  auto* group = new QGroupBox(toQt("Link dei prodotti"));
  auto* column = new QVBoxLayout(group);
  optLink_ = new QButtonGroup(this);
  int index = 0;
  for (const std::string_view caption : showcaseLinks) {
    auto* option = named(new QRadioButton(toQt(caption)), "optLink" + std::to_string(index));
    optLink_->addButton(option, index++);
    column->addWidget(option);
  }
  return group;
}

void frmVetrina::show(const ShowcaseForm& form) {
  optAllineamento_->button(static_cast<int>(form.alignment))->setChecked(true);
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) chkCampo_[i]->setChecked(form.fields[i]);
  showNumber(*cboFont_, form.fontSize);
  showNumber(*cboColonne_, form.columns);
  optLink_->button(form.singleItem ? 1 : 0)->setChecked(true);
}

ShowcaseForm frmVetrina::shown() const {
  ShowcaseForm form;
  form.alignment = static_cast<std::size_t>(optAllineamento_->checkedId());
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) form.fields[i] = chkCampo_[i]->isChecked();
  form.fontSize = numberOf(*cboFont_);
  form.columns = numberOf(*cboColonne_);
  form.singleItem = optLink_->checkedId() == 1;
  return form;
}

void frmVetrina::store() {
  if (const auto stored = storeShowcase(session_.catalogue, shown()); !stored) {
    env_.user.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
