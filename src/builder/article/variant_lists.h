#pragma once
// What a variant (opzione) is on the pages of one language: its name, and its values as the options of a list. The
// shop's PHP puts the list into a selector and converts the prices for the visitor.

#include <cstdint>
#include <string>
#include <string_view>

#include "commerce/shipping/currency_form.h"
#include "platform/database/database.h"
#include "platform/database/field_row.h"
#include "platform/database/statement.h"
#include "platform/ports/result.h"

namespace kv {

/// One value of a variant as the catalogue has it.
struct VariantValue {
  std::string testo;        ///< what the visitor chooses; a value without it is left out
  std::string codice;       ///< what the order names it by, may be empty
  Money prezzo;             ///< what it adds to the article's price, negative for less
  float peso = 0;           ///< what it adds to the article's weight
  std::string selezionato;  ///< not empty: the default value
};

/// How the values of a shop's variants are written.
class VariantList {
 public:
  /// `generale`: the settings in the language of the list.
  explicit VariantList(const FieldRow& generale);
  /// With differences shown and the amounts of no currency.
  VariantList() = default;

  /// <option value="<<PRICE>>=WEIGHT#CODE|LABEL">TEXT ( + EUR <<importo>> )</option>. <<PRICE>> and <<importo>> are
  /// written as they are, for the shop's PHP to fill. Empty for a value without text; the default value carries " *".
  std::string option(const VariantValue& value, std::string_view nome) const;

 private:
  enum class Differences { WithSign, Hidden, WithoutPlus };

  CurrencyForm form_;
  Differences differences_ = Differences::WithSign;
};

/// Reads the variants of a catalogue in one language. The statements are prepared once for all variants.
class VariantReader {
 public:
  /// `generale`: the settings in that language. Failures: as Database::prepare.
  static Result<VariantReader> open(Database& catalogue, const FieldRow& generale, std::string_view lingua);

  /// CreaNomeOpzione (make option name): the variant's name up to a "|", without marks; empty for the variant 1, which
  /// is the fixed one for none, and for one that isn't there. Failures: as Statement::step.
  Result<std::string> CreaNomeOpzione(std::int64_t id);
  /// InserisciOpzione (insert option): the options of all values, in the order of the table; empty for the variant 1.
  /// `nome`: the variant's name, which each option repeats for the cart. Failures: as Statement::step.
  Result<std::string> InserisciOpzione(std::int64_t id, std::string_view nome);

 private:
  VariantReader() = default;

  VariantList list_;
  Statement names_, values_;
};

}  // namespace kv
