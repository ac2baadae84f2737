#include "store/exchange/frm_importa_primo.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "store/exchange/primo_preview.h"

namespace kv {

frmImportaPrimo::frmImportaPrimo(Session& session, Environment& env, QWidget* parent)
    : FormDialog(primoTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  txtPercorso_ = named(new QLineEdit(), "txtPercorso");
  auto* cmdSfoglia = named(new QPushButton(QStringLiteral("&Sfoglia...")), "cmdSfoglia");
  cmdSfoglia->setAutoDefault(false);
  auto* row = new QHBoxLayout();
  row->addWidget(labelFor("&Negozio di origine:", txtPercorso_));
  row->addWidget(txtPercorso_, 1);
  row->addWidget(cmdSfoglia);
  column->addLayout(row);
  column->addWidget(wrappedText(primoNote));
  txtAnteprima_ = named(new QPlainTextEdit(), "txtAnteprima");
  txtAnteprima_->setReadOnly(true);
  txtAnteprima_->setTabChangesFocus(true);
  // The first columns hold words such as "modificata" and "categorie", in a font of any size.
  txtAnteprima_->setTabStopDistance(txtAnteprima_->fontMetrics().horizontalAdvance(QStringLiteral("modificata  ")));
  column->addWidget(labelFor("&Anteprima:", txtAnteprima_));
  column->addWidget(txtAnteprima_, 1);
  QDialogButtonBox* buttons = makeButtons();
  cmdOk_ = buttons->button(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { finish(fromQt(txtPercorso_->text())); });
  column->addWidget(buttons);
  connect(cmdSfoglia, &QPushButton::clicked, this, &frmImportaPrimo::browse);
  connect(txtPercorso_, &QLineEdit::textChanged, this, &frmImportaPrimo::pathChanged);
  connect(txtPercorso_, &QLineEdit::editingFinished, this, &frmImportaPrimo::showPreview);
  pathChanged();
  sizeInCharacters(84, 30);
}

void frmImportaPrimo::browse() {
  const std::string folder = env_.user.chooseFolder(std::string(primoPrompt), fromQt(txtPercorso_->text()));
  if (folder.empty() || !holdsSource(env_, folder)) return;
  txtPercorso_->setText(toQt(folder));
  showPreview();
}

void frmImportaPrimo::pathChanged() { cmdOk_->setEnabled(!txtPercorso_->text().isEmpty()); }

// The field is left by every click beside it and by the end of the dialog too, and a large shop takes seconds.
void frmImportaPrimo::showPreview() {
  const std::string path = fromQt(txtPercorso_->text());
  if (path == previewed_) return;
  previewed_ = path;
  const WaitCursor wait;
  const auto preview = previewOfShop(session_.catalogue, path);
  txtAnteprima_->setPlainText(toQt(preview ? *preview : preview.error().what));
}

}  // namespace kv
