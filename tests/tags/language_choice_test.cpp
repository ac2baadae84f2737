// The languages of the shop: what the boxes offer, what OK stores, and the return to language 1.
#include "tags/language/language_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Modules = std::vector<std::string>;

const Modules modules{"francese", "inglese", "italiano"};

TEST(LanguageModules, AreNamedByTheirFiles) {
  const test::TempFolder application;
  ASSERT_TRUE(createFolder(application / "languages"));
  for (const char* name : {"italiano.lng", "Inglese.LNG", "italiano.gif", "nota.txt"}) {
    ASSERT_TRUE(writeBytes(application / (std::string("languages/") + name), "x"));
  }
  EXPECT_EQ(languageModules(application.path()), (Modules{"Inglese", "italiano"}));
}

TEST(LanguageModules, AreNoneWithoutTheirFolder) {
  const test::TempFolder application;
  EXPECT_THAT(languageModules(application.path()), IsEmpty());
}

TEST(LanguageChoiceBoxes, BeyondTheNumberAreDisabled) {
  LanguageChoice choice{2, {"italiano", "inglese", "", ""}};
  EXPECT_TRUE(choice.isEnabled(1));
  EXPECT_TRUE(choice.isEnabled(2));
  EXPECT_FALSE(choice.isEnabled(3));
  EXPECT_FALSE(choice.isEnabled(4));
  choice.setCount(4, modules);
  EXPECT_TRUE(choice.isEnabled(4));
}

TEST(LanguageChoiceBoxes, KeepTheirCodesWhenTheNumberGoesDownAndUpAgain) {
  LanguageChoice choice{3, {"italiano", "inglese", "francese", ""}};
  choice.setCount(1, modules);
  choice.setCount(3, modules);
  EXPECT_THAT(choice.codes, ElementsAre("italiano", "inglese", "francese", ""));
}

TEST(LanguageChoiceBoxes, TakeAModuleThatNoOtherShowsWhenTheyComeIntoUse) {
  LanguageChoice choice{1, {"francese", "", "", ""}};
  choice.setCount(4, modules);
  EXPECT_THAT(choice.codes, ElementsAre("francese", "inglese", "italiano", "francese"));
}

TEST(LanguageChoiceBoxes, OfferOneToFourLanguages) {
  LanguageChoice choice;
  choice.setCount(9, modules);
  EXPECT_EQ(choice.count, 4);
  choice.setCount(0, modules);
  EXPECT_EQ(choice.count, 1);
}

TEST(LanguageChoiceBoxes, InUseWithoutACodeAreNoChoice) {
  LanguageChoice choice{1, {"italiano", "", "", ""}};
  EXPECT_TRUE(choice.canAccept());
  choice.setCount(2, Modules{});
  EXPECT_FALSE(choice.canAccept()) << "no module is installed to take";
}

class StoringLanguages : public test::ShopFixture {
 protected:
  void SetUp() override {
    folder = makeShop("uno");
    run(folder, "UPDATE lingue SET lingua1 = 'italiano', lingua2 = 'inglese', lingua3 = 'francese'");
    session.ShopFolder = folder;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    hooks.MostraLingue = [this] { calls.push_back("MostraLingue " + std::to_string(session.languageCount)); };
    hooks.CambiaLingua = [this](int language) { calls.push_back("CambiaLingua " + std::to_string(language)); };
  }

  std::string stored() {
    const auto value = session.catalogue.scalar(
        "SELECT lingua1 || '|' || lingua2 || '|' || lingua3 || '|' || IFNULL(lingua4, 'null') FROM lingue");
    return value ? asText(*value) : "failed";
  }

  std::string folder;
  LanguageHooks hooks;
  std::vector<std::string> calls;
};

TEST_F(StoringLanguages, StartsOnTheShopsOwn) {
  const LanguageChoice choice = languagesOf(session);
  EXPECT_EQ(choice.count, 3);
  EXPECT_THAT(choice.codes, ElementsAre("italiano", "inglese", "francese", ""));
}

TEST_F(StoringLanguages, WritesNumberAndCodesToTheTableAndTheSession) {
  ASSERT_TRUE(storeLanguages(session, {4, {"italiano", "inglese", "francese", "tedesco"}}, hooks));
  EXPECT_EQ(stored(), "italiano|inglese|francese|tedesco");
  EXPECT_EQ(session.languageCount, 4);
  EXPECT_THAT(session.languageNames, ElementsAre("italiano", "inglese", "francese", "tedesco"));
  EXPECT_THAT(calls, ElementsAre("MostraLingue 4"));
}

TEST_F(StoringLanguages, EmptiesTheCodesBeyondTheNumberSoThatItIsReadBack) {
  ASSERT_TRUE(storeLanguages(session, {2, {"italiano", "inglese", "francese", ""}}, hooks));
  EXPECT_EQ(stored(), "italiano|inglese||");
  ASSERT_TRUE(readLanguages(session));
  EXPECT_EQ(session.languageCount, 2);
}

TEST_F(StoringLanguages, GoesBackToTheFirstWhenTheLanguageBeingEditedIsBeyondTheNumber) {
  session.currentLanguage = 3;
  ASSERT_TRUE(storeLanguages(session, {2, {"italiano", "inglese", "", ""}}, hooks));
  EXPECT_THAT(calls, ElementsAre("MostraLingue 2", "CambiaLingua 1"));
}

TEST_F(StoringLanguages, StaysOnALanguageThatIsStillThere) {
  session.currentLanguage = 2;
  ASSERT_TRUE(storeLanguages(session, {2, {"italiano", "inglese", "", ""}}, hooks));
  EXPECT_THAT(calls, ElementsAre("MostraLingue 2"));
}

TEST_F(StoringLanguages, NeedsNoHooks) {
  session.currentLanguage = 3;
  EXPECT_TRUE(storeLanguages(session, {1, {"tedesco", "", "", ""}}, {}));
  EXPECT_EQ(stored(), "tedesco|||");
}

TEST_F(StoringLanguages, KeepsACodeThatTheModuleFolderLacks) {
  ASSERT_TRUE(storeLanguages(session, {1, {"klingon", "", "", ""}}, hooks));
  EXPECT_EQ(stored(), "klingon|||");
}

TEST_F(StoringLanguages, LeavesTheSessionAloneWhenTheTableCannotBeWritten) {
  ASSERT_TRUE(session.catalogue.execute("DROP TABLE lingue"));
  EXPECT_FALSE(storeLanguages(session, {1, {"tedesco", "", "", ""}}, hooks));
  EXPECT_EQ(session.languageCount, 3);
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace kv
