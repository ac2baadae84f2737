#pragma once
// The columns that the sheet of articles can show, in every language and price list of the shop.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/table_info.h"
#include "shell/workbench/fields/editor_table.h"
#include "store/shop/session.h"

namespace kv {

enum class SheetKind {
  Text,       ///< one line
  Lines,      ///< a text of several lines
  Number,     ///< shown with the decimal separator, at the right
  Price,      ///< a number that the steps of prices change
  Flag,       ///< "1" or "0"
  Vat,        ///< a price with the VAT of the department; can't be typed
  Variant,    ///< a variant by its name, chosen from those of the shop
  Department  ///< a department by its path, chosen from those of the shop
};

struct SheetColumn {
  std::string name;     ///< its identity: the column of `articoli`, "iva3" or "reparto"
  std::string heading;  ///< in Italian, as an export of articles heads it
  SheetKind kind = SheetKind::Text;
  const Editor* editor = nullptr;  ///< whose rules hold for what is typed; null: nothing is typed
  ColumnInfo stored;               ///< the column of `articoli`; of Vat its price, without a name for Department
  bool isUsual = false;            ///< shown until the merchant chooses
};

/// All columns of an open shop, in their usual order. Failures: as the store's.
Result<std::vector<SheetColumn>> sheetColumns(Session& session);

/// The indexes of the columns that a text of the settings names, in its order; names are parted by spaces. Unknown
/// names are passed over; a text without a known name is the usual choice.
std::vector<std::size_t> chosenColumns(const std::vector<SheetColumn>& all, std::string_view stored);
/// The text of a choice for the settings.
std::string storedChoice(const std::vector<SheetColumn>& all, const std::vector<std::size_t>& chosen);

/// Whether the cells of a column say one of several names, which are chosen and not typed.
bool isChoice(const SheetColumn& column);
/// Whether the cells of a column can be changed.
bool isEditable(const SheetColumn& column);
/// Whether find and replace looks into a column.
bool isSearchable(const SheetColumn& column);

}  // namespace kv
