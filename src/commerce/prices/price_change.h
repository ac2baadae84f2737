#pragma once
// The bulk change of prices (rules of frmVariaPrezzi): by a percentage, over several price lists, for one department or
// for all.

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "commerce/prices/price_survey.h"
#include "platform/ports/user_port.h"

namespace kv {

inline constexpr std::string_view changePricesTitle = "Korvane - Variazione prezzi";

/// What the fields of the dialog say.
struct PriceChange {
  PriceSelection selection;
  std::string percentage;  ///< as typed: "+10", "-2,5"
  bool whole = false;      ///< round prices
};

/// How the run of a bulk dialog ended.
enum class BulkEnd {
  Done,  ///< the dialog closes; rows have changed, unless there was nothing to change
  Left,  ///< the user thought better of it: the dialog closes, nothing has changed
  /// An error has ended the run, the user has been told; the dialog closes, rows done before it stay.
  Interrupted,
  Stay  ///< the user has been told what is wrong: the dialog stays, nothing has changed
};

/// ModificaPrezzi (change the prices): asks when options would change elsewhere, too, then reads the percentage, then
/// writes. All of it is one transaction; after an error of the engine the rows done so far keep their new prices where
/// the engine allows, and the user is told. Refused before anything is written when a price would leave the range of
/// Money.
BulkEnd ModificaPrezzi(Database& catalogue, const PriceChange& change, UserPort& user);

/// The question of step one, with the lines of what is to be expected; No is its default. Empty text: nothing to ask.
Question variantQuestion(const VariantUse& use);

/// Runs a walk over many rows as one transaction. When it fails, what it has written is kept where the engine allows;
/// the failure is returned.
Result<> walkKeepingRows(Database& catalogue, const std::function<Result<>()>& walk);
/// Tells the user that a walk has ended early. `what`: "La modifica dei prezzi".
void showInterrupted(UserPort& user, std::string_view what, const Error& error);
/// Tells the user which prices would leave the range of Money.
void showBeyondRange(UserPort& user, const std::vector<std::string>& names);

// Texts of the preview.

/// "Prezzi da modificare: 12", with the largest change, what becomes 0 and, by name, what would leave the range of
/// Money.
std::string previewSummary(const PriceSurvey& survey, const PricePreview& preview, const PriceRule& rule,
                           char decimalSeparator = ',');
/// Why a survey has no price: no list is ticked, or the department has sub-departments alone. Empty for all
/// departments.
std::string emptyPreview(const PriceSelection& selection);
/// "; oltre il massimo consentito: 2 (Vaso, Tazza)", with the first three names; empty without any.
std::string beyondSummary(const std::vector<std::string>& names);
/// What a price is called: "Listino 3", "Offerta 3", "Variante".
std::string priceName(const SurveyedPrice& price);
/// An amount with at least two decimals, "1.234,50" by the comma; a field without value is "-".
std::string shownPrice(std::optional<Money> price, char decimalSeparator = ',');
/// The same of what a rule makes of a price; "oltre il massimo" where that is out of the range of Money.
std::string newPrice(std::optional<Money> price, const PriceRule& rule, char decimalSeparator = ',');

}  // namespace kv
