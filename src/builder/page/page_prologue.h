#pragma once
// The PHP that is put around a page: what stands before it, and the loop that a department's article section becomes.

#include <string>
#include <string_view>

namespace kv {

/// Settings that decide over the prologue of the order page.
struct OrderRules {
  bool registrationRequired = false;     ///< regobbl
  bool pricesForRegisteredOnly = false;  ///< regprices
  bool limitsForFirstList = false;       ///< reglist
};

/// What stands before a page that is no department page; `input` is the path of its template: order.htm and cart.htm
/// get blocks of their own.
std::string pagePrologue(std::string_view input, std::string_view lingua, const OrderRules& rules);

/// What stands at the very top of a department page. `pageRoot`: file stem of the page; `phpVars`: its department
/// lines.
std::string departmentPrologue(std::string_view lingua, std::string_view pageRoot, std::string_view phpVars);

/// What replaces <KV_START> and <KV_END>, and what stands behind the page. `columns`: articles side by side.
std::string loopHead(int columns);
std::string loopTail(int columns);
std::string_view departmentEpilogue();

/// The cell code around one article in a grid of `columns`: empty with one column.
struct CellCode {
  std::string before;
  std::string after;
};
/// `place`: of the article on its page, from 0; `last`: the last one of the page.
CellCode cellCode(int place, int columns, bool last);

}  // namespace kv
