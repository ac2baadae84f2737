#include "shell/sheet/sheet_rows.h"

#include <algorithm>

#include "platform/database/rows.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/field_forms.h"
#include "shell/workbench/fields/vat_price.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr std::size_t mostKept = 4096;  // rows whose cells are remembered; beyond them all are read again

std::string titleColumns(const Session& session) {
  std::string text;
  for (std::size_t i = 0; i < static_cast<std::size_t>(session.languageCount); ++i) {
    text += ", a.titolo" + std::string(languageSuffixes[i]);
  }
  return text;
}

/// The conditions that the engine can test by itself.
std::string conditionsOf(const Session& session, const SheetFilter& filter) {
  std::string where = " WHERE 1";
  if (!filter.department.empty()) {
    where += filter.subDepartments ? " AND a.catID IN (WITH RECURSIVE part (ID) AS (SELECT ?1 UNION SELECT c.ID FROM"
                                     " categorie c JOIN part p ON c.genitore = p.ID) SELECT ID FROM part)"
                                   : " AND a.catID = ?1";
  }
  if (!filter.flag.empty()) where += " AND a." + filter.flag + " <> 0";
  if (filter.zeroPrice) where += " AND COALESCE(a.prezzo, 0) = 0";
  if (filter.withoutPicture) {
    for (const char* name : {"immagine0", "immagine1", "immagine2"}) {
      where += " AND COALESCE(a." + std::string(name) + ", '') = ''";
    }
  }
  if (filter.untranslated) {
    where += " AND (0";
    for (std::size_t i = 1; i < static_cast<std::size_t>(session.languageCount); ++i) {
      where += " OR TRIM(COALESCE(a.titolo" + std::string(languageSuffixes[i]) + ", '')) = ''";
    }
    where += ")";
  }
  return where;
}

// The fields of the statement that finds rows.
enum RowField { FieldID, FieldDepartment, FieldOrder, FieldSort, FieldTexts };

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Whether one of the texts holds what is looked for, which is in lower case.
bool holdsText(const Statement& row, const std::string& wanted) {
  // No character beyond ASCII that a shop holds has one of ASCII as its lower case.
  const bool isPlain = isAscii(wanted);
  for (int i = FieldTexts; i < row.columnCount(); ++i) {
    const std::string_view text = row.text(i);
    const std::size_t at = isPlain ? findIgnoringCase(text, wanted) : foldCase(text).find(wanted);
    if (at != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace

Result<> SheetRows::readLookups() {
  auto names = SheetNames::read(session_.catalogue);
  if (!names) return fail(names.error());
  names_ = std::move(*names);
  if (auto read = readDepartments(); !read) return read;
  return readVariants();
}

Result<> SheetRows::readDepartments() {
  departments_.clear();
  departmentChoices_.clear();
  auto departments = session_.catalogue.prepare(
      "SELECT ID, iva, COALESCE(genitore, '###') FROM categorie ORDER BY ordinamento, contatore");
  if (!departments) return fail(departments.error());
  std::unordered_map<std::string, std::vector<std::string>> children;
  auto row = departments->step();
  for (; row && *row; row = departments->step()) {
    const std::string ID(departments->text(0));
    departments_[ID] = {names_.department(ID), asText(departments->value(1)), lastRank};
    children[std::string(departments->text(2))].push_back(ID);
  }
  if (!row) return fail(row.error());
  // Parents before children, as the tree shows them; what hangs nowhere comes last.
  std::vector<std::string> open{std::string(treeRoot)};
  for (std::size_t rank = 0; !open.empty();) {
    const std::string ID = std::move(open.back());
    open.pop_back();
    if (const auto one = departments_.find(ID); one != departments_.end()) {
      one->second.rank = rank++;
      departmentChoices_.push_back(one->second.path);
    }
    const auto below = children.extract(ID);
    if (!below.empty()) open.insert(open.end(), below.mapped().rbegin(), below.mapped().rend());
  }
  return {};
}

Result<> SheetRows::readVariants() {
  variantChoices_.clear();
  variantNames_.clear();
  auto variants = session_.catalogue.prepare("SELECT ID FROM opzioni ORDER BY ID");
  if (!variants) return fail(variants.error());
  auto row = variants->step();
  for (; row && *row; row = variants->step()) {
    const std::int64_t ID = variants->integer(0);
    variantChoices_.push_back(variantNames_[ID] = names_.variant(ID));
  }
  return row ? Result<>() : fail(row.error());
}

const std::vector<std::string>& SheetRows::choices(const SheetColumn& column) const {
  static const std::vector<std::string> none;
  if (column.kind == SheetKind::Department) return departmentChoices_;
  return column.kind == SheetKind::Variant ? variantChoices_ : none;
}

const SheetRows::Department& SheetRows::departmentOf(std::string_view ID) const {
  static const Department none{{}, {}, lastRank};
  const auto found = departments_.find(ID);
  return found == departments_.end() ? none : found->second;
}

const std::string& SheetRows::variantName(std::int64_t ID) const {
  static const std::string none;
  const auto found = variantNames_.find(ID);
  return found == variantNames_.end() ? none : found->second;
}

void SheetRows::addTo(RowOrder& order, const SheetColumn* by, const Statement& row) const {
  const Department& department = departmentOf(row.text(FieldDepartment));
  const ShopPlace place{department.rank, row.integer(FieldOrder), row.integer(FieldID)};
  if (by == nullptr) return order.add(place, std::string_view());
  switch (by->kind) {
    case SheetKind::Number:
    case SheetKind::Price:
    case SheetKind::Flag:
      // What has no number comes before all that have.
      return order.add(place, row.isNull(FieldSort) ? -1 : row.number(FieldSort));
    case SheetKind::Vat:
      return order.add(place, numberWithVat(asText(row.value(FieldSort)), department.vat).value_or(-1));
    case SheetKind::Text:
      if (row.storedAs(FieldSort) == StoredAs::Text) return order.add(place, foldCase(row.text(FieldSort)));
      [[fallthrough]];
    default:
      return order.add(place, foldCase(textOf(*by, row.value(FieldSort), department)));
  }
}

Result<Statement> SheetRows::select(const SheetFilter& filter, const SheetColumn* by) const {
  const std::string sortField = by == nullptr || by->stored.name.empty() ? "NULL" : "a." + by->stored.name;
  return session_.catalogue.prepare("SELECT a.ID, a.catID, a.ordinamento, " + sortField +
                                    (trim(filter.text).empty() ? "" : ", a.codice" + titleColumns(session_)) +
                                    " FROM articoli a" + conditionsOf(session_, filter));
}

Result<> SheetRows::refresh(const SheetFilter& filter, const SheetOrder& order) {
  if (auto looked = readLookups(); !looked) return looked;
  const SheetColumn* const by = order.column && *order.column < columns_.size() ? &columns_[*order.column] : nullptr;
  auto row = select(filter, by);
  if (!row) return fail(row.error());
  if (!filter.department.empty()) row->bind(1, filter.department);
  const std::string wanted = foldCase(trim(filter.text));
  RowOrder found;
  auto read = forEachRow(*row, [&](const Statement& each) {
    if (wanted.empty() || holdsText(each, wanted)) addTo(found, by, each);
  });
  if (!read) return read;
  keys_ = found.sorted(by != nullptr && order.descending);
  forget();
  return {};
}

std::optional<std::size_t> SheetRows::rowOf(std::int64_t ID) const {
  const auto found = std::ranges::find(keys_, ID);
  if (found == keys_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - keys_.begin());
}

const std::vector<std::string>& SheetRows::cells(std::size_t row) {
  const std::int64_t ID = keys_[row];
  if (const auto known = cells_.find(ID); known != cells_.end()) return known->second;
  if (cells_.size() >= mostKept) cells_.clear();
  return cells_[ID] = readCells(ID);
}

std::vector<std::string> SheetRows::readCells(std::int64_t ID) {
  std::vector<std::string> texts(columns_.size());
  std::string fields = "catID";
  for (const SheetColumn& column : columns_)
    fields += ", " + (column.stored.name.empty() ? "NULL" : column.stored.name);
  auto row = session_.catalogue.prepare("SELECT " + fields + " FROM articoli WHERE ID = ?1");
  if (!row) return texts;
  row->bind(1, ID);
  const auto found = row->step();
  if (!found || !*found) return texts;
  const Department& department = departmentOf(row->text(0));
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    texts[i] = textOf(columns_[i], row->value(static_cast<int>(i) + 1), department);
  }
  return texts;
}

std::string SheetRows::textOf(const SheetColumn& column, const Value& stored, const Department& department) const {
  switch (column.kind) {
    case SheetKind::Department:
      return department.path;
    case SheetKind::Vat:
      return shownNumber(priceWithVat(asText(stored), department.vat), separator_);
    case SheetKind::Variant:
      return variantName(asInteger(stored));
    default:
      return shownValue(*column.editor, column.stored, stored, separator_);
  }
}

}  // namespace kv
