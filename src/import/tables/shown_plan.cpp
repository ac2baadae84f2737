#include "import/tables/shown_plan.h"

#include <algorithm>

#include "import/tables/cell_reading.h"

namespace kv {
namespace {

// Characters that a preview shows; a quote that is never closed makes one cell of the rest of a file.
constexpr std::size_t mostOfLabel = 80, mostOfValue = 2000;

/// Appends a text to a label, two spaces after what is there.
void addToLabel(std::string& label, std::string_view text) {
  if (!text.empty()) label += (label.empty() ? "" : "  ") + beginningOf(text, mostOfLabel);
}

}  // namespace

Result<std::vector<ShownChange>> shownChanges(Database& catalogue, const TablePlan& plan, const ReadSheet& sheet,
                                              const PlannedRow& row) {
  const CellReader reader(plan.signs, plan.names);
  std::vector<ShownChange> changes;
  std::string sql = "SELECT 0";
  for (const std::uint16_t index : row.changed) {
    const MappedColumn& mapped = plan.columns[index];
    const TableColumn& column = plan.table.columns[mapped.column];
    sql += ", " + column.stored;
    const std::string after = reader.plain(column, sheet.cells.cell(row.row, mapped.source));
    changes.push_back({column.italian, "", beginningOf(after, mostOfValue)});
  }
  if (row.key == 0 || changes.empty()) return changes;
  auto found = catalogue.prepare(sql + " FROM " + plan.table.from + " WHERE " + plan.table.rowKey + " = ?1");
  if (!found) return fail(found.error());
  found->bind(1, row.key);
  const auto step = found->step();
  if (!step) return fail(step.error());
  for (std::size_t i = 0; *step && i < changes.size(); ++i) {
    const TableColumn& column = plan.table.columns[plan.columns[row.changed[i]].column];
    const std::string before = reader.shown(column, *found, static_cast<int>(i) + 1);
    changes[i].before = beginningOf(reader.plain(column, {before, isNumberField(column.field)}), mostOfValue);
  }
  return changes;
}

std::string rowLabel(const TablePlan& plan, const ReadSheet& sheet, const PlannedRow& row) {
  std::string label;
  for (const std::string_view name :
       {"codice", "percorso", "titolo", "variante", "nome", "testo", "paese", "zona", "ID"}) {
    const auto index = plan.table.columnIndex(name);
    if (!index || (name == "ID" && !label.empty())) continue;
    const auto mapped = std::ranges::find(plan.columns, *index, &MappedColumn::column);
    if (mapped == plan.columns.end()) continue;
    addToLabel(label, sheet.cells.cell(row.row, mapped->source).text);
  }
  return label;
}

Result<std::string> unlistedLabel(Database& catalogue, const UnlistedArticle& article) {
  auto found = catalogue.prepare("SELECT codice, titolo FROM articoli WHERE ID = ?1");
  if (!found) return fail(found.error());
  found->bind(1, article.key);
  const auto step = found->step();
  if (!step) return fail(step.error());
  std::string label;
  for (int i = 0; *step && i < 2; ++i) addToLabel(label, found->text(i));
  return label;
}

}  // namespace kv
