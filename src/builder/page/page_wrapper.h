#pragma once
// CreaPagina, the one writer of generated pages: expands the tags of a template, stamps it with the generator mark,
// wraps it into what the shop's PHP needs, and stores the rows that a department page reads at request time.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "builder/article/derived_row.h"
#include "builder/page/page_prologue.h"
#include "builder/page/page_tags.h"
#include "platform/ports/user_port.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"

namespace kv {

/// One page to make.
struct PageJob {
  std::string input;     ///< path of the file to read; cut at "?n="
  std::string output;    ///< path of the file to write; may end in "?n=<n>"
  bool reparto = false;  ///< first pass of a department page
  int affiancati = 1;    ///< columns of the article grid, 1 to 6
  /// The result waits in memory under its output path for the pass that has it as its input, and is not written.
  bool keepForNextPass = false;
};

struct WrapperSettings {
  bool smartbuild = true;    ///< a page whose text is unchanged isn't written again
  bool newPhpNames = false;  ///< setting PHP4.1VARS: $HTTP_GET_VARS becomes $_GET and so on
  OrderRules order;
};

/// What was done with pages so far.
struct PageCounts {
  int written = 0;
  int unchanged = 0;
};

class PageWrapper {
 public:
  explicit PageWrapper(UserPort& user) : user_(user) {}
  void configure(const WrapperSettings& settings) { settings_ = settings; }

  /// The build database that gets the rows of department pages, and the columns they come in.
  void openTables(Database& build, const DerivedColumns& columns, std::string_view lingua);
  /// What the tags of a language are read from. References live as long as pages of that language are made.
  void setSources(const PageTagRow* row, const LanguageModule* words, const CustomTags* custom,
                  std::string_view lingua);

  /// CreaPagina (make page): makes one page. `rows`: the article rows of a department's sub-page, `rowCount` of them
  /// in use. False when a failure has been shown to the user; other failures are thrown as RunFailure.
  bool CreaPagina(const PageJob& job, const std::vector<DerivedRow>& rows = {}, std::size_t rowCount = 0);

  const PageCounts& counts() const { return counts_; }

 private:
  struct Template {
    std::string text;
    bool secondPass = false;  // made by a first pass of this run
  };
  bool readInput(const std::string& input, Template& out);
  std::string expand(std::string_view text, int kind, bool reparto) const;
  std::string expandAll(std::string text, std::string_view input, bool reparto) const;
  bool makeDepartmentPage(const PageJob& job, std::string& text, bool hasRows);
  void writeRows(const PageJob& job, const std::vector<DerivedRow>& rows, std::size_t rowCount);
  void finish(const PageJob& job, std::string text);
  void complain(const std::string& message);

  UserPort& user_;
  WrapperSettings settings_;
  const PageTagRow* row_ = nullptr;
  const LanguageModule* words_ = nullptr;
  const CustomTags* custom_ = nullptr;
  std::string lingua_;
  DerivedRowWriter articles_, details_, order_;
  bool firstLanguage_ = true;
  std::map<std::string, std::string> pending_;  // output path -> text between two passes
  std::string cachedPath_, cachedText_;         // the page model read last
  PageCounts counts_;
};

/// The generator mark: of this program's version, or the one of department pages.
std::string generatorMark(bool reparto);

/// Page root and sub-page of an output path: text before the first ".php" without its folder, and the number behind
/// "?n=". Empty and 0 for a path without ".php".
struct PageIdentity {
  std::string root;
  int subPage = 0;
};
PageIdentity pageIdentity(std::string_view output);

}  // namespace kv
