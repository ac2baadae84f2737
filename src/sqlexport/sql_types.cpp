#include "sqlexport/sql_types.h"

#include <functional>
#include <span>

#include "platform/text/text.h"

namespace kv {
namespace {

enum class Width { None, AsItIs, Or255 };

/// One line of the type map. `targets`: the dialects it holds for; `warning`: what follows the column's name, "%t"
/// being replaced by the type.
struct TypeRule {
  unsigned targets;
  int code;
  std::string_view type;
  Width width = Width::None;
  std::string_view warning = {};
};

constexpr unsigned bit(SqlTarget target) { return static_cast<unsigned>(target); }
constexpr unsigned mySql = bit(SqlTarget::MY), first = bit(SqlTarget::M1), second = bit(SqlTarget::M2);
constexpr unsigned both = first | second, all = mySql | both;

constexpr int code(ColumnType type) { return static_cast<int>(type); }

constexpr std::string_view precisionWarning =
    "', currency/BCD will be converted to REAL - there may be precision loss!";
constexpr std::string_view dateWarning = "', date/time/timestamp will be converted to %t.";
constexpr std::string_view stampWarning =
    "', date/time/timestamp will be converted to %t. Consider using pseudo field '_timestamp'.";
constexpr std::string_view memoWarning =
    "', dbMemo is not supported by mSQL v1 - fields larger than MSQL_64kb_AVG (2048) will not be accepted!";
constexpr std::string_view binaryWarning =
    "', dbBinary and dbVarBinary are not supported by mSQL! - will use a text (CHAR(255)) field.";
constexpr std::string_view longBinaryWarning =
    "', dbLongBinary is not supported by mSQL! - will use a text (CHAR(2048)) field.";

constexpr TypeRule typeRules[] = {
    {mySql, code(ColumnType::Bool), "TINYINT"},
    {mySql, code(ColumnType::Byte), "TINYINT UNSIGNED"},
    {mySql, code(ColumnType::Int), "SMALLINT"},
    {mySql, code(ColumnType::Long), "INT"},
    {mySql, code(ColumnType::Money), "DECIMAL(20,4)"},
    {mySql, code(ColumnType::Single), "FLOAT"},
    {mySql, code(ColumnType::Double), "REAL"},
    {mySql, code(ColumnType::DateTime), "DATETIME"},
    {mySql, code(ColumnType::Binary), "TINYBLOB"},
    {mySql, code(ColumnType::LongBinary), "LONGBLOB"},
    {mySql, code(ColumnType::Memo), "LONGTEXT"},
    {mySql, varBinaryCode, "TINYBLOB"},
    {mySql, numericCode, "DECIMAL(20,4)"},
    {mySql, decimalCode, "DECIMAL(20,4)"},
    {mySql, floatCode, "REAL"},
    {mySql, timeCode, "TIME"},
    {mySql, timestampCode, "TIMESTAMP"},
    {all, code(ColumnType::Text), "CHAR", Width::Or255},
    {all, charCode, "CHAR", Width::AsItIs},
    {both, code(ColumnType::Bool), "INT"},
    {both, code(ColumnType::Byte), "INT"},
    {both, code(ColumnType::Int), "INT"},
    {both, code(ColumnType::Long), "INT"},
    {both, code(ColumnType::Single), "REAL"},
    {both, code(ColumnType::Double), "REAL"},
    {both, floatCode, "REAL"},
    {both, code(ColumnType::Money), "REAL", Width::None, precisionWarning},
    {both, numericCode, "REAL", Width::None, precisionWarning},
    {both, decimalCode, "REAL", Width::None, precisionWarning},
    {both, code(ColumnType::DateTime), "CHAR(19)", Width::None, dateWarning},
    {first, timestampCode, "CHAR(19)", Width::None, dateWarning},
    {second, timestampCode, "CHAR(19)", Width::None, stampWarning},
    {both, timeCode, "CHAR(8)", Width::None, dateWarning},
    {first, code(ColumnType::Memo), "CHAR(2048)", Width::None, memoWarning},
    {second, code(ColumnType::Memo), "TEXT(2048)"},
    {both, code(ColumnType::Binary), "CHAR(255)", Width::None, binaryWarning},
    {both, varBinaryCode, "CHAR(255)", Width::None, binaryWarning},
    {both, code(ColumnType::LongBinary), "CHAR(2048)", Width::None, longBinaryWarning},
};
constexpr TypeRule otherType{all, 0, "LONGBLOB"};

constexpr std::string_view unsupportedWarning = "', dbBigInt and dbGUID are not currently supported!";
constexpr std::string_view noAutomaticKey = "', mSQL does not support auto-increment fields! - they will be pure INTs.";
constexpr std::string_view rowNumberAdvice = " Consider using pseudo field '_rowid' or SEQUENCEs.";
constexpr std::string_view noDefaults = "', mSQL does not support default values! - they won't be initialised.";
constexpr std::string_view defaultNeedsNotNull =
    "', MySQL needs NOT NULL to support default values! - it won't be set a default.";

const TypeRule& ruleOf(int typeCode, SqlTarget target) {
  for (const TypeRule& rule : typeRules) {
    if (rule.code == typeCode && (rule.targets & bit(target)) != 0) return rule;
  }
  return otherType;
}

std::string withWidth(const TypeRule& rule, int size) {
  constexpr int widest = 255;
  if (rule.width == Width::None) return std::string(rule.type);
  if (rule.width == Width::Or255 && size == 0) size = widest;
  return std::string(rule.type) + "(" + std::to_string(size) + ")";
}

bool isOneOf(std::string_view lower, std::initializer_list<std::string_view> words) {
  for (const std::string_view word : words) {
    if (lower == word) return true;
  }
  return false;
}

/// Whether a date and time defaults to the time of insertion, for which MySQL has a type of its own.
bool isInsertionTime(std::string_view definition, std::string_view lowerDefault) {
  const bool isTime =
      definition.starts_with("DATETIME ") || definition.starts_with("TIME ") || definition.starts_with("DATE ");
  return isTime && isOneOf(lowerDefault, {"time()", "date()", "now()"});
}

void addDefault(std::string& definition, const std::string& value) {
  const std::string lower = foldCase(value);
  if (value.front() == '"') {
    const std::string_view inside =
        value.size() < 2 ? std::string_view() : std::string_view(value).substr(1, value.size() - 2);
    definition += " DEFAULT '" + SqlQuoteText(inside) + "'";
  } else if (isInsertionTime(definition, lower)) {
    definition.replace(0, definition.find(' ') + 1, "TIMESTAMP ");
  } else if (lower == "no" || lower == "yes") {
    definition += lower == "no" ? " DEFAULT 0" : " DEFAULT 1";
  } else {
    definition += " DEFAULT " + value;
  }
}

/// What follows the type of a column: the automatic key, NOT NULL and the default, as far as the target knows them.
void addAttributes(std::string& definition, const ColumnInfo& column, SqlTarget target,
                   const std::function<void(std::string_view)>& warn) {
  const bool automatic = (column.attributes & autoIncrement) != 0;
  if (automatic && target == SqlTarget::MY) {
    definition += " NOT NULL AUTO_INCREMENT";
  } else if (column.required) {
    definition += " NOT NULL";
  }
  if (column.defaultValue.empty()) return;
  if (target != SqlTarget::MY) {
    warn(noDefaults);
  } else if (!column.required) {
    warn(defaultNeedsNotNull);
  } else {
    addDefault(definition, column.defaultValue);
  }
}

}  // namespace

Result<std::string> columnDefinition(const ColumnInfo& column, SqlTarget target, ExportWarnings& warnings) {
  const auto warn = [&](std::string_view text) {
    AddExportWarning(warnings, "In new field '" + column.name + std::string(text));
  };
  const int typeCode = code(column.type);
  if (typeCode == guidCode || typeCode == bigIntCode) {
    warn(unsupportedWarning);
    return exportFailure(column.name);
  }
  const TypeRule& rule = ruleOf(typeCode, target);
  std::string definition = withWidth(rule, column.size);
  if (!rule.warning.empty()) warn(replaceAll(rule.warning, "%t", definition));
  if ((column.attributes & autoIncrement) != 0 && target != SqlTarget::MY) {
    warn(std::string(noAutomaticKey) + std::string(target == SqlTarget::M2 ? rowNumberAdvice : ""));
  }
  addAttributes(definition, column, target, warn);
  return definition;
}

}  // namespace kv
