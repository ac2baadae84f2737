#include "builder/article/showcase.h"

#include <array>
#include <utility>

#include "builder/values/line_end.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr int defaultColumns = 3;
constexpr int mostShowcaseColumns = 10;
constexpr int fullWidth = 100;  // percent

std::string thirdPicture(const ArticleView& article) {
  return pictureTag(article.row.text(article.columns.immagine[2]), article.row.integer(article.columns.imgX[2]),
                    article.row.integer(article.columns.imgY[2]));
}

std::string phpCall(std::string_view function, std::int64_t id) {
  std::string out = "<?php echo ";
  return out.append(function).append("(").append(std::to_string(id)).append("); ?>");
}

// The size of a picture for a placeholder; "0" when it has no name or no size.
std::string sizeText(const Statement& article, int name, int size, int width) {
  if (article.text(name).empty() || article.integer(width) == 0) return "0";
  return formatNumber(article.integer(size), "#####");
}

std::string ownCell(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                    std::string_view target) {
  std::string cell = "<a href=\"";
  cell.append(target).append("\">");
  std::string picture = thirdPicture(article);
  if (!picture.empty()) {
    picture.insert(picture.size() - 1, settings.alignStyle);
    cell.append(" ").append(picture);
  }
  cell.append("</a>");
  if (settings.singleArticle) cell = replaceAll(cell, "#", "&prod=");
  const std::int64_t id = article.row.integer(article.columns.ID);
  if (settings.options & showcase_option::title)
    cell.append("<BR><B>" + html.TestoHTML(article.row.text(article.columns.titolo)) + "</B>");
  if (settings.options & showcase_option::subtitle)
    cell.append("<BR>" + html.TestoHTML(article.row.text(article.columns.sottotitolo)));
  if (settings.options & showcase_option::description)
    cell.append("<BR>" + html.TestoHTML(article.row.text(article.columns.descrizione)));
  if (settings.options & showcase_option::price) cell.append("<BR>" + phpCall("ArtPrice", id));
  if (settings.options & showcase_option::exchange) cell.append("<BR>" + phpCall("ArtCambio", id));
  return cell;
}

// One placeholder after the other, a longer one before its prefix.
std::string templateCell(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                         std::string_view target, std::string_view cellTemplate) {
  const std::array<std::pair<std::string_view, std::string_view>, 4> texts{
      {{"%code", article.row.text(article.columns.codice)},
       {"%title", article.row.text(article.columns.titolo)},
       {"%subtitle", article.row.text(article.columns.sottotitolo)},
       {"%description", article.row.text(article.columns.descrizione)}}};
  std::string cell(cellTemplate);
  for (const auto& [name, text] : texts) {
    cell = replaceAll(cell, std::string(name) + "_html", html.TestoHTML(text));
  }
  cell = replaceAll(cell, "%link", settings.singleArticle ? replaceAll(target, "#", "&prod=") : std::string(target));
  for (const auto& [name, text] : texts) cell = replaceAll(cell, name, text);
  for (std::size_t i = 0; i < article.columns.immagine.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    cell = replaceAll(cell, "%image" + number, article.row.text(article.columns.immagine[i]));
    cell = replaceAll(
        cell, "%x" + number,
        sizeText(article.row, article.columns.immagine[i], article.columns.imgX[i], article.columns.imgX[i]));
    cell = replaceAll(
        cell, "%y" + number,
        sizeText(article.row, article.columns.immagine[i], article.columns.imgY[i], article.columns.imgX[i]));
  }
  const std::int64_t id = article.row.integer(article.columns.ID);
  cell = replaceAll(cell, "%price", phpCall("ArtPrice", id));
  cell = replaceAll(cell, "%change", phpCall("ArtCambio", id));
  return replaceAll(cell, "%offer", phpCall("VetOfferta", id));
}

constexpr std::string_view offerFunction =
    "<?php\r\n"
    "function VetOfferta($aid) {\r\n"
    "global $rowArt, $Lingua;\r\n"
    "$sql = \"SELECT * FROM articoli$Lingua INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) WHERE "
    "articoli$Lingua.ID=$aid\";\r\n"
    "$resultArt = mysql_query($sql);\r\n"
    "$rowArt = mysql_fetch_array($resultArt);\r\n"
    "$catid = $rowArt[\"catID\"];\r\n"
    "SetVariables($catid);\r\n"
    "$Out = ViewOfferta();\r\n"
    "return $Out;\r\n"
    "}\r\n"
    "?>";

}  // namespace

int showcaseColumns(double columns) {
  if (columns < 1) return defaultColumns;
  return columns > mostShowcaseColumns ? mostShowcaseColumns : static_cast<int>(columns);
}

std::string listEntry(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                      std::string_view target) {
  std::string entry = "<a href=\"";
  entry.append(target).append("\">");
  if (settings.listPhoto) entry.append(thirdPicture(article)).append("<BR>");
  if (settings.listCode) {
    entry.append(article.row.text(article.columns.codice));
    if (settings.listTitle || settings.listSubtitle) entry.append("<BR>");
  }
  if (settings.listTitle) {
    entry.append(html.TestoHTML(article.row.text(article.columns.titolo)));
    if (settings.listSubtitle) entry.append("<BR>");
  }
  if (settings.listSubtitle) entry.append(html.TestoHTML(article.row.text(article.columns.sottotitolo)));
  return entry.append("</a><BR>&nbsp;<BR>");
}

std::string showcaseCell(const ShowcaseSettings& settings, const HtmlText& html, const ArticleView& article,
                         std::string_view target, std::string_view cellTemplate) {
  return cellTemplate.empty() ? ownCell(settings, html, article, target)
                              : templateCell(settings, html, article, target, cellTemplate);
}

std::string showcaseTable(const ShowcaseSettings& settings, const std::vector<std::string>& cells) {
  if (cells.empty()) return {};
  const auto columns = static_cast<std::size_t>(settings.columns);
  const std::string opener = "<td valign=\"top\" align=\"" + settings.align + "\" width=\"" +
                             std::to_string(fullWidth / settings.columns) + "%\">" + std::string(lineEnd) +
                             "<font size=\"" + settings.fontSize + "\">" + std::string(lineEnd);
  std::string table = "<div align=\"center\"><center><table border=\"0\" cellpadding=\"4\" cellspacing=\"0\">";
  table.append(lineEnd);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i % columns == 0) table.append("<tr>").append(lineEnd);
    table.append(opener).append(cells[i]).append("</font></td>").append(lineEnd);
    if (i % columns == columns - 1) table.append("</tr>").append(lineEnd);
  }
  if (cells.size() % columns != 0) table.append("</tr>").append(lineEnd);
  table.append("</table></center></div>").append(lineEnd);
  if (table.find("VetOfferta(") != std::string::npos) table.append(offerFunction);
  return table;
}

}  // namespace kv
