// Language modules: the sections of a file, the lookups, and what is added to an older module on disk.
#include "tags/language/language_module.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;

std::string textOf(std::string_view module, std::string_view name) {
  return LanguageModule::parse(module).TagLingua(name);
}

TEST(LanguageModule, ATextIsItsLinesJoinedByCrLf) {
  EXPECT_EQ(textOf("<<4-a>>\r\nuno\r\ndue\r\n<<4-b>>\r\ntre", "a"), "uno\r\ndue");
  EXPECT_EQ(textOf("<<4-a>>\nuno\ndue\n<<4-b>>\ntre", "b"), "tre");
}

TEST(LanguageModule, ALastSectionWithoutTextGivesAnEmptyText) {
  EXPECT_EQ(textOf("<<4-a>>\r\nuno\r\n<<4-b>>\r\n", "b"), "");
  EXPECT_EQ(textOf("<<4-b>>", "b"), "");
}

TEST(LanguageModule, CommentsHeadingsAndEmptyLinesAreNoPartOfAText) {
  EXPECT_EQ(textOf("<<4-a>>\r\nuno\r\n\r\n/ nota\r\n// nota\r\n[Titolo]\r\ndue\r\n", "a"), "uno\r\ndue");
}

TEST(LanguageModule, ALineOfSpacesOrWithSpacesBeforeASlashIsText) {
  EXPECT_EQ(textOf("<<4-a>>\r\n \r\n /b>\r\n", "a"), " \r\n /b>");
}

TEST(LanguageModule, LinesBeforeTheFirstSectionBelongToNone) {
  const auto module = LanguageModule::parse("Korvane\r\n<<4-a>>\r\nuno");
  EXPECT_EQ(module.size(), 1U);
  EXPECT_EQ(module.TagLingua("a"), "uno");
}

TEST(LanguageModule, ASectionLineMayHaveSpacesAroundItButNoText) {
  EXPECT_EQ(textOf("  <<4-a>> \r\nvedi <<4-b>>\r\n", "a"), "vedi <<4-b>>");
}

TEST(LanguageModule, TheFirstOfTwoSectionsOfOneNameWins) {
  EXPECT_EQ(textOf("<<4-a>>\r\nuno\r\n<<4-a>>\r\ndue\r\n", "a"), "uno");
}

TEST(LanguageModule, ABareNameAndAWholeTagGiveTheSameText) {
  const auto module = LanguageModule::parse("<<4-pay_ok>>\r\nGrazie");
  EXPECT_EQ(module.TagLingua("pay_ok"), "Grazie");
  EXPECT_EQ(module.TagLingua("<<4-pay_ok>>"), "Grazie");
}

TEST(LanguageModule, AMissingTagIsItsOwnText) {
  const auto module = LanguageModule::parse("<<4-nome>>\r\nx");
  EXPECT_EQ(module.TagLingua("altro"), "<<4-altro>>");
  EXPECT_EQ(module.TagLingua("<<4-Nome>>"), "<<4-Nome>>");
  EXPECT_EQ(LanguageModule().TagLingua("a"), "<<4-a>>");
  EXPECT_EQ(module.find("altro"), nullptr);
}

TEST(LanguageModule, ANameThatHoldsAnotherTagIsFoundAtItsFirstTag) {
  const auto module = LanguageModule::parse("<<4-a>> x <<4-b>>\r\nuno\r\n<<4-b>>\r\ndue");
  EXPECT_EQ(module.TagLingua("a"), "uno");
  EXPECT_EQ(module.TagLingua("b"), "<<4-b>>") << "its first position has no number before it";
  EXPECT_EQ(module.TagLingua("<<4-a>> x <<4-b>>"), "uno");
  EXPECT_EQ(module.TagLingua("a>>002<<4-b"), "<<4-a>>002<<4-b>>");
}

TEST(LanguageModule, ANameIsFoundAcrossTwoSections) {
  EXPECT_EQ(textOf("<<4-a>>\r\nuno\r\n<<4-b>>\r\ndue", "a>>002<<4-b"), "uno");
}

TEST(LanguageModule, DigitsBeforeATagInsideANameAreASectionsNumber) {
  EXPECT_EQ(textOf("<<4-x002<<4-b>>\r\nuno\r\n<<4-c>>\r\ndue", "b"), "due");
  EXPECT_EQ(textOf("<<4-x009<<4-b>>\r\nuno\r\n<<4-c>>\r\ndue", "b"), "<<4-b>>");
}

TEST(LanguageModule, AThousandthSectionIsFoundLikeTheOthers) {
  std::string text;
  for (int i = 1; i <= 1001; ++i) text += "<<4-t" + std::to_string(i) + ">>\r\n" + std::to_string(i) + "\r\n";
  const auto module = LanguageModule::parse(text);
  EXPECT_EQ(module.size(), 1001U);
  for (const char* number : {"1", "999", "1000", "1001"})
    EXPECT_EQ(module.TagLingua(std::string("t") + number), number);
}

constexpr std::string_view english =
    "Sorry, you're not allowed to buy on this store: please apply to the store manager for further information";

std::string completed(const std::string& code, std::string_view before) {
  const TempFolder folder;
  const std::string path = folder / (code + ".lng");
  EXPECT_TRUE(writeBytes(path, before));
  EXPECT_TRUE(CaricaLngFile(folder.path(), code));
  return readBytes(path).value_or("unreadable");
}

TEST(CaricaLngFile, AnOlderModuleGetsThePricelistTextOfItsLanguageOnDisk) {
  EXPECT_EQ(completed("italiano", "<<4-a>>\r\nuno\r\n"),
            "<<4-a>>\r\nuno\r\n\r\n<<4-listino_obbligatorio>>\r\nSiamo spiacenti, non sei abilitato ad effettuare "
            "acquisti: per maggiori informazioni rivolgiti al gestore del negozio\r\n");
  EXPECT_EQ(completed("Francese", ""),
            "\r\n<<4-listino_obbligatorio>>\r\nNous sommes d&eacutesol&eacutes, mais vous n'avez pas la facult&eacute "
            "de faire des achats sur ce site. Pour plus d'information, veuillez contacter nostre service client.\r\n");
  const std::string rest = "\r\n<<4-listino_obbligatorio>>\r\n" + std::string(english) + "\r\n";
  EXPECT_EQ(completed("inglese", ""), rest);
  EXPECT_EQ(completed("tedesco", "<<4-a>>\r\nz\xFCg\x81"), "<<4-a>>\r\nz\xFCg\x81\r\n" + rest) << "bytes are kept";
}

TEST(CaricaLngFile, AModuleWithThePricelistTextIsNotWritten) {
  const std::string text = "[X]\n<<4-listino_obbligatorio>>\nno";
  EXPECT_EQ(completed("italiano", text), text);
}

TEST(CaricaLngFile, TheAddedTextIsInTheModule) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "Inglese.LNG", "<<4-a>>\r\npi\xF9\r\n"));
  const auto module = CaricaLngFile(folder.path(), "inglese");
  ASSERT_TRUE(module);
  EXPECT_EQ(module->TagLingua("listino_obbligatorio"), english);
  EXPECT_EQ(module->TagLingua("a"), "più");
}

TEST(CaricaLngFile, AMissingModuleIsAFailure) {
  const TempFolder folder;
  const auto module = CaricaLngFile(folder.path(), "inglese");
  ASSERT_FALSE(module);
  EXPECT_EQ(module.error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv
