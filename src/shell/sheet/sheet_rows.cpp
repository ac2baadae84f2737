#include "shell/sheet/sheet_rows.h"

#include <algorithm>
#include <tuple>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/field_forms.h"
#include "shell/workbench/fields/vat_price.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr std::size_t mostKept = 4096;  // rows whose cells are remembered; beyond them all are read again

/// The departments as the tree shows them: parents before children, siblings in their order.
constexpr std::string_view departmentsInOrder =
    "WITH RECURSIVE tree (ID, path) AS ("
    " SELECT ID, printf('%020d.%020d', COALESCE(ordinamento, 0), contatore) FROM categorie"
    "  WHERE COALESCE(genitore, '###') = '###'"
    " UNION ALL SELECT c.ID, t.path || '/' || printf('%020d.%020d', COALESCE(c.ordinamento, 0), c.contatore)"
    "  FROM categorie c JOIN tree t ON c.genitore = t.ID) ";

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

/// Whether one of the texts after the sort field holds what is looked for.
bool holdsText(const Statement& row, const std::string& wanted) {
  constexpr int firstText = 3;
  for (int i = firstText; i < row.columnCount(); ++i) {
    if (foldCase(row.text(i)).find(wanted) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

Result<> SheetRows::readLookups() {
  departments_.clear();
  variants_.clear();
  auto departments = session_.catalogue.prepare("SELECT ID, titolo, iva FROM categorie");
  if (!departments) return fail(departments.error());
  for (auto row = departments->step(); row && *row; row = departments->step()) {
    departments_[std::string(departments->text(0))] = {std::string(departments->text(1)),
                                                       asText(departments->value(2))};
  }
  auto variants = session_.catalogue.prepare("SELECT ID, nome FROM opzioni");
  if (!variants) return fail(variants.error());
  for (auto row = variants->step(); row && *row; row = variants->step()) {
    variants_[variants->integer(0)] = std::string(variants->text(1));
  }
  return {};
}

SheetRows::SortKey SheetRows::sortKeyOf(const SheetColumn* by, const Statement& row) const {
  SortKey key{{}, 0, row.integer(0)};
  if (by == nullptr) return key;
  constexpr int sortField = 2;
  switch (by->kind) {
    case SheetKind::Number:
    case SheetKind::Price:
    case SheetKind::Flag:
      // What has no number comes before all that have.
      key.number = row.isNull(sortField) ? -1 : row.number(sortField);
      return key;
    case SheetKind::Vat: {
      const std::string shown = textOf(*by, row.value(sortField), std::string(row.text(1)));
      key.number = toNumber(storedNumber(shown, separator_)).value_or(-1);
      return key;
    }
    default:
      key.text = foldCase(textOf(*by, row.value(sortField), std::string(row.text(1))));
      return key;
  }
}

Result<Statement> SheetRows::select(const SheetFilter& filter, const SheetColumn* by) const {
  const std::string sortField = by == nullptr || by->stored.name.empty() ? "NULL" : "a." + by->stored.name;
  return session_.catalogue.prepare(std::string(departmentsInOrder) + "SELECT a.ID, a.catID, " + sortField +
                                    (trim(filter.text).empty() ? "" : ", a.codice" + titleColumns(session_)) +
                                    " FROM articoli a LEFT JOIN tree t ON t.ID = a.catID" +
                                    conditionsOf(session_, filter) +
                                    " ORDER BY t.path IS NULL, t.path, a.ordinamento, a.ID");
}

Result<> SheetRows::refresh(const SheetFilter& filter, const SheetOrder& order) {
  if (auto read = readLookups(); !read) return read;
  const SheetColumn* const by = order.column && *order.column < columns_.size() ? &columns_[*order.column] : nullptr;
  auto row = select(filter, by);
  if (!row) return fail(row.error());
  if (!filter.department.empty()) row->bind(1, filter.department);
  const std::string wanted = foldCase(trim(filter.text));
  std::vector<SortKey> found;
  for (;;) {
    const auto stepped = row->step();
    if (!stepped) return fail(stepped.error());
    if (!*stepped) break;
    if (wanted.empty() || holdsText(*row, wanted)) found.push_back(sortKeyOf(by, *row));
  }
  const auto isBefore = [](const SortKey& one, const SortKey& other) {
    return std::tie(one.text, one.number) < std::tie(other.text, other.number);
  };
  if (by != nullptr) {
    std::ranges::stable_sort(found, [&](const SortKey& one, const SortKey& other) {
      return order.descending ? isBefore(other, one) : isBefore(one, other);
    });
  }
  keys_.resize(found.size());
  std::ranges::transform(found, keys_.begin(), &SortKey::ID);
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
  const std::string department(row->text(0));
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    texts[i] = textOf(columns_[i], row->value(static_cast<int>(i) + 1), department);
  }
  return texts;
}

std::string SheetRows::textOf(const SheetColumn& column, const Value& stored, const std::string& department) const {
  const auto of = departments_.find(department);
  switch (column.kind) {
    case SheetKind::Department:
      return of == departments_.end() ? std::string() : of->second.title;
    case SheetKind::Vat:
      if (of == departments_.end()) return {};
      return shownNumber(priceWithVat(asText(stored), of->second.vat), separator_);
    case SheetKind::Variant: {
      const auto variant = variants_.find(asInteger(stored));
      return variant == variants_.end() ? std::string() : variant->second;
    }
    default:
      return shownValue(*column.editor, column.stored, stored, separator_);
  }
}

}  // namespace kv
