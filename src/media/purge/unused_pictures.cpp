#include "media/purge/unused_pictures.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "media/choice/numbered_pictures.h"
#include "media/purge/picture_mentions.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr const char* noPictures = "Ricerca terminata: non sono state trovate immagini";
constexpr const char* someTextsUnread =
    "Alcuni testi del negozio o del template non si possono leggere: le immagini citate soltanto lì non sono segnalate "
    "nell'elenco";
constexpr const char* noneUnused = "Ricerca terminata: non sono state trovate immagini inutilizzate";
constexpr std::string_view searching = "Ricerca immagini inutilizzate...";

/// Which of the files a name in use means. A shop has many more rows than pictures, and most rows name theirs exactly:
/// only the others are folded.
class FilesInUse {
 public:
  /// `files` outlive it.
  explicit FilesInUse(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
      const auto group = folded_.try_emplace(foldCase(file), used_.size()).first->second;
      if (group == used_.size()) used_.push_back(false);
      exact_.emplace(file, group);
    }
  }
  /// With a picture that is there, those that numbers join to it are in use.
  void use(std::string_view name) {
    const std::optional<std::size_t> group = groupOf(name);
    if (!group || used_[*group]) return;
    used_[*group] = true;
    for (const std::string& other :
         numberedPictures(name, [&](const auto& file) { return groupOf(file).has_value(); })) {
      used_[*groupOf(other)] = true;
    }
  }
  bool isUsed(const std::string& file) const { return used_[exact_.at(file)]; }

 private:
  std::optional<std::size_t> groupOf(std::string_view name) const {
    if (const auto exact = exact_.find(name); exact != exact_.end()) return exact->second;
    const auto folded = folded_.find(foldCase(name));
    return folded == folded_.end() ? std::nullopt : std::optional(folded->second);
  }

  std::unordered_map<std::string_view, std::size_t> exact_;  // file -> the group of those that differ in case alone
  std::unordered_map<std::string, std::size_t> folded_;
  std::vector<bool> used_;  // by group
};

}  // namespace

std::string purgeNotice(const std::string& folder) {
  return "Nella cartella delle immagini interne (" + folder +
         ") saranno cercate\nle immagini che nessun reparto, nessun articolo e nessun logo utilizza.\n\n"
         "Le immagini citate soltanto nei template o nei testi risulteranno inutilizzate.";
}

bool PicturePurge::search() {
  unused_.clear();
  const auto files = readFileNames(sources_.folder, "*");
  if (!files) return showFailure(files.error());
  if (files->empty()) {
    user_.progress({searching, 1, 1});
    user_.message(noPictures, Icon::Information);
    return true;
  }
  if (!ControllaFiles(*files)) return false;
  markMentioned();
  user_.message(unused_.empty() ? std::string(noneUnused)
                                : "Ricerca terminata: sono state trovate " + std::to_string(unused_.size()) +
                                      " immagini inutilizzate",
                Icon::Information);
  return true;
}

bool PicturePurge::showFailure(const Error& error) {
  user_.message("Si è verificato un errore:\n" + std::to_string(error.number) + " " + error.what, Icon::Critical);
  return false;
}

// The names in use are read once: a query for each file takes minutes in a shop of thousands of pictures.
bool PicturePurge::ControllaFiles(const std::vector<std::string>& files) {
  FilesInUse known(files);
  if (const auto read = sources_.usedPictures([&](std::string_view name) { known.use(name); }); !read) {
    return showFailure(read.error());
  }
  const auto count = static_cast<double>(files.size());
  double position = 0;
  for (const std::string& name : files) {
    user_.progress({searching, ++position, count});
    if (known.isUsed(name)) continue;
    const auto stamp = fileStamp(joinPath(sources_.folder, name));
    unused_.push_back({name, stamp ? stamp->size : 0, false});
  }
  return true;
}

void PicturePurge::markMentioned() {
  if (unused_.empty() || !sources_.texts) return;
  PictureMentions mentions;
  for (const UnusedPicture& picture : unused_) mentions.lookFor(picture.name);
  const auto read = sources_.texts([&](std::string_view text) { mentions.read(text); });
  for (UnusedPicture& picture : unused_) picture.isMentioned = mentions.isMentioned(picture.name);
  if (!read) user_.message(someTextsUnread, Icon::Exclamation);
}

void PicturePurge::tickAll(bool ticked) {
  for (UnusedPicture& picture : unused_) picture.ticked = ticked;
}

std::size_t PicturePurge::tickedCount() const {
  return static_cast<std::size_t>(std::ranges::count(unused_, true, &UnusedPicture::ticked));
}

std::uint64_t PicturePurge::totalSize() const {
  std::uint64_t total = 0;
  for (const UnusedPicture& picture : unused_) total += picture.size;
  return total;
}

bool PicturePurge::deleteTicked() {
  const std::size_t ticked = tickedCount();
  if (ticked == 0) return false;
  const std::string question = "Saranno cancellati " + std::to_string(ticked) + " file. Procedere?";
  if (user_.question({question, Buttons::YesNo, Answer::No, Icon::Question}) != Answer::Yes) return false;
  std::size_t gone = 0;
  std::string kept;
  for (const UnusedPicture& picture : unused_) {
    if (!picture.ticked) continue;
    const std::string path = joinPath(sources_.folder, picture.name);
    const auto removed = sources_.remove ? sources_.remove(path) : deleteFile(path);
    if (removed) {
      ++gone;
    } else {
      kept += "\n" + picture.name;
    }
  }
  kept_ = ticked - gone;
  user_.message(std::to_string(gone) + " file cancellati", Icon::Information);
  if (!kept.empty()) user_.message("Non è stato possibile cancellare:" + kept, Icon::Exclamation);
  return true;
}

}  // namespace kv
