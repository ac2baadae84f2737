// CREATE TABLE, line by line, as MySQL takes it; the two mSQL dialects declare the keys elsewhere.

#include <algorithm>

#include "platform/text/text.h"
#include "sqlexport/sql_style.h"

namespace kv {
namespace {

constexpr std::string_view indexPrefix = "ix";

class Definition {
 public:
  Definition(OutputFile& out, const TableInfo& table, const SqlStyle& style, ExportWarnings& warnings)
      : out_(out), table_(table), style_(style), warnings_(warnings) {}

  Result<> write() {
    auto name = SqlIdent(table_.name, warnings_);
    if (!name) return fail(name.error());
    name_ = *name;
    line("");
    line("CREATE TABLE " + name_);
    line("(");
    if (auto done = writeColumns(); !done) return done;
    if (style_.target == SqlTarget::MY) {
      if (auto done = writeKeys(); !done) return done;
    }
    line("");
    line(")" + style_.separator);
    if (style_.target == SqlTarget::M2) {
      if (auto done = writeSeparateIndexes(); !done) return done;
    }
    writeWarnings(out_, warnings_);
    line("");
    return {};
  }

 private:
  void put(const std::string& text) { out_.append(toWindows1252(text)); }
  void line(const std::string& text) { put(text + "\r\n"); }

  Result<> writeColumns() {
    constexpr std::size_t typeColumn = 66;
    for (std::size_t at = 0; at < table_.columns.size(); ++at) {
      if (at > 0) line(",");
      const ColumnInfo& column = table_.columns[at];
      auto name = SqlIdent(column.name, warnings_);
      if (!name) return fail(name.error());
      auto definition = columnDefinition(column, style_.target, warnings_);
      if (!definition) return fail(definition.error());
      if (style_.target == SqlTarget::M1 && isFirstKey(column)) *definition += " PRIMARY KEY";
      put(*name + std::string(typeColumn - std::min(typeColumn, characterCount(*name)), ' ') + *definition);
    }
    return {};
  }

  Result<> writeKeys() {
    for (const IndexInfo& index : table_.indexes) {
      auto columns = columnList(index);
      if (!columns) return fail(columns.error());
      line(",");
      put((index.primary ? "PRIMARY KEY (" : "KEY (") + *columns + ")");
    }
    return {};
  }

  Result<> writeSeparateIndexes() {
    for (const IndexInfo& index : table_.indexes) {
      auto columns = columnList(index);
      if (!columns) return fail(columns.error());
      auto name = SqlIdent(std::string(indexPrefix) + index.name, warnings_);
      if (!name) return fail(name.error());
      line(std::string("CREATE ") + (index.unique ? "UNIQUE " : "") + "INDEX " + *name + " ON " + name_ + " (" +
           *columns + ")" + style_.separator);
    }
    return {};
  }

  Result<std::string> columnList(const IndexInfo& index) {
    std::string list;
    for (const std::string& column : index.columns) {
      auto name = SqlIdent(column, warnings_);
      if (!name) return name;
      list += (list.empty() ? "" : ", ") + *name;
    }
    return list;
  }

  /// Whether a column is the one key that mSQL 1 supports; a second column of a primary key adds a warning.
  bool isFirstKey(const ColumnInfo& column) {
    for (const IndexInfo& index : table_.indexes) {
      if (!index.primary || std::ranges::find(index.columns, column.name) == index.columns.end()) continue;
      if (!keyed_) {
        keyed_ = true;
        return true;
      }
      AddExportWarning(warnings_, "On new table '" + table_.name +
                                      "', mSQL v1 does not support more than one PRIMARY KEY! Only first key was set.");
    }
    return false;
  }

  OutputFile& out_;
  const TableInfo& table_;
  const SqlStyle& style_;
  ExportWarnings& warnings_;
  std::string name_;
  bool keyed_ = false;
};

}  // namespace

Result<> writeDefinition(OutputFile& out, const TableInfo& table, const SqlStyle& style, ExportWarnings& warnings) {
  return Definition(out, table, style, warnings).write();
}

}  // namespace kv
