#pragma once
// The columns of the list of articles: what each is called, what of a row it shows, by what it sorts, and which of them
// the merchant has chosen to see.

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "shell/workbench/article_rows.h"

namespace kv {

struct ArticleColumn {
  std::string_view name;     ///< in the settings
  std::string_view heading;  ///< in Italian
  ArticleArrangement::By by = ArticleArrangement::By::ShopOrder;
  std::string ArticleRow::*text = nullptr;  ///< what it shows; null: computed by whoever shows it
  bool isNumber = false;                    ///< shown with the locale's decimal separator, at the right
  bool isUsual = false;                     ///< shown until the merchant chooses
  std::string_view edits = {};              ///< the column of `articoli` that is typed in it; empty: none
};

/// The columns of the list from left to right; Showcase shows "Sì" or nothing.
enum class ListColumn { Code, Title, Price, Vat, Offer, Weight, Showcase };
inline constexpr int listColumns = 7;

/// All columns, in the order of ListColumn.
std::span<const ArticleColumn> articleColumns();

/// Which columns show, in the order of ListColumn. The title always does.
using ShownColumns = std::array<bool, listColumns>;
/// The columns of a text of the settings: their names, parted by spaces. Unknown names are passed over; an empty text
/// is the usual choice.
ShownColumns shownColumns(std::string_view stored);
/// The text of a choice for the settings.
std::string storedColumns(const ShownColumns& shown);

}  // namespace kv
