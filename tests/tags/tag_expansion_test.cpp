// EspandiTag: which tags are replaced by what, and where the search goes on.
#include <gtest/gtest.h>

#include <random>

#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"
#include "tags/map_row.h"
#include "tags/naive_tags.h"

namespace kv {
namespace {

using test::MapRow;

std::string expanded(std::string_view text, const TagContext& context, int kind) {
  const auto result = EspandiTag(text, context, kind);
  return result ? *result : "failed: " + result.error().what;
}
std::string expanded(std::string_view text, const MapRow& row, int kind = 1) {
  TagContext context;
  context.row = &row;
  return expanded(text, context, kind);
}
int failureNumber(std::string_view text, const MapRow& row) {
  TagContext context;
  context.row = &row;
  const auto result = EspandiTag(text, context, 1);
  if (result) return 0;
  EXPECT_EQ(result.error().kind, ErrorKind::Malformed);
  return result.error().number;
}

TEST(EspandiTag, ATagBecomesTheValueOfItsColumn) {
  EXPECT_EQ(expanded("a <<1-reparti>> b", MapRow{{"reparti", "<ul></ul>"}}), "a <ul></ul> b");
}

TEST(EspandiTag, EscapedAndMixedBracketsExpandLikePlainOnes) {
  const MapRow row{{"reparti", "R"}};
  for (const char* tag : {"<<1-reparti>>", "&lt;&lt;1-reparti&gt;&gt;", "%3C%3C1-reparti%3E%3E",
                          "%3c%3c1-reparti%3e%3e", "<&lt;1-reparti>&gt;", "&lt;<1-reparti&gt;>", "%3C<1-reparti>%3E"}) {
    EXPECT_EQ(expanded(tag, row), "R") << tag;
  }
}

TEST(EspandiTag, ATagOfNoColumnStaysInThePage) {
  EXPECT_EQ(expanded("a<<1-nonesiste>>b", MapRow{}), "a<<1-nonesiste>>b");
  EXPECT_EQ(expanded("a<<1->>b", MapRow{}), "a<<1->>b");
}

TEST(EspandiTag, WithoutARowEveryTagStays) { EXPECT_EQ(expanded("<<1-a>><<1-b>>", TagContext{}, 1), "<<1-a>><<1-b>>"); }

TEST(EspandiTag, AnArticleTagOfADepartmentPageBecomesAPhpCallWhateverItsName) {
  const MapRow row{{"titolo", "Scarpe"}};
  TagContext context;
  context.row = &row;
  context.reparto = true;
  EXPECT_EQ(expanded("<<2-nonesiste>>", context, 2), "<?php echo ViewArt(\"nonesiste\"); ?>");
  EXPECT_EQ(expanded("<<2-titolo>>", context, 2), "<?php echo ViewArt(\"titolo\"); ?>");
}

TEST(EspandiTag, AnArticleTagOutsideADepartmentPageTakesTheColumnAndElseThePhpCall) {
  const MapRow row{{"titolo", "Scarpe"}};
  EXPECT_EQ(expanded("<<2-titolo>> <<2-altro>>", row, 2), "Scarpe <?php echo ViewArt(\"altro\"); ?>");
}

TEST(EspandiTag, AResultTagIsReplacedByAPassOfItsKindOnly) {
  const MapRow row{{"ric_titolo", "$arg3"}};
  EXPECT_EQ(expanded("<<3-ric_titolo>>", row, 3), "$arg3");
  EXPECT_EQ(expanded("<<3-ric_titolo>>", row, 1), "<<3-ric_titolo>>");
}

TEST(EspandiTag, AColumnIsFoundInAnyCaseButAWordAndACustomTagExactly) {
  EXPECT_EQ(expanded("<<1-Reparti>>", MapRow{{"reparti", "R"}}), "R");
  const LanguageModule words = LanguageModule::parse("<<4-nome>>\r\nNome\r\n");
  CustomTags tags;
  tags.add("<<5-nome>>\r\nMio\r\n", true);
  TagContext context;
  context.words = &words;
  context.customTags = &tags;
  EXPECT_EQ(expanded("<<4-nome>> <<4-Nome>>", context, 4), "Nome <<4-Nome>>");
  EXPECT_EQ(expanded("<<5-nome>> <<5-Nome>>.", context, 5), "Mio .");
}

TEST(EspandiTag, AnEmptyColumnGivesNothingAndTheSearchGoesOnAtItsPosition) {
  const MapRow row{{"vuoto", ""}, {"a", "A"}};
  EXPECT_EQ(expanded("<<1-vuoto>><<1-a>>", row), "A");
  EXPECT_EQ(expanded("<<1-vuoto>><<1-vuoto>>", row), "");
  EXPECT_EQ(expanded("<<<1-vuoto>>1-a>>", row), "<1-a>>") << "the character before the tag is final";
}

TEST(EspandiTag, TheFirstPassOfADepartmentPageLeavesTheListForTheSecond) {
  const std::string page =
      expanded("<p><<1-titolo>><<1-elenco>></p>", MapRow{{"titolo", "T"}, {"elenco", "<<1-elenco>>"}});
  EXPECT_EQ(page, "<p>T<<1-elenco>></p>");
  EXPECT_EQ(expanded(page, MapRow{{"elenco", "<ol></ol>"}}), "<p>T<ol></ol></p>");
}

TEST(EspandiTag, ACustomTagIsLeftByThePassesOfTheOtherKinds) {
  const MapRow row{{"x", "no"}};
  TagContext context;
  context.row = &row;
  std::string page = "<<5-x>>";
  for (const int kind : {1, 4, 3, 2}) page = expanded(page, context, kind);
  EXPECT_EQ(page, "<<5-x>>");
}

TEST(EspandiTag, ANameMayHoldOneBracketThatCloses) {
  EXPECT_EQ(expanded("<<1-a>b>>", MapRow{{"a>b", "V"}}), "V");
  EXPECT_EQ(expanded("<<1-a>>>", MapRow{{"a", "V"}}), "V>");
}

TEST(EspandiTag, AValuesTagsAreExpandedExceptOneAtItsStart) {
  const MapRow row{{"a", "A"}, {"dopo", "x<<1-a>>y"}, {"prima", "<<1-a>>y"}};
  EXPECT_EQ(expanded("<<1-dopo>>", row), "xAy");
  EXPECT_EQ(expanded("<<1-prima>>", row), "<<1-a>>y");
}

TEST(EspandiTag, TheFirstCharacterThatIsFinalMayTakeTwoBytes) {
  EXPECT_EQ(expanded("<<1-c>>", MapRow{{"a", "A"}, {"c", "è<<1-a>>"}}), "èA");
}

TEST(EspandiTag, AValuesEndAndTheTextAfterItFormATag) {
  const MapRow row{{"a", "A"}, {"fine", "x<"}, {"fine2", "x<<1"}, {"fine3", "x<<1-a"}, {"solo", "<"}};
  EXPECT_EQ(expanded("<<1-fine>><1-a>>.", row), "xA.");
  EXPECT_EQ(expanded("<<1-fine2>>-a>>.", row), "xA.");
  EXPECT_EQ(expanded("<<1-fine3>>>>.", row), "xA.");
  EXPECT_EQ(expanded("<<1-solo>><1-a>>.", row), "<<1-a>>.") << "its only character is final";
}

TEST(EspandiTag, AStayingTagIsSearchedAfterItsFirstCharacter) {
  EXPECT_EQ(expanded("<<1-no<<1-a>>", MapRow{{"a", "A"}}), "<<1-noA");
}

TEST(EspandiTag, TheCounterIsANumberOrOnADepartmentPageAPhpText) {
  TagContext context;
  context.contatore = 3;
  for (int kind = 1; kind <= 5; ++kind) {
    const std::string tag = "<<" + std::to_string(kind) + "-/COUNTER/>>";
    context.reparto = false;
    EXPECT_EQ(expanded("<a name=" + tag + "></a>", context, kind), "<a name=3></a>");
    context.reparto = true;
    EXPECT_EQ(expanded(tag, context, kind), "<?php echo $Contatore; ?>");
  }
  context.reparto = false;
  context.contatore = 0;
  EXPECT_EQ(expanded("<<2-/COUNTER/>>", context, 2), "0");
}

TEST(EspandiTag, ATagWithoutAnEndFails) {
  EXPECT_EQ(failureNumber("a<<1-titolo", MapRow{}), 5);
  EXPECT_EQ(failureNumber("<<1-a>> <<1-", MapRow{{"a", "A"}}), 5);
  EXPECT_EQ(failureNumber("<<1-a>", MapRow{{"a", "A"}}), 5);
}

TEST(EspandiTag, ATagThatAValueLeavesOpenFails) { EXPECT_EQ(failureNumber("<<1-a>> end", MapRow{{"a", "x<<1-b"}}), 5); }

TEST(EspandiTag, AColumnThatHoldsItsOwnTagFailsInsteadOfGoingOnForEver) {
  EXPECT_EQ(failureNumber("<<1-a>>", MapRow{{"a", "x<<1-a>>"}}), 28);
  EXPECT_EQ(failureNumber("<<1-a>>", MapRow{{"a", "x<<1-b>>"}, {"b", "y<<1-a>><<1-a>>"}}), 28);
  EXPECT_EQ(failureNumber("<<1-a>>", MapRow{{"a", "x<<1-a>>" + std::string(1U << 20U, 'z')}}), 28);
}

TEST(EspandiTag, ManyTagsOfTheTextItselfAreNoEndlessTags) {
  std::string text;
  for (int i = 0; i < 150'000; ++i) text += "<<1-a>>";
  EXPECT_EQ(expanded(text, MapRow{{"a", "A"}}), std::string(150'000, 'A'));
}

TEST(EspandiTag, ALongRunOfOpenedTagsTakesLinearTime) {
  std::string text;
  for (int i = 0; i < 200'000; ++i) text += "<<4-";
  const LanguageModule words = LanguageModule::parse("<<4-a>>\r\nA");
  TagContext context;
  context.words = &words;
  EXPECT_EQ(expanded(text + "a>>", context, 4), text.substr(4) + "A");
}

TEST(EspandiTag, ATextWithoutTagsComesBackAsItIs) {
  const std::string text = "<p>a < b && c > d\r\n%3A</p>\xE8\0z";
  EXPECT_EQ(expanded(text, MapRow{}), text);
  EXPECT_EQ(expanded("", MapRow{}), "");
}

TEST(EspandiTag, AnyTextGivesWhatTheRulesTakenStepByStepGive) {
  const MapRow row{{"a", "x"},
                   {"b", ""},
                   {"c", "y<<1-a>>z<"},
                   {"d", "<<1-b>><<1-a>>"},
                   {"e", "q<"},
                   {"f", "q<<1"},
                   {"g", "q<<1-a"},
                   {"h", "<<1-h>>"},
                   {"i", "è<<"},
                   {"l", "<"},
                   {"m", "<<<1-e>>"},
                   {"n", "-a>>-a>>"},
                   {"o", "&lt;&lt;1-a>>"}};
  const LanguageModule words = LanguageModule::parse("<<4-a>>\nx<<4-b>>y<<4\n<<4-b>>\n<<4-c>>\nq<<4-\n<<4-d>>\n<\n");
  CustomTags custom;
  custom.add("<<5-a>>\nx<<5-b>>y<<5\n<<5-b>>\n<<5-c>>\nq<<5-\n<<5-d>>\n\n<", true);
  const std::vector<std::string> pieces{
      "<", "<<",   "K-",   "<<K-", ">",   ">>",      "a",       "b",       "c",         "d",       "e",
      "f", "g",    "h",    "i",    "l",   "m",       "n",       "o",       "/COUNTER/", "è",       "-",
      "K", "&lt;", "&gt;", "%3C",  "%3e", "<<K-a>>", "<<K-c>>", "<<K-e>>", "<<K-f>>",   "<<K-g>>", "<<K-b>>"};
  std::mt19937 random(20240607);
  int failures = 0;
  for (int i = 0; i < 60'000; ++i) {
    TagContext context;
    context.row = &row;
    context.words = &words;
    context.customTags = &custom;
    context.reparto = random() % 2 == 0;
    const int kind = static_cast<int>(random() % 5) + 1;
    std::string text;
    for (auto left = random() % 24; left > 0; --left) text += pieces[random() % pieces.size()];
    for (char& c : text) c = c == 'K' ? static_cast<char>('0' + kind) : c;
    const auto wanted = test::naiveEspandiTag(text, context, kind, 500);
    const auto got = EspandiTag(text, context, kind);
    ASSERT_EQ(got.has_value(), wanted.has_value()) << text << " kind " << kind;
    if (got) {
      ASSERT_EQ(*got, *wanted) << text << " kind " << kind;
    } else {
      ++failures;
    }
  }
  EXPECT_GT(failures, 100);
  EXPECT_LT(failures, 50'000);
}

}  // namespace
}  // namespace kv
