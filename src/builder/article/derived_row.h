#pragma once
// The derived article row: what one article becomes for one language. It is kept as fields and not as texts, so that
// each table takes the columns it has with the types it has. Rows are used again from page to page, so that their
// texts keep their memory.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/statement.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "store/schema/schema.h"

namespace kv {

/// One field of a derived row.
struct DerivedField {
  /// What the field holds, and so the type that a table gets.
  enum class Kind : std::uint8_t { Null, Integer, Real, Money, Text };
  Kind kind = Kind::Null;
  std::int64_t whole = 0;  ///< Integer, flags as 0 and 1, ten-thousandths of Money
  double real = 0;         ///< Real
  std::string text;        ///< Text; kept when the field becomes a number, for its memory

  /// Makes it a text.
  void set(std::string_view value) {
    kind = Kind::Text;
    text = value;
  }
  /// Makes it a text and takes over its memory.
  void set(std::string&& value) {
    kind = Kind::Text;
    text = std::move(value);
  }
  /// Makes it a whole number or a flag.
  void setWhole(std::int64_t value) {
    kind = Kind::Integer;
    whole = value;
  }
  /// Makes it a floating point number.
  void setReal(double value) {
    kind = Kind::Real;
    real = value;
  }
  /// Makes it an amount.
  void setMoney(Money value) {
    kind = Kind::Money;
    whole = value.tenThousandths();
  }
  /// Binds the value to a parameter, counted from 1. The field outlives the statement's execution.
  void bindTo(Statement& statement, int parameter) const;
};

/// The fields of one article, by the indexes of DerivedColumns.
using DerivedRow = std::vector<DerivedField>;

/// The derived rows of one sub-page. Rows that are no longer in use stay allocated for the pages to come.
class DerivedRows {
 public:
  /// The row after the last one, to be filled; it counts once keepNext() is called.
  DerivedRow& next();
  /// Counts the row that next() gave.
  void keepNext() { ++count_; }
  /// Forgets all rows.
  void clear() { count_ = 0; }

  /// The number of rows in use.
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  /// A row in use.
  const DerivedRow& operator[](std::size_t index) const { return rows_[index]; }

 private:
  std::vector<DerivedRow> rows_;  // the first count_ are in use
  std::size_t count_ = 0;
};

/// The index of each column in a derived row, found by name once per build.
struct DerivedColumns {
  /// Finds all of them; one that the schema lacks is -1.
  DerivedColumns();

  /// The columns in the order of a derived row.
  std::vector<ColumnInfo> columns;
  /// The index of a column, whatever the case of its name; -1 when there is none.
  int indexOf(std::string_view name) const;

  // One index per column or group of columns, under the column's name.
  int ID, catID, codice, correlazione, novita;
  std::array<int, listini> implistino, importo, scq;  // by listino
  std::array<int, 2> scqperc, scqart;                 // by quantity threshold
  int titolo, plain_titolo, sottotitolo, plain_sottotitolo, cart_articolo;
  std::array<int, 3> immagine;  // immagine1 to immagine3
  int offerta, iva, listino, prezzo, cambio, cart_prezzo, cart_iva, cart_peso, descrizione, note;
  std::array<std::array<int, listini>, 4> opzione;  // by variant slot, then by listino
  std::array<int, 4> cart_opzione;                  // by variant slot
  int contatore, java_acquista;

 private:
  void findNumbered();
};

/// Appends derived rows to one table, each column of the table taken from the column of that name, from one of the
/// extra fields, or left null. Columns that the table lacks are skipped.
class DerivedRowWriter {
 public:
  /// `extra`: names of fields that come with each derived row, in the order in which write() gets them.
  /// Failures as Database::table and Database::prepare.
  static Result<DerivedRowWriter> open(Database& database, std::string_view table, const DerivedColumns& derived,
                                       const std::vector<std::string>& extra);
  /// Appends one row. Failures as Statement::execute.
  Result<> write(const DerivedRow& row, const std::vector<DerivedField>& extra);

 private:
  struct Source {
    bool isExtra;       // an extra field, not one of the derived row
    std::size_t index;  // among the extra fields, or in the derived row
  };
  static std::optional<Source> sourceOf(std::string_view column, const DerivedColumns& derived,
                                        const std::vector<std::string>& extra);

  Statement insert_;
  std::vector<Source> sources_;  // one for each parameter, in their order
};

}  // namespace kv
