// Cells of chance in the sheet: what is written there is what the editors of the main window would write, with the same
// reason where it is refused; whatever was replaced, stepped or pasted is undone to equal rows; and a store that fails
// at any moment leaves every row as it was.
#include <random>

#include "shell/sheet/price_step.h"
#include "shell/sheet/text_replacement.h"
#include "shell/sheet_fixture.h"
#include "support/failing_store.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class SheetOfChance : public SheetFixture {
 protected:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }
  std::string anyOf(const std::vector<std::string>& texts) {
    return texts[static_cast<std::size_t>(upTo(static_cast<int>(texts.size()) - 1))];
  }
  std::string chanceNumber() {
    std::string number;
    for (int i = upTo(upTo(3) == 0 ? 17 : 6); i >= 0; --i) number += static_cast<char>('0' + upTo(9));
    // Three decimals could be a thousand, which the sheet reads as pasted.
    if (upTo(1) == 0) number += "," + anyOf({"5", "25", "1234", "00"});
    return number;
  }
  std::string chanceWords() {
    static const std::vector<std::string> pieces{"a", "Alba", " ", "  ", "è", "€", "\"", "<b>", "&", "x.y", "|", "😀"};
    std::string text;
    for (int i = upTo(12); i > 0; --i) text += anyOf(pieces);
    return text;
  }
  std::string chanceText(const SheetColumn& column) {
    if (column.kind == SheetKind::Flag) return anyOf({"0", "1"});
    if (column.kind == SheetKind::Variant) return anyOf({"", "(nessuna)", "Colore", "colore", "Sapore"});
    if (column.kind == SheetKind::Department) return anyOf({"Vasi", "Vasi > Piccoli", "vasi>piccoli", "Piatti", "-"});
    return isNumberKind(column.editor->kind) ? chanceNumber() : chanceWords();
  }
  /// What a field holds after a text was typed or pasted there.
  static std::string typedText(const Editor& editor, const std::string& text) {
    const bool takesAll = editor.control == Control::Memo || isNumberKind(editor.kind);
    return takesAll ? text : pasted(editor.kind, text, ',');
  }
  /// The columns that both the sheet and the main window let be typed into.
  std::vector<std::size_t> typedColumns() {
    std::vector<std::size_t> typed;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const bool isBare = columns[i].editor != nullptr && editorOf(EditedSet::Articoli, columns[i].name) != nullptr;
      if (isBare) typed.push_back(i);
    }
    return typed;
  }
  std::vector<CellText> chanceCells(int count) {
    auto typed = typedColumns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (isChoice(columns[i])) typed.push_back(i);
    }
    std::vector<CellText> cells;
    for (int i = 0; i < count; ++i) {
      const std::size_t at = typed[static_cast<std::size_t>(upTo(static_cast<int>(typed.size()) - 1))];
      cells.push_back({1 + upTo(3), at, chanceText(columns[at])});
    }
    return cells;
  }

  std::mt19937 chance;
};

TEST_F(SheetOfChance, WritesAndRefusesWhatTheEditorsWould) {
  go("cat001");
  const auto typed = typedColumns();
  ASSERT_GT(typed.size(), 15U);
  for (unsigned i = 0; i < seeds(3); ++i) {
    chance.seed(seed() + i);
    for (int edit = 0; edit < 8; ++edit) {
      const std::size_t at = typed[static_cast<std::size_t>(upTo(static_cast<int>(typed.size()) - 1))];
      const SheetColumn& edited = columns[at];
      const std::string text = chanceText(edited), before = articles();
      SCOPED_TRACE("seed " + std::to_string(seed() + i) + ": " + edited.name + " = " + text);
      const auto place = static_cast<std::size_t>(upTo(2));
      article(place);
      const Editor& editor = *editorOf(EditedSet::Articoli, edited.name);
      const auto left = bench->leaveField(editor, changedText(editor.kind, typedText(editor, text), "", ','));
      const std::string typedRows = articles();
      if (typedRows != before) undo();
      ASSERT_EQ(articles(), before);
      const auto outcome = write({{static_cast<std::int64_t>(place) + 1, at, text}});
      EXPECT_EQ(articles(), typedRows);
      EXPECT_EQ(outcome.refused.empty() ? "" : outcome.refused[0].why, left.mark);
    }
  }
}

TEST_F(SheetOfChance, UndoesBlocksReplacementsAndStepsOfPricesToEqualRows) {
  std::vector<std::size_t> searched, prices;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (isSearchable(columns[i])) searched.push_back(i);
    if (columns[i].name.starts_with("prezzo")) prices.push_back(i);
  }
  for (unsigned i = 0; i < seeds(3); ++i) {
    chance.seed(seed() + i);
    SCOPED_TRACE("seed " + std::to_string(seed() + i));
    write(chanceCells(10));
    const std::string before = articles();
    const ReplaceRequest request{
        {anyOf({"a", "b", "[a-e]+", "  "}), true}, anyOf({"", "zz", "è"}), searched, {1, 2, 3, 4}};
    const auto hits = findHits(session, columns, request, ',');
    ASSERT_TRUE(hits);
    std::vector<CellText> priced;
    for (const std::size_t column : prices) priced.push_back({1 + upTo(3), column, {}});
    const auto step = readPriceStep(anyOf({"+10 %", "x1,1", "-5", "+0,005"}), upTo(1) == 0, ',');
    const auto stepped = priceChanges(session, columns, priced, *step, ',');
    ASSERT_TRUE(stepped);
    for (const auto& cells : {cellsOf(*hits), cellsOf(*stepped), chanceCells(30)}) {
      const SheetOutcome outcome = write(cells, "Prova");
      if (outcome.changed == 0) continue;
      EXPECT_EQ(undoName(), "Prova");
      const std::string after = articles();
      undo();
      ASSERT_EQ(articles(), before);
      redo();
      ASSERT_EQ(articles(), after);
      undo();
    }
  }
}

TEST_F(SheetOfChance, AFailureAnywhereWritesAllOrNothing) {
  chance.seed(seed());
  const auto cells = chanceCells(12);
  const std::string before = articles(), lastStep = undoName();
  write(cells);
  const std::string after = articles();
  ASSERT_NE(after, before);
  undo();
  bool isWritten = false;
  for (std::int64_t call = 1; !isWritten; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    SheetEdits edits(session, bench->history(), columns, ',');
    {
      FailingStore store(call);
      isWritten = edits.write("Prova", cells).has_value();
    }
    if (isWritten || articles() == after) break;
    ASSERT_EQ(articles(), before);
    ASSERT_EQ(undoName(), lastStep);
  }
  // Rows that were written and can't be read any more are no step: then none is left that could be undone.
  EXPECT_EQ(articles(), after);
  EXPECT_EQ(undoName(), isWritten ? "Prova" : "");
}

}  // namespace
}  // namespace kv::test
