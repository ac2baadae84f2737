#include "builder/page/page_tags.h"

#include <array>
#include <utility>

#include "builder/values/line_end.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::size_t schemeLength = 7;  // "http://"

std::string logo(const FieldRow& generale, const std::string& number) {
  const std::string name = generale.text("immagine" + number);
  if (name.empty()) return {};
  return "<img border=\"0\" src=\"" + name + "\" width=\"" + formatNumber(generale.integer("imgX" + number), "#####") +
         "\" height=\"" + formatNumber(generale.integer("imgY" + number), "#####") + "\">";
}

void fillTexts(PageTagRow& row, const ShopTags& tags) {
  // Tag, and the column of the settings it comes from.
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 10> texts{
      {{"home1", "home1"},
       {"home2", "home2"},
       {"condizioni", "condizioni"},
       {"recesso", "recesso"},
       {"datipers", "datipers"},
       {"testo1", "testo1"},
       {"testo2", "testo2"},
       {"testo_contrassegno", "contrassegno"},
       {"testo_anticipato", "anticipato"},
       {"rifiuto", "rifiutato"}}};
  for (const auto& [tag, column] : texts) row.set(tag, tags.html.CampoHTML(tags.generale.value(column)));
}

}  // namespace

PageTagRow::PageTagRow(const TableInfo& categoria) {
  for (const ColumnInfo& column : categoria.columns) {
    indexes_.try_emplace(foldCase(column.name), names_.size());
    names_.push_back(column.name);
  }
  values_.resize(names_.size());
}

std::size_t PageTagRow::indexOf(std::string_view column) const {
  const auto found = indexes_.find(foldCase(column));
  return found == indexes_.end() ? names_.size() : found->second;
}

const std::string* PageTagRow::find(std::string_view column) const {
  const std::size_t index = indexOf(column);
  if (index < values_.size()) return &values_[index];
  const auto beside = beside_.find(foldCase(column));
  return beside == beside_.end() ? nullptr : &beside->second;
}

void PageTagRow::set(std::string_view column, std::string value) {
  const std::size_t index = indexOf(column);
  if (index < values_.size()) values_[index] = std::move(value);
}

void PageTagRow::setBeside(std::string_view tag, std::string value) {
  beside_.insert_or_assign(foldCase(tag), std::move(value));
}

void fillShopTags(PageTagRow& row, const ShopTags& tags) {
  fillTexts(row, tags);
  row.set("meta_keywords", tags.generale.text("keywords"));
  row.set("meta_description", tags.generale.text("content"));
  row.set("java_redirect", tags.redirectScript);
  row.set("logo1", logo(tags.generale, "0"));
  row.set("logo2", logo(tags.generale, "1"));
  row.set("IDnegozio", tags.shopNumber);
  row.set("IDlingua", std::string(tags.lingua));
  for (std::size_t i = 0; i < tags.colours.size() && i < 4; ++i) row.set("colore" + std::to_string(i), tags.colours[i]);
}

void setLanguageLinks(PageTagRow& row, const ShopLanguages& languages, int current, std::string_view file) {
  for (int i = 1; i <= maxLanguages; ++i) {
    const bool linked = !file.empty() && i <= languages.count && i != current;
    row.set("lingua" + std::to_string(i), linked ? CreaTagLingua(languages, file, i) : std::string());
  }
}

std::string shopNumber(std::string_view shopAddress) {
  const std::string characters = toWindows1252(shopAddress);
  std::int64_t sum = 0;
  for (std::size_t i = schemeLength; i < characters.size(); ++i) {
    sum += static_cast<std::int64_t>(static_cast<unsigned char>(characters[i])) *
           static_cast<std::int64_t>(i - schemeLength + 1);
  }
  return std::to_string(sum);
}

std::string MakeRedirect(const FieldRow& generale) {
  std::string out;
  if (generale.flag("autoredirect")) out.append(lineEnd).append("autoredirect = 1;");
  if (generale.flag("checkcookies")) out.append(lineEnd).append("checkcookies = 1;");
  return out;
}

std::string pager(std::string_view page) {
  std::string out =
      "\r\n<?php\r\n"
      "if ($mp > 1) {\r\n"
      "for ($np = 1; $np <= $mp; $np++) {\r\n"
      "if ($np != $sp) {\r\n"
      "?>\r\n"
      "<A HREF=\"";
  out.append(page);
  out.append(
      ".php?n=<?php echo $np; ?>\"><?php echo $np; ?></A>\r\n"
      "<?php\r\n"
      "}\r\n"
      "else {\r\n"
      "?>\r\n"
      "<B><?php echo $np; ?></B>\r\n"
      "<?php\r\n"
      "}\r\n"
      "if ($np<>$mp) {print \" - \";}\r\n"
      "}\r\n"
      "}\r\n"
      "?>");
  return out;
}

}  // namespace kv
