// The run of an import from the accounting package: messages with their default buttons, backups, companies, failures,
// and one step of undo.
#include "accounting_shop.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class AccountingRun : public AccountingShop {
 protected:
  /// A list of companies whose second one has the source.
  void makeCompanies(const std::string& path) {
    const std::string list = root / "aziende.db";
    ASSERT_TRUE(Database::create(list));
    fill(list,
         "CREATE TABLE Nomi (ID INTEGER, nome TEXT, path TEXT); INSERT INTO Nomi VALUES (4, 'Uno', 'x'),"
         " (9, 'Due', '" +
             path + "')");
    request.path = list;
    request.variant = accountingVariants()[2];
  }
  void chooseCompany(const std::string& ID) {
    request.company = [this, ID](const std::vector<AccountingCompany>& companies) {
      offered = companies;
      return std::optional(ID);
    };
  }
  std::vector<AccountingCompany> offered;
};

TEST_F(AccountingRun, ShowsItsTwoStepsAndSaysWhenItIsOver) {
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  ASSERT_EQ(import(), AccountingEnd::Done);
  EXPECT_EQ(user.shown, (std::vector<Shown>{{"Importazione completata", Icon::Information}}));
  std::vector<std::string> captions;
  for (const ProgressShown& step : user.progressShown) {
    if (captions.empty() || captions.back() != step.caption) captions.push_back(step.caption);
  }
  EXPECT_EQ(captions, (std::vector<std::string>{"Importazione reparti...", "Importazione articoli...", ""}));
}

TEST_F(AccountingRun, KeepsItsOptionsInTheShopFolderByGeneration) {
  importWith("1100100");
  EXPECT_EQ(readText(shop + "/og.ini").value(), "1100100\r\n");
  request.variant = accountingVariants()[4];
  importWith("01001001111");
  EXPECT_EQ(readText(shop + "/og3.ini").value(), "01001001111\r\n");
}

TEST_F(AccountingRun, TellsTheNameOfTheBackupItMakesThroughTheOpenCatalogue) {
  sql("INSERT INTO articoli (codice) VALUES ('prima')");
  importWith("0100110");
  EXPECT_EQ(user.texts()[0], "E' stato creato un backup del file \"catalog.mdb\" col nome \"catalog.000\"");
  auto backup = Database::open(shop + "/catalog.000", OpenMode::ReadOnly);
  ASSERT_TRUE(backup);
  EXPECT_EQ(asText(valueOf(backup->scalar("SELECT codice FROM articoli"))), "prima");
  EXPECT_EQ(asInteger(valueOf(backup->scalar("SELECT COUNT(*) FROM categorie"))), 0);
}

TEST_F(AccountingRun, WithoutABackupItAsksInTheWordsOfTheVariantWithNoAsDefault) {
  ASSERT_TRUE(writeBytes(shop + "/catalog.999", ""));
  request.line = "0100110";
  for (const AccountingVariant& variant : accountingVariants()) {
    request.variant = variant;
    EXPECT_EQ(import(), AccountingEnd::NotDone);
    const std::string first =
        variant.number == 2 ? "Non è possibile creare un backup:" : "Non è possibile creare un backup del negozio:";
    EXPECT_EQ(user.shown.back(), (Shown{first + "\nprocedere comunque all'importazione?", Icon::Exclamation,
                                        Buttons::YesNo, Answer::No, Answer::No}));
  }
  EXPECT_EQ(allRows(), "");
  request.variant = accountingVariants()[0];
  user.answers = {Answer::Yes};
  EXPECT_EQ(import(), AccountingEnd::Done);
}

TEST_F(AccountingRun, SaysThatAVariantWithoutPathWasNotFound) {
  request.path.clear();
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Orsa Gestionale non è stato trovato"}));
}

TEST_F(AccountingRun, ReadsThePathOfItsVariantFromTheSettings) {
  request.path.clear();
  ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[0], source));
  EXPECT_EQ(import(), AccountingEnd::Done);
}

TEST_F(AccountingRun, ADatabaseThatIsMissingIsNamed) {
  request.path = root / "manca.mdb";
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts()[0], "Il database \"" + request.path + "\" non può essere aperto");
}

TEST_F(AccountingRun, APriceColumnThatTheSourceLacksChangesNothing) {
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  for (const char* line : {"0500100", "0150100"}) {
    request.line = line;
    EXPECT_EQ(import(), AccountingEnd::NotDone);
    EXPECT_EQ(user.texts().back(), "Non è stato possibile importare i dati");
    EXPECT_EQ(previewText(), "Non è stato possibile importare i dati (manca Vendita5)");
  }
  fill("DROP TABLE Articoli");
  EXPECT_EQ(previewText(), "Non è stato possibile importare i dati (manca Articoli)");
  EXPECT_EQ(allRows(), "");
}

TEST_F(AccountingRun, TheCompanyThatIsChosenGivesTheDatabase) {
  makeCompanies(source);
  chooseCompany("9");
  EXPECT_EQ(import(), AccountingEnd::Done);
  ASSERT_EQ(offered.size(), 2U);
  EXPECT_EQ(offered[0].nome + offered[1].nome, "UnoDue");
  EXPECT_EQ(rows("SELECT ID FROM categorie"), "dgf7\n");
}

TEST_F(AccountingRun, ACompanyThatIsNotInTheListImportsNothing) {
  makeCompanies(source);
  chooseCompany("5");
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Non è stato possibile importare i dati"}));
}

TEST_F(AccountingRun, LeavingTheChoiceOfCompanyEndsWithoutAWord) {
  makeCompanies(source);
  request.company = [](const std::vector<AccountingCompany>&) { return std::nullopt; };
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(AccountingRun, APathOfAnotherMachineIsLookedForBelowTheFolderOfTheList) {
  makeCompanies("C:\\Dati\\ORSA.DB");
  ASSERT_TRUE(createFolders(root / "dati"));
  ASSERT_TRUE(renameFile(source, root / "dati/orsa.db"));
  chooseCompany("9");
  EXPECT_EQ(import(), AccountingEnd::Done);
  EXPECT_EQ(companyPath("D:\\altrove\\x.db", request.path), "D:\\altrove\\x.db");
}

TEST_F(AccountingRun, ACancelUndoesWhatItHasWritten) {
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  user.cancelAtYield = 2;
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(allRows(), "");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(AccountingRun, AFailureAtAnyStatementLeavesTheCatalogueAsBeforeOrSaysThatItIsPartial) {
  const std::string own = "INSERT INTO articoli (ID, catID, codice, titolo) VALUES (5, 'altro', 'A', 'Mio')";
  const std::string reset = "DELETE FROM articoli; DELETE FROM categorie;" + own;
  const auto imported = [this] { return rows("SELECT catID, codice, titolo, prezzo FROM articoli ORDER BY ID"); };
  sql(own);
  const std::string before = allRows();
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  article("2, 7, 'B', 'Tazza', 22, 1, 1, 0");
  ASSERT_EQ(import(), AccountingEnd::Done);
  const std::string complete = imported();
  int undone = 0;
  bool reached = true;
  for (std::int64_t failing = 1; reached; ++failing) {
    sql(reset);
    AccountingEnd end = AccountingEnd::Done;
    {
      const FailingStore gate(failing);
      end = import();
      reached = gate.hasFailed();
    }
    if (end == AccountingEnd::NotDone) {
      ++undone;
      ASSERT_EQ(allRows(), before) << failing;
    }
    if (end == AccountingEnd::Done) {
      ASSERT_EQ(imported(), complete) << failing;
    }
  }
  EXPECT_GT(undone, 10);
}

using AccountingUndo = RecordedAccounting;

TEST_F(AccountingUndo, AnImportUndoneGivesEqualRows) {
  sql("INSERT INTO articoli (catID, codice, titolo) VALUES ('altro', 'A', 'Mio')");
  history.clear();
  const std::string before = allRows();
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  article("2, 7, 'B', 'Tazza', 22, 1, 1, 0");
  ASSERT_EQ(recorded(), AccountingEnd::Done);
  const std::string after = allRows();
  EXPECT_EQ(history.undoName(), "Importa");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(allRows(), before);
  EXPECT_FALSE(history.canUndo());
  ASSERT_TRUE(history.redo());
  EXPECT_EQ(allRows(), after);
}

TEST_F(AccountingUndo, RowsBeforeAnErrorStayAsOneStep) {
  sql("CREATE TRIGGER guasto BEFORE INSERT ON articoli WHEN NEW.codice = 'C'"
      " BEGIN SELECT RAISE(FAIL, 'guasto'); END");
  history.clear();
  for (const char* code : {"A", "B", "C", "D"}) article("1, 7, '" + std::string(code) + "', 'Vaso', 22, 1, 1, 0");
  EXPECT_EQ(recorded(), AccountingEnd::Partial);
  EXPECT_EQ(user.shown.back(), (Shown{"Non è stato possibile importare i dati", Icon::Critical}));
  EXPECT_EQ(rows("SELECT codice FROM articoli ORDER BY ID"), "A\nB\n");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(allRows(), "");
}

}  // namespace
}  // namespace kv::test
