#pragma once
// What frmImmagine does without its window: the preview of a file, and what OK does with it.

#include <optional>
#include <string>

#include "media/bitmap/dib_section.h"
#include "media/choice/picture_box.h"
#include "platform/ports/user_port.h"

namespace kv {

/// The two tabs of the dialog.
enum class PictureTab {
  Disk,  ///< a file from anywhere
  Shop   ///< a picture of the shop's image folder
};

/// What OK will do with a picture.
enum class PictureMode {
  Unreadable = 0,  ///< nothing: the file is no picture that can be read
  AsItIs = 1,      ///< copy the file
  Reduced = 2,     ///< write the reduced copy as a JPEG
  OfShop = 3       ///< take its name; the file is there already, under a name that pages can give
};

/// A picture as the dialog shows it.
struct PicturePreview {
  PictureMode mode = PictureMode::Unreadable;
  ImageSize size;              ///< pixels, after the reduction
  cDIBSection picture;         ///< what is seen: reduced, or the file itself; none when it can't be read
  bool tellsLocation = false;  ///< the file would be copied, and says where the photo was taken
};

/// What is done to a picture before it is reduced. A picture that was changed is written as a JPEG, of either tab.
struct PictureEdits {
  int quarters = 0;               ///< turned clockwise by so many quarters, 0 to 3
  std::optional<PixelPart> part;  ///< of the turned picture, what is kept; nothing: all of it
  /// Whether there is anything to do.
  bool any() const { return quarters != 0 || part.has_value(); }
};

/// The fields of the dialog, and its work on the image folder.
class PictureChoice {
 public:
  /// settings, user: outlive it. folder: the shop's image folder. current: the name of the picture in use
  /// (txtParametri), empty for none. Starts on the tab of the disk, with the settings of the last OK.
  PictureChoice(Settings& settings, UserPort& user, std::string folder, std::string current);

  PictureTab tab = PictureTab::Disk;
  LoadImageSettings values;  ///< folder shown, box ticked, limits
  PictureEdits edits;        ///< of the picture that is selected; whoever selects another one empties them

  const std::string& folder() const { return folder_; }
  const std::string& current() const { return current_; }
  /// Whether a reduction is on: the box is ticked, and the tab is that of the disk.
  bool reduces() const { return values.fits && tab == PictureTab::Disk; }

  /// The size of the copy of a picture of this size.
  ImageSize copySize(ImageSize size) const { return reduces() ? fittedSize(size, values.limits) : size; }

  /// Reads a file, edited, and reduced when it is larger than the box; of the shop's tab the mode is OfShop unless the
  /// picture was edited or has no name that pages can give: it is copied then. The last file is kept in memory: it is
  /// decoded once for all that is tried on it.
  PicturePreview preview(const std::string& path);
  /// The whole picture as it was turned, before anything is cut off; none when the file can't be read. It holds until
  /// another file or turn is asked for.
  const PixelBuffer& turnedPicture(const std::string& path);

  /// Why OK would refuse a file that is not edited: it has more bytes or pixels than are read, or a side of its copy
  /// would be longer than 32767 pixels. Empty when none is so, or the file is no picture.
  std::string sizeRefusal(const std::string& path) const;

  /// A limit's field is left: takes the number over and is true, or says that it must be from 5 to 270 and is false;
  /// then the field's text goes back to the number that holds.
  bool leaveWidth(std::string_view text) { return takeLimit(text, values.limits.width); }
  bool leaveHeight(std::string_view text) { return takeLimit(text, values.limits.height); }

  /// OK: brings the picture into the image folder, stores the settings and gives its name there; an empty text when the
  /// file can't be read. Nothing, after a message, when the picture couldn't be written or is too large (sizeRefusal):
  /// the dialog stays. No file of the folder is ever replaced, and none is left half written.
  std::optional<std::string> accept(const std::string& path);

 private:
  bool takeLimit(std::string_view text, int& limit);
  /// What OK makes of a picture that is to be copied.
  PicturePreview copyOf(const cDIBSection& picture, const std::string& path) const;
  Result<std::string> bringIn(const std::string& path, const PicturePreview& preview) const;

  /// The picture decoded last, turned by so many quarters.
  struct Decoded {
    std::string path;
    int quarters = 0;
    PixelBuffer pixels;
  };
  Decoded decoded_;
  Settings& settings_;
  UserPort& user_;
  std::string folder_, current_;
};

}  // namespace kv
