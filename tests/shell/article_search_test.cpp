// The search for articles by the words of a column.

#include "shell/dialogs/article_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/schema/schema.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class ArticleSearch : public ::testing::Test {
 protected:
  ArticleSearch() {
    const std::string path = folder / "catalog.mdb";
    EXPECT_TRUE(createDatabase(path, catalogueTables()));
    auto opened = Database::open(path, OpenMode::Exclusive).value();
    session.catalogue = std::move(opened);
    session.languageCount = 2;
  }
  void article(const std::string& department, int order, const std::string& title, const std::string& english = "") {
    const auto done = session.catalogue.execute(
        "INSERT INTO articoli (catID, ordinamento, codice, titolo, titolo_l2) "
        "VALUES ('" +
        department + "', " + std::to_string(order) + ", 'C" + std::to_string(order) + "', '" + title + "', '" +
        english + "')");
    ASSERT_TRUE(done) << done.error().what;
  }
  std::vector<std::string> titles(const std::string& text, bool words, const std::string& column = "titolo") {
    auto hits = findArticles(session, column, text, words).value();
    std::vector<std::string> found;
    for (const ArticleHit& hit : hits) found.push_back(hit.titolo);
    return found;
  }

  TempFolder folder;
  Session session;
};

TEST_F(ArticleSearch, AWholeWordNeedsANeighbouringCharacter) {
  int order = 0;
  for (const char* title : {"blu scuro", "un blu", "blu", "bluastro", "il blu e", "rosso/blu-verde"}) {
    article("cat001", ++order, title);
  }
  EXPECT_THAT(titles("blu", true), ElementsAre("blu scuro", "un blu", "il blu e", "rosso/blu-verde"));
}

TEST_F(ArticleSearch, APartIsFoundAnywhereWhateverItsCase) {
  article("cat001", 1, "Vaso BLU");
  article("cat001", 2, "bluastro");
  article("cat001", 3, "rosso");
  EXPECT_THAT(titles("blu", false), ElementsAre("Vaso BLU", "bluastro"));
}

TEST_F(ArticleSearch, WildcardsMatchCharacters) {
  article("cat001", 1, "tazza alta");
  article("cat001", 2, "tazzina");
  EXPECT_THAT(titles("t?zz*ta", false), ElementsAre("tazza alta"));
}

TEST_F(ArticleSearch, HitsComeByDepartmentAndPosition) {
  article("cat002", 1, "vaso b");
  article("cat001", 9, "vaso c");
  article("cat001", 2, "vaso a");
  EXPECT_THAT(titles("vaso", false), ElementsAre("vaso a", "vaso c", "vaso b"));
}

TEST_F(ArticleSearch, ReadsTheLanguageBeingEditedAndTheCodeOfAll) {
  article("cat001", 7, "vaso", "vase");
  session.currentLanguage = 2;
  EXPECT_THAT(titles("vase", false), ElementsAre("vase"));
  EXPECT_THAT(titles("vaso", false), ElementsAre());
  EXPECT_THAT(titles("C7", false, "codice"), ElementsAre("vase"));
  EXPECT_THAT(titles("1", false, "ID"), ElementsAre("vase"));
}

TEST_F(ArticleSearch, AQuoteOrABracketInTheTextHarmsNothing) {
  article("cat001", 1, "vaso");
  EXPECT_THAT(titles("'; DROP TABLE articoli; --", false), ElementsAre());
  EXPECT_THAT(titles("vaso", false), ElementsAre("vaso"));
}

TEST(SearchCharacters, AreThoseOfItalianWordsAndTwoWildcards) {
  for (const char* letter : {"a", "Z", "7", " ", "*", "?", "à", "ù"}) EXPECT_TRUE(isSearchCharacter(letter)) << letter;
  for (const char* letter : {"[", "'", "-", "ñ", "é€", "_"}) EXPECT_FALSE(isSearchCharacter(letter)) << letter;
}

}  // namespace
}  // namespace kv::test
