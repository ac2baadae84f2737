#pragma once
// The derived article row: what one article becomes for one language. Rows are reused from page to page, so that their
// texts keep their room.

#include <array>
#include <cstdint>
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
  enum class Kind : std::uint8_t { Null, Integer, Real, Money, Text };
  Kind kind = Kind::Null;
  std::int64_t whole = 0;  ///< Integer, flags as 0 and 1, ten-thousandths of Money
  double real = 0;
  std::string text;

  void set(std::string_view value) {
    kind = Kind::Text;
    text = value;
  }
  void set(std::string&& value) {
    kind = Kind::Text;
    text = std::move(value);
  }
  void setWhole(std::int64_t value) {
    kind = Kind::Integer;
    whole = value;
  }
  void setReal(double value) {
    kind = Kind::Real;
    real = value;
  }
  void setMoney(Money value) {
    kind = Kind::Money;
    whole = value.tenThousandths();
  }
  void bindTo(Statement& statement, int place) const;
};

using DerivedRow = std::vector<DerivedField>;

/// Places of the columns in a derived row, found by name once per build.
struct DerivedColumns {
  DerivedColumns();

  std::vector<ColumnInfo> columns;
  int place(std::string_view name) const;

  int ID, catID, codice, correlazione, novita;
  std::array<int, listini> implistino, importo, scq;
  std::array<int, 2> scqperc, scqart;
  int titolo, plain_titolo, sottotitolo, plain_sottotitolo, cart_articolo;
  std::array<int, 3> immagine;
  int offerta, iva, listino, prezzo, cambio, cart_prezzo, cart_iva, cart_peso, descrizione, note;
  std::array<std::array<int, listini>, 4> opzione;
  std::array<int, 4> cart_opzione;
  int contatore, java_acquista;
};

/// Appends derived rows to one table, each column of the table taken from the column of that name, from one of the
/// extra fields, or left null. Columns that the table lacks are skipped.
class DerivedRowWriter {
 public:
  /// `extra`: names of fields that come beside the derived row, in the order in which write() gets them.
  static Result<DerivedRowWriter> open(Database& database, std::string_view table, const DerivedColumns& derived,
                                       std::vector<std::string> extra);
  Result<> write(const DerivedRow& row, const std::vector<DerivedField>& extra);

 private:
  struct Source {
    bool isExtra;
    std::size_t index;
  };
  Statement insert_;
  std::vector<Source> sources_;  // of each bound place, from 1
};

}  // namespace kv
