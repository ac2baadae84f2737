#pragma once
// The search for articles by the words of one column (rules of frmSearch).

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// Whether a character may be typed into the search field: ASCII letters and digits, the space, "àèéìòù", "*" and "?".
/// `character` is one character in UTF-8.
bool isSearchCharacter(std::string_view character);

/// Whether a character stays in the search field when it is pasted: what may be typed, "-" and ".".
bool isPastedSearchCharacter(std::string_view character);
/// Why a character can't be typed into the search field, as it is said beside it.
std::string refusedSearchKey(std::string_view character);

/// A column of `articoli`, without the suffix of a language, and its label.
struct SearchColumn {
  std::string_view column;
  std::string_view label;
};
/// The columns that can be searched; the first is the one chosen at the start. Indexes in this list are the ids of the
/// dialog's buttons.
const std::vector<SearchColumn>& searchColumns();

/// An article that was found, as the list shows it.
struct ArticleHit {
  std::int64_t ID = 0;
  std::string codice, titolo;
};
/// The articles whose column, in the session's language, holds the text ("*" and "?" as wildcards), in the order of
/// department and order. `wholeWords`: the text must have a character beside it that is no ASCII letter or digit, at
/// both ends, or at the one end that is not the field's own; a field that is exactly the text is no hit.
Result<std::vector<ArticleHit>> findArticles(Session& session, std::string_view column, std::string_view text,
                                             bool wholeWords);

}  // namespace kv
