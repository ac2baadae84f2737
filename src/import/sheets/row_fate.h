#pragma once
// What an import does with a row, in every import.

#include <string>
#include <string_view>

namespace kv {

/// What becomes of a row of the source.
enum class RowFate {
  New,      ///< a row of the catalogue is added
  Changed,  ///< the row that is there takes other values
  Same,     ///< the row that is there has these values already
  LeftOut   ///< nothing is written; the reason says why
};

/// The fate as the preview says it, in Italian.
inline const char* fateWord(RowFate fate) {
  constexpr const char* words[] = {"nuovo", "modificato", "invariato", "tralasciato"};
  return words[static_cast<std::size_t>(fate)];
}

}  // namespace kv
