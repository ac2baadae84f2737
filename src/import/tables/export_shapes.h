#pragma once
// How other shop programs write their products: known by the headers that their manuals list. Their columns are those
// of another catalogue, so a shape says which of them is which of ours, and turns their cells into what ours hold:
// grams into kilograms, "published" into "not listed", a price and the one before it into a price and an offer, the
// values that a further variant leaves out into those of the row above.

#include <string>
#include <string_view>
#include <vector>

#include "import/sheets/sheet_file.h"
#include "import/tables/column_mapping.h"

namespace kv {

/// A shape as a list shows it.
struct ExportShapeName {
  std::string_view name;     ///< what the command line calls it: "handle", "tipo", "riferimento", "feed"
  std::string_view caption;  ///< "Handle, Title, Variant SKU"
};
/// All shapes, in the order of lists.
std::vector<ExportShapeName> exportShapeNames();
/// Caption of a shape; empty where there is none of the name.
std::string_view exportShapeCaption(std::string_view name);
/// Name of the shape that headers tell; empty where they tell none.
std::string_view exportShapeOf(const std::vector<std::string>& headers);

/// Turns the cells of a sheet into those that the columns of `table` hold; columns that come of several are added at
/// its end. The mapping that belongs to it: columns without a counterpart, numbers of the other program's rows and
/// addresses of pictures in the net are left out. Missing when there is no shape of the name, Malformed with
/// TooLargeSheet when the new cells are more than the limits allow, Cancelled when choice.goOn says so.
Result<ColumnMapping> applyExportShape(std::string_view name, const SheetTable& table, const SheetChoice& choice,
                                       ReadSheet& sheet);

}  // namespace kv
