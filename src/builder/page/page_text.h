#pragma once
// The text of one page, from the text of its template: the generator mark, the expanded tags, and the PHP around it.
// Nothing here reads or writes a file: what goes in are values, what comes out is the whole page as UTF-8.

#include <string>
#include <string_view>

#include "builder/page/page_prologue.h"
#include "builder/page/page_tags.h"
#include "platform/ports/result.h"
#include "platform/ports/user_port.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"

namespace kv {

/// One page to make.
struct PageJob {
  std::string input;     ///< path of the template or model; cut at "?n="
  std::string output;    ///< path of the file to write; may end in "?n=<n>"
  bool reparto = false;  ///< first pass of a department page: it has an article section and rows
  int affiancati = 1;    ///< columns of the article grid, 1 to 6
  /// The result waits in memory under its output path for the pass that has it as its input, and is not written.
  bool keepForNextPass = false;
};

/// What the tags of the pages of one language are read from, and the settings they are wrapped by. What the pointers
/// lead to outlives the pages made with it.
struct PageSources {
  const PageTagRow* row = nullptr;        ///< tags of kinds 1 and 3; never null
  const LanguageModule* words = nullptr;  ///< tags of kind 4; without it they stay
  const CustomTags* custom = nullptr;     ///< tags of kind 5; without it they stay
  std::string_view lingua;                ///< language suffix
  OrderRules order;                       ///< of the order page
  bool newPhpNames = false;               ///< setting PHP4.1VARS: $HTTP_GET_VARS becomes $_GET and so on
};

/// The text that a page is made of.
struct PageTemplate {
  std::string text;
  bool secondPass = false;  ///< made by a first pass of this run, and not read from a file
};

/// Makes the text of a page, without the line end that closes its file. `hasRows`: whether the sub-page of a department
/// has articles; without them its section is empty.
/// Told when the template's markers are at fault, after a message to `user`, and without one when an expanded text is
/// the sign of failure that old templates carry. Otherwise as EspandiTag.
/// A value within a text block of PHP (<<<'WORD') doesn't end it: the block gets another end word when it would.
Result<std::string> pageText(const PageJob& job, PageTemplate source, const PageSources& sources, bool hasRows,
                             UserPort& user);

/// A text with tags and text blocks of PHP of its own that a page has as the value of a tag: with end words that none
/// of its values holds.
std::string asTagValue(std::string_view text, const PageSources& sources);

/// The generator mark of a page: with this program's version, on department pages (`reparto`) with a fixed text.
std::string generatorMark(bool reparto);

/// What the path of a page's file says of it. Empty and 0 for a path without ".php".
struct PageIdentity {
  std::string root;  ///< the name before the first ".php", without its folder
  int subPage = 0;   ///< the number that follows "?n="; 0 without it
};
/// Reads the identity from an output path.
PageIdentity pageIdentity(std::string_view output);

/// A path up to its "?n=", the name of the file on disk; the whole path when it has none.
std::string withoutQuery(std::string_view path);

}  // namespace kv
