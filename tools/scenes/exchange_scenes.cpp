#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <array>

#include "import/accounting/frm_importa_og.h"
#include "import/accounting/frm_importa_ogma_prog.h"
#include "import/accounting/frm_og_choose.h"
#include "import/tables/frm_esporta_foglio.h"
#include "import/tables/frm_importa_foglio.h"
#include "platform/files/files.h"
#include "publish/passwords/frm_otp.h"
#include "publish/update/frm_update.h"
#include "scenes.h"
#include "store/exchange/frm_importa_primo.h"
#include "store/schema/schema.h"

namespace kv::scenes {
namespace {

/// A shop of the earlier line made of the open one, with some rows of its own.
void makePrimoShop(Stage& stage, const std::string& folder) {
  const std::string path = joinPath(folder, "catalog.mdb");
  ignore(stage.session().catalogue.compactTo(path), "the preview says that there is no shop");
  auto catalogue = Database::open(path, OpenMode::Shared);
  if (!catalogue) return;
  ignore(catalogue->execute("UPDATE generale SET versione = 250, titolo = 'Bottega'; DELETE FROM articoli WHERE ID < 3;"
                            "UPDATE articoli SET titolo = titolo || ' Primo' WHERE ID % 5 = 0;"
                            "INSERT INTO articoli (ID, titolo) VALUES (9001, 'Vaso di vetro')"),
         "the preview shows what there is");
}

void takePrimoImport(Stage& stage, const QString& name) {
  const QTemporaryDir folder;
  makePrimoShop(stage, fromQt(folder.path()));
  Environment env = stage.environment();
  frmImportaPrimo dialog(stage.session(), env, &stage.window());
  takeShown(stage, dialog, name, [&](QWidget& shown) {
    auto* path = shown.findChild<QLineEdit*>(QStringLiteral("txtPercorso"));
    path->setText(folder.path());
    emit path->editingFinished();
    path->setText(QStringLiteral("/home/mario/primo"));
  });
}

/// The two tables of the package as text.
std::string makeAccountingFolder(const QTemporaryDir& folder) {
  std::string path = fromQt(folder.path());
  ignore(writeBytes(joinPath(path, "Categoria.csv"), "Id;Nome\r\n7;Vasi\r\n8;Tazze\r\n"), "the preview says so");
  ignore(writeBytes(joinPath(path, "Articoli.csv"),
                    "Id;IdCategoria;Codice;Descrizione;iva;Vendita1\r\n1;7;V1;Vaso di vetro;22;12,50\r\n"
                    "2;7;V2;Vaso di coccio;22;8,90\r\n3;8;;Tazza blu;22;4,20\r\n4;9;X;Piatto;22;3,10\r\n"),
         "the preview says so");
  return path;
}

void takeAccountingChoice(Stage& stage, const QString& name) {
  MemorySettings settings;
  for (const std::size_t number : {0U, 5U}) {
    ignore(storeAccountingPath(settings, accountingVariants().at(number), "/home/mario/orsa/orsa.mdb"), "in memory");
  }
  frmOGChoose dialog(settings, stage.user(), &stage.window());
  takeShown(stage, dialog, name);
}

void takeAccountingOptions(Stage& stage, const QString& name) {
  frmImportaOG dialog(readAccountingOptions("1121103", 2), stage.user(), &stage.window());
  takeShown(stage, dialog, name);
}

void takeVisibleOptions(Stage& stage, const QString& name) {
  frmImportaOG3 dialog(readAccountingOptions("11211031100", 3), stage.user(), &stage.window());
  takeShown(stage, dialog, name);
}

void takeAccountingPreview(Stage& stage, const QString& name) {
  const QTemporaryDir folder;
  AccountingRequest request;
  request.variant = accountingVariants()[0];
  request.line = "1100100";
  request.path = makeAccountingFolder(folder);
  frmImportaOGMAProg dialog(stage.session(), stage.settings(), request, &stage.window());
  takeShown(stage, dialog, name);
}

/// The guide of a sheet, `pages` pages on. arrange: acts on the page of the columns before it is left.
void takeSheetGuide(Stage& stage, const QString& name, int pages, const std::function<void(QWidget&)>& arrange = {}) {
  const QTemporaryDir folder;
  const std::string path = joinPath(fromQt(folder.path()), "listino.csv");
  ignore(writeBytes(path,
                    "ID;Codice;Titolo;Prezzo;Fornitore\r\n1;V1;Vaso di vetro;12,50;Rossi\r\n2;;Vaso di coccio;8,90;\r\n"
                    "3;T1;Tazza blu;quattro;Rossi\r\n900;P1;Piatto;3,10;\r\n"),
         "the picture shows it");
  TableGuide guide(stage.session(), stage.settings(), "", "modello1");
  frmImportaFoglio dialog(guide, stage.user(), {}, &stage.window());
  takeShown(stage, dialog, name, [&](QWidget& shown) {
    dialog.openFile(path);
    for (int i = 0; i < pages; ++i) {
      if (i == 1 && arrange) arrange(shown);
      shown.findChild<QAbstractButton*>(QStringLiteral("cmdOK"))->click();
    }
  });
}

void takeSheetFile(Stage& stage, const QString& name) { takeSheetGuide(stage, name, 0); }
void takeSheetColumns(Stage& stage, const QString& name) { takeSheetGuide(stage, name, 1); }
void takeSheetPlan(Stage& stage, const QString& name) { takeSheetGuide(stage, name, 2); }
/// With the articles that go out of the catalogue.
void takeSheetUnlisted(Stage& stage, const QString& name) {
  takeSheetGuide(stage, name, 2,
                 [](QWidget& shown) { shown.findChild<QCheckBox*>(QStringLiteral("chkFuori"))->setChecked(true); });
}

void takeSheetExport(Stage& stage, const QString& name) {
  const auto tables = sheetTables(stage.session().catalogue, stage.session().languageCount);
  if (!tables) return;
  frmEsportaFoglio dialog(*tables, 7, {}, &stage.window());
  takeShown(stage, dialog, name);
}

PasswordJob shownPasswordJob() {
  PasswordJob job;
  job.connection.host = "ftp.bottega.example";
  job.folderFTP = "/www/negozio";
  job.siteBase = "http://bottega.example";
  job.disabled = true;
  return job;
}

/// A host that is asked while the picture is taken, and answers that the passwords are there.
class HostInThePicture final : public HttpClient {
 public:
  explicit HostInThePicture(std::function<void()> whileAsked) : whileAsked_(std::move(whileAsked)) {}
  Result<HttpResponse> send(const HttpRequest& /*request*/, const std::function<bool()>& /*yield*/) override {
    whileAsked_();
    return HttpResponse{200, "OK"};
  }

 private:
  std::function<void()> whileAsked_;
};

/// Somebody who agrees to everything and reads nothing.
class AgreeingUser final : public UserPort {
 public:
  void message(const std::string& /*text*/, Icon /*icon*/) override {}
  Answer question(const Question& /*question*/) override { return Answer::Ok; }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }
};

void takePasswordLists(Stage& stage, const QString& name) {
  const auto transfer = makeTransfer();
  HostInThePicture host([] {});
  frmOTP dialog(shownPasswordJob(), {*transfer, host, stage.user()}, systemRandom(), &stage.window());
  dialog.chooseFiles = [] { return std::vector<std::string>{"/home/mario/banca/a.ric", "/home/mario/banca/a.ris"}; };
  takeShown(stage, dialog, name,
            [](QWidget& shown) { shown.findChild<QAbstractButton*>(QStringLiteral("cmdCerca"))->click(); });
}

void takePasswordTransfer(Stage& stage, const QString& name) {
  const auto transfer = makeTransfer();
  AgreeingUser user;
  HostInThePicture host([&] {
    Stage::processEvents();
    stage.take(name);
  });
  const QTemporaryDir folder;
  PasswordJob job = shownPasswordJob();
  job.shopFolder = fromQt(folder.path());
  frmFTPOTP window(job, "abcdefghijklmnopqrst.php", {*transfer, host, user}, &stage.window());
  window.exec();
}

void takeUpdate(Stage& stage, const QString& name) {
  const QTemporaryDir folder;
  const std::string shop = fromQt(folder.path());
  ignore(createFolder(joinPath(shop, "db")), "the picture shows what there is");
  ignore(writeBytes(joinPath(shop, "abc.sc"), "2\r\n"), "the picture shows what there is");
  ignore(createDatabase(joinPath(shop, "db/sql.mdb"), buildDatabaseTables()), "the picture shows what there is");
  int asked = 0;
  HostInThePicture host([&] {
    // The answer about the first language is there.
    if (++asked != 2) return;
    Stage::processEvents();
    stage.take(name);
  });
  Environment env = stage.environment();
  frmUpdate window({shop, shop, "http://bottega.example", {"h", "u", "d", "n", "abc"}}, env, host, &stage.window());
  window.exec();
}

}  // namespace

std::span<const Scene> exchangeScenes() {
  static constexpr std::array scenes{Scene{"importa-primo", takePrimoImport},
                                     Scene{"importa-og-scelta", takeAccountingChoice},
                                     Scene{"importa-og", takeAccountingOptions},
                                     Scene{"importa-og3", takeVisibleOptions},
                                     Scene{"importa-og-anteprima", takeAccountingPreview},
                                     Scene{"importa-foglio", takeSheetFile},
                                     Scene{"importa-foglio-colonne", takeSheetColumns},
                                     Scene{"importa-foglio-piano", takeSheetPlan},
                                     Scene{"importa-foglio-fuori", takeSheetUnlisted},
                                     Scene{"esporta-foglio", takeSheetExport},
                                     Scene{"password", takePasswordLists},
                                     Scene{"password-invio", takePasswordTransfer},
                                     Scene{"aggiornamento", takeUpdate}};
  return scenes;
}

}  // namespace kv::scenes
