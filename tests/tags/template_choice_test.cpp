// The choice of the template package: what is offered, shown, selected by typing, and returned.
#include "tags/package/template_choice.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;

class TheTemplateChoice : public ::testing::Test {
 protected:
  TheTemplateChoice() {
    put("base/modello1.htm");
    put("blu/modello1.htm");
    put("blu/kvan_preview.jpg", "picture");
    put("blu/kvan_note.txt", "Prima riga\r\nCitt\xE0\r\n");
    put("senza modelli/kvan_note.txt");
  }

  void put(const std::string& file, std::string_view bytes = "x") {
    const std::string path = root / ("template/" + file);
    ASSERT_TRUE(createFolders(std::string(folderOf(path))));
    ASSERT_TRUE(writeBytes(path, bytes));
  }
  TemplateChoice open(std::string_view current) const { return {root.path(), current}; }

  test::TempFolder root;
};

TEST_F(TheTemplateChoice, OffersTheFoldersThatHoldAModel) { EXPECT_EQ(open("").packages(), (Names{"base", "blu"})); }

TEST_F(TheTemplateChoice, OpensOnTheShopsOwnPackage) { EXPECT_EQ(open("blu").selectedName(), "blu"); }

TEST_F(TheTemplateChoice, FindsTheShopsPackageInAnyCase) { EXPECT_EQ(open("BLU").selectedName(), "blu"); }

TEST_F(TheTemplateChoice, OpensOnNothingWhenThePackageIsNotInstalled) {
  const auto choice = open("rosso");
  EXPECT_FALSE(choice.canAccept());
  EXPECT_EQ(choice.accept(), "");
}

TEST_F(TheTemplateChoice, TypingSelectsTheEntryOfExactlyThatText) {
  auto choice = open("");
  choice.type("bl");
  EXPECT_EQ(choice.selectedName(), "");
  choice.type("blu");
  EXPECT_EQ(choice.selectedName(), "blu");
  choice.type("Blu");
  EXPECT_FALSE(choice.canAccept());
  choice.type("blu ");
  EXPECT_FALSE(choice.canAccept());
}

TEST_F(TheTemplateChoice, ShowsPictureAndNoteOfTheSelectedPackage) {
  auto choice = open("blu");
  EXPECT_EQ(choice.preview(), root / "template/blu/kvan_preview.jpg");
  EXPECT_EQ(choice.note(), "Prima riga\r\nCittà\r\n");
}

TEST_F(TheTemplateChoice, ShowsNoneOfThemWhereTheyAreAbsent) {
  auto choice = open("blu");
  choice.select(0);
  EXPECT_EQ(choice.selectedName(), "base");
  EXPECT_EQ(choice.preview(), "");
  EXPECT_EQ(choice.note(), "");
  choice.type("");
  EXPECT_EQ(choice.preview(), "");
}

TEST_F(TheTemplateChoice, ShowsANoteOfAnySizeWhole) {
  const std::string note(300'000, 'n');
  put("blu/kvan_note.txt", note);
  EXPECT_EQ(open("blu").note(), note);
}

TEST_F(TheTemplateChoice, ReturnsTheFirstFiftyCharacters) {
  std::string name;
  for (int i = 0; i < 60; ++i) name += "è";
  put(name + "/modello1.htm");
  auto choice = open(name);
  EXPECT_EQ(choice.accept(), name.substr(0, 50 * std::string_view("è").size()));
}

TEST_F(TheTemplateChoice, IgnoresAnIndexBeyondTheList) {
  auto choice = open("base");
  choice.select(7);
  EXPECT_EQ(choice.selectedName(), "base");
}

TEST(TemplateChoiceWithoutPackages, OffersNothing) {
  const test::TempFolder empty;
  const TemplateChoice choice(empty.path(), "base");
  EXPECT_TRUE(choice.packages().empty());
  EXPECT_FALSE(choice.canAccept());
}

}  // namespace
}  // namespace kv
