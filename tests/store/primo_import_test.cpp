// The import of a shop of the earlier product line: rows, variants, settings, pictures, and every way it can end.
#include "store/exchange/primo_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/text/text.h"
#include "shop_fixture.h"
#include "store/catalogue/side_fields.h"
#include "store/exchange/primo_preview.h"
#include "store/shop/load_shop.h"
#include "store/shop/price_history_file.h"
#include "store/shop/session_start.h"
#include "support/failing_files.h"
#include "support/failing_store.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* brokenOff =
    "L'importazione è avvenuta con errori: ripristinare il backup e riavviare il programma";

class ImportingPrimo : public test::ShopFixture {
 protected:
  void SetUp() override {
    shop = makeShop("negozio");
    source = makeShop("primo", 250);
    run(source,
        "DELETE FROM articoli; INSERT INTO articoli (ID, catID, titolo, prezzo) VALUES (7, 'cat001', 'Sedia', 125000);"
        "INSERT INTO categorie (ID, contatore, titolo) VALUES ('cat003', 3, 'Casa');"
        "INSERT INTO opzioni (ID, nome, selezionato) VALUES (1, '(nessuna)', 0), (2, 'Colore', 3);"
        "UPDATE opzioni SET opzione3 = 'rosso', opzione3_l2 = 'red', peso3 = 1.5, prezzo3 = 20000 WHERE ID = 2");
    for (const std::string& folder : {shop, source}) {
      for (int zone = 1; zone <= 8; ++zone)
        run(folder, "INSERT INTO zona" + std::to_string(zone) + " (m1sp1) VALUES (5)");
      run(folder, "INSERT INTO dettagliop DEFAULT VALUES; INSERT INTO pagamento (metodo1) VALUES ('" + folder + "')");
    }
    run(shop, "UPDATE generale SET url = 'nostro', titolo = 'nostro', scimp = 9, importo = 9, importo3 = 9");
    run(source, "UPDATE generale SET URL = 'loro', titolo = 'loro', sconto = 4, template = 'altro', username = 'x'");
    write(joinPath(shop, "work/vecchia.gif"), "v");
    write(joinPath(source, "work/nuova.gif"), "n");
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  void open() {
    session.ShopFolder = shop;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    user.shown.clear();
  }
  int import() { return ImportaDati(session, env, source + "/catalog.mdb"); }
  std::string stored(const std::string& sql) {
    const auto value = session.catalogue.scalar(sql);
    return value ? asText(*value) : "failed: " + value.error().what;
  }

  std::string shop, source;
};

TEST_F(ImportingPrimo, RowsAreReplacedWithTheirNumbers) {
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT group_concat(ID || titolo || prezzo) FROM articoli"), "7Sedia125000");
  EXPECT_EQ(stored("SELECT group_concat(ID || contatore || titolo) FROM categorie"), "cat0033Casa");
  EXPECT_EQ(stored("SELECT metodo1 FROM pagamento"), source) << "the payment methods are copied";
  EXPECT_EQ(stored("SELECT m1sp1 FROM zona4"), ".0005") << "as it is in the source";
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ImportingPrimo, AVariantWithOneOptionFilledGetsExactlyOneRow) {
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT count(*) FROM dettagliop"), "1");
  EXPECT_EQ(
      stored("SELECT OpID || '|' || testo || '|' || testo_l2 || '|' || peso || '|' || prezzo || '|' || selezionato"
             " FROM dettagliop"),
      "2|rosso|red|1.5|20000|.");
  EXPECT_EQ(stored("SELECT opzione3 || opzione3_l2 FROM opzioni WHERE ID = 2"), "");
}

TEST_F(ImportingPrimo, AnOptionWithATextInOneLanguageAloneIsARowToo) {
  run(source, "UPDATE opzioni SET opzione15_l4 = 'blau', opzione1 = 'verde' WHERE ID = 2");
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT group_concat(COALESCE(testo, '') || COALESCE(testo_l4, '') || selezionato)"
                   " FROM (SELECT * FROM dettagliop ORDER BY ID)"),
            "verde ,rosso.,blau ");
}

TEST_F(ImportingPrimo, TheNewZonesAreZero) {
  open();
  ASSERT_EQ(import(), -1);
  for (int zone = 5; zone <= 8; ++zone) {
    EXPECT_EQ(stored("SELECT m1sp1 || pag1 || m4spp10 FROM zona" + std::to_string(zone)), "000");
  }
}

TEST_F(ImportingPrimo, ConnectionAndVersionStayAndTheTemplateIsEmptied) {
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT URL || '|' || titolo || '|' || template || '|' || versione || '|' ||"
                   " COALESCE(username, '') FROM generale"),
            "nostro|loro||1002|");
}

TEST_F(ImportingPrimo, SeventeenSettingsStayAndAllOthersAreTakenOver) {
  const std::set<std::string> stay{"url",        "cartella",      "cgisearch", "cgiordine",   "username",  "password",
                                   "hostname",   "searchusescgi", "servernt",  "folderftp",   "foldercgi", "perl",
                                   "merchantid", "estensione",    "sendmail",  "cartellacgi", "versione"};
  open();
  const TableInfo settingRow = session.catalogue.table("generale").value();
  std::string ours, theirs;
  std::set<std::string> asked;
  for (const ColumnInfo& column : settingRow.columns) {
    const std::string name = foldCase(column.name);
    const bool isComputed = name == "template" || name.starts_with("scimp") || name.starts_with("importo");
    if (isComputed || name == "versione") continue;
    asked.insert(name);
    ours += (ours.empty() ? "\"" : ", \"") + column.name + "\" = 0";
    theirs += (theirs.empty() ? "\"" : ", \"") + column.name + "\" = 1";
  }
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET " + ours));
  run(source, "UPDATE generale SET " + theirs);
  ASSERT_EQ(import(), -1);
  for (const std::string& name : asked) {
    EXPECT_EQ(stored("SELECT CAST(\"" + name + "\" AS REAL) > 0 FROM generale"), stay.contains(name) ? "0" : "1")
        << name;
  }
  for (const std::string& name : stay) EXPECT_TRUE(name == "versione" || asked.contains(name)) << name;
}

TEST_F(ImportingPrimo, TheDiscountBecomesAThresholdAndIsCopiedAsWell) {
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT scimp || '|' || sconto || '|' || importo || '|' || importo3 || '|' || scimp9 FROM generale"),
            "4.0|4.0|0|0|0.0");
}

TEST_F(ImportingPrimo, ColumnsGoByNameInAnyOrderAndCase) {
  run(source,
      "ALTER TABLE paesi RENAME TO vecchi;"
      "CREATE TABLE paesi (Zona SMALLINT, Paese TEXT(50), ID INTEGER, bandiera TEXT(9));"
      "INSERT INTO paesi VALUES (3, 'Italia', 12, 'ita')");
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT ID || paese || zona || COALESCE(strID, '-') FROM paesi"), "12Italia3-");
}

TEST_F(ImportingPrimo, TheClipboardIsEmptied) {
  run(shop, "INSERT INTO cliparticoli (titolo) VALUES ('x'); INSERT INTO clipcategorie (ID) VALUES ('cat001')");
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT (SELECT count(*) FROM cliparticoli) + (SELECT count(*) FROM clipcategorie)"), "0");
}

TEST_F(ImportingPrimo, WhatWasKeptBesideTheFormerArticlesGoes) {
  open();
  for (const SideField field : {SideField::Content, SideField::Maker}) {
    ASSERT_TRUE(prepareSideField(session.catalogue, field));
  }
  ASSERT_TRUE(
      session.catalogue.execute("INSERT INTO produttori (nome) VALUES ('Forno'); INSERT INTO sicurezza VALUES ('7', 1);"
                                "INSERT INTO unita VALUES (7, 2500, 'kg')"));
  write(joinPath(shop, priceHistoryFile), "x");
  ASSERT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_EQ(stored("SELECT COUNT(*) FROM unita"), "0");
  EXPECT_EQ(stored("SELECT COUNT(*) FROM sicurezza"), "0");
  EXPECT_EQ(stored("SELECT nome FROM produttori"), "Forno");
  EXPECT_FALSE(fileExists(joinPath(shop, priceHistoryFile)));
}

TEST_F(ImportingPrimo, VariantOneIsAddedWhenItIsMissing) {
  run(source, "DELETE FROM opzioni WHERE ID = 1");
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_EQ(stored("SELECT nome FROM opzioni WHERE ID = 1"), "(nessuna)");
}

TEST_F(ImportingPrimo, AnotherVariantOneStaysAndIsTold) {
  run(source, "UPDATE opzioni SET nome = 'Taglia' WHERE ID = 1");
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_EQ(stored("SELECT nome FROM opzioni WHERE ID = 1"), "Taglia");
  EXPECT_THAT(user.texts(), ElementsAre(StartsWith("Nel negozio di origine la variante numero 1"),
                                        "Importazione terminata correttamente"));
}

TEST_F(ImportingPrimo, VersionsFrom200To299PassAndNoOther) {
  for (const auto& [version, result] :
       std::vector<std::pair<int, int>>{{199, 1}, {200, -1}, {299, -1}, {300, 1}, {1002, 1}}) {
    run(source, "UPDATE generale SET versione = " + std::to_string(version));
    open();
    EXPECT_EQ(import(), result) << version;
    if (result == 1) {
      EXPECT_THAT(user.shown,
                  ElementsAre(said("Impossibile importare: la versione del database di origine non è supportata\n",
                                   Icon::Exclamation)));
    }
    session.catalogue.close();
  }
}

TEST_F(ImportingPrimo, ASourceThatCantBeOpenedIsTold) {
  write(source + "/catalog.mdb", "niente di simile, e abbastanza lungo per una testata di un database");
  open();
  EXPECT_EQ(import(), 1);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_THAT(user.shown[0].text, StartsWith("Impossibile importare a causa del seguente errore: \n"));
  EXPECT_EQ(stored("SELECT titolo FROM articoli"), "Lampada");
}

TEST_F(ImportingPrimo, ASourceThatIsOpenElsewhereIsTold) {
  auto other = Database::open(source + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  open();
  EXPECT_EQ(import(), 1);
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(ImportingPrimo, ASourceWithoutATableChangesNothingAndEndsTheProgram) {
  run(source, "DROP TABLE paesi");
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Failed);
  EXPECT_THAT(user.shown, ElementsAre(said(brokenOff, Icon::Critical)));
  EXPECT_EQ(stored("SELECT titolo FROM articoli"), "Lampada");
  EXPECT_THAT(listFiles(shop + "/work", "*"), ElementsAre("vecchia.gif"));
  EXPECT_FALSE(folderExists(shop + "/work.importa"));
}

TEST_F(ImportingPrimo, AFailureAtAnyStatementLeavesTheCatalogueAsBefore) {
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  bool reached = true;
  for (std::int64_t failing = 1; reached; failing += 23) {
    ASSERT_TRUE(writeBytes(shop + "/catalog.mdb", before));
    open();
    int result = 0;
    {
      test::FailingStore gate(failing);
      result = import();
      reached = gate.hasFailed();
    }
    if (reached && result != -1) {
      ASSERT_EQ(stored("SELECT titolo FROM articoli"), "Lampada") << failing;
      ASSERT_EQ(stored("SELECT titolo FROM generale"), "nostro") << failing;
    }
    session.catalogue.close();
  }
}

TEST_F(ImportingPrimo, ThePicturesAreExchangedAndSubfoldersStay) {
  write(joinPath(shop, "work/mie/foto.jpg"), "f");
  write(joinPath(source, "work/sue/altra.jpg"), "a");
  for (const std::string& folder : {shop, source}) write(joinPath(folder, "code/conto.php"), folder);
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_EQ(readBytes(joinPath(shop, "code/conto.php")).value(), shop) << "account data are the shop's own";
  EXPECT_THAT(listFiles(shop + "/work", "*"), ElementsAre("nuova.gif"));
  EXPECT_THAT(listFolders(shop + "/work"), ElementsAre("mie"));
  EXPECT_FALSE(folderExists(shop + "/work.prima"));
  EXPECT_THAT(user.shown, ElementsAre(said("Importazione terminata correttamente", Icon::Information)));
  EXPECT_TRUE(session.catalogue.isOpen()) << "the session has been restarted";
}

TEST_F(ImportingPrimo, ASourceWithoutPicturesEmptiesOurs) {
  std::filesystem::remove_all(source + "/work");
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_TRUE(listFiles(shop + "/work", "*").empty());
}

TEST_F(ImportingPrimo, PicturesThatCantBeCopiedLeaveEverythingAsItIs) {
  open();
  {
    test::FailingFiles gate(1, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Write});
    EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::NotDone);
  }
  EXPECT_EQ(stored("SELECT titolo FROM articoli"), "Lampada");
  EXPECT_THAT(listFiles(shop + "/work", "*"), ElementsAre("vecchia.gif"));
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(ImportingPrimo, TheSourceIsNotChanged) {
  const std::string before = readBytes(source + "/catalog.mdb").value();
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  session.catalogue.close();
  EXPECT_EQ(readBytes(source + "/catalog.mdb").value(), before);
  EXPECT_TRUE(fileExists(joinPath(source, "work/nuova.gif")));
}

TEST_F(ImportingPrimo, TheCommandMakesABackupAndTellsItsName) {
  open();
  int shown = 0;
  const auto dialog = [&] {
    ++shown;
    EXPECT_TRUE(session.catalogue.isOpen());
    return PrimoOutcome::NotDone;
  };
  EXPECT_EQ(ImportaNegozio(session, env, dialog), PrimoOutcome::NotDone);
  EXPECT_EQ(shown, 1);
  EXPECT_THAT(user.shown,
              ElementsAre(said("E' stato creato un backup del file \"catalog.mdb\" col nome \"catalog.000\"",
                               Icon::Information)));
  ASSERT_EQ(user.progressShown.size(), 2U);
  EXPECT_EQ(user.progressShown[0].caption, "Creazione backup...");
  EXPECT_EQ(user.progressShown[1].caption, "");
}

TEST_F(ImportingPrimo, WithoutABackupTheUserIsAskedAndNoIsTheDefault) {
  write(shop + "/catalog.999", "x");
  open();
  int shown = 0;
  const auto dialog = [&] { return ++shown, PrimoOutcome::Done; };
  EXPECT_EQ(ImportaNegozio(session, env, dialog), PrimoOutcome::NotDone);
  EXPECT_THAT(user.shown,
              ElementsAre(asked("Non è possibile creare un backup del negozio:\nprocedere comunque all'importazione?",
                                Answer::No, Answer::No, Icon::Exclamation)));
  EXPECT_EQ(shown, 0);
  user.answers = {Answer::Yes};
  EXPECT_EQ(ImportaNegozio(session, env, dialog), PrimoOutcome::Done);
  EXPECT_EQ(shown, 1);
}

TEST_F(ImportingPrimo, AFolderWithoutCatalogueIsNoSource) {
  EXPECT_TRUE(holdsSource(env, source));
  EXPECT_FALSE(holdsSource(env, source + "/work"));
  EXPECT_THAT(user.texts(), ElementsAre("La cartella selezionata non contiene un negozio"));
}

class PreviewingPrimo : public ImportingPrimo {
 protected:
  std::string preview() {
    const auto preview = previewPrimo(session.catalogue, source + "/catalog.mdb");
    return preview ? previewText(*preview) : "failed: " + preview.error().what;
  }
};

TEST_F(PreviewingPrimo, TellsTotalsAndWhatIsLeftOutAndWritesNothing) {
  run(source, "ALTER TABLE articoli ADD COLUMN colore TEXT(9); ALTER TABLE generale ADD COLUMN gusto TEXT(9)");
  open();
  const std::string text = preview();
  EXPECT_THAT(text, StartsWith("Versione del negozio di origine: 250\n"
                               "articoli: 1 nuove, 0 modificate, 0 invariate, 1 eliminate; colonne tralasciate, perché "
                               "questo negozio non le ha: colore\n"
                               "categorie: 1 nuove, 0 modificate, 0 invariate, 0 eliminate\n"));
  EXPECT_THAT(text, HasSubstr("; colonne tralasciate, perché questo negozio non le ha: gusto\n"));
  EXPECT_THAT(text, HasSubstr("Impostazioni che restano: URL, cartella"));
  EXPECT_EQ(stored("SELECT titolo FROM articoli"), "Lampada");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(PreviewingPrimo, TellsWhatBecomesOfEachRow) {
  run(source,
      "INSERT INTO articoli (ID, titolo) VALUES (9, 'vaso');"
      "INSERT INTO paesi (ID, paese, zona) VALUES (1, 'Italia', 1), (2, 'Malta', 1)");
  run(shop,
      "DELETE FROM articoli; INSERT INTO articoli (ID, titolo) VALUES (9, 'Vaso'), (10, 'Lume');"
      "INSERT INTO paesi (ID, paese, zona) VALUES (1, 'Italia', 2), (2, 'Malta', 1)");
  open();
  const std::string text = preview();
  EXPECT_THAT(text, HasSubstr("nuova\tarticoli\t7\tSedia\nmodificata\tarticoli\t9\tvaso\n"
                              "eliminata\tarticoli\t10\tLume\nnuova\tcategorie\tcat003\tCasa\n"));
  EXPECT_THAT(text, HasSubstr("modificata\tpaesi\t1\tItalia\ninvariata\tpaesi\t2\tMalta\nmodificata\tpagamento\n"));
  EXPECT_THAT(text, HasSubstr("Impostazioni modificate: titolo"));
}

TEST_F(PreviewingPrimo, AVariantIsChangedWhenOneOfItsOptionsIs) {
  open();
  ASSERT_EQ(import(), -1);
  EXPECT_THAT(preview(), HasSubstr("invariata\topzioni\t2\tColore\n"));
  ASSERT_TRUE(session.catalogue.execute("UPDATE dettagliop SET testo_l2 = 'RED'"));
  EXPECT_THAT(preview(), HasSubstr("modificata\topzioni\t2\tColore\n"));
}

TEST_F(PreviewingPrimo, AfterTheImportNothingIsNewOrChanged) {
  open();
  ASSERT_EQ(import(), -1);
  const auto again = previewPrimo(session.catalogue, source + "/catalog.mdb");
  ASSERT_TRUE(again);
  for (const PrimoTable& table : again->tables) {
    EXPECT_EQ(table.count(PrimoFate::Same), table.rows.size()) << table.name;
  }
  EXPECT_THAT(again->changedSettings, ElementsAre());
}

}  // namespace
}  // namespace kv
