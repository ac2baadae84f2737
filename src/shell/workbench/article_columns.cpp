#include "shell/workbench/article_columns.h"

#include "platform/text/text.h"

namespace kv {

std::span<const ArticleColumn> articleColumns() {
  using enum ArticleArrangement::By;
  static const std::array<ArticleColumn, listColumns> columns{{
      {"codice", "Codice", Code, &ArticleRow::codice, false, true, "codice"},
      {"titolo", "Titolo", Title, &ArticleRow::titolo, false, true, "titolo"},
      {"prezzo", "Prezzo", Price, &ArticleRow::prezzo, true, true, "prezzo"},
      {"iva", "Con IVA", Price, nullptr, true, true},
      {"offerta", "In offerta", Offer, &ArticleRow::offerta, true},
      {"peso", "Peso", Weight, &ArticleRow::peso, true},
      {"vetrina", "Vetrina", Showcase, nullptr},
  }};
  return columns;
}

ShownColumns shownColumns(std::string_view stored) {
  ShownColumns shown{};
  const std::string names = " " + std::string(stored) + " ";
  const bool isUsual = trim(stored).empty();
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const ArticleColumn& column = articleColumns()[i];
    shown[i] = isUsual ? column.isUsual : names.find(" " + std::string(column.name) + " ") != std::string::npos;
  }
  shown[static_cast<std::size_t>(ListColumn::Title)] = true;
  return shown;
}

std::string storedColumns(const ShownColumns& shown) {
  std::string names;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (shown[i]) names += (names.empty() ? "" : " ") + std::string(articleColumns()[i].name);
  }
  return names;
}

}  // namespace kv
