// Rows go in through record sets, so that the widths and types of the columns are checked by the store.
#include "catalogue_seeder.h"
#include "platform/database/recordset.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>

#include "platform/files/files.h"
#include "platform/image/image.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

std::optional<double> numberOf(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// "18.00", or "18.00 ivato 22" for an amount that holds 22 percent of VAT.
std::optional<Money> amountOf(std::string_view text) {
  constexpr std::string_view withVat = " ivato ";
  const auto mark = text.find(withVat);
  if (mark == std::string_view::npos) return Money::parse(text);
  const auto gross = numberOf(text.substr(0, mark));
  const auto rate = numberOf(text.substr(mark + withVat.size()));
  if (!gross || !rate) return std::nullopt;
  return Money::of(*gross / (1.0 + *rate / 100.0));
}

std::optional<Value> wholeNumberOf(std::string_view text, std::int64_t least, std::int64_t most) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) return std::nullopt;
  return Value(number);
}

std::optional<Value> typed(const std::string& text, ColumnType type) {
  switch (type) {
    case ColumnType::Bool:
      if (text == "true") return Value(true);
      if (text == "false") return Value(false);
      return std::nullopt;
    case ColumnType::Byte:
      return wholeNumberOf(text, 0, 255);
    case ColumnType::Int:
      return wholeNumberOf(text, -32768, 32767);
    case ColumnType::Long:
      return wholeNumberOf(text, -2147483648LL, 2147483647LL);
    case ColumnType::Money:
      if (const auto amount = amountOf(text)) return Value(*amount);
      return std::nullopt;
    case ColumnType::Single:
    case ColumnType::Double:
      if (const auto number = numberOf(text)) return Value(*number);
      return std::nullopt;
    case ColumnType::DateTime:
    case ColumnType::Text:
    case ColumnType::Memo:
      return Value(text);
    case ColumnType::Binary:
    case ColumnType::LongBinary:
      return std::nullopt;
  }
  return std::nullopt;
}

std::string departmentKey(std::int64_t serial) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "cat%03lld", static_cast<long long>(serial));
  return text.data();
}

/// A failure of the store, with the row at which it happened.
tl::unexpected<Error> at(const SeedRow& row, Error error) {
  error.what = "[" + row.table + "] " + error.where + ": " + error.what;
  error.where = lineOf(row);
  return fail(std::move(error));
}

}  // namespace

/// A row being added: addNew() has been called on the record set.
struct CatalogueSeeder::Edit {
  const SeedRow& row;
  const TableInfo& table;
  Recordset& records;

  bool given(std::string_view column) const { return row.find(column) != nullptr; }
  Result<> set(std::string_view column, const Value& value) {
    if (Result<> done = records.set(column, value); !done) return at(row, done.error());
    return {};
  }
};

CatalogueSeeder::CatalogueSeeder(Database& catalogue, std::string pictures)
    : catalogue_(catalogue), pictures_(std::move(pictures)) {}

Result<> CatalogueSeeder::insert(const std::vector<SeedRow>& rows) {
  for (const SeedRow& row : rows)
    if (Result<> done = insertRow(row); !done) return done;
  return {};
}

Result<> CatalogueSeeder::insertRow(const SeedRow& row) {
  const auto table = tableOf(row);
  if (!table) return fail(table.error());
  Result<Recordset> records = catalogue_.openRecordset(row.table);
  if (!records) return at(row, records.error());
  if (Result<> begun = records->addNew(); !begun) return at(row, begun.error());

  Edit edit{row, **table, *records};
  if (Result<> done = setFields(edit); !done) return done;
  if (Result<> done = complete(edit); !done) return done;
  if (!row.name.empty() && !keys_.emplace(row.name, records->get("ID")).second)
    return fail(ErrorKind::Exists, lineOf(row), "another row is named " + row.name);
  if (Result<> done = records->update(); !done) return at(row, done.error());
  return {};
}

Result<const TableInfo*> CatalogueSeeder::tableOf(const SeedRow& row) {
  auto known = tables_.find(row.table);
  if (known == tables_.end()) {
    Result<TableInfo> table = catalogue_.table(row.table);
    if (!table) return at(row, table.error());
    known = tables_.emplace(row.table, std::move(*table)).first;
  }
  return &known->second;
}

Result<> CatalogueSeeder::setFields(Edit& edit) const {
  for (const SeedField& field : edit.row.fields) {
    const int index = edit.table.columnIndex(field.column);
    if (index < 0) return fail(ErrorKind::Missing, lineOf(field), edit.row.table + " has no column " + field.column);
    Result<Value> value = valueOf(field, edit.table.columns[static_cast<std::size_t>(index)]);
    if (!value) return fail(value.error());
    if (Result<> done = edit.set(field.column, *value); !done) return done;
  }
  return {};
}

Result<Value> CatalogueSeeder::valueOf(const SeedField& field, const ColumnInfo& column) const {
  if (field.text.starts_with('@')) {
    const auto key = keys_.find(field.text.substr(1));
    if (key == keys_.end()) return fail(ErrorKind::Missing, lineOf(field), "no row above is named " + field.text);
    return key->second;
  }
  if (auto value = typed(field.text, column.type)) return *value;
  return fail(ErrorKind::Malformed, lineOf(field),
              field.column + " can't hold \"" + field.text + "\", it is " + columnTypeName(column.type, column.size));
}

Result<> CatalogueSeeder::complete(Edit& edit) {
  for (const ColumnInfo& column : edit.table.columns)
    if (column.type == ColumnType::Bool && !edit.given(column.name))
      if (Result<> done = edit.set(column.name, false); !done) return done;
  if (edit.row.table.starts_with("zona")) return completeZone(edit);
  if (edit.row.table == "articoli")
    if (Result<> done = completePrices(edit); !done) return done;
  if (Result<> done = measurePictures(edit); !done) return done;
  if (edit.row.table == "categorie") return completeDepartment(edit);
  return edit.row.table == "paesi" ? completeCountry(edit) : Result<>();
}

Result<> CatalogueSeeder::completePrices(Edit& edit) {
  const auto spread = [&](const std::string& from, const std::string& to) -> Result<> {
    if (!edit.given(from) || edit.given(to)) return {};
    return edit.set(to, edit.records.get(from));
  };
  for (int listino = 1; listino < listini; ++listino) {
    const std::string digit(listinoSuffixes[static_cast<std::size_t>(listino)]);
    if (Result<> done = spread("prezzo", "prezzo" + digit); !done) return done;
    for (int slot = 1; slot <= 4; ++slot)
      if (Result<> done = spread(variantColumn(slot, 0), variantColumn(slot, listino)); !done) return done;
  }
  return {};
}

Result<> CatalogueSeeder::completeZone(Edit& edit) const {
  for (const ColumnInfo& column : edit.table.columns)
    if ((column.type == ColumnType::Money || column.type == ColumnType::Single) && !edit.given(column.name))
      if (Result<> done = edit.set(column.name, std::int64_t{0}); !done) return done;
  return {};
}

Result<> CatalogueSeeder::measurePictures(Edit& edit) const {
  constexpr std::string_view stem = "immagine";
  for (const SeedField& field : edit.row.fields) {
    if (!field.column.starts_with(stem)) continue;
    const Result<ImageSize> size = imageSize(joinPath(pictures_, field.text));
    if (!size) return fail(size.error().kind, lineOf(field), "picture " + field.text + ": " + size.error().what);
    const std::string rest = field.column.substr(stem.size());
    if (Result<> done = edit.set("imgX" + rest, std::int64_t{size->width}); !done) return done;
    if (Result<> done = edit.set("imgY" + rest, std::int64_t{size->height}); !done) return done;
  }
  return {};
}

Result<> CatalogueSeeder::completeDepartment(Edit& edit) {
  const std::string key = departmentKey(asInteger(edit.records.get("contatore")));
  if (Result<> done = edit.set("ID", key); !done) return done;
  if (Result<> done = edit.set("pagina", key); !done) return done;
  // A space means the shop's number of articles side by side.
  if (!edit.given("affiancati"))
    if (Result<> done = edit.set("affiancati", std::string(" ")); !done) return done;
  const std::string parent = asText(edit.records.get("genitore"));
  if (parent.empty() || parent == "###") {
    if (Result<> done = edit.set("genitore", std::string("###")); !done) return done;
    return edit.set("livello", std::int64_t{1});
  }
  Result<Value> level = catalogue_.scalar("SELECT livello FROM categorie WHERE ID='" + parent + "'");
  if (!level) return at(edit.row, level.error());
  if (Result<> done = catalogue_.execute("UPDATE categorie SET hafigli=1 WHERE ID='" + parent + "'"); !done)
    return at(edit.row, done.error());
  return edit.set("livello", asInteger(*level) + 1);
}

Result<> CatalogueSeeder::completeCountry(Edit& edit) const {
  return edit.set("strID", std::to_string(asInteger(edit.records.get("ID"))));
}

Result<> CatalogueSeeder::number() {
  constexpr std::int64_t first = 100;
  constexpr std::int64_t step = 5;
  for (const std::string_view query :
       {"SELECT * FROM categorie ORDER BY livello, contatore", "SELECT * FROM articoli ORDER BY catID, ID"}) {
    Result<Recordset> records = catalogue_.openRecordset(query);
    if (!records) return fail(records.error());
    for (std::int64_t order = first; !records->eof(); order += step, records->moveNext()) {
      if (Result<> done = records->edit(); !done) return done;
      if (Result<> done = records->set("ordinamento", order); !done) return done;
      if (Result<> done = records->update(); !done) return done;
    }
  }
  return {};
}

}  // namespace kv
