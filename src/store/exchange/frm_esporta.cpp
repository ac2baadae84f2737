#include "store/exchange/frm_esporta.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kv {

frmEsporta::frmEsporta(const ExportOffer& offer, QWidget* parent) : FormDialog(exportTitle, parent) {
  auto* column = new QVBoxLayout(this);
  chkTemplate_ = named(new QCheckBox(toQt(exportTemplateCaption)), "chkTemplate");
  chkLingue_ = named(new QCheckBox(toQt(exportLanguagesCaption)), "chkLingue");
  column->addWidget(chkTemplate_);
  column->addWidget(chkLingue_);
  if (offer.scripts) addScripts(*column, offer);
  chkReset_ = named(new QCheckBox(toQt(exportResetCaption)), "chkReset");
  column->addWidget(chkReset_);
  if (offer.commonTags) addTags(*column);
  chkSenzaPassword_ = named(new QCheckBox(toQt(exportNoPasswordsCaption)), "chkSenzaPassword");
  column->addWidget(wrappedText(exportPasswordsNote));
  column->addWidget(chkSenzaPassword_);
  chkZip_ = named(new QCheckBox(toQt(exportZipCaption)), "chkZip");
  column->addWidget(chkZip_);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmEsporta::accepted);
  column->addWidget(buttons);
  sizeInCharacters(72, offer.scripts ? 26 : 15);
  chkTemplate_->setFocus();
}

void frmEsporta::addScripts(QBoxLayout& column, const ExportOffer& offer) {
  chkScript_ = named(new QCheckBox(toQt(exportScriptsCaption)), "chkScript");
  txtScript_ = named(new QPlainTextEdit(), "txtScript", "Script del negozio");
  std::string lines;
  for (const std::string& name : offer.scriptList) lines += (lines.empty() ? "" : "\n") + name;
  txtScript_->setPlainText(toQt(lines));
  txtScript_->setReadOnly(true);
  txtScript_->setTabChangesFocus(true);
  column.addWidget(chkScript_);
  column.addWidget(txtScript_, 1);
  column.addWidget(wrappedText(exportScriptsNote));
}

void frmEsporta::addTags(QBoxLayout& column) {
  optTuttiTag_ = named(new QRadioButton(toQt(exportAllTagsCaption)), "optTuttiTag");
  auto* optTagNegozio = named(new QRadioButton(toQt(exportShopTagsCaption)), "optTagNegozio");
  optTuttiTag_->setChecked(true);
  column.addWidget(optTuttiTag_);
  column.addWidget(optTagNegozio);
}

void frmEsporta::accepted() {
  const auto isChosen = [](const QAbstractButton* button) { return button != nullptr && button->isChecked(); };
  ExportChoice choice;
  choice.withTemplate = isChosen(chkTemplate_);
  choice.withLanguages = isChosen(chkLingue_);
  choice.withScripts = isChosen(chkScript_);
  choice.resetFolders = isChosen(chkReset_);
  choice.withAllTags = isChosen(optTuttiTag_);
  choice.noPasswords = isChosen(chkSenzaPassword_);
  choice.asZip = isChosen(chkZip_);
  finish(exportTag(choice));
}

}  // namespace kv
