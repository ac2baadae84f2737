// Prepared statements: binding, stepping, and the fields of the current row.

#include <cmath>
#include <type_traits>

#include "platform/database/engine.h"

namespace kv {
namespace {

/// The nearest whole number within the range of 64 bits, for a real number stored in a whole-number column.
std::int64_t nearestWhole(double value) {
  constexpr double limit = 9223372036854774784.0;  // the largest double below 2^63
  if (std::isnan(value)) return 0;
  return static_cast<std::int64_t>(std::nearbyint(std::fmin(std::fmax(value, -limit), limit)));
}

Value wholeAs(ColumnType type, std::int64_t number) {
  switch (type) {
    case ColumnType::Bool:
      return number != 0;
    case ColumnType::Money:
      return Money::ofTenThousandths(number);
    case ColumnType::Single:
    case ColumnType::Double:
      return static_cast<double>(number);
    default:
      return number;
  }
}

Value realAs(ColumnType type, double number) {
  switch (type) {
    case ColumnType::Bool:
      return number != 0;
    case ColumnType::Money:
      return Money::ofTenThousandths(nearestWhole(number));
    case ColumnType::Byte:
    case ColumnType::Int:
    case ColumnType::Long:
      return nearestWhole(number);
    default:
      return number;
  }
}

}  // namespace

Statement::Statement(sqlite3_stmt* handle, std::string where) : handle_(handle), where_(std::move(where)) {}

Statement::Statement(Statement&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), where_(std::move(other.where_)) {}

Statement& Statement::operator=(Statement&& other) noexcept {
  std::swap(handle_, other.handle_);
  std::swap(where_, other.where_);
  return *this;
}

Statement::~Statement() { engine::giveBack(handle_); }

void Statement::bindNull(int index) { sqlite3_bind_null(handle_, index); }
void Statement::bind(int index, bool value) { sqlite3_bind_int(handle_, index, value ? 1 : 0); }
void Statement::bind(int index, std::int64_t value) { sqlite3_bind_int64(handle_, index, value); }
void Statement::bind(int index, double value) { sqlite3_bind_double(handle_, index, value); }
void Statement::bind(int index, Money value) { sqlite3_bind_int64(handle_, index, value.tenThousandths()); }

void Statement::bind(int index, std::string_view text) {
  // A null pointer would bind null, and an empty text is not null.
  sqlite3_bind_text64(handle_, index, text.data() == nullptr ? "" : text.data(), text.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

void Statement::bind(int index, const Value& value) {
  std::visit(
      [&](const auto& field) {
        using Field = std::decay_t<decltype(field)>;
        if constexpr (std::is_same_v<Field, Null>) {
          bindNull(index);
        } else if constexpr (std::is_same_v<Field, Bytes>) {
          sqlite3_bind_blob64(handle_, index, field.empty() ? static_cast<const void*>("") : field.data(), field.size(),
                              SQLITE_STATIC);
        } else {
          bind(index, field);
        }
      },
      value);
}

Result<> Statement::execute() {
  int code = engine::step(handle_);
  while (code == SQLITE_ROW) code = engine::step(handle_);
  if (code == SQLITE_DONE) {
    sqlite3_reset(handle_);
    return {};
  }
  Error error = engine::errorOf(sqlite3_db_handle(handle_), code, where_);
  sqlite3_reset(handle_);
  return fail(std::move(error));
}

Result<bool> Statement::step() {
  const int code = engine::step(handle_);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) {
    sqlite3_reset(handle_);
    return false;
  }
  Error error = engine::errorOf(sqlite3_db_handle(handle_), code, where_);
  sqlite3_reset(handle_);
  return fail(std::move(error));
}

void Statement::reset() { sqlite3_reset(handle_); }

int Statement::columnCount() const { return sqlite3_column_count(handle_); }

std::string_view Statement::columnName(int column) const {
  const char* name = sqlite3_column_name(handle_, column);
  return name == nullptr ? std::string_view() : name;
}

bool Statement::isNull(int column) const { return sqlite3_column_type(handle_, column) == SQLITE_NULL; }

std::string_view Statement::text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(handle_, column); }
double Statement::number(int column) const { return sqlite3_column_double(handle_, column); }

static_assert(static_cast<int>(StoredAs::Integer) == SQLITE_INTEGER && static_cast<int>(StoredAs::Null) == SQLITE_NULL);
StoredAs Statement::storedAs(int column) const { return static_cast<StoredAs>(sqlite3_column_type(handle_, column)); }

std::string_view Statement::bytes(int column) const {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(handle_, column));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

Value Statement::value(int column) const {
  const int stored = sqlite3_column_type(handle_, column);
  if (stored == SQLITE_NULL) return Null{};
  if (stored == SQLITE_TEXT) return std::string(text(column));
  if (stored == SQLITE_BLOB) {
    const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(handle_, column));
    return Bytes(bytes, bytes + sqlite3_column_bytes(handle_, column));
  }
  const char* declaration = sqlite3_column_decltype(handle_, column);
  if (declaration == nullptr) return stored == SQLITE_INTEGER ? Value(integer(column)) : Value(number(column));
  const ColumnType type = engine::declaredType(declaration).type;
  return stored == SQLITE_INTEGER ? wholeAs(type, integer(column)) : realAs(type, number(column));
}

}  // namespace kv
