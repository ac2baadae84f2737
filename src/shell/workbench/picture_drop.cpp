#include "shell/workbench/picture_drop.h"

#include "media/choice/picture_choice.h"
#include "platform/files/files.h"
#include "shell/workbench/fields/current_row.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr std::string_view dropStep = "Imposta immagine";
constexpr const char* allSet = "Tutte le immagini sono già impostate: trascinare il file sull'immagine da sostituire";
constexpr const char* askLocation =
    "Una foto dice dove è stata scattata, e chiunque visiti il negozio può leggerlo.\n"
    "Omettere il luogo dalla copia?";

/// The pictures that files go to, in this order.
std::vector<int> slotsFor(CatalogueSets& sets, const RowPicture& target) {
  std::vector<int> slots;
  if (target.number != freePictures) slots.push_back(target.number);
  for (int number = 0; number < picturesOfRow(target.set); ++number) {
    if (number != target.number && pictureName(sets, {target.set, number}).empty()) slots.push_back(number);
  }
  return slots;
}

/// A picture that has been brought in, and where it goes.
struct BroughtPicture {
  int number = 0;
  std::string name;
  ImageSize size;
};

/// One drop: what came of its files.
class PictureDrop {
 public:
  PictureDrop(Environment& env, std::string folder)
      : user_(env.user), folder_(std::move(folder)), choice_(settings_, env.user, folder_, {}) {
    // The settings are those of the dialog; it alone stores them.
    choice_.values = readLoadImage(env.settings);
  }

  void take(const std::vector<std::string>& files, const std::vector<int>& slots) {
    bool goesOn = true;
    for (const std::string& file : files) {
      if (!goesOn) {
        unwritten_ += "\n" + std::string(baseName(file));
      } else if (brought_.size() == slots.size()) {
        leftOver_ += "\n" + std::string(baseName(file));
      } else {
        goesOn = takeOne(file, slots[brought_.size()]);
      }
    }
  }
  const std::vector<BroughtPicture>& brought() const { return brought_; }

  void showRest() const {
    std::string text;
    const auto add = [&text](std::string_view start, const std::string& list) {
      if (!list.empty()) text.append(text.empty() ? "" : "\n\n").append(start).append(list);
    };
    add("", refused_);
    add("L'immagine non può essere letta:", unreadable_);
    add("Non c'è più posto per:", leftOver_);
    add("Non sono state prese:", unwritten_);
    if (!text.empty()) user_.message(text, Icon::Exclamation);
  }

 private:
  /// False when nothing more can be written; the user has been told.
  bool takeOne(const std::string& file, int number) {
    choice_.tab = folderOf(file) == folder_ ? PictureTab::Shop : PictureTab::Disk;
    if (const std::string refusal = choice_.sizeRefusal(file); !refusal.empty()) {
      refused_ += (refused_.empty() ? "" : "\n\n") + refusal;
      return true;
    }
    if (!asked_ && !choice_.values.dropsLocation && choice_.preview(file).tellsLocation) {
      asked_ = true;
      choice_.values.dropsLocation =
          user_.question({askLocation, Buttons::YesNo, Answer::Yes, Icon::Question}) == Answer::Yes;
    }
    const auto name = choice_.accept(file);
    if (!name) return false;
    const auto size = name->empty() ? ImageSize() : shownSize(joinPath(folder_, *name)).value_or(ImageSize());
    if (size.width > 0) {
      brought_.push_back({number, *name, size});
    } else {
      unreadable_ += "\n" + std::string(baseName(file));
    }
    return true;
  }

  UserPort& user_;
  std::string folder_;
  MemorySettings settings_;
  PictureChoice choice_;
  std::vector<BroughtPicture> brought_;
  std::string refused_, unreadable_, leftOver_, unwritten_;
  bool asked_ = false;
};

}  // namespace

int picturesOfRow(EditedSet set) { return set == EditedSet::Articoli ? 3 : 2; }

void takePictures(Workbench& bench, const RowPicture& target, const std::vector<std::string>& files) {
  if (files.empty() || !bench.isOpen() || !isOnRow(bench.sets(), target.set)) return;
  // Of a row that can't be read each picture would seem to be free.
  if (auto read = bench.sets().edited(target.set).load(); !read) return bench.showError(read);
  const std::vector<int> slots = slotsFor(bench.sets(), target);
  if (slots.empty()) return bench.env().user.message(allSet, Icon::Exclamation);
  PictureDrop drop(bench.env(), entryPath(bench.session().ShopFolder, "work"));
  drop.take(files, slots);
  if (!drop.brought().empty()) {
    bench.editThrough(dropStep, [&] {
      for (const BroughtPicture& each : drop.brought()) {
        bench.showError(storePicture(bench.sets(), {target.set, each.number}, each.name, each.size));
      }
      return true;
    });
  }
  drop.showRest();
}

}  // namespace kv
