#include "publish/settings/frm_imposta_ftp.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

namespace kv {
namespace {

constexpr std::string_view publishOptionsTitle = "Korvane - Aggiornamento del sito";
constexpr std::array<std::string_view, typeGroups.size()> typeCaptions{
    "Pagine (&htm, html, shtm, shtml, css, js)", "&Immagini (gif, jpg, jpeg, png, bmp)", "&Dati (mdb, csv, sql)",
    "&Script (pl, asp, php)"};
constexpr std::string_view publishHelp = "pagine/pubblicare.htm";
constexpr int typeIndent = 24;

/// The choices of a shop, the question about another host included.
PublishOptions loadOptions(const Session& session, const Environment& env, LockStatements& lock, Database& catalogue) {
  const PublishSettings settings = AvanzateTrasf(session.ShopFolder, env.settings, lock);
  const auto shop = readPublishedShop(catalogue);
  const bool incremental = shop && CanUseIncremental({session.ShopFolder, session.onlineFolder}, *shop, env.user, true);
  return PublishOptions::of(settings, incremental);
}

QGroupBox* groupNamed(std::string_view caption) {
  auto* group = new QGroupBox(toQt(caption));
  new QVBoxLayout(group);
  return group;
}

}  // namespace

frmImpostaFTP::frmImpostaFTP(Session& session, Environment& env, LockStatements& lock, HelpOpener help, QWidget* parent)
    : FormDialog(publishOptionsTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  // Side by side: one below the other they are higher than a low screen with larger text.
  auto* groups = new QHBoxLayout();
  groups->addWidget(makeFiles(), 0, Qt::AlignTop);
  auto* second = new QVBoxLayout();
  second->addWidget(makeDatabase());
  second->addWidget(makeLater());
  second->addStretch();
  groups->addLayout(second, 1);
  column->addLayout(groups);
  QDialogButtonBox* buttons = makeButtons();
  auto* cmdReset = named(buttons->addButton(toQt("&Reset"), QDialogButtonBox::ResetRole), "cmdReset");
  connect(cmdReset, &QPushButton::clicked, this, [this] {
    PublishOptions options = shown();
    options.reset();
    show(options);
  });
  addHelp(buttons, std::move(help), publishHelp);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmImpostaFTP::save);
  column->addWidget(buttons);
  if (isBuilt(session.ShopFolder)) show(loadOptions(session, env, lock, session.catalogue));
  sizeInCharacters(100, 20);
}

int frmImpostaFTP::exec() {
  if (isBuilt(session_.ShopFolder)) return FormDialog::exec();
  env_.user.message(std::string(buildBeforePublishing), Icon::Exclamation);
  reject();
  return Rejected;
}

QCheckBox* frmImpostaFTP::addBox(QWidget* group, std::string_view caption, std::string_view name) {
  auto* box = named(new QCheckBox(toQt(caption)), name);
  group->layout()->addWidget(box);
  connect(box, &QCheckBox::toggled, this, &frmImpostaFTP::enable);
  return box;
}

QRadioButton* frmImpostaFTP::addChoice(QWidget* group, std::string_view caption, std::string_view name) {
  auto* choice = named(new QRadioButton(toQt(caption)), name);
  group->layout()->addWidget(choice);
  connect(choice, &QRadioButton::toggled, this, &frmImpostaFTP::enable);
  return choice;
}

QWidget* frmImpostaFTP::makeFiles() {
  QGroupBox* group = groupNamed("File");
  optAbilitato_ = addChoice(group, "&FTP abilitato", "optAbilitato");
  optNonAbilitato_ = addChoice(group, "FTP &non abilitato", "optNonAbilitato");
  chkModificati_ = addBox(group, "Invia solo i file &modificati", "chkModificati");
  chkNegozio_ = addBox(group, "Invia solo i file del ne&gozio", "chkNegozio");
  chkImpo_ = addBox(group, "&Trasferisci solo i file con estensione:", "chkImpo");
  auto* indented = new QWidget();
  auto* types = new QVBoxLayout(indented);
  types->setContentsMargins(typeIndent, 0, 0, 0);
  for (std::size_t i = 0; i < typeGroups.size(); ++i) {
    chkTipo_[i] = addBox(indented, typeCaptions[i], "chkTipo" + std::to_string(i + 1));
  }
  group->layout()->addWidget(indented);
  return group;
}

QWidget* frmImpostaFTP::makeDatabase() {
  QGroupBox* group = groupNamed("Database");
  optTutti_ = addChoice(group, "Aggiorna tutti i re&cord", "optTutti");
  optSoloModificati_ = addChoice(group, "Aggiorna so&lo i record modificati", "optSoloModificati");
  chkOttimizza_ = addBox(group, "&Ottimizzazione avanzata", "chkOttimizza");
  optMySql3_ = addChoice(group, "MySQL &3.x", "optMySql3");
  optMySql4_ = addChoice(group, "MySQL &4.x", "optMySql4");
  // Two pairs of choices in one group.
  const auto pair = [group](QRadioButton* one, QRadioButton* other) {
    auto* buttons = new QButtonGroup(group);
    buttons->addButton(one);
    buttons->addButton(other);
  };
  pair(optTutti_, optSoloModificati_);
  pair(optMySql3_, optMySql4_);
  return group;
}

QWidget* frmImpostaFTP::makeLater() {
  QGroupBox* group = groupNamed("Trasferimento");
  chkSicuro_ = addBox(group, "Invio sic&uro: il file vecchio resta finché il nuovo non è completo", "chkSicuro");
  chkContenuto_ = addBox(group, "Non inviare i file con lo stesso co&ntenuto", "chkContenuto");
  cboConnessioni_ = named(new QComboBox(), "cboConnessioni");
  for (const char* number : {"1", "2", "3", "4"}) cboConnessioni_->addItem(number);
  auto* connections = new QHBoxLayout();
  connections->addWidget(labelFor("Conn&essioni contemporanee:", cboConnessioni_));
  connections->addWidget(cboConnessioni_);
  connections->addStretch();
  qobject_cast<QVBoxLayout*>(group->layout())->addLayout(connections);
  chkRiprova_ = addBox(group, "Riprova i trasferimenti interrotti", "chkRiprova");
  chkPulizia_ = addBox(group, "Proponi di eliminare dal server i file che il negozio non ha &più", "chkPulizia");
  auto* cmdConsigliate = named(new QPushButton(toQt("Impostazioni consi&gliate")), "cmdConsigliate");
  cmdConsigliate->setAutoDefault(false);
  connect(cmdConsigliate, &QPushButton::clicked, this, [this] {
    PublishOptions options = shown();
    options.recommend();
    show(options);
  });
  auto* row = new QHBoxLayout();
  row->addWidget(cmdConsigliate);
  row->addStretch();
  qobject_cast<QVBoxLayout*>(group->layout())->addLayout(row);
  if (isFirstPublish(session_.ShopFolder)) {
    group->layout()->addWidget(named(wrappedText(firstPublishAdvice), "lblPrimoInvio"));
  }
  return group;
}

void frmImpostaFTP::show(const PublishOptions& options) {
  options_ = options;
  const PublishSettings& settings = options.settings;
  (settings.disabled ? optNonAbilitato_ : optAbilitato_)->setChecked(true);
  chkModificati_->setChecked(settings.onlyModified);
  chkNegozio_->setChecked(settings.onlyShopFiles);
  chkImpo_->setChecked(options.filtersTypes);
  for (std::size_t i = 0; i < chkTipo_.size(); ++i) chkTipo_[i]->setChecked(options.types[i]);
  (settings.allRecords ? optTutti_ : optSoloModificati_)->setChecked(true);
  chkOttimizza_->setChecked(settings.optimised);
  (settings.lockTables ? optMySql3_ : optMySql4_)->setChecked(true);
  chkSicuro_->setChecked(settings.safeUpload);
  chkContenuto_->setChecked(settings.contentCheck);
  cboConnessioni_->setCurrentIndex(settings.connections - 1);
  chkRiprova_->setChecked(settings.retry);
  chkPulizia_->setChecked(settings.cleanUp);
  enable();
}

PublishOptions frmImpostaFTP::shown() const {
  PublishOptions options = options_;
  PublishSettings& settings = options.settings;
  settings.disabled = optNonAbilitato_->isChecked();
  settings.onlyModified = chkModificati_->isChecked();
  settings.onlyShopFiles = chkNegozio_->isChecked();
  options.filtersTypes = chkImpo_->isChecked();
  for (std::size_t i = 0; i < chkTipo_.size(); ++i) options.types[i] = chkTipo_[i]->isChecked();
  settings.allRecords = optTutti_->isChecked();
  settings.optimised = chkOttimizza_->isChecked();
  settings.lockTables = optMySql3_->isChecked();
  settings.safeUpload = chkSicuro_->isChecked();
  settings.contentCheck = chkContenuto_->isChecked();
  settings.connections = cboConnessioni_->currentIndex() + 1;
  settings.retry = chkRiprova_->isChecked();
  settings.cleanUp = chkPulizia_->isChecked();
  return options;
}

void frmImpostaFTP::enable() {
  if (chkRiprova_ == nullptr) return;  // the controls are still being made
  const PublishOptions options = shown();
  for (QCheckBox* box : {chkModificati_, chkNegozio_, chkImpo_}) box->setEnabled(options.areFilesEnabled());
  for (QCheckBox* box : chkTipo_) box->setEnabled(options.areTypesEnabled());
  optSoloModificati_->setEnabled(options.canUseIncremental);
}

void frmImpostaFTP::save() {
  const auto written = writePublishSettings(session_.ShopFolder, shown().chosen());
  if (!written) {
    env_.user.message(optionsFailure(written.error()), Icon::Exclamation);
    return;
  }
  finish("OK");
}

}  // namespace kv
