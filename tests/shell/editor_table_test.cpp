// The editors as data, and what leaving a field writes.

#include "shell/workbench_fixture.h"

#include "store/schema/schema.h"

namespace kv::test {
namespace {

std::string_view tableOf(EditedSet set) {
  if (set == EditedSet::Articoli) return "articoli";
  return set == EditedSet::Categorie ? "categorie" : "generale";
}

bool isDerived(const Editor& editor) {
  return editor.column == reverseRateField || editor.column == shopAddressField ||
         editor.column == backOfficeAddressField || editor.beside;
}

TEST(EditorTable, EveryEditorWritesAColumnOfItsTable) {
  const std::vector<TableInfo> tables = catalogueTables();
  for (const Editor& editor : editorTable()) {
    if (isDerived(editor)) continue;
    const auto table = std::ranges::find(tables, tableOf(editor.set), &TableInfo::name);
    ASSERT_NE(table, tables.end());
    for (int listino = 0; listino < listini; ++listino) {
      EXPECT_GE(table->columnIndex(columnOf(editor, listino)), 0) << columnOf(editor, listino);
    }
  }
}

TEST(EditorTable, EveryEditorHasALabelAGroupAndOnlyOneRow) {
  std::set<std::pair<EditedSet, std::string_view>> seen;
  for (const Editor& editor : editorTable()) {
    EXPECT_FALSE(editor.label.empty()) << editor.column;
    EXPECT_FALSE(editor.group.empty()) << editor.column;
    EXPECT_TRUE(seen.insert({editor.set, editor.column}).second) << editor.column;
  }
}

/// Columns of the tables that a dialog edits, the program keeps by itself, or nothing reads.
const std::set<std::string, std::less<>>& elsewhere() {
  static const std::set<std::string, std::less<>> names{
      // keys, positions and the sizes of pictures
      "ID", "catID", "genitore", "hafigli", "livello", "contatore", "ordinamento", "imgX0", "imgY0", "imgX1", "imgY1",
      "imgX2", "imgY2",
      // written by dialogs
      "template", "siteonline", "sitescript", "colonnevetrina", "vetalign", "vetalignstyle", "vetsize", "vetopzioni",
      "singleitem_vet", "p3p", "campi_obbligatori", "personaltags", "estensione", "nodiff", "showsigns",
      // written by the program, or read by no page
      "CGIsearch", "CGIordine", "db_security", "versione", "sendmail", "merchantid", "codincart", "cercacodice",
      "searchusesCGI"};
  return names;
}

TEST(EditorTable, EveryColumnHasItsEditorOrItsReason) {
  for (const EditedSet set : {EditedSet::Generale, EditedSet::Categorie, EditedSet::Articoli}) {
    std::set<std::string, std::less<>> written;
    for (const Editor& editor : editorTable()) {
      if (editor.set != set || isDerived(editor)) continue;
      for (int listino = 0; listino < listini; ++listino) written.insert(columnOf(editor, listino));
    }
    const std::vector<TableInfo> tables = catalogueTables();
    const auto table = std::ranges::find(tables, tableOf(set), &TableInfo::name);
    for (const ColumnInfo& column : table->columns) {
      const std::string bare = column.name.substr(0, column.name.find("_l"));
      const bool language = column.name.size() > bare.size() + 2;
      const std::string& name = language && column.name.find("_l") + 3 == column.name.size() ? bare : column.name;
      EXPECT_TRUE(written.contains(name) || elsewhere().contains(name)) << table->name << '.' << column.name;
    }
  }
}

TEST(EditorTable, EightLongTextsShareOneStrip) {
  EXPECT_EQ(std::ranges::count(editorTable(), longTexts, &Editor::group), 8);
}

class FieldStoreTest : public WorkbenchFixture {
 protected:
  std::string stored(const std::string& column, const std::string& table = "generale") {
    return rows("SELECT " + column + " FROM " + table);
  }
};

TEST_F(FieldStoreTest, AFieldThatSaysWhatTheRowSaysWritesNothing) {
  start();
  article(0);
  leave(EditedSet::Articoli, "titolo", "Alba");
  EXPECT_TRUE(undoName().empty());
}

TEST_F(FieldStoreTest, AnEditIsAStepNamedAfterTheField) {
  start();
  article(0);
  leave(EditedSet::Articoli, "sottotitolo", "Gres");
  EXPECT_EQ(undoName(), "Modifica Sottotitolo");
  undo();
  EXPECT_EQ(stored("sottotitolo", "articoli WHERE ID = 1"), "null\n");
  EXPECT_EQ(redoName(), "Modifica Sottotitolo");
  redo();
  EXPECT_EQ(stored("sottotitolo", "articoli WHERE ID = 1"), "Gres\n");
}

TEST_F(FieldStoreTest, TextsAreCutToTheLengthOfTheirField) {
  start();
  article(0);
  leave(EditedSet::Articoli, "codice", std::string(60, 'x'));
  leave(EditedSet::Articoli, "titolo", std::string(220, 'x'));
  leave(EditedSet::Categorie, "titolo", std::string(120, 'x'));
  leave(EditedSet::Generale, "URL", std::string(60, 'x'));
  EXPECT_EQ(stored("length(codice), length(titolo)", "articoli WHERE ID = 1"), "50|200\n");
  EXPECT_EQ(stored("length(titolo)", "categorie WHERE ID = 'cat001'"), "100\n");
  EXPECT_EQ(stored("length(URL)"), "50\n");
}

TEST_F(FieldStoreTest, ADepartmentTitleReachesTheTree) {
  start();
  leave(EditedSet::Categorie, "titolo", "Orci");
  EXPECT_EQ(view.told.back(), "title cat001=Orci");
}

TEST_F(FieldStoreTest, PricesQuantitiesAndPercentsThatHoldTextBecomeZeroWhenTheRowIsSaved) {
  start();
  article(0);
  UndoHistory history(bench->sets());
  FieldStore fields(bench->sets(), history, ',');
  for (const auto& [column, text] : {std::pair{"prezzo", "1,2,3"}, {"offertaprezzo", ","}, {"scqart0", "x"}}) {
    EXPECT_TRUE(fields.leave(*editorOf(EditedSet::Articoli, column), text).done) << column;
  }
  EXPECT_TRUE(fields.leave(*editorOf(EditedSet::Generale, "sconto"), "x").done);
  EXPECT_EQ(stored("prezzo, offertaprezzo, scqart0", "articoli WHERE ID = 1"), "0|0|0\n");
  EXPECT_EQ(stored("COALESCE(sconto, 0)"), "0.0\n");
}

TEST_F(FieldStoreTest, AnyOtherNumberThatHoldsTextKeepsTheEnginesMessage) {
  start();
  article(0);
  UndoHistory history(bench->sets());
  FieldStore fields(bench->sets(), history, ',');
  const auto outcome = fields.leave(*editorOf(EditedSet::Articoli, "peso"), "1,2,3");
  ASSERT_FALSE(outcome.done);
  EXPECT_EQ(outcome.done.error().kind, ErrorKind::TextInNumber);
  EXPECT_EQ(stored("peso", "articoli WHERE ID = 1"), "null\n");
}

TEST_F(FieldStoreTest, ATextThatIsNoNumberIsMarkedAndTheFormerValueStays) {
  start();
  article(0);
  for (const char* text : {"1,2,3", "-5,", "1e5", ","}) {
    for (const char* column : {"prezzo", "peso"}) {
      const Workbench::LeftField left = bench->leaveField(*editorOf(EditedSet::Articoli, column), text);
      EXPECT_TRUE(left.saved);
      EXPECT_EQ(left.mark, "\"" + std::string(text) + "\" non è un numero: è rimasto il valore precedente.");
    }
  }
  EXPECT_EQ(stored("prezzo, peso", "articoli WHERE ID = 1"), "145000|null\n");
  EXPECT_TRUE(user.shown.empty());
  EXPECT_FALSE(bench->history().canUndo());
}

TEST_F(FieldStoreTest, AQuantityWithDecimalsIsNotRoundedInSilence) {
  start();
  leave(EditedSet::Generale, "qminima", "3");
  const Workbench::LeftField left = bench->leaveField(*editorOf(EditedSet::Generale, "qminima"), "2,5");
  EXPECT_EQ(left.mark, "\"2,5\" non è un numero intero: è rimasto il valore precedente.");
  EXPECT_EQ(stored("qminima"), "3\n");
}

TEST_F(FieldStoreTest, LineEndsAndTabsNeverEnterAFieldOfOneLine) {
  start();
  article(0);
  leave(EditedSet::Articoli, "codice", "\tTR-77\r\n");
  leave(EditedSet::Articoli, "titolo", "Vaso \n blu\tscuro");
  EXPECT_EQ(stored("codice, titolo", "articoli WHERE ID = 1"), "TR-77|Vaso blu scuro\n");
}

TEST_F(FieldStoreTest, ASettingThatIsNoNumberGoesBackToTheLastGoodOne) {
  start();
  leave(EditedSet::Generale, "minimo", "15,50");
  leave(EditedSet::Generale, "minimo", "x");
  EXPECT_EQ(stored("minimo"), "155000\n");
  EXPECT_EQ(shown(EditedSet::Generale, "minimo"), "15,5");
}

TEST_F(FieldStoreTest, APercentAboveOneHundredIsShownAsOneHundred) {
  EXPECT_EQ(changedText(FieldKind::Percent, "101", "10", ','), "100");
  start();
  leave(EditedSet::Categorie, "sconto", "100");
  EXPECT_EQ(stored("sconto", "categorie WHERE ID = 'cat001'"), "100.0\n");
}

TEST_F(FieldStoreTest, AnEmptySideBySideIsASpace) {
  run(shop, "UPDATE categorie SET affiancati = '3'");
  start();
  leave(EditedSet::Categorie, "affiancati", "");
  EXPECT_EQ(stored("'<' || affiancati || '>'", "categorie WHERE ID = 'cat001'"), "< >\n");
}

TEST_F(FieldStoreTest, LinesOfALongTextAreStoredWithCrLf) {
  start();
  leave(EditedSet::Categorie, "descrizione", "una\ndue");
  EXPECT_EQ(scalar("SELECT descrizione FROM categorie WHERE ID = 'cat001'"), "una\r\ndue");
  EXPECT_EQ(shown(EditedSet::Categorie, "descrizione"), "una\ndue");
}

TEST_F(FieldStoreTest, TheTwoRatesFollowOneAnother) {
  start();
  leave(EditedSet::Generale, "cambio", "0,8");
  EXPECT_EQ(shown(EditedSet::Generale, reverseRateField), "1,25");
  leave(EditedSet::Generale, reverseRateField, "4");
  EXPECT_EQ(shown(EditedSet::Generale, "cambio"), "0,25");
  leave(EditedSet::Generale, reverseRateField, "0");
  EXPECT_EQ(shown(EditedSet::Generale, "cambio"), "0,25");
}

TEST_F(FieldStoreTest, TheEuroSignBringsItsNoteAndStays) {
  start();
  leave(EditedSet::Generale, "valuta1", "€");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, std::string(currencySignNote("€")));
  EXPECT_EQ(stored("valuta1"), "€\n");
  leave(EditedSet::Generale, "valuta1", "€ ");
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(FieldStoreTest, TheFullAddressesFollowTheirParts) {
  start();
  leave(EditedSet::Generale, "URL", "www.bottega.example");
  leave(EditedSet::Generale, "cartella", "/negozio/");
  EXPECT_EQ(shown(EditedSet::Generale, shopAddressField), "http://www.bottega.example/negozio/index.php");
  EXPECT_EQ(shown(EditedSet::Generale, backOfficeAddressField), "http://www.bottega.example/index.php");
  leave(EditedSet::Generale, "URL", "");
  EXPECT_EQ(shown(EditedSet::Generale, shopAddressField), "");
}

TEST_F(FieldStoreTest, TheScriptNamesGoBackToTheirDefaults) {
  run(shop, "UPDATE generale SET CGIsearch = 'altro.php', CGIordine = ''");
  start();
  leave(EditedSet::Generale, "email", "a@b.example");
  EXPECT_EQ(stored("CGIsearch"), "altro.php\n");
  leave(EditedSet::Generale, "serverNT", "1");
  EXPECT_EQ(stored("CGIsearch, CGIordine"), "kvsearch.php|kvorder.php\n");
}

TEST_F(FieldStoreTest, TheFtpFolderSuggestsTheWebFolderUntilTheUserHasHisOwn) {
  start();
  leave(EditedSet::Generale, "folderFTP", "/public_html/shop/");
  EXPECT_EQ(stored("cartella"), "shop\n");
  leave(EditedSet::Generale, "folderFTP", "/public_html/negozio");
  EXPECT_EQ(stored("cartella"), "negozio\n");
  undo();
  EXPECT_EQ(stored("folderFTP, cartella"), "/public_html/shop/|shop\n");
  leave(EditedSet::Generale, "cartella", "vendita");
  leave(EditedSet::Generale, "folderFTP", "/www/altro");
  EXPECT_EQ(stored("cartella"), "vendita\n");
  leave(EditedSet::Generale, "folderCGI", "htdocs/cgi");
  EXPECT_EQ(stored("cartellaCGI"), "cgi\n");
}

TEST_F(FieldStoreTest, OnAWindowsServerTheFolderIsTakenAsTyped) {
  start();
  leave(EditedSet::Generale, "serverNT", "1");
  leave(EditedSet::Generale, "folderFTP", "/public_html/shop/");
  EXPECT_EQ(stored("cartella"), "public_html/shop\n");
  EXPECT_FALSE(bench->isEditorEnabled(*editorOf(EditedSet::Generale, "perl")));
}

TEST_F(FieldStoreTest, TheFieldsOfTheSecondCurrencyFollowTheirCheckBox) {
  start();
  for (const std::string_view column : {std::string_view("valuta2"), std::string_view("cambio"), reverseRateField}) {
    EXPECT_FALSE(bench->isEditorEnabled(*editorOf(EditedSet::Generale, column))) << column;
  }
  leave(EditedSet::Generale, "usa_cambio", "1");
  EXPECT_TRUE(bench->isEditorEnabled(*editorOf(EditedSet::Generale, "cambio")));
}

TEST_F(FieldStoreTest, TheLimitsAreExtendedOnlyWhereThereAreAny) {
  start();
  const Editor& reglist = *editorOf(EditedSet::Generale, "reglist");
  EXPECT_FALSE(bench->isEditorEnabled(reglist));
  leave(EditedSet::Generale, "regprices", "1");
  EXPECT_TRUE(bench->isEditorEnabled(reglist));
  leave(EditedSet::Generale, "regprices", "0");
  leave(EditedSet::Generale, "regobbl", "1");
  EXPECT_TRUE(bench->isEditorEnabled(reglist));
}

TEST_F(FieldStoreTest, TheRelatedWordsInUseAreOfferedWithoutEmptyOnes) {
  run(shop,
      "UPDATE articoli SET correlazione = 'mare' WHERE ID IN (1, 2); UPDATE articoli SET correlazione = ' ' "
      "WHERE ID = 3");
  start();
  EXPECT_EQ(bench->choicesOf(*editorOf(EditedSet::Articoli, "correlazione")), std::vector<std::string>{"mare"});
}

TEST_F(FieldStoreTest, TheNotationIsStoredAsItsIndex) {
  start();
  leave(EditedSet::Generale, "notazione", "1");
  EXPECT_EQ(stored("notazione"), "1\n");
  EXPECT_EQ(bench->choicesOf(*editorOf(EditedSet::Generale, "notazione")).size(), 2U);
}

}  // namespace
}  // namespace kv::test
