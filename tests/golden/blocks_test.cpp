// The rows of a golden case as it writes them: blocks, tables, cells and their quotes.

#include "support/golden_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv::test {
namespace {

using testing::ElementsAre;

// The blocks of a text, one a line.
std::string blocksAsText(std::string_view text) {
  const auto blocks = readBlocks(text);
  if (!blocks) return "not read: " + blocks.error().what;
  std::string out;
  for (const RowBlock& block : *blocks) {
    out += block.table + (block.count == 1 ? "" : " x " + std::to_string(block.count));
    for (const auto& [column, value] : block.fields) out += " " + column + "(" + value + ")";
    out += "\n";
  }
  return out;
}

TEST(GoldenBlocks, SpacesAroundACellDoNotCountUnlessTheyAreQuoted) {
  EXPECT_THAT(splitCells(R"( a b |c|  | " d " |)"), ElementsAre("a b", "c", "", R"(" d ")", ""));
}

TEST(GoldenBlocks, ASeparatorInQuotesBelongsToTheCell) {
  EXPECT_THAT(splitCells(R"("a | b" | x = "c|d" | y = 1)"), ElementsAre(R"("a | b")", R"(x = "c|d")", "y = 1"));
  EXPECT_THAT(splitCells(R"("a = b | c" | d)"), ElementsAre(R"("a = b | c")", "d"));
}

TEST(GoldenBlocks, AQuoteEndsACellOnlyBeforeASeparatorOrTheEnd) {
  EXPECT_THAT(splitCells(R"("Land | "CH"" | 3)"), ElementsAre(R"("Land | "CH"")", "3"));
  EXPECT_THAT(splitCells(R"("Shop "&" Co" | Chi"occiola | 5")"),
              ElementsAre(R"("Shop "&" Co")", R"(Chi"occiola)", R"(5")"));
}

TEST(GoldenBlocks, AQuoteThatNothingEndsIsACharacter) {
  EXPECT_THAT(splitCells(R"("a | b)"), ElementsAre(R"("a)", "b"));
}

TEST(GoldenBlocks, ABlockIsARowOfSeveralColumnsALine) {
  EXPECT_EQ(blocksAsText("[paesi]\nID = 1 | paese = \"A|B\"\nzona = null\n"),
            "paesi ID(1) paese(\"A|B\") zona(null)\n");
  EXPECT_EQ(blocksAsText("# two\n\n[articoli x 2]\ntitolo = A{n}\n"), "articoli x 2 titolo(A{n})\n");
}

TEST(GoldenBlocks, ATextOfSeveralLinesIsKeptAsItIs) {
  EXPECT_EQ(blocksAsText("[articoli]\nnote <<<\na | \"b\n\n [c]\n>>>\nID = 2\n"),
            "articoli note(a | \"b\r\n\r\n [c]) ID(2)\n");
}

TEST(GoldenBlocks, ATableHasARowALineAndAnEmptyCellLeavesItsColumnOut) {
  EXPECT_EQ(blocksAsText("[opzioni: ID | nome | nome_l2]\n1 | S |\n2 | | \"\"\n"),
            "opzioni ID(1) nome(S)\nopzioni ID(2) nome_l2(\"\")\n");
}

TEST(GoldenBlocks, EveryRowOfATableHasWhatItsHeadGives) {
  EXPECT_EQ(blocksAsText("[dettagliop: testo | OpID = 2]\nS\nM\n"),
            "dettagliop OpID(2) testo(S)\ndettagliop OpID(2) testo(M)\n");
}

TEST(GoldenBlocks, ARowWithAnotherNumberOfCellsThanItsTableIsNotRead) {
  EXPECT_EQ(blocksAsText("[opzioni: ID | nome]\n1\n"), "not read: 1");
  EXPECT_EQ(blocksAsText("[opzioni: ID | nome]\n1 | S |\n"), "not read: 1 | S |");
}

TEST(GoldenBlocks, AColumnXOfATableIsTheNumberOfSuchRows) {
  EXPECT_EQ(blocksAsText("[articoli: x | titolo]\n200 | A{n}\n1 | B\n"),
            "articoli x 200 titolo(A{n})\narticoli titolo(B)\n");
}

TEST(GoldenBlocks, ATableOfOneRowHasTheColumnsOfAllItsBlocksAndTheLastValues) {
  EXPECT_EQ(blocksAsText("[generale]\nURL = a | cambio = 1\n[zona1]\n[generale]\nURL = b | titolo = T\n"),
            "generale URL(b) cambio(1) titolo(T)\nzona1\n");
  EXPECT_EQ(blocksAsText("[paesi]\nID = 1\n[paesi]\nID = 2\n"), "paesi ID(1)\npaesi ID(2)\n");
}

TEST(GoldenBlocks, ALineThatIsNoColumnIsNotRead) {
  EXPECT_EQ(blocksAsText("[paesi]\nID 1\n"), "not read: ID 1");
  EXPECT_EQ(blocksAsText("ID = 1\n"), "not read: ID = 1");
}

}  // namespace
}  // namespace kv::test
