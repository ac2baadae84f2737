#pragma once
// Finding the pictures of the image folder that no row of the catalogue refers to, and deleting those that the merchant
// has ticked. The catalogue's half, the names in use, comes in as a list.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

inline constexpr std::string_view purgeTitle = "Korvane - Rimuovi immagini inutilizzate";
/// What is said beside an unused picture that a text names.
inline constexpr std::string_view mentionedNote = "citata in un testo";
/// The notice before the search, of the pictures of this folder.
std::string purgeNotice(const std::string& folder);

/// Who is handed one text or name after another.
using TextReader = std::function<void(std::string_view text)>;

/// What the search works on.
struct PurgeSources {
  std::string folder;  ///< the shop's image folder
  /// Hands out the names of all pictures in use, in any order and case, the same name as often as it likes.
  std::function<Result<>(const TextReader& read)> usedPictures;
  /// Hands out every text that may name a picture, of the catalogue and of the template; not set: none is looked at.
  std::function<Result<>(const TextReader& read)> texts;
  /// Deletes a file or moves it where it can be fetched from; not set: deleteFile.
  std::function<Result<>(const std::string& path)> remove;
};

/// A picture that nothing refers to.
struct UnusedPicture {
  std::string name;
  std::uint64_t size = 0;    ///< bytes
  bool ticked = false;       ///< to be deleted
  bool isMentioned = false;  ///< a text names it: a description with HTML of its own, or a template
};

/// The list of frmPulisciImmagini and what its buttons do.
class PicturePurge {
 public:
  /// `user` outlives it. Nothing is read yet.
  PicturePurge(PurgeSources sources, UserPort& user) : sources_(std::move(sources)), user_(user) {}

  /// The search at the first activation: reads the folder and the names in use, and shows how it ended. The progress
  /// goes from 1 to the number of files. False after an error: the window closes.
  bool search();

  /// What the search has found, in the order of the folder's listing.
  const std::vector<UnusedPicture>& unused() const { return unused_; }
  /// Whether there is anything to tick and delete.
  bool hasUnused() const { return !unused_.empty(); }
  void tick(std::size_t index, bool ticked) { unused_[index].ticked = ticked; }
  /// Ticks every picture (cmdTutti) or none (cmdNessuno).
  void tickAll(bool ticked);
  /// How many pictures are chosen.
  std::size_t tickedCount() const;
  /// The bytes of all pictures found.
  std::uint64_t totalSize() const;
  const std::string& folder() const { return sources_.folder; }

  /// cmdElimina: asks, deletes what is ticked and tells how many files are really gone. False when nothing is ticked or
  /// the answer is No, and the window stays open. Files that can't be deleted are named after that.
  bool deleteTicked();
  /// How many ticked files the last deletion left, for they couldn't be deleted.
  std::size_t keptCount() const { return kept_; }

 private:
  /// False, for the search that ends here.
  bool showFailure(const Error& error);
  bool ControllaFiles(const std::vector<std::string>& files);
  /// Marks what a text names. What can't be read leaves its marks out, and the merchant is told so.
  void markMentioned();

  PurgeSources sources_;
  UserPort& user_;
  std::vector<UnusedPicture> unused_;
  std::size_t kept_ = 0;
};

}  // namespace kv
