#pragma once
// The workbench of a small shop with the columns of its sheet of articles, and the sheet written as its window does.

#include <algorithm>

#include "shell/sheet/sheet_edits.h"
#include "shell/sheet/sheet_rows.h"
#include "shell/workbench_fixture.h"

namespace kv::test {

class SheetFixture : public WorkbenchFixture {
 protected:
  void SetUp() override {
    start();
    auto all = sheetColumns(session);
    ASSERT_TRUE(all);
    columns = std::move(*all);
  }
  std::size_t column(std::string_view name) {
    const auto found = std::ranges::find(columns, name, &SheetColumn::name);
    EXPECT_NE(found, columns.end()) << name;
    return static_cast<std::size_t>(found - columns.begin());
  }
  /// The codes of the articles that the sheet shows, and nothing else.
  std::string shownCodes(const SheetFilter& filter, const SheetOrder& order = {}) {
    SheetRows sheet(session, columns, ',');
    const auto read = sheet.refresh(filter, order);
    EXPECT_TRUE(read) << read.error().what;
    std::string codes;
    for (std::size_t i = 0; i < sheet.size(); ++i) codes += sheet.cells(i)[column("codice")] + " ";
    return codes;
  }
  /// Writes into the sheet as the window does.
  SheetOutcome write(std::vector<CellText> cells, const std::string& step = "Modifica") {
    SheetEdits edits(session, bench->history(), columns, ',');
    auto written = edits.write(step, std::move(cells));
    EXPECT_TRUE(written) << written.error().what;
    return written ? std::move(*written) : SheetOutcome();
  }
  CellText cell(std::int64_t article, std::string_view name, std::string text) {
    return {article, column(name), std::move(text)};
  }
  std::string articles() { return rows("SELECT * FROM articoli ORDER BY ID"); }

  std::vector<SheetColumn> columns;
};

}  // namespace kv::test
