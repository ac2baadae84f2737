// The build run: what it leaves on disk, in the databases and in the list of files, in which order, and how it ends.

#include "builder/run/make_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "support/temp_shop.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string doneMessage() {
  return "Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.";
}

TEST(MakePagesTest, ADepartmentWithoutArticlesYieldsOneSubPageWithAPageFileAndNoRows) {
  TempShop shop;
  shop.department("cat001");
  EXPECT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_TRUE(shop.hasPage("cat001.php"));
  EXPECT_EQ(shop.rows("SELECT COUNT(*) FROM articoli"), "0");
  EXPECT_THAT(shop.user.texts(), ElementsAre(doneMessage()));
  EXPECT_EQ(shop.user.shown[0].icon, Icon::Information);
}

TEST(MakePagesTest, ExactlyTwoHundredArticlesGiveOneSubPageAndOneMoreGivesTwo) {
  TempShop shop;
  shop.department("cat001", {{"maxarticoli", std::int64_t{0}}});
  shop.department("cat002");
  for (int i = 0; i < 200; ++i) shop.article("cat001");
  for (int i = 0; i < 201; ++i) shop.article("cat002");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT pagina, sottopagina, COUNT(*) FROM articoli GROUP BY pagina, sottopagina"),
            "cat001|1|200\ncat002|1|200\ncat002|2|1");
  EXPECT_EQ(shop.rows("SELECT contatore FROM ordinamento WHERE ID = 401"), "1");
}

TEST(MakePagesTest, SevenColumnsInADepartmentFallBackToOneAndSixStay) {
  TempShop shop;
  shop.sql("UPDATE generale SET affiancati = 3");
  shop.department("cat001", {{"affiancati", std::string("7")}});
  shop.department("cat002", {{"affiancati", std::string("6")}});
  shop.department("cat003");
  shop.article("cat001");
  shop.article("cat002");
  shop.article("cat003");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT ID, beforecode FROM dettaglio ORDER BY ID"),
            "1|\n2|<tr><td valign=top width=16%><table border=0 width=100%><tr><td valign=top>"
            "\n3|<tr><td valign=top width=33%><table border=0 width=100%><tr><td valign=top>");
}

TEST(MakePagesTest, ANumberOfColumnsWithAFractionIsRoundedHalfToEven) {
  TempShop shop;
  shop.department("cat001", {{"affiancati", std::string("2.5")}});
  shop.department("cat002", {{"affiancati", std::string("3.5")}});
  shop.article("cat001");
  shop.article("cat002");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string cell = "%><table border=0 width=100%><tr><td valign=top>";
  EXPECT_EQ(shop.rows("SELECT ID, beforecode FROM dettaglio ORDER BY ID"),
            "1|<tr><td valign=top width=50" + cell + "\n2|<tr><td valign=top width=25" + cell);
}

TEST(MakePagesTest, ADepartmentModelOfAnotherNameFallsBackToTheFirst) {
  TempShop shop;
  shop.templateFile("modello2.htm", "due<KV_START><KV_END>");
  shop.department("cat001", {{"template", std::string("altro")}});
  shop.department("cat002", {{"template", std::string("modello2")}});
  shop.department("cat003");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("</html>"));
  EXPECT_THAT(shop.page("cat002.php"), HasSubstr("due"));
  EXPECT_THAT(shop.page("cat003.php"), HasSubstr("</html>"));
}

TEST(MakePagesTest, ADepartmentModelIsFoundInAnyCase) {
  TempShop shop;
  shop.templateFile("modello2.htm", "due<KV_START><KV_END>");
  shop.department("cat001", {{"template", std::string("Modello2")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("due"));
}

TEST(MakePagesTest, AShopWithoutAFirstLanguageIsRefusedBeforeAnythingIsWritten) {
  TempShop shop;
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::vector<std::string> before = listFiles(shop.session.onlineFolder, "*.*");
  shop.session.languageCount = 0;
  shop.user.shown.clear();
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  EXPECT_THAT(shop.user.texts(),
              ElementsAre("Il negozio non ha una prima lingua:\n"
                          "per costruirlo è necessario sceglierla (menu \"File/Configura lingue\")"));
  EXPECT_EQ(listFiles(shop.session.onlineFolder, "*.*"), before);
  EXPECT_TRUE(fileExists(shop.folder() + "/kvftp.dat"));
}

TEST(MakePagesTest, CustomTagsAreOnForEveryFormOfTheSetting) {
  for (const auto& [setting, isOn] : {std::pair{"1", true},
                                      {"-1", true},
                                      {"True", true},
                                      {"VERO", true},
                                      {"0", false},
                                      {"falso", false},
                                      {"", false}}) {
    TempShop shop;
    shop.shopFile("shoptag.tag", "<<5-saluto>>\r\nciao a tutti\r\n");
    shop.templateFile("modello1.htm", "<html><<5-saluto>><KV_START><KV_END></html>");
    shop.department("cat001");
    shop.sql("UPDATE generale SET personaltags = '" + std::string(setting) + "'");
    ASSERT_EQ(shop.build(), BuildOutcome::Done);
    EXPECT_EQ(shop.page("cat001.php").find("ciao a tutti") != std::string::npos, isOn) << setting;
  }
}

TEST(MakePagesTest, AMissingModelStopsTheBuildWithItsMessageAndTheClosingLines) {
  TempShop shop;
  shop.department("cat001", {{"template", std::string("modello9")}});
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  EXPECT_THAT(
      shop.user.texts(),
      ElementsAre("Il file modello9.htm non è presente nel template selezionato.\n"
                  "Selezionare un altro template per il sito o un altro modello per i reparti.",
                  "In seguito agli errori verificatisi, il contenuto della cartella '" + shop.session.onlineFolder +
                      "'\npotrebbe essere corrotto: evitare di trasferirne il contenuto online.\n"
                      "Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.\n"));
}

TEST(MakePagesTest, TheOwnLanguageHasNoLinkAndTheOthersDo) {
  TempShop shop(2);
  shop.department("cat001");
  shop.templateFile("modello1.htm", "[<<1-lingua1>>|<<1-lingua2>>|<<1-lingua3>>]<KV_START><KV_END>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("[|<a href=\"cat001_l2.php?n=<?php echo $sp; ?>\">inglese</a>|]"));
  EXPECT_THAT(shop.page("cat001_l2.php"), HasSubstr("[<a href=\"cat001.php?n=<?php echo $sp; ?>\">italiano</a>||]"));
}

TEST(MakePagesTest, NoShowcaseArticleGivesAnEmptyShowcase) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001");
  shop.templateFile("index.htm", "<html>[<<1-vetrina>>]</html>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[]"));
}

TEST(MakePagesTest, AListOfSubtitlesAloneIsNotShown) {
  TempShop shop;
  shop.templateFile("modello1.htm", "[<<1-elenco>>]<KV_START><KV_END>");
  shop.department("cat001");
  shop.article("cat001", {{"sottotitolo", std::string("sotto")}});
  shop.sql("UPDATE generale SET elenco_sottotitolo = 1");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("[]"));
  shop.sql("UPDATE generale SET elenco_codice = 1");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("[<a href=\"cat001.php?n=1#1\"><BR>sotto</a><BR>&nbsp;<BR>]"));
}

TEST(MakePagesTest, ACancelLeavesTheScratchFoldersAndTheNextBuildEmptiesThem) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001");
  shop.user.cancelAtYield = 2;
  EXPECT_EQ(shop.build(), BuildOutcome::Cancelled);
  EXPECT_TRUE(shop.user.shown.empty());
  EXPECT_TRUE(folderExists(shop.folder() + "/tmp/1"));
  EXPECT_TRUE(writeText(shop.folder() + "/tmp/1/vecchio.htm", "x").has_value());
  shop.user.cancelAtYield = 0;
  EXPECT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_FALSE(shop.hasPage("vecchio.php"));
  EXPECT_FALSE(folderExists(shop.folder() + "/tmp"));
}

TEST(MakePagesTest, ACancelIsObeyedAtEveryPointWhereTheBuildYields) {
  TempShop shop(2);
  shop.department("cat001");
  shop.article("cat001");
  shop.shopFile("work/foto.jpg", "x");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const int yields = shop.user.yields;
  for (int at = 1; at <= yields; ++at) {
    shop.user.cancelAtYield = at;
    shop.user.yields = 0;
    EXPECT_EQ(shop.build(), BuildOutcome::Cancelled) << at;
    EXPECT_EQ(shop.user.yields, at);
  }
}

TEST(MakePagesTest, ProgressTotalsComeFromTheFirstLanguageAndTheBarEndsFull) {
  TempShop shop(2);
  shop.department("cat001");
  shop.article("cat001");
  shop.article("cat001", {{"fuoricatalogo", true}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.user.progressShown.front().caption, "Lingua 1: Reparti 0/1 Articoli 1/1");
  EXPECT_DOUBLE_EQ(shop.user.progressShown.front().position, 7000);
  EXPECT_EQ(shop.user.progressShown.front().maximum, 30000);
  const auto& last = shop.user.progressShown.back();
  EXPECT_EQ(last.caption, "");
  EXPECT_EQ(last.position, last.maximum);
}

TEST(MakePagesTest, AShopWithoutDepartmentsLeavesTheBarWithoutTotals) {
  TempShop shop;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  ASSERT_EQ(shop.user.progressShown.size(), 1U);
  EXPECT_EQ(shop.user.progressShown[0].maximum, 1);
}

TEST(MakePagesTest, MissingLanguageModulesAreNamedAndNothingIsBuilt) {
  TempShop shop(2);
  shop.session.languageNames = {"klingon", "sumero"};
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  EXPECT_THAT(shop.user.texts(),
              ElementsAre("I seguenti moduli linguistici non sono stati trovati:\nklingon\nsumero\n\n"
                          "Per costruire il negozio è necessario installare i moduli linguistici mancanti,\n"
                          "oppure cambiare le lingue selezionate (menu \"File/Configura lingue\")"));
  EXPECT_EQ(shop.user.shown[0].icon, Icon::Exclamation);
  EXPECT_FALSE(fileExists(shop.folder() + "/db/sql.mdb"));
}

TEST(MakePagesTest, AMissingWorkingFolderIsNamed) {
  for (const bool online : {true, false}) {
    TempShop shop;
    (online ? shop.session.onlineFolder : shop.session.scriptFolder) = shop.folder() + "/altrove";
    EXPECT_EQ(shop.build(), BuildOutcome::Failed);
    EXPECT_THAT(shop.user.texts(),
                ElementsAre("La cartella di lavoro '" + shop.folder() +
                            "/altrove' non esiste: \nselezionare un'altra cartella (oppure resettare le cartelle di "
                            "lavoro) e ripetere l'operazione"));
  }
}

TEST(MakePagesTest, ATagWithoutAnEndIsReportedWithTheHintAtTheTemplate) {
  TempShop shop;
  shop.templateFile("index.htm", "<html><<1-negozio </html>");
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  ASSERT_EQ(shop.user.shown.size(), 1U);
  const std::string& text = shop.user.shown[0].text;
  EXPECT_THAT(text, HasSubstr("Si è verificato un errore imprevisto:\n5 "));
  EXPECT_THAT(text, HasSubstr("\n\nE' possibile che il template utilizzato contenga errori di progettazione: provare "
                              "ad utilizzare un altro template.\n\nIn seguito agli errori verificatisi"));
}

TEST(MakePagesTest, AnEndlessTagEndsTheBuildAndTheOldPageStays) {
  TempShop shop;
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string before = shop.page("index.php");
  shop.templateFile("index.htm", "<html><<1-home1>></html>");
  shop.sql("UPDATE generale SET home1 = 'x<<1-home1>>'");
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  EXPECT_EQ(shop.page("index.php"), before);
}

TEST(MakePagesTest, TheFileListNamesEveryFileInItsOrder) {
  TempShop shop;
  shop.department("cat001");
  shop.templateFile("stile.css", "a{}");
  shop.application("code/js2.js", "var a;");
  shop.application("code/kvorder.pl", "x");
  shop.application("code/mail.pl", "x");
  shop.shopFile("work/foto.jpg", "x");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string online = "#" + shop.session.onlineFolder + "/";
  const std::string scripts = "#" + shop.session.scriptFolder + "/";
  EXPECT_THAT(shop.fileList(),
              ElementsAre("#" + shop.folder() + "/source.mdb", online + "shopmenu.xml", online + "cat001.php",
                          online + "index.php", scripts + "bo.php", online + "js2.js", scripts + "mail.pl",
                          online + "funcs.php", online + "stile.css", online + "db.sql", online + "dbdel.sql",
                          online + "foto.jpg", "#"));
}

TEST(MakePagesTest, ASecondBuildOfAnUnchangedShopWritesNoPage) {
  TempShop shop(2);
  shop.department("cat001");
  shop.article("cat001", {{"titolo", std::string("Vaso")}, {"inelenco", true}});
  shop.sql("UPDATE generale SET elenco_titolo = 1");
  shop.templateFile("modello1.htm", "<html><TITLE>t</TITLE>[<<1-elenco>>]<KV_START><<2-titolo>><KV_END></html>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_GT(shop.counts.pagesWritten, 0);
  const int made = shop.counts.pagesWritten + shop.counts.pagesUnchanged;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.counts.pagesWritten, 0);
  EXPECT_EQ(shop.counts.pagesUnchanged, made);
}

TEST(MakePagesTest, PicturesAndResourcesKeepTheirDateSoThatTheyAreNotSentAgain) {
  TempShop shop;
  shop.templateFile("stile.css", "a{}");
  shop.shopFile("work/foto.jpg", "x");
  const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
  std::filesystem::last_write_time(shop.folder() + "/work" + "/foto.jpg", old);
  std::filesystem::last_write_time(shop.applicationFolder() + "/template/prova/stile.css", old);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(std::filesystem::last_write_time(shop.session.onlineFolder + "/foto.jpg"), old);
  EXPECT_EQ(std::filesystem::last_write_time(shop.session.onlineFolder + "/stile.css"), old);
}

TEST(MakePagesTest, AfterOneEditOnlyThePagesThatShowItAreWritten) {
  TempShop shop;
  shop.department("cat001");
  shop.department("cat002");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  shop.sql("UPDATE categorie SET titolo = 'Nuovo' WHERE ID = 'cat002'");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.counts.pagesWritten, 1);
  EXPECT_THAT(shop.page("cat002.php"), HasSubstr("Nuovo"));
}

TEST(MakePagesTest, WithoutSmartbuildEveryPageIsWrittenAgain) {
  TempShop shop;
  shop.department("cat001");
  shop.session.smartBuild = false;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.counts.pagesUnchanged, 0);
}

TEST(MakePagesTest, TheNewTokenNamesTheMarkerAndTheSettingsRow) {
  TempShop shop(2);
  shop.shopFile("online/vecchio.sc", "1");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_FALSE(shop.hasPage("vecchio.sc"));
  EXPECT_EQ(shop.page("abcdefghijklmnopqrst.sc"), "2\r\n");
  EXPECT_EQ(asText(valueOf(shop.session.catalogue.scalar("SELECT db_security FROM generale"))), "abcdefghijklmnopqrst");
}

TEST(MakePagesTest, TheBackOfficeHasTheFunctionsOfTheFirstLanguageInEveryShop) {
  TempShop shop(2);
  shop.department("cat001");
  shop.application("backoffice/aiuto.htm", "<p>x</p>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.scriptPage("aiuto.htm"), "<?php\r\ninclude(\"funcs.php\");\r\n$Lingua = \"\";\r\n?>\r\n<p>x</p>\r\n");
}

TEST(MakePagesTest, TheShopsCodeBeatsTheApplications) {
  TempShop shop;
  shop.application("code/a.js", "programma");
  shop.shopFile("code/a.js", "negozio <<1-negozio>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.page("a.js"), "negozio Bottega\r\n");
}

TEST(MakePagesTest, TheTagDatabaseKeepsTheLastPageAndTheLastSubPagesArticles) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001", {{"codice", std::string("A1")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.tagRows("SELECT COUNT(*), negozio FROM categoria"), "1|Bottega");
  EXPECT_EQ(shop.tagRows("SELECT codice FROM articoli"), "A1");
}

TEST(MakePagesTest, DepartmentsReachTheBuildDatabaseAsFactors) {
  TempShop shop;
  shop.sql("UPDATE generale SET sconto = 50");
  shop.department("cat001",
                  {{"iva", 20.0}, {"sconto", 10.0}, {"sconto3", 100.0}, {"inaccessibile2", true}, {"nascosto", true}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(
      shop.rows("SELECT ID, nascosto, iva, sconto, sconto1, sconto3, inaccessibile, inaccessibile2 FROM categorie"),
      "cat001|1|.2|.45|.5|0|0|1");
}

TEST(MakePagesTest, OptionCodesComeFromFirstSlotsOnly) {
  TempShop shop;
  shop.department("cat001");
  for (const int variant : {1, 2, 3, 4}) {
    shop.insert("opzioni", {{"ID", std::int64_t{variant}}, {"nome", "v" + std::to_string(variant)}});
    shop.insert("dettagliop", {{"OpID", std::int64_t{variant}}, {"codice", " c" + std::to_string(variant) + " "}});
  }
  shop.article("cat001",
               {{"opzione1", std::int64_t{2}}, {"opzione2", std::int64_t{3}}, {"opzione1_4", std::int64_t{4}}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT codice, OpID FROM opcodici ORDER BY OpID"), "c2|2\nc4|4");
  EXPECT_EQ(shop.rows("SELECT ID FROM opzioni ORDER BY ID"), "2\n3\n4");
}

}  // namespace
}  // namespace kv::test
