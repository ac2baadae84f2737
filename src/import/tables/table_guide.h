#pragma once
// The guide of an import (frmImportaFoglio) without its window: a file and how it is read, which column is which, and
// what would happen. Nothing is written before the end.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "import/tables/shown_plan.h"
#include "import/tables/table_import.h"

namespace kv {

/// Which rows the last page lists.
enum class RowFilter {
  All,
  New,
  Changed,
  Same,
  LeftOut,
  Unlisted  ///< articles of the catalogue that go "fuori catalogo"
};

/// A row of the last page: one of the sheet, or an article that the sheet doesn't list.
struct GuideRow {
  std::string line;  ///< of the sheet; "-" for an article that isn't in it
  std::string fate, label, reason;
  bool canChoose = false;  ///< whether it has a box
  bool isChosen = false;
};

/// The state of the guide. session, settings outlive it.
class TableGuide {
 public:
  /// department, model: of new rows. Session and settings outlive the guide.
  TableGuide(Session& session, const Settings& settings, std::string department, std::string model);

  // The first page: the file and its reading.
  std::string path;
  std::string tableName = "articoli";
  SheetChoice choice;
  /// Reads the file again; an empty text, or why it can't be read. goOn: asked now and then; false ends the reading,
  /// and nothing is read then.
  std::string read(const std::function<bool()>& goOn = {});
  /// Whether a file is read.
  bool isRead() const { return open_.has_value(); }
  /// What was read, and how; isRead() holds.
  const OpenSheet& sheet() const { return *open_; }
  /// How the file was read, as a line, and what that makes of the first number with signs in
  /// a column of numbers; empty where it wasn't.
  std::string reading() const;
  /// The first rows, the headers among them; of a long text its beginning.
  std::vector<std::vector<std::string>> firstRows(std::size_t count) const;
  /// Whether a cell of these rows is a number as the file is read.
  bool isNumber(std::size_t row, std::size_t column) const;

  // The second page: the columns.
  TableRequest request;
  /// The name of a column of the table, empty for none, becomes that of a column of the sheet; a column that another
  /// one had is taken from it.
  void map(std::size_t source, std::string_view column);
  /// The first text under a header, of a long one its beginning; empty when there is none.
  std::string example(std::size_t source) const;
  /// Name of the key that the columns allow; empty when there is none.
  std::string usualKey() const;

  // The third page: what would happen.
  /// Makes the plan; an empty text, or why there is none. step: false ends the work, and there is no plan then.
  std::string makePlan(const TableStep& step = {});
  /// Whether its rows are planned.
  bool hasPlan() const { return plan_.has_value(); }
  /// The plan; only where there is one.
  TablePlan& plan() { return *plan_; }
  /// Indexes of the rows that a filter shows: those of the plan, and after them the articles that aren't listed.
  std::vector<std::size_t> rowsOf(RowFilter filter) const;
  /// A row of the plan as the last page lists it.
  GuideRow row(std::size_t index) const;
  /// Ticks a row, or unticks it, with those that depend on it; nothing for one that would not be written.
  void choose(std::size_t index, bool isChosen);
  /// What a row changes, old and new text.
  std::vector<ShownChange> changes(std::size_t index) const;
  /// Counts of the rows, and below them the amounts that change.
  std::string sums() const;
  /// Whether there is anything to write.
  bool canImport() const;

 private:
  /// What the signs make of a number of the first rows: ""1.234,50" vale 1234,50"; empty when none has a sign.
  std::string numberNote() const;
  /// The article of a row that isn't one of the sheet; null for one of the sheet.
  const UnlistedArticle* unlistedAt(std::size_t index) const;

  Session& session_;
  const Settings& settings_;
  std::optional<OpenSheet> open_;
  std::optional<TablePlan> plan_;
};

}  // namespace kv
