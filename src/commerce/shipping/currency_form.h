#pragma once
// How the shop writes amounts: currency labels, masks, notation. Made once per build from the settings.

#include <string>
#include <string_view>

#include "platform/database/field_row.h"
#include "platform/numbers/money.h"

namespace kv {

/// The form of both currencies; made without settings it writes numbers without a label and without separators.
struct CurrencyForm {
  std::string label;      ///< primary currency sign and one space
  std::string label2;     ///< secondary
  bool decimals = true;   ///< primary amounts show decimals
  bool decimals2 = true;  ///< secondary amounts do
  std::string sepdec;     ///< decimal separator of the notation
  std::string sepmigl;    ///< thousands separator of the notation

  /// From the settings of the shop, in any language view.
  explicit CurrencyForm(const FieldRow& generale);
  CurrencyForm() = default;

  /// NumeroJS (JavaScript number): an amount for scripts: decimal point, no thousands separator, decimals as the
  /// primary currency has them.
  std::string NumeroJS(Money amount) const;
  /// NumeroLocale (local number): a number text with the system's "." and "," in the shop's notation.
  std::string NumeroLocale(std::string_view number) const;
  /// SepDecimale (decimal separator): each "." as the shop's decimal separator.
  std::string SepDecimale(std::string_view number) const;
  /// An amount with the label of the primary currency, thousands grouped.
  std::string primaryText(Money amount) const;
  /// The same in the secondary currency.
  std::string secondaryText(double amount) const;
};

/// The fattore di negozio (shop factor): (100 - x) / 100 of a discount percent given as text, 1 when it is no number
/// from 0 to 100. Computed in double precision and rounded once to single.
float shopFactor(std::string_view sconto);
/// A percentage as factor, (100 - x) / 100, times the shop factor; no range test. Rounded likewise.
float discountFactor(float percent, float shopFactor);

}  // namespace kv
