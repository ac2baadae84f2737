#pragma once
// The PHP that is put around a page: what comes before it, and the loop that a department's article section becomes.
// Lines are parted by CR LF.

#include <string>
#include <string_view>

namespace kv {

/// Settings that decide over the prologue of the order page.
struct OrderRules {
  bool registrationRequired = false;     ///< regobbl: only who is registered may order
  bool pricesForRegisteredOnly = false;  ///< regprices: only who is registered sees prices
  bool limitsForFirstList = false;       ///< reglist: the two above hold for listino 0 as well
};

/// What comes before a page that is no department page. `input`: path of its template; order.htm and cart.htm get
/// blocks of their own. `lingua`: language suffix.
std::string pagePrologue(std::string_view input, std::string_view lingua, const OrderRules& rules);

/// What comes at the very top of a department page. `pageRoot`: file stem of the page; `phpVars`: its department
/// lines.
std::string departmentPrologue(std::string_view lingua, std::string_view pageRoot, std::string_view phpVars);

/// What replaces <KV_START>: the head of the loop over the articles. `columns`: articles side by side.
std::string loopHead(int columns);
/// What replaces <KV_END>: the tail of that loop.
std::string loopTail(int columns);
/// What follows the last character of a department page.
std::string_view departmentEpilogue();

/// The cell code around one article in a grid: a cell of a table, and the row's own tags where a row begins or ends.
struct CellCode {
  std::string before;  ///< empty with one column
  std::string after;   ///< empty with one column
};
/// `index`: of the article on its page, from 0; `columns`: articles side by side; `last`: the last one of the page.
CellCode cellCode(int index, int columns, bool last);

}  // namespace kv
