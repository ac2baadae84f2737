#pragma once
// Tags "<<n-name>>" and their expansion. One call of EspandiTag replaces the tags of one kind: 1 and 3 from the page
// tag row, 2 from the derived article row, 4 from the language module, 5 from the merchant's own tags. The cost is
// linear in the text and in what is put into it.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

class LanguageModule;
class CustomTags;

/// The row that tags of the kinds 1, 2 and 3 name columns of. Column names ignore case.
/// The values outlive the expansion.
class TagRow {
 public:
  virtual ~TagRow() = default;
  /// The value of a column, empty for a null; nullptr when there is no such column.
  virtual const std::string* find(std::string_view column) const = 0;
};

/// Where the values of one expansion come from.
struct TagContext {
  const TagRow* row = nullptr;             ///< kinds 1, 2, 3; no row means no columns
  const LanguageModule* words = nullptr;   ///< kind 4; without one the tags stay
  const CustomTags* customTags = nullptr;  ///< kind 5; without one the tags vanish
  int contatore = 0;                       ///< position of the article, for /COUNTER/
  bool reparto = false;                    ///< a department page: kind 2 becomes PHP calls
};

/// EspandiTag (expand tags): the text with every tag of `kind` replaced; a value that holds further tags of that kind
/// after its first character is expanded as well, together with what follows it. Malformed with number 5 when a tag has
/// no ">>" after it; with number 28 when the tags inside values come to more than 100,000 or to 64 MiB, as those of
/// a column do that holds its own tag.
Result<std::string> EspandiTag(std::string_view testo, const TagContext& context, int kind);

/// NormalizzaTag (normalise tags): changes "&lt;&lt;", "%3C%3C" and their mixed forms back into "<<", likewise ">>".
std::string NormalizzaTag(std::string_view testo);
/// Whether NormalizzaTag may change the text at all; true for every text that it changes.
bool needsNormalizzaTag(std::string_view testo);

/// MettiVirgolette (insert quotes): each "|" becomes a double quote.
std::string MettiVirgolette(std::string_view testo);
/// NoVirgolette (no quotes): each double quote becomes an apostrophe.
std::string NoVirgolette(std::string_view testo);

/// InterpretaCodice (encode a code): % [ ] | ? # = < > as percent codes, for the value of a variant's option.
std::string InterpretaCodice(std::string_view testo);
/// StripCodice (strip a code): "|" becomes a space; ? # = < > and double quotes are removed.
std::string StripCodice(std::string_view testo);

/// ReplaceString: inserts <<1-IDlingua>> before the first "." of each reference to the file `nome`: the name, in any
/// case, between double quotes, apostrophes or spaces, or between "=" or a space and ">" or, after "=", a space. The
/// reference gets the case of `nome`. A page's ".htm" becomes `pageExtension`, that of the run (".php"), unless it is
/// a results page. A name with spaces is looked for with "%20" as well.
std::string ReplaceString(std::string_view testo, std::string_view nome, std::string_view pageExtension);
/// ReplaceString for a whole list of names, in order, with the result of calling it for one after the other, but in one
/// pass over the text whatever the length of the list. The list is prepared once.
class ReferenceReplacer {
 public:
  /// Prepares the list.
  ReferenceReplacer(const std::vector<std::string>& names, std::string_view pageExtension);
  ~ReferenceReplacer();
  ReferenceReplacer(const ReferenceReplacer&) = delete;
  ReferenceReplacer& operator=(const ReferenceReplacer&) = delete;
  /// The text with all references replaced.
  std::string apply(std::string_view testo) const;

 private:
  struct Index;
  Index* index_;  // owned; the prepared list
};

}  // namespace kv
