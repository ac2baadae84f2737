#pragma once
// The lighter forms of the shop's pictures: made once, kept in the shop's folder, and copied beside the pictures of the
// site by every build for which the setting is on.

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/files.h"
#include "platform/ports/result.h"

namespace kv {

/// Whether a shop has its lighter forms made; false in a shop where it was never set.
bool wantsLightPictures(const std::string& shopFolder);
/// Stores that. Failures as FileSettings::set.
Result<> storeLightPictures(const std::string& shopFolder, bool wanted);

/// The folder `leggere` of a shop, with a list of what was made of each picture as it was then.
class LightFolder {
 public:
  /// Reads the list; without one nothing was made.
  explicit LightFolder(const std::string& shopFolder);

  /// The names of a picture's lighter forms in folder(), made now unless they were made of the same file before. A form
  /// whose name a picture of `taken` has is left out. Failures: as readBytes, writeBytes; Malformed never: a picture
  /// that can't be read has none.
  Result<std::vector<std::string>> formsOf(const std::string& picture, const std::vector<std::string>& taken);
  /// Deletes the forms of pictures that weren't asked for since the list was read, and writes it. Failures as
  /// writeBytes.
  Result<> finish();
  /// Deletes all forms and the folder; gives the names of what was made, which a site may still have.
  std::vector<std::string> discard();

  const std::string& folder() const { return folder_; }

 private:
  /// The lighter forms of one picture.
  struct Made {
    std::string stamp;  ///< size and time of the file that the forms were made of
    std::vector<std::string> names;
    bool isAsked = false;
  };
  /// Writes the forms of a picture under names that none has taken.
  Result<Made> make(const std::string& picture, std::string stamp, const std::vector<std::string>& taken) const;
  /// Deletes the forms again.
  void drop(const Made& made) const;

  std::string folder_;
  std::map<std::string, Made, std::less<>> made_;  ///< by the name of the picture
  bool changed_ = false;
};

}  // namespace kv
