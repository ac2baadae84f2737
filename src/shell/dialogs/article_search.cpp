#include "shell/dialogs/article_search.h"

#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view oneByteCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 *?";
constexpr std::string_view accents = "àèéìòù";
constexpr std::string_view edge = "[!a-zA-Z0-9]";

/// The patterns of which one has to match.
std::vector<std::string> patternsFor(std::string_view text, bool wholeWords) {
  const std::string words(text);
  if (!wholeWords) return {"*" + words + "*"};
  const std::string other(edge);
  return {"*" + other + words + other + "*", words + other + "*", "*" + other + words};
}

}  // namespace

bool isSearchCharacter(std::string_view character) {
  if (character.size() == 1) return oneByteCharacters.find(character[0]) != std::string_view::npos;
  return character.size() == 2 && accents.find(character) != std::string_view::npos;
}

bool isPastedSearchCharacter(std::string_view character) {
  return isSearchCharacter(character) || character == "-" || character == ".";
}

std::string refusedSearchKey(std::string_view character) {
  const std::string subject = "Il carattere \"" + std::string(character) + "\" ";
  if (!isPastedSearchCharacter(character)) return subject + "non si può cercare";
  return subject + "non si può digitare qui: un testo incollato lo conserva, e il filtro sopra l'elenco lo accetta";
}

const std::vector<SearchColumn>& searchColumns() {
  static const std::vector<SearchColumn> columns{
      {"titolo", "Titolo"},           {"codice", "Codice"}, {"sottotitolo", "Sottotitolo"},
      {"descrizione", "Descrizione"}, {"note", "Note"},     {"ID", "Numero interno"}};
  return columns;
}

Result<std::vector<ArticleHit>> findArticles(Session& session, std::string_view column, std::string_view text,
                                             bool wholeWords) {
  const bool plain = column == "codice" || column == "ID";
  const std::string suffix(languageSuffixes[static_cast<std::size_t>(session.currentLanguage - 1)]);
  const std::string searched = std::string(column) + (plain ? "" : suffix);
  auto rows = session.catalogue.prepare("SELECT ID, codice, titolo" + suffix + ", " + searched +
                                        " FROM articoli ORDER BY catID, ordinamento, ID");
  if (!rows) return fail(rows.error());
  const std::vector<std::string> patterns = patternsFor(text, wholeWords);
  std::vector<ArticleHit> hits;
  for (;;) {
    auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return hits;
    for (const std::string& pattern : patterns) {
      if (!matchesLike(rows->text(3), pattern)) continue;
      hits.push_back({rows->integer(0), std::string(rows->text(1)), std::string(rows->text(2))});
      break;
    }
  }
}

}  // namespace kv
