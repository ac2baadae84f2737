#pragma once
// The pictures that an import brings: copied beside the shop's own ones, and made the shop's own once the rows that
// name them are in. Rows and folders can't change at one moment, so the catalogue itself keeps, from the transaction of
// the rows on, that the exchange is due: a program killed in between has it finished at its next start.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// SQL that marks what is due once the rows are in: the end of the history of prices, whose numbers are those of other
/// articles now, and the exchange of pictures. It is a part of the transaction that imports the rows.
inline constexpr const char* importIsDue = "PRAGMA main.user_version = 1";
/// SQL that leaves the exchange alone as due: what is published from here on is a history of the new articles.
inline constexpr const char* picturesAreDue = "PRAGMA main.user_version = 2";
/// SQL that takes the mark off the catalogue: before new pictures are staged, and after the exchange.
inline constexpr const char* noPicturesAreDue = "PRAGMA main.user_version = 0";

/// The image folder `work` of a shop, the new one `work.importa` and, for a moment, the old one `work.prima`.
class StagedPictures {
 public:
  explicit StagedPictures(const std::string& shopFolder);

  /// Copies the files of a folder into a fresh staging folder; a folder that isn't there has none.
  Result<> copyFrom(const std::string& folder) const;
  /// Makes them the shop's own; the subfolders of the old ones stay. It goes on with an exchange that was interrupted.
  /// After a failure the shop has its old folder again, as far as that can be, and the new one is named by path().
  Result<> exchange() const;
  /// Gives the shop back what an exchange has moved: its folder, and the subfolders of its own.
  Result<> restore() const;
  /// Restores, then removes what isn't the shop's own; while anything of its own can't be moved, nothing is removed.
  Result<> drop() const;
  /// Whether there is anything beside the shop's own folder.
  bool isAny() const;
  const std::string& path() const { return staged_; }

 private:
  Result<> swap() const;

  std::string own_, staged_, old_;
};

/// After an import that was interrupted: finishes what the catalogue says is due, else gives the shop back what is its
/// own. A catalogue that another program has is left alone, its folders too.
void recoverPictures(const std::string& shopFolder);

}  // namespace kv
