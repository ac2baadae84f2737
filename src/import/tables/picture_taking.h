#pragma once
// Pictures that a sheet names, brought into the shop as the picture dialog brings them.

#include <string>
#include <unordered_map>
#include <vector>

#include "media/choice/picture_choice.h"

namespace kv {

/// A picture of the shop.
struct TakenPicture {
  std::string name;
  ImageSize size;  ///< pixels, as it is shown
};

/// Takes pictures over, each file once.
class PictureTaking {
 public:
  /// settings: of the dialog's last OK, which say whether pictures are reduced. user, settings: outlive it.
  PictureTaking(const Settings& settings, UserPort& user, std::string shopFolder, std::string sheetFolder);

  /// The picture that a cell names. Missing when there is none; Told when it couldn't be written.
  Result<TakenPicture> take(const std::string& cell);
  /// Removes what was brought in, for an import that is undone at once.
  void drop();

 private:
  MemorySettings stored_;  // the dialog alone stores its settings
  std::string shopFolder_, sheetFolder_;
  PictureChoice choice_;
  std::unordered_map<std::string, TakenPicture> taken_;  // by path
  std::vector<std::string> written_;                     // paths of new files
};

}  // namespace kv
