// One page at a time: marks, prologues, the article loop, the rows, and when a file is written.

#include "builder/output/page_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "builder/page/page_prologue.h"
#include "platform/database/recordset.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "support/command_output.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// A writer with one page tag row, working in a fresh folder.
class PageWriterTest : public ::testing::Test {
 protected:
  PageWriterTest() : writer(user, tables, true) {
    TableInfo table;
    for (const char* name : {"negozio", "php_vars", "vuoto", "ric_titolo"}) {
      table.columns.push_back({name, ColumnType::Memo, 0, 0, false, ""});
    }
    row = PageTagRow(table);
    row.set("negozio", "Bottega");
    row.set("php_vars", "VARS;\r\n");
    row.set("ric_titolo", "$arg3");
    sources.row = &row;
    EXPECT_TRUE(createDatabase(folder / "new.mdb", buildDatabaseTables()));
    EXPECT_TRUE(createFolder(folder / "db"));
    EXPECT_TRUE(tables.create(folder / ""));
    EXPECT_TRUE(tables.startLanguage(""));
  }

  std::string make(const std::string& name, std::string_view text, const std::string& output) {
    EXPECT_TRUE(writeText(folder / name, text));
    EXPECT_TRUE(writer.CreaPagina({folder / name, folder / output}, sources));
    const auto made = readText(folder / output);
    return made ? *made : "(missing)";
  }

  Result<> makeDepartment(std::string_view model, const std::string& output, int articles, int affiancati = 1) {
    EXPECT_TRUE(writeText(folder / "modello1.htm", model));
    const DerivedColumns& columns = tables.columns();
    DerivedRows rows;
    for (int i = 1; i <= articles; ++i) {
      DerivedRow& article = rows.next();
      article.resize(columns.columns.size());
      article[static_cast<std::size_t>(columns.ID)].setWhole(i);
      article[static_cast<std::size_t>(columns.contatore)].set(std::to_string(i));
      rows.keepNext();
    }
    return writer.CreaPagina({folder / "modello1.htm", folder / output, true, affiancati}, sources, rows);
  }

  TempFolder folder;
  ScriptedUser user;
  RowTables tables;
  PageWriter writer;
  PageTagRow row;
  PageSources sources;
};

TEST_F(PageWriterTest, APlainPageGetsThePrologueAndTheMark) {
  EXPECT_EQ(make("a.htm", "<html><title>x</title></html>", "a.php"),
            "<?php\r\ninclude(\"funcs.php\");\r\n$Lingua = \"\";\r\n?>\r\n<html><meta name=\"generator\" "
            "content=\"Korvane " KORVANE_VERSION "\">\r\n<title>x</title></html>\r\n");
}

TEST_F(PageWriterTest, APageOfTheLongExtensionGetsPrologueAndMarkTooInAnyCase) {
  for (const char* name : {"a.html", "A.HTML", "A.HTM"}) {
    const std::string page = make(name, "<html><title>x</title></html>", "a.php");
    EXPECT_THAT(page, StartsWith("<?php\r\ninclude(\"funcs.php\");\r\n$Lingua = \"\";\r\n?>\r\n<html>")) << name;
    EXPECT_THAT(page, HasSubstr(generatorMark(false) + "\r\n<title>")) << name;
  }
}

TEST_F(PageWriterTest, APageWhoseNameHoldsThatOfTheResultPageHasNoPrologue) {
  for (const char* name : {"results.html", "MyResults.htm", "results.htm.htm"}) {
    EXPECT_EQ(make(name, "<b>x</b>", "made.php"), "<b>x</b>\r\n") << name;
  }
  EXPECT_THAT(make("result.htm", "<b>x</b>", "made.php"), StartsWith("<?php"));
}

TEST_F(PageWriterTest, APageThatStartsWithTextHasNoLineEndAfterThePrologue) {
  EXPECT_THAT(make("a.htm", "testo", "a.php"), EndsWith("?>testo\r\n"));
}

TEST_F(PageWriterTest, APageThatIsPhpAlreadyGetsNoSecondPrologue) {
  EXPECT_EQ(make("a.htm", "  <?php x ?>", "a.php"), "  <?php x ?>\r\n");
}

TEST_F(PageWriterTest, AFileThatHoldsTheMarkDoesNotGetItTwice) {
  const std::string text = generatorMark(false) + "<TITLE>";
  EXPECT_THAT(make("a.htm", text, "a.php"), EndsWith("?>\r\n" + text + "\r\n"));
}

TEST_F(PageWriterTest, ScriptsComeOutExpandedWithNothingAdded) {
  EXPECT_EQ(make("a.js", "var a='<<1-negozio>>';<title>", "a.js"), "var a='Bottega';<title>\r\n");
  EXPECT_EQ(make("a.php", "<?php '<<1-negozio>>'", "b.php"), "<?php 'Bottega'\r\n");
}

TEST_F(PageWriterTest, AValueInATextBlockOfPhpIsDataWhateverItsLines) {
  const std::string values[] = {"<b>a</b>\r\nPAROLA\r\n, exit('ended')); //",
                                "PAROLA;\nPAROLA_1\n PAROLA_2",
                                "\rPAROLA,\r\tPAROLA\r",
                                "PAROLA",
                                "PAROLAx\r\nuna PAROLA",
                                "<<<'PAROLA'\r\nx\r\nPAROLA;"};
  std::string wanted;
  int number = 0;
  for (const std::string& value : values) {
    row.set("negozio", value);
    const std::string script = "b" + std::to_string(++number) + ".php";
    make("a.php", "<?php echo <<<'PAROLA'\r\n<<1-negozio>>\r\nPAROLA, <<<'ALTRA'\r\nALTRO\r\nALTRA; // PAROLA", script);
    wanted += value + "ALTRO|";
  }
  EXPECT_EQ(outputOf("cd " + folder.path() +
                     " && php -r 'for ($n = 1; is_file(\"b$n.php\"); $n++) { include \"b$n.php\"; "
                     "echo \"|\"; }' 2>&1"),
            wanted);
}

TEST_F(PageWriterTest, ATextBlockOfPhpKeepsItsEndWordUnlessALineBeginsWithIt) {
  for (const char* value : {"Bottega", "una PAROLA\r\nALTRA", "<?php echo <<<'PAROLA'\r\nx\r\n"}) {
    row.set("negozio", value);
    const std::string text = "<?php echo <<<'PAROLA'\r\nx\r\nPAROLA; ?><<1-negozio>>\r\nPAROLA;";
    EXPECT_EQ(make("a.php", text, "b.php"), replaceAll(text, "<<1-negozio>>", value) + "\r\n");
  }
}

TEST_F(PageWriterTest, ResultTagsAreFilledInTheResultPageAlone) {
  EXPECT_EQ(make("results.htm", "<b><<3-ric_titolo>></b>", "results.htm"), "<b>$arg3</b>\r\n");
  EXPECT_THAT(make("cart.htm", "<<3-ric_titolo>>", "cart.php"), HasSubstr("<<3-ric_titolo>>"));
}

TEST_F(PageWriterTest, TheCartPageHasItsBlockAndAPageOfASimilarNameHasNot) {
  EXPECT_THAT(make("Cart.htm", "<html>", "cart.php"),
              HasSubstr("?>\r\n<?php\r\n$cartdisp = CheckDispCart();\r\n$ordercliente = \"\";\r\n?>\r\n<html>"));
  EXPECT_THAT(make("mycart.htm", "<html>", "mycart.php"), Not(HasSubstr("CheckDispCart")));
}

TEST_F(PageWriterTest, TheOrderPageAsksForRegistrationAndAvailability) {
  const std::string plain = make("order.htm", "<html>", "order.php");
  EXPECT_THAT(plain, HasSubstr("?>\r\n<?php\r\nif ($cliente==0 && $regobbl) {\r\n"
                               "header(\"Location: login$Lingua.php?m=23\");\r\n}\r\n?>\r\n<?php\r\n$cartdisp"));
  EXPECT_THAT(plain, Not(HasSubstr("m=37")));
  sources.order = {false, true, true};
  EXPECT_THAT(make("order.htm", "<html> ", "order.php"),
              HasSubstr("?m=37&t=.37.\");\r\n}\r\n?>\r\n<?php\r\n$cartdisp"));
}

TEST_F(PageWriterTest, OldPhpNamesPassThroughUnlessTheSettingIsOn) {
  EXPECT_EQ(make("a.php", "$HTTP_GET_VARS $HTTP_ENV_VARS", "b.php"), "$HTTP_GET_VARS $HTTP_ENV_VARS\r\n");
  sources.newPhpNames = true;
  EXPECT_EQ(make("c.php", "$HTTP_GET_VARS $HTTP_POST_FILES $HTTP_ENV_VARS", "b.php"), "$_GET $_FILES $_ENV\r\n");
  ASSERT_TRUE(makeDepartment("$HTTP_GET_VARS<KV_START><KV_END>", "cat001.php?n=1", 1));
  const std::string page = readText(folder / "cat001.php").value();
  EXPECT_THAT(page, HasSubstr("$sp = $HTTP_GET_VARS['n'];"));
  EXPECT_THAT(page, HasSubstr("$_GET<?php\r\n$Contatore"));
}

TEST_F(PageWriterTest, ADepartmentPageIsPrologueLoopAndEpilogue) {
  ASSERT_TRUE(
      makeDepartment("<html><TITLE>t<kv_start>[<<2-titolo>>|<<2-nonesiste>>]<Kv_End></html>", "cat001.php?n=1", 2));
  EXPECT_EQ(
      readText(folder / "cat001.php").value(),
      "<?php\r\n"
      "include(\"funcs.php\");\r\n"
      "$sp = $HTTP_GET_VARS['n'];\r\n"
      "$Lingua = \"\";\r\n"
      "$PageRoot = \"cat001\";\r\n"
      "$sql = \"SELECT * FROM articoli$Lingua WHERE pagina='$PageRoot' ORDER BY sottopagina DESC\";\r\n"
      "$resultArt = mysql_query($sql);\r\n"
      "if (mysql_num_rows($resultArt) == 0) {\r\n"
      "$mp = 1;\r\n"
      "} else {\r\n"
      "$rowArt = mysql_fetch_array($resultArt);\r\n"
      "$mp = $rowArt['sottopagina'];\r\n"
      "}\r\n"
      "if ($sp < 1 || $sp > $mp) {$sp = 1;}\r\n"
      "mysql_free_result($resultArt);\r\n"
      "$sql = \"SELECT *, articoli$Lingua.pagina as 'linkPage' FROM articoli$Lingua INNER JOIN dettaglio USING (ID) "
      "INNER JOIN ordinamento USING (ID) WHERE articoli$Lingua.pagina='$PageRoot' AND "
      "articoli$Lingua.sottopagina=$sp ORDER BY contatore + 0 ASC\";\r\n"
      "$resultArt = mysql_query($sql);\r\n"
      "?>\r\n"
      "<?php\r\n"
      "VARS;\r\n"
      "?>\r\n"
      "<html><meta name=\"generator\" content=\"Korvane x.x.x\">\r\n<TITLE>t"
      "<?php\r\n"
      "$Contatore = 0;\r\n"
      "$prod=$HTTP_GET_VARS['prod'];\r\n"
      "while ($rowArt = mysql_fetch_array($resultArt)) {\r\n"
      "$Contatore = $Contatore + 1;\r\n"
      "$artID = $rowArt['ID'];\r\n"
      "if ($prod == 0) {\r\n"
      "print ViewArt(\"beforecode\");\r\n"
      "}\r\n"
      "if ($prod == 0 || $prod == $Contatore) {\r\n"
      "?>\r\n"
      "<a name=<?php echo $Contatore; ?>></a>[<?php echo ViewArt(\"titolo\"); ?>|<?php echo ViewArt(\"nonesiste\"); ?>]"
      "<?php\r\n"
      "}\r\n"
      "if ($prod == 0) {\r\n"
      "print ViewArt(\"aftercode\");\r\n"
      "}\r\n"
      "}\r\n"
      "?></html>"
      "<?php\r\n"
      "mysql_free_result($resultArt);\r\n"
      "?>\r\n");
}

TEST_F(PageWriterTest, ADepartmentWithoutArticlesKeepsAnEmptySection) {
  ASSERT_TRUE(makeDepartment("a<KV_START><<2-titolo>><KV_END>b", "cat001.php?n=1", 0));
  EXPECT_THAT(readText(folder / "cat001.php").value(), HasSubstr("$prod == $Contatore) {\r\n?>\r\n<?php\r\n}\r\n"));
}

TEST_F(PageWriterTest, FurtherSubPagesAddRowsAndNoFile) {
  ASSERT_TRUE(makeDepartment("<KV_START><KV_END>", "cat001.php?n=2", 1));
  ASSERT_TRUE(makeDepartment("<KV_START><KV_END>", "cat001.php?n=3", 1));
  EXPECT_FALSE(fileExists(folder / "cat001.php"));
  ASSERT_TRUE(tables.commit());
  tables.close();
  auto build = Database::open(folder / "db/sql.mdb", OpenMode::ReadOnly);
  ASSERT_TRUE(build);
  const auto pages = build->openRecordset("SELECT ID, sottopagina FROM articoli ORDER BY sottopagina");
  ASSERT_TRUE(pages);
  EXPECT_EQ(pages->size(), 2U);
  EXPECT_EQ(asInteger(pages->get("sottopagina")), 2);
}

TEST_F(PageWriterTest, ThreeColumnsAreThirtyThreeThirtyThreeThirtyFourAndAShortRowIsClosed) {
  const std::string open = "<table border=0 width=100%><tr><td valign=top>";
  EXPECT_EQ(cellCode(0, 3, false).before, "<tr><td valign=top width=33%>" + open);
  EXPECT_EQ(cellCode(1, 3, false).before, "<td valign=top width=33%>" + open);
  EXPECT_EQ(cellCode(2, 3, false).before, "<td valign=top width=34%>" + open);
  EXPECT_EQ(cellCode(0, 3, false).after, "</td></tr></table></td>");
  EXPECT_EQ(cellCode(1, 3, true).after, "</td></tr></table></td></tr>");
  EXPECT_EQ(cellCode(2, 3, true).after, "</td></tr></table></td></tr>");
  EXPECT_EQ(cellCode(0, 1, true).before, "");
  EXPECT_EQ(cellCode(0, 1, true).after, "");
}

TEST_F(PageWriterTest, AGridIsWrappedInATableUnlessOneArticleIsShown) {
  EXPECT_THAT(loopHead(2),
              HasSubstr("$prod=$HTTP_GET_VARS['prod'];\r\nif ($prod == 0 ) { echo\"<table border=0>\"; }\r\nwhile"));
  EXPECT_THAT(loopTail(2), EndsWith("}\r\nif ($prod == 0 ) { echo\"</table>\"; }\r\n?>"));
}

TEST_F(PageWriterTest, EveryFaultOfTheMarkersHasItsMessage) {
  const std::string name = folder / "modello1.htm";
  for (const char* model : {"x", "<KV_END>", "<KV_START><KV_START><KV_END>", "<KV_START>", "<KV_START><KV_END><KV_END>",
                            "<KV_END><KV_START>"}) {
    const auto made = makeDepartment(model, "cat001.php?n=1", 1);
    ASSERT_FALSE(made) << model;
    EXPECT_EQ(made.error().kind, ErrorKind::Told) << model;
    writer.startLanguage();
  }
  EXPECT_THAT(user.texts(), ElementsAre("Il file '" + name + "' non contiene il tag <KV_START>",
                                        "Il file '" + name + "' non contiene il tag <KV_START>",
                                        "Il file '" + name + "' contiene più di un tag <KV_START>",
                                        "Il file '" + name + "' non contiene il tag <KV_END>",
                                        "Il file '" + name + "' contiene più di un tag <KV_END>",
                                        "Nel file '" + name + "' il tag <KV_END> precede il tag <KV_START>"));
  for (const Shown& shown : user.shown) EXPECT_EQ(shown.icon, Icon::Exclamation);
  EXPECT_FALSE(fileExists(folder / "cat001.php"));
}

TEST_F(PageWriterTest, AnUnchangedPageKeepsItsFile) {
  make("a.htm", "testo", "a.php");
  make("a.htm", "testo", "a.php");
  EXPECT_EQ(writer.counts().written, 1);
  EXPECT_EQ(writer.counts().unchanged, 1);
}

TEST_F(PageWriterTest, LineEndsAtTheEndOfThePresentFileDoNotCount) {
  EXPECT_TRUE(writeText(folder / "a.js", "x\r\n\r\n\r\n"));
  EXPECT_EQ(make("b.js", "x", "a.js"), "x\r\n\r\n\r\n");
  EXPECT_EQ(writer.counts().unchanged, 1);
}

TEST_F(PageWriterTest, AnEmptyFileIsAlwaysReplaced) {
  EXPECT_TRUE(writeText(folder / "a.js", ""));
  EXPECT_EQ(make("b.js", "", "a.js"), "\r\n");
  EXPECT_EQ(writer.counts().written, 1);
}

TEST_F(PageWriterTest, AFileOfLineEndsAloneIsReplacedByAnEmptyPage) {
  EXPECT_TRUE(writeText(folder / "a.js", "\r\n\r\n"));
  EXPECT_EQ(make("b.js", "", "a.js"), "\r\n");
  EXPECT_EQ(writer.counts().written, 1);
  EXPECT_EQ(writer.counts().unchanged, 0);
}

TEST_F(PageWriterTest, CharactersOutsideTheCodePageAreWrittenAsReferences) {
  row.set("negozio", "caffè € \u20AA");
  make("a.js", "<<1-negozio>>", "b.js");
  EXPECT_EQ(readBytes(folder / "b.js").value(), "caff\xE8 \x80 &#8362;\r\n");
}

TEST_F(PageWriterTest, APagesRootAndNumberAreReadFromItsPath) {
  EXPECT_EQ(pageIdentity("/a.php/scarpe_l2.php?n=12").root, "scarpe_l2");
  EXPECT_EQ(pageIdentity("/a/scarpe_l2.php?n=12").subPage, 12);
  EXPECT_EQ(pageIdentity("/a/x.js").root, "");
  EXPECT_EQ(pageIdentity("/a/x.php").subPage, 0);
}

}  // namespace
}  // namespace kv::test
