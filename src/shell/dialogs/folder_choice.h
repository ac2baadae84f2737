#pragma once
// The two working folders of a shop as they are edited and judged (rules of frmBrowse).

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "store/shop/session.h"

namespace kv {

/// The title of the dialog.
inline constexpr std::string_view foldersTitle = "Korvane - Selezione cartelle";

/// Where pages go, and where the scripts of the site go.
enum class BuildFolder : std::size_t { Online = 0, Scripts = 1 };

/// One path field.
/// Where the path came from decides what OK stores: nothing, the path itself, or an empty text, which means the folder
/// inside the shop's own.
struct FolderField {
  enum class Source { Stored, Browsed, Reset };
  std::string text;  ///< as shown; spaces around it don't count
  Source source = Source::Stored;
};

/// What the dialog shows until it is closed.
/// Nothing reaches the catalogue or the session before apply(), so that Annulla needs no undoing.
class FolderChoice {
 public:
  /// Starts on the session's folders.
  /// Those are absolute paths; the shop must be open.
  explicit FolderChoice(const Session& session);

  const FolderField& field(BuildFolder folder) const { return fields_[indexOf(folder)]; }
  /// A path chosen by browsing, or typed: it is going to be stored.
  void set(BuildFolder folder, std::string_view path);
  /// Reset: back to the folder inside the shop's own.
  void reset(BuildFolder folder);

  /// OK: judges and stores one field after the other. A refusal is told to the user and leaves that folder as it was,
  /// whatever becomes of the other. A field that nobody touched is judged and stores nothing. True when both were
  /// taken.
  /// Refused are a folder that doesn't exist, the root of a disk, and the shop's own folder under any spelling. What is
  /// accepted becomes the session's folder at once, as an absolute path without trailing separator. A failure of the
  /// catalogue is told too.
  bool apply(Session& session, UserPort& user) const;

 private:
  static std::size_t indexOf(BuildFolder folder) { return static_cast<std::size_t>(folder); }
  std::array<FolderField, 2> fields_;    ///< by BuildFolder
  std::array<std::string, 2> defaults_;  ///< the folders inside the shop's own
};

}  // namespace kv
