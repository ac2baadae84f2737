// The merchant's own tags as they are edited, and the files that OK writes, byte by byte.
#include "tags/custom/tag_editor.h"

#include <gtest/gtest.h>

#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"

namespace kv {
namespace {

class EditingTags : public test::ShopFixture {
 protected:
  void SetUp() override {
    folder = makeShop("uno");
    session.ShopFolder = folder;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  }

  TagEditor load() { return TagEditor::load(session, application); }
  void save(const TagEditor& editor) {
    const auto saved = editor.save(session, application);
    ASSERT_TRUE(saved) << saved.error().what;
  }
  static std::string bytes(const std::string& path) { return readBytes(path).value_or("(none)"); }
  std::string personal(const std::string& ending) const { return bytes(application + "/personal." + ending); }
  std::string shoptag(const std::string& ending) const { return bytes(folder + "/shoptag." + ending); }
  std::string storedSwitch() {
    const auto value = session.catalogue.scalar("SELECT personaltags FROM generale");
    return value ? asText(*value) : "failed";
  }

  /// Appends a tag that is filled in.
  static void append(TagEditor& editor, std::string_view name, std::string_view text, bool ofShop = false) {
    ASSERT_TRUE(editor.add());
    const std::size_t last = editor.tags().size() - 1;
    editor.setName(last, name);
    editor.setText(last, text);
    editor.setOfShop(last, ofShop);
  }

  std::string folder;
};

TEST_F(EditingTags, ListsTheShopsTagsBeforeThoseOfAllShops) {
  write(application + "/personal.tag", "<<5-firma>>\r\nMario\r\n");
  write(folder + "/shoptag.tag", "<<5-orari>>\r\n9-13\r\n\r\n15-19\r\n");
  const TagEditor editor = load();
  ASSERT_EQ(editor.tags().size(), 2U);
  EXPECT_EQ(editor.line(0), "<<5-orari>>");
  EXPECT_EQ(editor.tags()[0].text, "9-13\r\n\r\n15-19");
  EXPECT_TRUE(editor.tags()[0].ofShop);
  EXPECT_EQ(editor.line(1), "<<5-firma>>");
  EXPECT_FALSE(editor.tags()[1].ofShop);
}

TEST_F(EditingTags, ShowsTheSwitchOfTheShop) {
  EXPECT_FALSE(load().isEnabled());
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET personaltags = '1'"));
  EXPECT_TRUE(load().isEnabled());
}

TEST_F(EditingTags, ANewTagIsAnEmptyLineForAllShops) {
  TagEditor editor = load();
  ASSERT_TRUE(editor.add());
  EXPECT_EQ(editor.line(0), "");
  EXPECT_FALSE(editor.tags()[0].ofShop);
}

TEST_F(EditingTags, TheNameRewritesTheLineAndClearingItEmptiesTheLine) {
  TagEditor editor = load();
  append(editor, "firma", "Mario");
  EXPECT_EQ(editor.line(0), "<<5-firma>>");
  editor.setName(0, "");
  EXPECT_EQ(editor.line(0), "");
}

TEST_F(EditingTags, TheThousandthTagOfBothFilesTogetherIsRefused) {
  std::string text;
  for (int i = 0; i < 600; ++i) text += "<<5-t" + std::to_string(i) + ">>\r\nx\r\n";
  write(application + "/personal.tag", text);
  write(folder + "/shoptag.tag", text);
  TagEditor editor = load();
  EXPECT_EQ(editor.tags().size(), 1200U) << "what the files hold is shown";
  EXPECT_FALSE(editor.add());
  while (editor.tags().size() > 998) editor.remove(0);
  EXPECT_TRUE(editor.add());
  EXPECT_FALSE(editor.add());
  EXPECT_EQ(editor.tags().size(), 999U);
}

TEST_F(EditingTags, RemovingTakesTheSelectedTagAlone) {
  TagEditor editor = load();
  append(editor, "a", "1");
  append(editor, "b", "2");
  append(editor, "c", "3");
  editor.remove(1);
  editor.remove(9);
  ASSERT_EQ(editor.tags().size(), 2U);
  EXPECT_EQ(editor.line(0), "<<5-a>>");
  EXPECT_EQ(editor.line(1), "<<5-c>>");
}

TEST_F(EditingTags, OkWritesEachTagToTheFileOfItsValidity) {
  TagEditor editor = load();
  append(editor, "firma", "Mario\nRossi");
  append(editor, "orari", "9-13", true);
  append(editor, "vuoto", "");
  editor.setEnabled(true);
  save(editor);
  EXPECT_EQ(personal("tag"), "<<5-firma>>\r\nMario\r\nRossi\r\n<<5-vuoto>>\r\n\r\n");
  EXPECT_EQ(shoptag("tag"), "<<5-orari>>\r\n9-13\r\n");
  EXPECT_EQ(storedSwitch(), "1");
  EXPECT_EQ(personal("new"), "(none)");
  EXPECT_EQ(shoptag("new"), "(none)");
}

TEST_F(EditingTags, WhatIsWrittenReadsBackTheSame) {
  TagEditor editor = load();
  append(editor, "a", "\n\nriga\n\n", true);
  append(editor, "b", "Città <b>€</b>");
  append(editor, "c", "");
  save(editor);
  const TagEditor again = load();
  ASSERT_EQ(again.tags().size(), 3U);
  EXPECT_EQ(again.tags()[0].text, "\r\n\r\nriga\r\n\r\n");
  EXPECT_EQ(again.tags()[1].text, "Città <b>€</b>");
  EXPECT_EQ(again.tags()[2].text, "");
}

TEST_F(EditingTags, TextIsWrittenInTheCodePageOfTheShop) {
  TagEditor editor = load();
  append(editor, "città", "perché");
  save(editor);
  EXPECT_EQ(personal("tag"), "<<5-citt\xE0>>\r\nperch\xE9\r\n");
}

TEST_F(EditingTags, ATagWithoutANameIsNotSaved) {
  TagEditor editor = load();
  append(editor, "", "perduto");
  append(editor, "", "perduto", true);
  save(editor);
  EXPECT_EQ(personal("tag"), "");
  EXPECT_EQ(shoptag("tag"), "(none)");
}

TEST_F(EditingTags, TheFilesInUseBecomeTheBackups) {
  write(application + "/personal.tag", "<<5-a>>\r\n1\r\n");
  write(application + "/personal.bak", "older");
  write(folder + "/shoptag.tag", "<<5-b>>\r\n2\r\n");
  write(folder + "/shoptag.bak", "older");
  TagEditor editor = load();
  append(editor, "c", "3", true);
  save(editor);
  EXPECT_EQ(personal("bak"), "<<5-a>>\r\n1\r\n");
  EXPECT_EQ(shoptag("bak"), "<<5-b>>\r\n2\r\n");
  EXPECT_EQ(shoptag("tag"), "<<5-b>>\r\n2\r\n<<5-c>>\r\n3\r\n");
}

TEST_F(EditingTags, WithoutATagOfTheShopItsFileOnlyBecomesTheBackup) {
  write(folder + "/shoptag.tag", "<<5-b>>\r\n2\r\n");
  TagEditor editor = load();
  editor.setOfShop(0, false);
  save(editor);
  EXPECT_EQ(shoptag("tag"), "(none)");
  EXPECT_EQ(shoptag("bak"), "<<5-b>>\r\n2\r\n");
  EXPECT_EQ(shoptag("new"), "(none)");
  EXPECT_EQ(personal("tag"), "<<5-b>>\r\n2\r\n");
}

TEST_F(EditingTags, FilesOfAnotherCaseAreReplacedAndNotDoubled) {
  write(application + "/PERSONAL.TAG", "<<5-a>>\r\n1\r\n");
  TagEditor editor = load();
  save(editor);
  EXPECT_EQ(listFiles(application, "personal.*"), (std::vector<std::string>{"personal.bak", "personal.tag"}));
}

TEST_F(EditingTags, TheSwitchAloneCanBeChanged) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET personaltags = '1'"));
  TagEditor editor = load();
  editor.setEnabled(false);
  save(editor);
  EXPECT_EQ(storedSwitch(), "0");
}

TEST_F(EditingTags, AFailureLeavesTheFilesInUse) {
  write(application + "/personal.tag", "<<5-a>>\r\n1\r\n");
  ASSERT_TRUE(createFolder(folder + "/shoptag.new"));  // a folder can't be written
  TagEditor editor = load();
  append(editor, "b", "2", true);
  EXPECT_FALSE(editor.save(session, application));
  EXPECT_EQ(personal("tag"), "<<5-a>>\r\n1\r\n");
  EXPECT_EQ(storedSwitch(), "");
}

TEST_F(EditingTags, ANameKeepsNoLineEnds) {
  TagEditor editor = load();
  append(editor, "a\r\nb", "x");
  EXPECT_EQ(editor.line(0), "<<5-ab>>");
}

}  // namespace
}  // namespace kv
