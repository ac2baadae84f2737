#include "shell/sheet/text_replacement.h"

#include <algorithm>
#include <unordered_map>

#include "platform/database/rows.h"
#include "shell/workbench/fields/field_forms.h"

namespace kv {
namespace {

/// What becomes of one cell; none when its text would stay.
std::optional<CellChange> hitIn(const SheetColumn& column, const TextSearch& search, const std::string& before,
                                const ReplaceRequest& request, char separator) {
  CellChange hit;
  hit.before = before;
  hit.after = search.replace(before, request.replacement);
  if (hit.after == before) return std::nullopt;
  if (readField(*column.editor, column.stored, hit.after, before, separator).text != hit.after) {
    hit.why = "Il testo sarebbe troppo lungo per questa colonna.";
  }
  return hit;
}

std::string selectOf(std::span<const SheetColumn> columns, const ReplaceRequest& request) {
  std::string fields = "ID";
  for (const std::size_t index : request.columns) fields += ", " + columns[index].name;
  return "SELECT " + fields + " FROM articoli";
}

}  // namespace

Result<std::vector<CellChange>> findHits(Session& session, std::span<const SheetColumn> columns,
                                         const ReplaceRequest& request, char decimalSeparator) {
  const auto search = TextSearch::prepare(request.words);
  if (!search) return fail(ErrorKind::Malformed, request.words.text, search.error());
  std::unordered_map<std::int64_t, std::size_t> positions;
  for (std::size_t i = 0; i < request.articles.size(); ++i) positions[request.articles[i]] = i;
  auto row = session.catalogue.prepare(selectOf(columns, request));
  if (!row) return fail(row.error());
  std::vector<std::pair<std::size_t, CellChange>> found;
  const auto addHits = [&](const Statement& article, std::size_t position) {
    for (std::size_t i = 0; i < request.columns.size(); ++i) {
      const SheetColumn& column = columns[request.columns[i]];
      const std::string before =
          shownValue(*column.editor, column.stored, article.value(static_cast<int>(i) + 1), decimalSeparator);
      auto hit = hitIn(column, *search, before, request, decimalSeparator);
      if (!hit) continue;
      hit->article = article.integer(0);
      hit->column = request.columns[i];
      found.emplace_back(position, std::move(*hit));
    }
  };
  const auto read = forEachRow(*row, [&](const Statement& article) {
    const auto position = positions.find(article.integer(0));
    if (position != positions.end()) addHits(article, position->second);
  });
  if (!read) return fail(read.error());
  std::ranges::stable_sort(found, {}, &std::pair<std::size_t, CellChange>::first);
  std::vector<CellChange> hits;
  hits.reserve(found.size());
  for (auto& one : found) hits.push_back(std::move(one.second));
  return hits;
}

}  // namespace kv
