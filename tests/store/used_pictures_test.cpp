// Which columns of the catalogue name pictures that are in use.
#include "store/catalogue/used_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "support/failing_files.h"

namespace kv {
namespace {

using ::testing::UnorderedElementsAre;

class UsedPictures : public test::ShopFixture {
 protected:
  std::vector<std::string> used() const {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared).value();
    std::vector<std::string> names;
    EXPECT_TRUE(usedPictures(catalogue, [&](std::string_view name) { names.emplace_back(name); }));
    return names;
  }
  std::string folder = makeShop("uno");
};

TEST_F(UsedPictures, AreThoseOfLogosDepartmentsAndArticles) {
  run(folder,
      "UPDATE generale SET immagine0 = 'logo.gif', immagine1 = 'piccolo.gif';"
      "INSERT INTO categorie (ID, contatore, immagine0, immagine1, immagine1_l2, immagine1_l3, immagine1_l4)"
      " VALUES ('cat001', 1, 'a', 'b', 'c', 'd', 'e');"
      "UPDATE articoli SET immagine0 = 'x', immagine1 = 'y', immagine2 = 'z'");
  EXPECT_THAT(used(), UnorderedElementsAre("logo.gif", "piccolo.gif", "a", "b", "c", "d", "e", "x", "y", "z"));
}

TEST_F(UsedPictures, AButtonOfOneLanguageAloneCounts) {
  run(folder, "INSERT INTO categorie (ID, contatore, immagine1_l3) VALUES ('cat001', 1, 'solo.gif')");
  EXPECT_THAT(used(), UnorderedElementsAre("solo.gif"));
}

TEST_F(UsedPictures, TemplatesAndTextsAreNotSearched) {
  run(folder,
      "UPDATE generale SET testo1 = '<img src=testo.gif>', template = 'base';"
      "INSERT INTO categorie (ID, contatore, template, descrizione) VALUES ('cat001', 1, 'modello.gif', 'd.gif')");
  write(application + "/template/base/modello1.htm", "<img src=\"solo.gif\">");
  EXPECT_THAT(used(), UnorderedElementsAre());
}

TEST_F(UsedPictures, ClipboardVariantsAndSecondSettingsDoNotCount) {
  run(folder,
      "INSERT INTO cliparticoli (immagine0) VALUES ('a'); INSERT INTO clipcategorie (immagine0) VALUES ('b');"
      "INSERT INTO opzioni (nome) VALUES ('c.gif'); INSERT INTO generale (immagine0) VALUES ('d')");
  EXPECT_THAT(used(), UnorderedElementsAre());
}

TEST_F(UsedPictures, EveryTextButTheClipboardsIsReadForMentions) {
  run(folder,
      "UPDATE articoli SET descrizione_l2 = 'inglese.gif'; UPDATE generale SET condizioni = 'testo.gif';"
      "INSERT INTO cliparticoli (ID, descrizione) VALUES (1, 'appunti.gif')");
  auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
  ASSERT_TRUE(catalogue);
  std::string all;
  ASSERT_TRUE(readAllTexts(*catalogue, [&](std::string_view text) { all += text; }));
  EXPECT_NE(all.find("inglese.gif"), std::string::npos);
  EXPECT_NE(all.find("testo.gif"), std::string::npos);
  EXPECT_EQ(all.find("appunti.gif"), std::string::npos);
}

TEST_F(UsedPictures, TheTextsOfATemplateAreThoseOfItsPagesStylesAndScripts) {
  const std::string package = application + "/template/mio";
  write(package + "/index.htm", "pagina.gif");
  write(package + "/stile.css", "stile.gif");
  write(package + "/kvan_logo.gif", "immagine.gif");
  std::string all;
  const auto add = [&](std::string_view text) { all += text; };
  ASSERT_TRUE(readTemplateTexts(package, add));
  EXPECT_EQ(all, "pagina.gifstile.gif");
  all.clear();
  {
    test::FailingFiles gate(1);
    gate.onlyFor("index.htm");
    EXPECT_FALSE(readTemplateTexts(package, add));
    EXPECT_EQ(all, "stile.gif") << "the others are read all the same";
  }
  test::FailingFiles gate(1);
  gate.onlyAt({FileStep::List});
  EXPECT_FALSE(readTemplateTexts(package, add));
}

}  // namespace
}  // namespace kv
