// The sheet of articles without its window: columns, rows, what writing cells changes, find and replace.

#include "import/tables/table_columns.h"
#include "shell/sheet/price_step.h"
#include "shell/sheet/text_replacement.h"
#include "shell/sheet_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class TheSheet : public SheetFixture {};

TEST_F(TheSheet, HasAColumnForEachLanguageAndPriceList) {
  EXPECT_EQ(columns[column("titolo_l2")].heading, "Titolo (inglese)");
  EXPECT_EQ(columns[column("titolo")].heading, "Titolo");
  EXPECT_EQ(columns[column("prezzo9")].heading, "Prezzo listino 9");
  EXPECT_EQ(columns[column("iva3")].heading, "Con IVA listino 3");
  EXPECT_EQ(std::ranges::count(columns, "titolo_l3", &SheetColumn::name), 0);
  EXPECT_EQ(columns[column("opzione1")].editor, nullptr);
}

TEST_F(TheSheet, CallsEachColumnAsAnExportOfArticlesDoes) {
  const auto exported = sheetTable(session.catalogue, session.languageCount, "articoli");
  ASSERT_TRUE(exported);
  for (const SheetColumn& each : columns) {
    const auto index = exported->columnIndex(each.name);
    if (each.kind == SheetKind::Vat) continue;
    ASSERT_TRUE(index) << each.name;
    EXPECT_EQ(each.heading, exported->columns[*index].italian) << each.name;
  }
}

TEST_F(TheSheet, RemembersWhichColumnsShow) {
  const std::vector<std::size_t> chosen{column("prezzo2"), column("codice")};
  EXPECT_EQ(storedChoice(columns, chosen), "prezzo2 codice");
  EXPECT_EQ(chosenColumns(columns, "prezzo2 gone codice"), chosen);
  EXPECT_EQ(columns[chosenColumns(columns, "gone").front()].name, "codice");
  EXPECT_GT(chosenColumns(columns, "").size(), 5U);
}

TEST_F(TheSheet, ShowsAllArticlesInTheOrderOfTheShop) {
  ASSERT_TRUE(
      session.catalogue.execute("INSERT INTO articoli (catID, ordinamento, codice) VALUES ('cat002', 5, 'E1')"));
  EXPECT_EQ(shownCodes({}), "A1 B1 C1 E1 D1 ");
  EXPECT_EQ(shownCodes({.department = "cat001"}), "A1 B1 C1 E1 ");
  EXPECT_EQ(shownCodes({.department = "cat001", .subDepartments = false}), "A1 B1 C1 ");
}

TEST_F(TheSheet, FindsCodesAndTitlesOfAnyLanguage) {
  EXPECT_EQ(shownCodes({.text = "FROST"}), "B1 ");
  EXPECT_EQ(shownCodes({.text = " d1 "}), "D1 ");
  EXPECT_EQ(shownCodes({.text = "nowhere"}), "");
}

TEST_F(TheSheet, ShowsWhatStillNeedsWork) {
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE articoli SET titolo_l2 = ' ' WHERE codice = 'A1';"
                                "UPDATE articoli SET prezzo = NULL, inelenco = 1 WHERE codice = 'B1';"
                                "UPDATE articoli SET prezzo = 0, immagine1 = 'a.jpg' WHERE codice = 'C1'"));
  EXPECT_EQ(shownCodes({.untranslated = true}), "A1 ");
  EXPECT_EQ(shownCodes({.zeroPrice = true}), "B1 C1 ");
  EXPECT_EQ(shownCodes({.withoutPicture = true}), "A1 B1 D1 ");
  EXPECT_EQ(shownCodes({.flag = "inelenco"}), "B1 ");
  EXPECT_EQ(shownCodes({.flag = "inelenco", .withoutPicture = true, .zeroPrice = true}), "B1 ");
}

TEST_F(TheSheet, SortsByAnyColumn) {
  EXPECT_EQ(shownCodes({}, {column("prezzo"), false}), "D1 C1 A1 B1 ");
  EXPECT_EQ(shownCodes({}, {column("prezzo"), true}), "B1 A1 C1 D1 ");
  EXPECT_EQ(shownCodes({}, {column("titolo_l2"), false}), "A1 D1 B1 C1 ");
  EXPECT_EQ(shownCodes({}, {column("reparto"), false}), "D1 A1 B1 C1 ");
}

TEST_F(TheSheet, ADepartmentWithoutParentIsAtTheTop) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE categorie SET genitore = NULL WHERE ID = 'cat001'"));
  EXPECT_EQ(shownCodes({}), "A1 B1 C1 D1 ");
}

TEST_F(TheSheet, ShowsPricesWithTheVatOfTheDepartmentAndNamesOfVariants) {
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE categorie SET iva = 22 WHERE ID = 'cat001';"
                                "UPDATE articoli SET opzione1 = 2 WHERE codice = 'A1'"));
  SheetRows sheet(session, columns, ',');
  ASSERT_TRUE(sheet.refresh({}, {}));
  const auto& cells = sheet.cells(0);
  EXPECT_EQ(cells[column("prezzo")], "14,5");
  EXPECT_EQ(cells[column("iva0")], "17,69");
  EXPECT_EQ(cells[column("opzione1")], "Colore");
  EXPECT_EQ(cells[column("reparto")], "Vasi");
}

TEST_F(TheSheet, WritesWhatTheEditorsWouldWrite) {
  go("cat001");
  const std::vector<std::pair<std::string, std::string>> texts{
      {"codice", "X-7"},         {"titolo", "Un titolo  nuovo"}, {"prezzo", "12,345"}, {"prezzo", "0"},
      {"offertaprezzo", "9,99"}, {"offertaprezzo", ""},          {"peso", "1,5"},      {"scqperc0", "120"},
      {"scqart0", "12"},         {"descrizione", "uno\ndue"},    {"link", ""},         {"offerta", "1"},
      {"prezzo", "99999999999"}};
  for (const auto& [name, text] : texts) {
    SCOPED_TRACE(name + " = " + text);
    const std::string before = articles();
    article(0);
    leave(EditedSet::Articoli, name,
          std::string(changedText(editorOf(EditedSet::Articoli, name)->kind, text, "", ',')));
    const std::string typed = articles();
    if (typed != before) undo();
    ASSERT_EQ(articles(), before);
    write({cell(1, name, text)});
    EXPECT_EQ(articles(), typed);
  }
}

TEST_F(TheSheet, WritesManyCellsAsOneStep) {
  const std::string before = articles();
  const SheetOutcome outcome =
      write({cell(1, "titolo", "Uno"), cell(2, "titolo", "Due"), cell(1, "prezzo", "7")}, "Incolla nel foglio");
  EXPECT_EQ(outcome.changed, 3U);
  EXPECT_EQ(undoName(), "Incolla nel foglio");
  const std::string after = articles();
  undo();
  EXPECT_EQ(articles(), before);
  redo();
  EXPECT_EQ(articles(), after);
}

TEST_F(TheSheet, KeepsWhatWasRefusedAndWritesTheRest) {
  const SheetOutcome outcome =
      write({cell(1, "prezzo", "tanto"), cell(1, "novita", "forse"), cell(2, "prezzo", "1.250"),
             cell(3, "reparto", "x"), cell(4, "scqart0", "3"), cell(99, "titolo", "gone")});
  EXPECT_EQ(outcome.changed, 2U);
  ASSERT_EQ(outcome.refused.size(), 3U);
  EXPECT_EQ(outcome.refused[0].why, "\"tanto\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(outcome.refused[1].why, "\"forse\" non è né sì né no: è rimasto il valore precedente.");
  ASSERT_EQ(outcome.noted.size(), 1U) << "it could be a thousand or one and a quarter";
  EXPECT_EQ(rows("SELECT prezzo FROM articoli WHERE ID < 3"), "145000\n12500000\n");
}

TEST_F(TheSheet, MakesNoStepOfWhatIsThereAlready) {
  const std::string name = undoName();
  EXPECT_EQ(write({cell(1, "titolo", "Alba"), cell(1, "prezzo", "14,50")}).changed, 0U);
  EXPECT_EQ(undoName(), name);
}

TEST_F(TheSheet, StoresAVariantByItsNameAsItsDialogDoes) {
  ASSERT_TRUE(session.catalogue.execute("INSERT INTO opzioni (ID, nome) VALUES (7, 'Forma'), (8, 'Forma'), (9, '')"));
  const std::string before = articles();
  const SheetOutcome outcome =
      write({cell(1, "opzione1", "colore"), cell(2, "opzione4_3", "Forma [8]"), cell(3, "opzione1", "Forma"),
             cell(4, "opzione2", "Sapore"), cell(3, "opzione2", "(nessuna)"), cell(4, "opzione1", "")},
            "Incolla nel foglio");
  EXPECT_EQ(outcome.changed, 3U);
  ASSERT_EQ(outcome.refused.size(), 2U);
  EXPECT_EQ(outcome.refused[0].why, "C'è più volte la variante \"Forma\": è rimasto il valore precedente.");
  EXPECT_EQ(outcome.refused[1].why, "Non c'è la variante \"Sapore\": è rimasto il valore precedente.");
  EXPECT_EQ(rows("SELECT opzione1, opzione4_3, opzione2 FROM articoli ORDER BY ID"),
            "2|null|null\nnull|8|null\nnull|null|1\nnull|null|null\n");
  undo();
  EXPECT_EQ(articles(), before);
}

TEST_F(TheSheet, TakesAnEmptyVariantForTheOneThatMeansNone) {
  write({cell(1, "opzione1", "Colore")});
  EXPECT_EQ(write({cell(1, "opzione1", " ")}).changed, 1U);
  EXPECT_EQ(rows("SELECT opzione1 FROM articoli WHERE ID = 1"), "1\n");
  EXPECT_EQ(write({cell(1, "opzione1", ""), cell(1, "opzione1", "(nessuna)")}).changed, 0U);
}

TEST_F(TheSheet, MovesArticlesToAnotherDepartmentAsTheTreeDoes) {
  go("cat001");
  article(0);
  const std::string before = articles();
  bench->SpostaInReparto({3, 1}, "cat003");
  const std::string dragged = articles();
  ASSERT_NE(dragged, before);
  undo();
  ASSERT_EQ(articles(), before);
  EXPECT_EQ(write({cell(3, "reparto", "piatti"), cell(1, "reparto", "Piatti")}, "Incolla nel foglio").changed, 2U);
  EXPECT_EQ(articles(), dragged) << "at its end, in the order of the shop";
  EXPECT_EQ(undoName(), "Incolla nel foglio");
  undo();
  EXPECT_EQ(articles(), before);
  EXPECT_EQ(bench->sets().article(), 1);
}

TEST_F(TheSheet, KnowsDepartmentsByTheirPathsAlone) {
  ASSERT_TRUE(
      session.catalogue.execute("INSERT INTO categorie (contatore, ID, genitore, ordinamento, livello, titolo)"
                                " VALUES (4, 'cat004', 'cat001', 500, 2, 'Piccoli')"));
  SheetRows sheet(session, columns, ',');
  ASSERT_TRUE(sheet.refresh({}, {}));
  EXPECT_THAT(sheet.choices(columns[column("reparto")]),
              ElementsAre("Vasi", "Vasi > Piccoli [cat002]", "Vasi > Piccoli [cat004]", "Piatti"));
  EXPECT_THAT(sheet.choices(columns[column("opzione1")]), ElementsAre("(nessuna)", "Colore"));
  EXPECT_TRUE(sheet.choices(columns[column("titolo")]).empty());
  const SheetOutcome outcome =
      write({cell(1, "reparto", "Vasi > Piccoli"), cell(2, "reparto", "Tazze"), cell(3, "reparto", ""),
             cell(4, "reparto", "Vasi > Piccoli [cat004]"), cell(4, "titolo", "Duna alta")});
  EXPECT_EQ(outcome.changed, 2U);
  ASSERT_EQ(outcome.refused.size(), 3U);
  EXPECT_EQ(outcome.refused[0].why, "C'è più volte il reparto \"Vasi > Piccoli\": è rimasto il valore precedente.");
  EXPECT_EQ(outcome.refused[1].why, "Non c'è il reparto \"Tazze\": è rimasto il valore precedente.");
  EXPECT_EQ(outcome.refused[2].why, "Non c'è il reparto \"\": è rimasto il valore precedente.");
  EXPECT_EQ(rows("SELECT catID, ordinamento, titolo FROM articoli WHERE ID = 4"), "cat004|1|Duna alta\n");
  EXPECT_EQ(write({cell(4, "reparto", "CAT004")}).changed, 0U) << "an ID in any case";
}

TEST(ABlockOfCells, ComesBackAsItWasCopied) {
  const std::vector<std::vector<std::string>> rows{{"a", "b\tc", ""}, {"due\nrighe", "\"citato\"", "5\" pollici"}};
  EXPECT_EQ(pastedBlock(copiedBlock(rows)), rows);
  EXPECT_THAT(pastedBlock("1\t2\r\n3\t4\r\n"), ElementsAre(ElementsAre("1", "2"), ElementsAre("3", "4")));
  EXPECT_THAT(pastedBlock("a"), ElementsAre(ElementsAre("a")));
  // A spreadsheet puts quotes around what has a tab or a line end, and writes all else as it is.
  EXPECT_THAT(pastedBlock("\"Alba\"\t\"Alba\" blu\n\"due\nrighe\"\t\"\"\n"),
              ElementsAre(ElementsAre("\"Alba\"", "\"Alba\" blu"), ElementsAre("due\nrighe", "")));
  EXPECT_THAT(pastedBlock("\"A\tb\nc\td"), ElementsAre(ElementsAre("\"A", "b"), ElementsAre("c", "d")))
      << "a quote without an end takes no other cell";
  EXPECT_TRUE(pastedBlock("").empty());
  EXPECT_THAT(pastedBlock("\t\n\n"), ElementsAre(ElementsAre("", ""), ElementsAre("")));
}

std::string stepped(std::string_view text, Money price, bool whole = false) {
  const auto step = readPriceStep(text, whole, ',');
  if (!step) return "no step";
  const auto after = steppedPrice(price, *step);
  return after ? asText(Value(*after)) : "too large";
}

TEST(AStepOfPrices, IsAPercentageAFactorOrAnAmount) {
  const Money ten = Money::ofTenThousandths(100000);
  EXPECT_EQ(stepped("+10 %", ten), "11");
  EXPECT_EQ(stepped("-2,5%", ten), "9.75");
  EXPECT_EQ(stepped("x1,1", ten), "11");
  EXPECT_EQ(stepped("*0.5", ten), "5");
  EXPECT_EQ(stepped("-5", ten), "5");
  EXPECT_EQ(stepped("+0,005", ten), "10") << "half to even";
  EXPECT_EQ(stepped("-25", ten), "0");
  EXPECT_EQ(stepped("+0,6", ten, true), "11");
  EXPECT_EQ(stepped("+1.250", ten), "1260") << "as in a cell";
  EXPECT_EQ(stepped("+ 1.250,50 €", ten), "1260.5");
  EXPECT_EQ(stepped("-0.250", ten), "9.75");
  EXPECT_EQ(stepped("x1.125", ten), "11.25");
  EXPECT_EQ(stepped("x1000000000", Money::ofTenThousandths(1'000'000'000'000'000)), "too large");
}

TEST(AStepOfPrices, IsNothingElse) {
  for (const char* text : {"", "10", "10%%", "+", "%", "x", "x-1", "+200 %", "-101%", "+-5", "+1e400", "uno"}) {
    EXPECT_FALSE(readPriceStep(text, false, ',')) << text;
  }
}

class FindAndReplace : public TheSheet {
 protected:
  std::vector<CellChange> hits(SearchWords words, std::string replacement, std::vector<std::string_view> names) {
    ReplaceRequest request{std::move(words), std::move(replacement), {}, {4, 3, 2, 1}};
    for (const auto name : names) request.columns.push_back(column(name));
    auto found = findHits(session, columns, request, ',');
    EXPECT_TRUE(found) << found.error().what;
    return found ? std::move(*found) : std::vector<CellChange>();
  }
};

TEST_F(FindAndReplace, ShowsWhatWouldChangeAndWritesJustThat) {
  const std::string before = articles();
  const auto found = hits({"d"}, "T", {"titolo", "titolo_l2"});
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].article, 4) << "in the order of the rows shown";
  EXPECT_EQ(found[0].after, "Tuna");
  EXPECT_EQ(articles(), before);
  write(cellsOf(found), "Sostituisci");
  EXPECT_EQ(rows("SELECT titolo, titolo_l2 FROM articoli ORDER BY ID"),
            "Alba|Tawn\nBrina|Frost\nCielo|Sky\nTuna|Tune\n");
  undo();
  EXPECT_EQ(articles(), before);
}

TEST_F(FindAndReplace, KeepsCharactersThatOtherProgramsHaveStored) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET descrizione = '[x] uno' WHERE ID = 1"));
  write(cellsOf(hits({"uno"}, "due", {"descrizione"})));
  EXPECT_EQ(rows("SELECT descrizione FROM articoli WHERE ID = 1"), "[x] due\n");
}

TEST_F(FindAndReplace, RefusesWhatWouldBeCut) {
  const auto found = hits({"A1"}, std::string(60, 'x'), {"codice"});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].why, "Il testo sarebbe troppo lungo per questa colonna.");
  EXPECT_TRUE(cellsOf(found).empty());
}

TEST_F(FindAndReplace, PassesOverWhatStaysAsItIs) { EXPECT_TRUE(hits({"Alba"}, "Alba", {"titolo"}).empty()); }

}  // namespace
}  // namespace kv::test
