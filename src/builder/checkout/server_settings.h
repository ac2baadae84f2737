#pragma once
// What differs from shop to shop in the scripts of the server: PHP settings, addresses, accounts, mail texts. Most of
// it is in columns of the page tag row, from where the tags of the scripts take it.

#include <string>
#include <string_view>

#include "builder/page/page_tags.h"
#include "commerce/shipping/currency_form.h"
#include "platform/database/field_row.h"

namespace kv {

/// The settings block `php_globals`, the same on every page: one PHP assignment per line (CR LF). `factor` is the
/// fattore di negozio (shop factor); the two marks are pictures of the template folder.
std::string phpGlobals(const FieldRow& generale, const CurrencyForm& form, float factor,
                       const std::string& templateFolder);

/// The department lines `php_vars`: they load the department's factors and send a visitor whose listino is closed to
/// the login page. `department`: its ID.
std::string phpVars(std::string_view department);

/// What the server's columns are made of, for one language.
struct ServerTags {
  const FieldRow& generale;          ///< in the language view
  std::string_view lingua;           ///< language suffix
  std::string_view pageExtension;    ///< of the pages, with its dot
  const std::string& currencyLabel;  ///< primary
  const std::string& phpGlobals;     ///< as phpGlobals gives it
};

/// Fills the server's columns, which are the same on all pages of a language.
void fillServerTags(PageTagRow& row, const ServerTags& tags);

}  // namespace kv
