#pragma once
// All prices that a bulk change is about, read once: the preview is computed from them at each new percentage, and the
// change itself writes what the preview shows.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "commerce/prices/price_rule.h"
#include "platform/database/database.h"
#include "store/schema/schema.h"

namespace kv {

/// Price lists by their numbers.
using PriceLists = std::array<bool, listini>;

/// Which prices a change is about.
struct PriceSelection {
  PriceLists lists{};
  std::string department;  ///< ID of the only one, without its sub-departments; empty: all
  bool offers = false;     ///< offer prices, too
  bool variants = false;   ///< differences of the options of their variants, too
};

/// Whose price it is.
enum class PriceKind : std::uint8_t { Price, Offer, Option };

/// An article, or an option of a variant.
struct PriceOwner {
  std::int64_t ID = 0;
  std::string code;
  std::string title;  ///< in language 1; of an option with the name of its variant
};

/// One price as it is.
struct SurveyedPrice {
  std::uint32_t owner = 0;  ///< index in `owners`
  std::uint8_t listino = 0;
  PriceKind kind = PriceKind::Price;
  std::optional<Money> before;  ///< empty: the field is null
};

/// Prices owner by owner, those of one in the order of the price lists; articles first.
struct PriceSurvey {
  std::vector<PriceOwner> owners;
  std::vector<SurveyedPrice> prices;
};

/// Whether owners get their codes and titles, which only a display of prices needs.
enum class OwnerTexts { Read, LeaveEmpty };

/// Reads the prices of a selection. Failures: as the store's.
Result<PriceSurvey> surveyPrices(Database& catalogue, const PriceSelection& selection,
                                 OwnerTexts texts = OwnerTexts::Read);

/// The options that a change of variants would reach, and whom else it would reach by that.
struct VariantUse {
  std::vector<std::int64_t> variants;  ///< IDs, ascending; never 1, "(nessuna)"
  bool inOtherLists = false;           ///< one of them is used in a price list that is not selected
  bool inOtherDepartments = false;     ///< and in another department than the selected one
};
/// Who uses the variants of a selection. Articles without a department are in no other one.
Result<VariantUse> surveyVariants(Database& catalogue, const PriceSelection& selection);

/// What a rule would make of a survey.
struct PricePreview {
  std::vector<std::uint32_t> changed;    ///< indexes of the prices that get another value, in their order
  std::vector<std::uint32_t> beyond;     ///< those of them whose product is out of the range of Money
  std::size_t zeros = 0;                 ///< prices that become 0, missing ones included
  std::optional<std::uint32_t> largest;  ///< the one that changes most
};
/// Whether a price of the survey would leave the range of Money.
bool holdsPriceBeyond(const PriceSurvey& survey, const PriceRule& rule);
PricePreview previewPrices(const PriceSurvey& survey, const PriceRule& rule);

}  // namespace kv
