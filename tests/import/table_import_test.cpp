// Sheets of a merchant: what a plan says of each row, what is written of it, and what never is.
#include "import/tables/cell_reading.h"
#include "import/tables/table_guide.h"
#include "support/failing_store.h"
#include "table_shop.h"

namespace kv::test {
namespace {

class TableImport : public TableShop {};

TEST_F(TableImport, TellsNewChangedSameAndRefusedRowsWithLineAndReason) {
  EXPECT_EQ(shownPlan(plan("Codice;Titolo;Prezzo;Reparto\r\n"
                           "T-1;Tazza;12,5;Ceramiche > Tazze\r\n"
                           "t-2;Tazza grande;2,00;ceramiche>TAZZE\r\n"
                           "\r\n"
                           "V-1;Calice;0;Vetri\r\n"
                           "N-1;Nuovo;\"1.234,50\";Vetri\r\n"
                           "N-2;Nuovo;dodici;Vetri\r\n"
                           "N-3;Nuovo;1;Legni\r\n"
                           "N-1;Doppio;1;Vetri\r\n"
                           ";Senza;1;Vetri\r\n")),
            "2 invariato\n"
            "3 modificato [Codice T-2>t-2] [Prezzo 1,50>2,00]\n"
            "5 modificato [Titolo Bicchiere>Calice]\n"
            "6 nuovo [Codice >N-1] [Titolo >Nuovo] [Prezzo >1234,50] [Reparto >Vetri]\n"
            "7 tralasciato: Prezzo: \"dodici\" non è un numero\n"
            "8 tralasciato: Il reparto \"Legni\" non esiste\n"
            "9 tralasciato: ripete la riga 6\n"
            "10 tralasciato: manca Codice\n");
}

TEST_F(TableImport, WritesTheGoodRowsAlthoughOthersAreRefused) {
  ASSERT_EQ(importSheet("codice,title,price,prezzo1,reparto,Variant 1,offerta\n"
                        "T-1,Tazza blu,13.25,11,Ceramiche > Tazze,colore,x\n"
                        "N-1,Nuovo,1,2,Vetri,,no\n"
                        "N-2,Rotto,1,2,Vetri,Forma,no\n"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT catID, codice, titolo, prezzo, prezzo1, opzione1, offerta, ordinamento FROM articoli"),
            "cat002|T-1|Tazza blu|13.25|11|102|1|1\n"
            "cat002|T-2|Tazza grande|1.5|(null)|(null)|(null)|2\n"
            "cat003|V-1|Bicchiere|0|(null)|(null)|(null)|1\n"
            "cat003|N-1|Nuovo|1|2|(null)|0|2\n");
}

TEST_F(TableImport, IsOneStepThatIsUndoneToEqualRows) {
  ASSERT_TRUE(sets.bind());
  history.begin();
  const std::string before = allTables();
  ASSERT_TRUE(history.record("Importa", [&]() -> Result<> {
    EXPECT_EQ(importSheet("codice;titolo;reparto\nT-1;Altra;Vetri\nN-1;Nuovo;Vetri\n"), TableEnd::Done);
    return {};
  }));
  EXPECT_NE(allTables(), before);
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(allTables(), before);
  EXPECT_FALSE(history.canUndo());
}

TEST_F(TableImport, OnlyChangesOrOnlyAddsWhenItIsTold) {
  const std::string sheet = "codice;titolo;reparto\nT-1;Altra;Vetri\nN-1;Nuovo;Vetri\n";
  table.mode = TableMode::OnlyChange;
  EXPECT_EQ(plan(sheet).rows[1].reason, "non è nel catalogo");
  table.mode = TableMode::OnlyAdd;
  const TablePlan adding = plan(sheet);
  EXPECT_EQ(adding.rows[0].reason, "già presente");
  EXPECT_EQ(adding.rows[1].fate, RowFate::New);
}

TEST_F(TableImport, TakesWhatTheSheetNoLongerListsOutOfTheCatalogue) {
  table.unlistedOut = true;
  EXPECT_EQ(plan("codice;prezzo\nT-1;no\nT-2;1,5\n").sums().unlisted, 1U);
  ASSERT_EQ(importSheet("codice;prezzo\nT-1;no\nT-2;1,5\n"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT codice FROM articoli WHERE fuoricatalogo <> 0"), "V-1\n");
}

TEST_F(TableImport, LeavesArticlesWithoutACodeWhereTheyAreForNoSheetCanListThem) {
  sql("INSERT INTO articoli (ID, catID, codice) VALUES (9, 'cat003', '')");
  table.unlistedOut = true;
  ASSERT_EQ(importSheet("codice;prezzo\nT-1;1\nT-2;1,5\n"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT codice FROM articoli WHERE fuoricatalogo <> 0"), "V-1\n");
}

TEST_F(TableImport, LeavesOutARowThatIsTickedOff) {
  TablePlan planned = plan("codice;titolo\nT-1;Uno\nT-2;Due\n");
  planned.rows[0].isChosen = false;
  EXPECT_EQ(planned.sums().changed, 1U);
  ASSERT_EQ(importPlannedTable(session, env, planned, opened.sheet, table), TableEnd::Done);
  EXPECT_EQ(rows("SELECT titolo FROM articoli WHERE ID < 3"), "Tazza\nDue\n");
}

TEST_F(TableImport, FindsArticlesByIDOrByCodeAndDepartment) {
  EXPECT_EQ(shownPlan(plan("ID;codice\n1;T-9\n77;X\n;Y\n")),
            "2 modificato [Codice T-1>T-9]\n3 tralasciato: nel catalogo non c'è ID 77\n"
            "4 tralasciato: manca Reparto\n");
  sql("INSERT INTO articoli (ID, catID, codice) VALUES (9, 'cat003', 'T-1')");
  EXPECT_EQ(plan("codice;titolo\nT-1;x\n").rows[0].reason, "nel catalogo c'è più volte");
  table.key = "codice-reparto";
  EXPECT_EQ(plan("codice;reparto;titolo\nT-1;Vetri;x\n").rows[0].key, 9);
}

TEST_F(TableImport, WithoutAKeySaysWhichColumnsItNeeds) {
  ASSERT_TRUE(writeBytes(root / "foglio.csv", "titolo;prezzo\nx;1\n"));
  const auto read = openTableSheet(session, settings, root / "foglio.csv", "articoli");
  ASSERT_TRUE(read);
  table.mapping = read->mapping;
  const auto planned = planTable(session.catalogue, read->table, read->sheet, table);
  ASSERT_FALSE(planned);
  EXPECT_EQ(planned.error().what,
            "Nessuna colonna del foglio dice quali sono gli articoli: serve Codice, ID, Codice e reparto");
}

TEST_F(TableImport, MovesAnArticleToTheEndOfItsNewDepartment) {
  ASSERT_EQ(importSheet("codice;reparto\nT-1;Vetri\n"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT catID, ordinamento FROM articoli WHERE ID = 1"), "cat003|2\n");
}

TEST_F(TableImport, RefusesWhatAColumnCannotHold) {
  const std::string wide(51, 'x');
  EXPECT_EQ(plan("codice;titolo\n" + wide + ";x\n").rows[0].reason, "Codice: più di 50 caratteri");
  const auto reasonOf = [&](const std::string& column, const std::string& cell) {
    return plan("codice;" + column + "\nT-1;" + cell + "\n").rows[0].reason;
  };
  EXPECT_EQ(reasonOf("prezzo", "-1"), "Prezzo: -1 è negativo");
  EXPECT_EQ(reasonOf("titolo", "#N/D"), "Titolo: \"#N/D\" è l'errore di una formula");
  EXPECT_EQ(reasonOf("descrizione", "Err:502"), "Descrizione: \"Err:502\" è l'errore di una formula");
  EXPECT_EQ(reasonOf("titolo", "#1 in Italia"), "");
  EXPECT_EQ(reasonOf("scqart0", "1,5"), "Da pezzi (1): \"1,5\" non è un numero intero");
  EXPECT_EQ(reasonOf("scqperc0", "101"), "Sconto (1): 101 è più di 100");
  for (const char* word : {"VRAI", "FAUX", "wahr", "Falsch", "true", "sì", "no", ""}) {
    EXPECT_EQ(reasonOf("offerta", word), "") << word;
  }
  EXPECT_EQ(reasonOf("offerta", "forse"), "In offerta: \"forse\" non è né sì né no");
  EXPECT_EQ(reasonOf("reparto", ""), "manca Reparto");
  EXPECT_EQ(reasonOf("immagine0", "niente.jpg"), "l'immagine \"niente.jpg\" non si trova");
  EXPECT_EQ(reasonOf("prezzo", "999999999999999999"), "Prezzo: \"999999999999999999\" non è un numero");
}

TEST_F(TableImport, ReadsAnExportOfTheFilteredRowsAndChosenColumnsAlone) {
  const auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  TableExport what;
  what.columns = {"titolo", "codice"};
  what.only = {3, 1};
  what.isFiltered = true;
  for (const char* name : {"filtro.csv", "filtro.xlsx"}) {
    EXPECT_EQ(exportTable(session.catalogue, *columns, root / name, what), 2U);
    const auto sheet = readSheetFile(root / name, {});
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->headers(), (std::vector<std::string>{"Titolo", "Codice"}));
    EXPECT_EQ(sheet->cells.rows(), 3U);
    EXPECT_EQ(planFile(root / name, "articoli").sums().same, 2U);
  }
}

TEST_F(TableImport, ATextThatNoCellOfASheetHoldsGoesToATextFile) {
  sql("UPDATE articoli SET descrizione = replace(hex(zeroblob(16384)), '0', 'x') WHERE ID = 1");
  const auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  const auto refused = exportTable(session.catalogue, *columns, root / "lungo.xlsx", {});
  ASSERT_FALSE(refused);
  EXPECT_EQ(
      sheetWritingFailureText(refused.error(), root / "lungo.xlsx"),
      "Un file XLSX ha al più 1.048.576 righe, e 32.767 caratteri in una cella: qui c'è di più. Scegliere un file "
      "CSV");
  EXPECT_FALSE(fileExists(root / "lungo.xlsx"));
  ASSERT_TRUE(exportTable(session.catalogue, *columns, root / "lungo.csv", {}));
  EXPECT_EQ(planFile(root / "lungo.csv", "articoli").sums().same, 3U);
}

TEST_F(TableImport, ShowsTheBeginningOfWhatAQuoteWithoutAnEndMakesOneCellOf) {
  std::string sheet = "codice;titolo\n\"";
  for (int i = 0; i < 5000; ++i) sheet += "T-1;Tazza\n";
  const TablePlan planned = plan(sheet);
  ASSERT_EQ(planned.rows.size(), 1U);
  EXPECT_EQ(rowLabel(planned, opened.sheet, planned.rows[0]).size(), 83U);
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = root / "foglio.csv";
  ASSERT_EQ(guide.read(), "");
  EXPECT_EQ(guide.firstRows(8)[1][0].size(), 203U);
  EXPECT_EQ(guide.example(0).size(), 203U);
}

TEST_F(TableImport, RefusesNumbersThatAreNone) {
  const auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  const CsvReading signs;
  const CatalogueNames names;
  const CellReader reader(signs, names);
  for (const char* name : {"peso", "prezzo", "scqart0", "scqperc0"}) {
    for (const char* number : {"NaN", "inf", "-nan", "1e308", "1E+400", ""}) {
      const SheetCell cell{number, true};
      const bool isEmpty = cell.text.empty();
      EXPECT_EQ(reader.read(columns->columns[*columns->columnIndex(name)], cell).refusal.empty(), isEmpty)
          << name << " " << number;
      EXPECT_EQ(reader.refusal(columns->columns[*columns->columnIndex(name)], cell).empty(), isEmpty);
    }
  }
}

TEST_F(TableImport, ShowsValuesAsTheyWereReadAndAsTheMerchantWritesThem) {
  sql("UPDATE articoli SET offerta = 1, peso = 1.25 WHERE ID = 1");
  EXPECT_EQ(shownPlan(plan("codice;prezzo;peso;offerta;scqart0\nT-1;1.234;0.5;N;3.0\nT-2;1,234.50;;x;\n")),
            "2 modificato [Prezzo 12,50>1,234] [Peso 1,25>0,5] [In offerta sì>no] [Da pezzi (1) >3]\n"
            "3 modificato [Prezzo 1,50>1234,50] [Peso 0,25>] [In offerta no>sì]\n");
}

TEST_F(TableImport, AddsManyRowsOfDifferentColumnsInTheirOrder) {
  std::string sheet = "codice;titolo;reparto;prezzo\n";
  for (int i = 1; i <= 65; ++i) {
    const std::string number = std::to_string(i);
    sheet += "N-" + number + ";Nuovo;" + (i % 2 == 0 ? "Vetri" : "Ceramiche > Tazze") + ";" +
             (i % 7 == 0 ? "" : number) + "\n";
  }
  ASSERT_EQ(importSheet(sheet), TableEnd::Done);
  EXPECT_EQ(rows("SELECT COUNT(*) FROM articoli WHERE codice = 'N-' || (ID + 1 - (SELECT MIN(ID) FROM articoli WHERE "
                 "ID > 3))"),
            "65\n");
  EXPECT_EQ(rows("SELECT SUM(prezzo), SUM(prezzo IS NULL) FROM articoli WHERE ID > 3"), "18300000|9\n");
  EXPECT_EQ(rows("SELECT group_concat(ordinamento) FROM (SELECT ordinamento FROM articoli WHERE catID = 'cat003' ORDER "
                 "BY ID)"),
            rows("WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 33) SELECT group_concat(i) "
                 "FROM n"));
}

TEST_F(TableImport, ReadsPricesInEitherNotationWithCurrencyAndGroups) {
  const auto priceOf = [&](const std::string& cells) {
    EXPECT_EQ(importSheet("codice;prezzo\n" + cells), TableEnd::Done);
    return rows("SELECT prezzo FROM articoli WHERE ID = 1");
  };
  EXPECT_EQ(priceOf("T-1;\"€ 1.234,50\"\n"), "1234.5\n");
  EXPECT_EQ(priceOf("T-1;1'234.75 CHF\n"), "1234.75\n");
  EXPECT_EQ(priceOf("T-1;1\xC2\xA0"
                    "234,25\n"),
            "1234.25\n");
  EXPECT_EQ(priceOf("T-1;1,234.5\nV-1;7.25\n"), "1234.5\n");
  EXPECT_EQ(plan("codice;prezzo\nT-1;12.34,5\n").rows[0].fate, RowFate::LeftOut);
  EXPECT_EQ(plan("codice;prezzo\nT-1;0.250\nT-2;2,5\nV-1;3,5\n").rows[0].reason, "Prezzo: \"0.250\" non è un numero");
  EXPECT_EQ(plan("codice;prezzo\nT-1;€ 13,50\nT-2;7,25 €\nV-1;1.234,5\n").sums().changed, 3U)
      << "the space at a currency sign is none between thousands";
  EXPECT_EQ(plan("codice;prezzo\nT-2;dal 12 02:30\nV-1;1.234,5 €\n").sums().changed, 1U) << "nor is that of a date";
}

TEST_F(TableImport, AddsDepartmentsUnderTheirPathsParentsFirst) {
  ASSERT_EQ(importSheet("Percorso;Sconto;Nascosto\n"
                        "Ceramiche > Tazze;5;0\n"
                        "Vetri > Calici;10;1\n"
                        "Vetri > Calici > Rossi;;\n"
                        "Legni > Ciotole;;\n",
                        "reparti"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT ID, genitore, titolo, livello, ordinamento, sconto, nascosto, hafigli, pagina FROM categorie "
                 "WHERE genitore <> '###' OR titolo = 'Vetri' ORDER BY contatore"),
            rows("SELECT 'cat002', 'cat001', 'Tazze', 2, 1, 5.0, NULL, 0, NULL UNION ALL "
                 "SELECT 'cat003', '###', 'Vetri', 1, 2, NULL, NULL, 1, NULL UNION ALL "
                 "SELECT ID, 'cat003', 'Calici', 2, 1, 10.0, 1, 1, ID FROM categorie WHERE titolo = 'Calici' UNION ALL "
                 "SELECT ID, (SELECT ID FROM categorie WHERE titolo = 'Calici'), 'Rossi', 3, 1, NULL, NULL, NULL, ID "
                 "FROM categorie WHERE titolo = 'Rossi'"));
}

TEST_F(TableImport, DepartmentsWithoutParentAreThoseAtTheTop) {
  sql("UPDATE categorie SET genitore = NULL, ordinamento = 7 WHERE ID = 'cat003'");
  ASSERT_EQ(importSheet("Percorso\nVetri > Calici\nLegni\n", "reparti"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT titolo, genitore, livello, ordinamento FROM categorie WHERE ID > 'cat003' ORDER BY contatore"),
            "Calici|cat003|2|1\nLegni|###|1|8\n");
}

TEST_F(TableImport, AddsTheValuesOfVariantsAndTheVariantsThemselves) {
  ASSERT_EQ(
      importSheet("variante;codice;testo;prezzo\nTaglia;S;Piccola;-1,5\nTaglia;L;Grande;2\nForma;T;Tonda;\n", "valori"),
      TableEnd::Done);
  EXPECT_EQ(rows("SELECT o.nome, d.codice, d.testo, d.prezzo FROM dettagliop d JOIN opzioni o ON o.ID = d.OpID "
                 "WHERE o.ID > 100 ORDER BY d.ID"),
            "Taglia|S|Piccola|-1.5\nTaglia|L|Grande|2\nForma|T|Tonda|(null)\n");
}

TEST_F(TableImport, ChangesCountriesAndTheCostsOfZones) {
  ASSERT_EQ(importSheet("paese;zona\nAtlantide;3\n", "paesi"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT zona FROM paesi WHERE paese = 'Atlantide'"), "3\n");
  sql("DELETE FROM zona2; INSERT INTO zona2 (m1sp1) VALUES (0)");
  ASSERT_EQ(importSheet("zona;m1sp1;pag1\n2;7,5;si\n12;1;1\n", "spedizione"), TableEnd::Done);
  EXPECT_EQ(rows("SELECT m1sp1, pag1 FROM zona2"), "7.5|1\n");
}

TEST_F(TableImport, CancelledOrFailingAnywhereLeavesEveryRowAsItWas) {
  const std::string sheet = "codice;titolo;reparto\nT-1;Altra;Vetri\nN-1;Nuovo;Vetri\n", before = allTables();
  TablePlan planned = plan(sheet);
  user.cancelAtYield = 1;
  EXPECT_EQ(importPlannedTable(session, env, planned, opened.sheet, table), TableEnd::Cancelled);
  EXPECT_EQ(allTables(), before);
}

TEST_F(TableImport, ShowsWhatACellBecomesInTheShop) {
  EXPECT_EQ(shownPlan(plan("codice;reparto;immagine0;opzione1\nV-1;cat001, Sconti; ; taglia\nT-1;CAT002; ;Taglia \n")),
            "2 modificato [Reparto Vetri>Ceramiche] [Variante 1 >Taglia]\n3 invariato\n");
}

TEST_F(TableImport, TakesPicturesOverAndRemovesThemAgainWhenItIsCancelled) {
  const std::string picture = std::string(KORVANE_TEST_DATA) + "/platform/pictures/corners.gif";
  ASSERT_TRUE(copyFile(picture, root / "Foto Nuova.gif"));
  const std::string sheet = "codice;immagine0;immagine1\nT-1;Foto Nuova.gif;file://" + picture + "\n";
  TablePlan planned = plan(sheet);
  EXPECT_EQ(planned.sums().changed, 1U) << shownPlan(planned);
  // The second look at the user comes after the first row, for a picture may take long.
  planned.rows.resize(2, planned.rows.front());
  user.cancelAtYield = 2;
  EXPECT_EQ(importPlannedTable(session, env, planned, opened.sheet, table), TableEnd::Cancelled);
  EXPECT_TRUE(listFiles(joinPath(shop, "work"), "*").empty());
  user.cancelAtYield = 0;
  ASSERT_EQ(importSheet(sheet), TableEnd::Done);
  EXPECT_EQ(listFiles(joinPath(shop, "work"), "*").size(), 2U);
  EXPECT_EQ(rows("SELECT substr(immagine0, 1, 10) = 'foto_nuova', imgX0 > 0, imgY1 > 0 FROM articoli WHERE ID = 1"),
            "1|1|1\n");
}

TEST_F(TableImport, RefusesTheRowOfAPictureThatIsTooWideUnlessItIsReduced) {
  // The header of a GIF has its size: 32768 by 1.
  constexpr std::string_view wide{"GIF89a\x00\x80\x01\x00\x00\x00\x00;", 14};
  ASSERT_TRUE(writeBytes(root / "striscia.gif", wide));
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/fascia.gif"), wide));
  const std::string sheet = "codice;immagine0;titolo\nT-1;striscia.gif;A\nT-2;fascia.gif;B\n";
  TablePlan planned = plan(sheet);
  EXPECT_EQ(planned.rows[0].reason, "l'immagine \"striscia.gif\" ha un lato di oltre 32767 punti");
  EXPECT_EQ(planned.rows[1].reason, "l'immagine \"fascia.gif\" ha un lato di oltre 32767 punti");
  table.fitsPictures = true;
  planned = plan(sheet);
  EXPECT_EQ(planned.rows[0].reason, "");
  EXPECT_NE(planned.rows[1].reason, "");
}

TEST_F(TableImport, RefusesTheRowOfAPictureThatIsTooLargeToBeReadUnlessTheShopHasIt) {
  const std::string large = "GIF89a\xF0\x55\xF0\x55" + std::string(3, '\0');  // 22000 by 22000
  ASSERT_TRUE(writeBytes(root / "enorme.gif", large) && writeBytes(joinPath(shop, "work/nostra.gif"), large));
  table.fitsPictures = true;
  const TablePlan planned = plan("codice;immagine0;titolo\nT-1;enorme.gif;A\nT-2;nostra.gif;B\n");
  EXPECT_EQ(planned.rows[0].reason, "l'immagine \"enorme.gif\" ha più di 64 milioni di punti");
  EXPECT_EQ(planned.rows[1].reason, "");
}

TEST_F(TableImport, RemembersTheColumnsOfASheetByItsHeaders) {
  const std::vector<std::string> headers{"Cod", "Descr.", "Euro"};
  auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  ColumnMapping mapping = mappingByHeaders(*columns, headers);
  ASSERT_TRUE(applyMapping("# mia\nDescr. = titolo\nEuro=prezzo3\n", *columns, headers, mapping));
  EXPECT_EQ(applyMapping("Euro=prezzo33", *columns, headers, mapping).error().what, "Euro=prezzo33");
  ASSERT_TRUE(keepMapping(settings, *columns, headers, mapping));
  EXPECT_EQ(keptMapping(settings, *columns, headers), mapping);
  EXPECT_EQ(keptMapping(settings, *columns, {"Cod", "Descr."}), std::nullopt);
  EXPECT_EQ(columns->columns[*mapping[2]].name, "prezzo3");
}

TEST_F(TableImport, KnowsTheHeadersOfProductExports) {
  auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  const auto namesOf = [&](const std::vector<std::string>& headers) {
    std::string names;
    for (const auto& column : mappingByHeaders(*columns, headers)) {
      names += (column ? columns->columns[*column].name : "-") + std::string(" ");
    }
    return names;
  };
  EXPECT_EQ(namesOf({"ID", "Type", "SKU", "Name", "Short description", "Description", "Sale price", "Regular price",
                     "Categories", "Weight (kg)", "Images"}),
            "ID reparto codice titolo sottotitolo descrizione offertaprezzo prezzo - peso immagine0 ");
  EXPECT_EQ(
      namesOf({"Handle", "Title", "Body (HTML)", "Variant SKU", "Variant Price", "Image Src", "Product Category"}),
      "- titolo descrizione codice prezzo immagine0 reparto ");
  EXPECT_EQ(namesOf({"Cod. Art.", "Nome articolo", "Descrizione breve", "Prezzo €", "Peso (kg)"}),
            "codice titolo sottotitolo prezzo peso ");
  EXPECT_EQ(namesOf({"Weight (g)", "Variant Grams", "Peso (g)"}), "- - - ") << "grams are no kilograms";
  EXPECT_EQ(namesOf({"g:id", "g:title", "g:description", "g:link", "g:price", "g:image_link", "g:product_type"}),
            "ID titolo descrizione link prezzo immagine0 reparto ");
}

TEST_F(TableImport, KnowsTheHeadersOfFilesThatNumberTheLanguages) {
  sql("DELETE FROM lingue; INSERT INTO lingue (lingua1, lingua2, lingua3) VALUES ('italiano', 'inglese', 'Inglese')");
  const auto columns = sheetTable(session.catalogue, 2, "articoli");
  ASSERT_TRUE(columns);
  const auto captionOf = [&](const char* name) { return columns->columns[*columns->columnIndex(name)].italian; };
  EXPECT_EQ(captionOf("titolo"), "Titolo");
  EXPECT_EQ(captionOf("titolo_l2"), "Titolo lingua 2") << "two languages of one name";
  sql("UPDATE lingue SET lingua3 = ''");
  const auto named = sheetTable(session.catalogue, 2, "articoli");
  ASSERT_TRUE(named);
  const std::size_t title = *named->columnIndex("titolo_l2");
  EXPECT_EQ(named->columns[title].italian, "Titolo (inglese)");
  for (const char* header :
       {"Titolo (inglese)", "Titolo lingua 2", "titolo LINGUA_2", "Title language 2", "titolo_l2"}) {
    EXPECT_EQ(mappingByHeaders(*named, {header}), ColumnMapping{title}) << header;
  }
}

}  // namespace
}  // namespace kv::test
