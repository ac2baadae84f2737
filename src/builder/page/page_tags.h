#pragma once
// The page tag row: the one row whose columns are the tag names of kinds 1 and 3. It lives in memory during a build and
// is written to the tag database when a language or the build ends. Most of its columns are the same on all pages of a
// language; a page sets the rest.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "builder/values/html_text.h"
#include "platform/database/field_row.h"
#include "platform/database/table_info.h"
#include "tags/engine/tag_engine.h"
#include "tags/language/language_module.h"

namespace kv {

/// The values of the page tags, by column name; names ignore case.
class PageTagRow final : public TagRow {
 public:
  /// The columns that the tag database has; all empty.
  explicit PageTagRow(const TableInfo& categoria);
  /// A row without columns: every tag is unknown.
  PageTagRow() = default;

  const std::string* find(std::string_view column) const override;
  /// Sets a column; a tag database that lacks it (an older shop) goes without.
  void set(std::string_view column, std::string value);
  /// Sets a tag that the tag database has no column for; pages alone know it.
  void setBeside(std::string_view tag, std::string value);
  /// Columns in the order of the table.
  const std::vector<std::string>& names() const { return names_; }
  /// Their values, in the same order.
  const std::vector<std::string>& values() const { return values_; }

 private:
  std::size_t indexOf(std::string_view column) const;

  std::vector<std::string> names_;
  std::vector<std::string> values_;
  std::unordered_map<std::string, std::size_t> indexes_;  // by folded name
  std::unordered_map<std::string, std::string> beside_;   // tags without a column, by folded name
};

/// What the shop's own texts, pictures and colours are made of, for one language.
struct ShopTags {
  const FieldRow& generale;          ///< in the language view
  std::string_view lingua;           ///< language suffix
  std::string shopNumber;            ///< IDnegozio, with the language suffix
  std::string redirectScript;        ///< java_redirect
  HtmlText html;                     ///< how the merchant's texts become HTML
  std::vector<std::string> colours;  ///< of the template, 0 to 3, as "#RRGGBB"
};

/// Fills their columns, which are the same on all pages of a language.
void fillShopTags(PageTagRow& row, const ShopTags& tags);

/// Sets lingua1 to lingua4 to the links from a page of language `current` to its copies in the other languages. `file`:
/// the page's file name in its own language; an empty one empties the columns.
void setLanguageLinks(PageTagRow& row, const ShopLanguages& languages, int current, std::string_view file);

/// IDnegozio (shop number): the address without its first 7 characters, summed as character code times position.
std::string shopNumber(std::string_view shopAddress);

/// MakeRedirect: the lines of java_redirect, each opened by CR LF; empty when neither setting is on.
std::string MakeRedirect(const FieldRow& generale);

/// The pager of a department, one PHP text for every sub-page. `page`: file stem with the language suffix.
std::string pager(std::string_view page);

}  // namespace kv
