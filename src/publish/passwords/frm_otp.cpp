#include "publish/passwords/frm_otp.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "platform/ports/failure_text.h"
#include "publish/passwords/password_script.h"

namespace kv {
namespace {

constexpr std::string_view passwordListsTitle = "Korvane - Liste delle password";

QLineEdit* shownField(QFormLayout& form, std::string_view caption, const char* name, const std::string& text = {}) {
  auto* line = named(new QLineEdit(toQt(text)), name);
  line->setReadOnly(true);
  form.addRow(labelFor(caption, line), line);
  return line;
}

std::vector<std::string> chosenInDialog(QWidget* over) {
  const QStringList chosen = QFileDialog::getOpenFileNames(
      over, toQt("Scegliere i due file delle password"), QString(),
      toQt("Liste delle password (*.ric *.ris *.asp *.RIC *.RIS *.ASP);;Tutti i file (*)"));
  std::vector<std::string> paths;
  for (const QString& one : chosen) paths.push_back(fromQt(one));
  return paths;
}

}  // namespace

frmOTP::frmOTP(PasswordJob job, PasswordServices services, RandomSource& random, QWidget* parent)
    : FormDialog(passwordListsTitle, parent),
      chooseFiles([this] { return chosenInDialog(this); }),
      job_(std::move(job)),
      services_(services),
      random_(random) {
  build();
}

void frmOTP::build() {
  auto* column = new QVBoxLayout(this);
  auto* form = new QFormLayout();
  column->addLayout(form);
  txtRic_ = shownField(*form, "Lista delle &richieste:", "txtRic");
  txtRis_ = shownField(*form, "Lista delle ri&sposte:", "txtRis");
  auto* search = named(new QPushButton(toQt("&Cerca...")), "cmdCerca");
  search->setAutoDefault(false);
  connect(search, &QPushButton::clicked, this, &frmOTP::cmdCerca);
  form->addRow(QString(), search);
  shownField(*form, "&Host:", "txtHost", job_.connection.host);
  shownField(*form, "Car&tella sul server:", "txtCartella", job_.folderFTP);
  auto* group = new QGroupBox(toQt("Operazione"));
  auto* choices = new QVBoxLayout(group);
  optSostituisci_ = named(new QRadioButton(toQt("S&ostituisci le password sul server")), "optSostituisci");
  optSostituisci_->setChecked(true);
  auto* append = named(new QRadioButton(toQt("Acco&da le password a quelle presenti sul server")), "optAccoda");
  choices->addWidget(optSostituisci_);
  choices->addWidget(append);
  column->addWidget(group);
  QDialogButtonBox* buttons = makeButtons("Aggiorna", "Chiudi");
  cmdAggiorna_ = named(buttons->button(QDialogButtonBox::Ok), "cmdAggiorna");
  cmdAggiorna_->setEnabled(false);
  addHelp(buttons, services_.help, "pagine/password.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmOTP::cmdAggiorna);
  column->addWidget(buttons);
  sizeInCharacters(70, 0);
}

void frmOTP::cmdCerca() {
  const std::vector<std::string> chosen = chooseFiles();
  if (chosen.empty()) return;
  const auto files = passwordFilesOf(chosen);
  if (!files) {
    services_.user.message(passwordFilesWanted(), Icon::Exclamation);
    return;
  }
  files_ = *files;
  txtRic_->setText(toQt(files_.requests));
  txtRis_->setText(toQt(files_.responses));
  cmdAggiorna_->setEnabled(true);
}

bool frmOTP::sendInWindow(const std::string& script) {
  frmFTPOTP window(job_, script, services_, this);
  window.exec();
  return !window.tag().empty();
}

void frmOTP::cmdAggiorna() {
  const PasswordScriptJob script{files_, optSostituisci_->isChecked(), job_.shopFolder, job_.onlineFolder,
                                 job_.serverFolderKey()};
  const auto sent = sendPasswordScript(script, random_, [this](const std::string& name) { return sendInWindow(name); });
  if (!sent) {
    const Error& error = sent.error();
    services_.user.message(std::to_string(error.number) + ": " + failureText(error), Icon::Exclamation);
    return;
  }
  if (*sent) finish("OK");
}

}  // namespace kv
