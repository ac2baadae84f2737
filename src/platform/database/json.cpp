#include "platform/database/json.h"

#include <charconv>
#include <map>

#include "platform/database/engine.h"
#include "platform/text/json_text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::size_t deepest = 32;
/// Values come in the order of the text, each after the one that holds it.
constexpr std::string_view walk = "SELECT id, parent, key, type, atom FROM json_tree(?1)";

constexpr int idColumn = 0, parentColumn = 1, keyColumn = 2, typeColumn = 3, atomColumn = 4;

/// Owns a statement for the time of a reading.
struct StatementEnd {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using OwnedStatement = std::unique_ptr<sqlite3_stmt, StatementEnd>;

std::string cleanUtf8(std::string_view text) {
  std::string clean;
  for (std::size_t at = 0; at < text.size();) {
    const utf8::Unit unit = utf8::unitAt(text, at);
    if (unit.character != 0) utf8::append(clean, unit.valid ? unit.character : U'\uFFFD');
    at += unit.length;
  }
  return clean;
}

std::string walkedText(sqlite3_stmt* row, int column) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  if (bytes == nullptr) return {};
  return cleanUtf8({bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column))});
}

JsonKind kindNamed(std::string_view type) {
  static const std::map<std::string_view, JsonKind> kinds{
      {"true", JsonKind::Flag}, {"false", JsonKind::Flag}, {"integer", JsonKind::Number}, {"real", JsonKind::Number},
      {"text", JsonKind::Text}, {"array", JsonKind::List}, {"object", JsonKind::Object}};
  const auto found = kinds.find(type);
  return found == kinds.end() ? JsonKind::Null : found->second;
}

/// The values that are still open, the outermost first.
class TreeOfValues {
 public:
  /// False when it is deeper than a text may be.
  bool add(sqlite3_stmt* row) {
    closeUpTo(row);
    if (open_.size() >= deepest) return false;
    JsonValue value;
    value.kind = kindNamed(walkedText(row, typeColumn));
    value.text = walkedText(row, atomColumn);
    open_.push_back({sqlite3_column_int64(row, idColumn), walkedText(row, keyColumn), std::move(value)});
    return true;
  }
  JsonValue finish() {
    while (open_.size() > 1) closeLast();
    return open_.empty() ? JsonValue() : std::move(open_.front().value);
  }

 private:
  struct OpenValue {
    std::int64_t id = 0;
    std::string name;
    JsonValue value;
  };

  void closeUpTo(sqlite3_stmt* row) {
    const std::int64_t parent = sqlite3_column_int64(row, parentColumn);
    while (open_.size() > 1 && open_.back().id != parent) closeLast();
  }
  void closeLast() {
    OpenValue last = std::move(open_.back());
    open_.pop_back();
    JsonValue& holder = open_.back().value;
    if (holder.kind == JsonKind::Object) holder.names.push_back(std::move(last.name));
    holder.items.push_back(std::move(last.value));
  }

  std::vector<OpenValue> open_;
};

/// The engine that reads, opened once: a list of orders is thousands of texts.
Result<sqlite3*> readingEngine() {
  static engine::Connection kept;
  if (!kept) {
    auto opened = engine::openMemory();
    if (!opened) return fail(opened.error());
    kept = std::move(*opened);
  }
  return kept.get();
}

tl::unexpected<Error> noJson(sqlite3* handle, int code) {
  Error error = engine::errorOf(handle, code, "json");
  // The engine has no code of its own for a text that is no JSON.
  if ((code & 0xff) == SQLITE_ERROR) error.kind = ErrorKind::Malformed;
  return fail(std::move(error));
}

void appendJson(std::string& out, const JsonValue& value) {
  switch (value.kind) {
    case JsonKind::Null:
      out += "null";
      return;
    case JsonKind::Flag:
      out += value.text == "1" ? "true" : "false";
      return;
    case JsonKind::Number:
      out += value.text;
      return;
    case JsonKind::Text:
      out += jsonString(value.text);
      return;
    case JsonKind::List:
    case JsonKind::Object:
      break;
  }
  const bool isObject = value.kind == JsonKind::Object;
  out += isObject ? '{' : '[';
  for (std::size_t i = 0; i < value.items.size(); ++i) {
    if (i > 0) out += ',';
    if (isObject) out += jsonString(value.names[i]) + ":";
    appendJson(out, value.items[i]);
  }
  out += isObject ? '}' : ']';
}

}  // namespace

const JsonValue* JsonValue::member(std::string_view name) const {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == name) return &items[i];
  }
  return nullptr;
}

std::string JsonValue::textOf(std::string_view name) const {
  const JsonValue* found = member(name);
  const bool isText = found != nullptr && (found->kind == JsonKind::Text || found->kind == JsonKind::Number);
  return isText ? found->text : std::string();
}

std::optional<std::int64_t> JsonValue::wholeOf(std::string_view name) const {
  const std::string digits = textOf(name);
  std::int64_t number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (failure != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

bool JsonValue::flagOf(std::string_view name) const {
  const JsonValue* found = member(name);
  if (found == nullptr) return false;
  const bool isNumber = found->kind == JsonKind::Flag || found->kind == JsonKind::Number;
  return isNumber && found->text != "0";
}

const std::vector<JsonValue>& JsonValue::listOf(std::string_view name) const {
  static const std::vector<JsonValue> none;
  const JsonValue* found = member(name);
  return found != nullptr && found->kind == JsonKind::List ? found->items : none;
}

Result<JsonValue> readJson(std::string_view text) {
  const auto reading = readingEngine();
  if (!reading) return fail(reading.error());
  sqlite3* handle = *reading;
  sqlite3_stmt* raw = nullptr;
  int code = engine::prepare(handle, walk, 0, &raw);
  const OwnedStatement row(raw);
  if (code == SQLITE_OK) {
    code = sqlite3_bind_text64(raw, 1, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, "json"));
  TreeOfValues values;
  bool isEmpty = true;
  while ((code = engine::step(raw)) == SQLITE_ROW) {
    isEmpty = false;
    if (!values.add(raw)) return fail(ErrorKind::Malformed, "json", "too deep");
  }
  if (code != SQLITE_DONE) return noJson(handle, code);
  if (isEmpty) return fail(ErrorKind::Malformed, "json", "no value");
  return values.finish();
}

std::string jsonText(const JsonValue& value) {
  std::string out;
  appendJson(out, value);
  return out;
}

}  // namespace kv
