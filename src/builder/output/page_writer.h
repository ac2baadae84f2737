#pragma once
// CreaPagina, the one writer of generated pages: reads the template, has its text made, stores the rows that a
// department page reads at request time, and writes the file unless it is the same already.

#include <map>
#include <string>
#include <string_view>

#include "builder/article/derived_row.h"
#include "builder/output/row_tables.h"
#include "builder/page/page_text.h"
#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

/// What was done with pages so far.
struct PageCounts {
  int written = 0;    ///< files that were written
  int unchanged = 0;  ///< files that held the page already
};

/// Makes the pages of one run. What the constructor gets outlives it.
class PageWriter {
 public:
  /// `smartbuild`: a page whose text is unchanged isn't written again. `tables` get the rows of department pages.
  PageWriter(UserPort& user, RowTables& tables, bool smartbuild)
      : user_(user), tables_(tables), smartbuild_(smartbuild) {}

  /// Forgets the template read last: the files of a pool change with the language.
  void startLanguage() { cachedPath_.clear(); }

  /// CreaPagina (make page): makes one page from its template. `articles` are the rows of a department's sub-page;
  /// from the second sub-page on, which has the text of the first, they are all there is to store.
  /// Told when the template is missing or at fault, after a message that names it. Otherwise as pageText,
  /// RowTables::writeArticles and writeBytes.
  Result<> CreaPagina(const PageJob& job, const PageSources& sources, const DerivedRows& articles = {});

  /// What was done with pages so far.
  const PageCounts& counts() const { return counts_; }

 private:
  /// The text that waits for this pass, else that of the file.
  Result<PageTemplate> readTemplate(const std::string& input);
  /// Keeps the text for the next pass, or writes the file.
  Result<> finish(const PageJob& job, std::string text);

  UserPort& user_;
  RowTables& tables_;
  bool smartbuild_;
  std::map<std::string, std::string> pending_;  // output path -> text between two passes
  std::string cachedPath_, cachedText_;         // the template read last; departments share a few models
  PageCounts counts_;
};

}  // namespace kv
