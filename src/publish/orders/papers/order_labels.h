#pragma once
// Address labels on A4 sheets: which sheets there are, where each label is, and what is on it.

#include <span>
#include <string>
#include <string_view>

#include "publish/orders/values/desk_order.h"

namespace kv {

/// A sheet of labels on A4 paper; lengths in millimetres.
struct LabelSheet {
  std::string_view caption;  ///< for the choice, in Italian
  int columns;
  int rows;
  double width;  ///< of a label
  double height;
  double left;  ///< the edge of the paper beside the first column
  double top;   ///< the edge of the paper above the first row
  double gap;   ///< between columns

  /// Labels of a whole sheet.
  int count() const { return columns * rows; }
};

/// The sheets that are known: 3 by 8 of 70 by 37 mm, 2 by 7 of 99 by 38 mm.
std::span<const LabelSheet> labelSheets();

/// Where a label is: its page from 0, and the distance of its corner from that of the paper in millimetres.
struct LabelPosition {
  int page = 0;
  double left = 0;
  double top = 0;
};
/// The position of the label of index `index`, counted along the rows from that of index `first`, at which the first
/// sheet begins (0: a whole sheet).
LabelPosition labelPosition(const LabelSheet& sheet, int first, int index);

/// The address of an order as HTML, a line each, with its code in small print below, and what is left of an order of
/// which the customer gives something back.
std::string labelText(const DeskOrder& order);

}  // namespace kv
