// What a step changed, in the merchant's words.
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/catalogue/way_back.h"

namespace kv {
namespace {

constexpr std::size_t longestValue = 40;  // characters

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> tableNames{{{"articoli", "Articolo"},
                                                                                   {"categorie", "Reparto"},
                                                                                   {"opzioni", "Variante"},
                                                                                   {"dettagliop", "Opzione"},
                                                                                   {"generale", "Negozio"},
                                                                                   {"pagamento", "Pagamento"},
                                                                                   {"lingue", "Lingue"},
                                                                                   {"paesi", "Paese"},
                                                                                   {"zone", "Zona"}}};

std::string rowName(const RowChange& change) {
  for (const auto& [table, name] : tableNames) {
    if (equalsIgnoringCase(table, change.table)) return std::string(name) + " " + std::to_string(change.row);
  }
  return change.table + " " + std::to_string(change.row);
}

/// A value on one line, cut to its beginning.
std::string shortText(std::string_view text) {
  std::string line(firstCharacters(text, longestValue));
  std::ranges::replace_if(
      line, [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return line.size() < text.size() ? line + "..." : line;
}

std::string moneyText(std::int64_t tenThousandths) {
  return replaceAll(asText(Value(Money::ofTenThousandths(tenThousandths))), ".", ",");
}

std::string cellText(const Cell& cell, ColumnType type) {
  if (const auto* number = std::get_if<std::int64_t>(&cell)) {
    if (type == ColumnType::Money) return moneyText(*number);
    if (type == ColumnType::Bool) return *number == 0 ? "no" : "sì";
    return std::to_string(*number);
  }
  if (const auto* real = std::get_if<double>(&cell)) return replaceAll(asText(Value(*real)), ".", ",");
  if (const auto* text = std::get_if<BoxedText>(&cell)) return "\"" + shortText(**text) + "\"";
  return std::holds_alternative<BoxedBytes>(cell) ? "dati" : "vuoto";
}

/// The tables of the catalogue as they are, each asked for once.
class TableReader {
 public:
  explicit TableReader(Database& catalogue) : catalogue_(catalogue) {}

  /// Null for a column that the table no longer has.
  const ColumnInfo* column(const std::string& table, std::size_t index) {
    auto known = tables_.find(table);
    if (known == tables_.end()) {
      auto read = catalogue_.table(table);
      known = tables_.emplace(table, read ? std::optional(std::move(*read)) : std::nullopt).first;
    }
    if (!known->second || index >= known->second->columns.size()) return nullptr;
    return &known->second->columns[index];
  }

 private:
  Database& catalogue_;
  std::map<std::string, std::optional<TableInfo>> tables_;
};

void describeRow(std::vector<std::string>& lines, const RowChange& change, TableReader& tables) {
  const std::string name = rowName(change);
  if (change.columns.empty()) {
    const bool isNew = change.before.empty(), isGone = change.after.empty();
    lines.push_back(name + ": " + (isNew ? "nuova riga" : (isGone ? "eliminata" : "cambiata")));
    return;
  }
  for (std::size_t i = 0; i < change.columns.size(); ++i) {
    const ColumnInfo* column = tables.column(change.table, change.columns[i]);
    if (column == nullptr) continue;
    lines.push_back(name + ", " + column->name + ": " + cellText(change.before[i], column->type) + " -> " +
                    cellText(change.after[i], column->type));
  }
}

}  // namespace

std::vector<std::string> describeStep(Database& catalogue, const RowChanges& changes, std::size_t most) {
  std::vector<std::string> lines;
  TableReader tables(catalogue);
  std::size_t described = 0;
  for (; described < changes.size() && lines.size() < most; ++described) {
    describeRow(lines, changes[described], tables);
  }
  const std::size_t more = changes.size() - described;
  if (more > 0) lines.push_back(more == 1 ? "e un'altra riga" : "e altre " + std::to_string(more) + " righe");
  return lines;
}

}  // namespace kv
