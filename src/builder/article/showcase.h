#pragma once
// The lists in which an article appears beside its own page: the department's list, the site-wide list, the showcase.
// Entries and cells are made while the departments are; the lists themselves are put together when all are known.

#include <string>
#include <string_view>
#include <vector>

#include "builder/article/article_row.h"

namespace kv {

/// Settings of the lists and of the showcase, read once per build.
struct ShowcaseSettings {
  bool listCode = false;       ///< elenco_codice
  bool listTitle = false;      ///< elenco_titolo
  bool listSubtitle = false;   ///< elenco_sottotitolo
  bool listPhoto = false;      ///< elenco_foto
  int columns = 3;             ///< colonnevetrina, 1 to 10
  std::string align;           ///< vetalign: of the cells
  std::string alignStyle;      ///< vetalignstyle: goes into the picture's tag
  std::string fontSize;        ///< vetsize: of the cells' text
  int options = 0;             ///< vetopzioni, the bits below
  bool singleArticle = false;  ///< singleitem_vet: link to the one article, not to the page

  /// Whether departments show their list at all; a list of subtitles alone is not shown.
  bool showsList() const { return listCode || listTitle || listPhoto; }
};

/// The bits of ShowcaseSettings::options: what a cell shows beside the picture.
namespace showcase_option {
inline constexpr int title = 1;
inline constexpr int subtitle = 2;
inline constexpr int description = 4;
inline constexpr int price = 8;
inline constexpr int exchange = 16;  // the price in the second currency
}  // namespace showcase_option

/// The number of showcase columns: below 1 it becomes 3, above 10 it becomes 10.
int showcaseColumns(double columns);

/// The entry of an article in its department's list: picture and texts as a link to `target`.
std::string listEntry(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                      std::string_view target);

/// The cell of an article in the showcase, made from the template's own cell when there is one (not empty).
std::string showcaseCell(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                         std::string_view target, std::string_view cellTemplate);

/// The table of the cells, followed by the PHP function VetOfferta when a cell calls it; empty without cells.
std::string showcaseTable(const ShowcaseSettings& settings, const std::vector<std::string>& cells);

}  // namespace kv
