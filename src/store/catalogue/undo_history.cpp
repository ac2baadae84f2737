#include "store/catalogue/undo_history.h"

#include "platform/text/text.h"

namespace kv {
namespace {

// The oldest steps go when the history takes more memory than this; the last one stays, however big.
constexpr std::size_t mostBytes = std::size_t{64} << 20;

// The clipboard is no matter of the history; and a serial number once given is not given again, whatever is undone.
bool isWatched(std::string_view table) {
  return !equalsIgnoringCase(table, "cliparticoli") && !equalsIgnoringCase(table, "clipcategorie") &&
         !startsWithIgnoringCase(table, "sqlite_");
}

}  // namespace

void UndoHistory::begin() {
  end();
  recorder_ = std::make_unique<ChangeRecorder>(sets_.session().catalogue, isWatched);
}

void UndoHistory::end() {
  clear();
  recorder_.reset();
}

void UndoHistory::clear() {
  done_.clear();
  undone_.clear();
  size_ = 0;
}

UndoHistory::Place UndoHistory::place() { return {sets_.department(), sets_.article()}; }

Result<> UndoHistory::record(const std::string& name, const std::function<Result<>()>& command) {
  if (recorder_ == nullptr || depth_ > 0) return command();
  // What was written outside of any command (a build's token, a folder that was reset) is no part of this step.
  if (recorder_->touched()) {
    if (auto others = recorder_->take(); !others) return fail(others.error());
  }
  Step step{name, {}, place(), {}, 0};
  ++depth_;
  auto outcome = command();
  --depth_;
  // A command that changed the shop has ended this history.
  if (recorder_ == nullptr) return outcome;
  auto changes = recorder_->take();
  if (!changes) {
    clear();
    return outcome ? Result<>(fail(changes.error())) : outcome;
  }
  if (changes->empty()) return outcome;
  step.changes = std::move(*changes);
  step.after = place();
  keep(std::move(step));
  return outcome;
}

void UndoHistory::keep(Step step) {
  for (const RowChange& change : step.changes) step.size += sizeInMemory(change);
  size_ += step.size;
  undone_.clear();
  done_.push_back(std::move(step));
  while (size_ > mostBytes && done_.size() > 1) {
    size_ -= done_.front().size;
    done_.pop_front();
  }
}

Result<> UndoHistory::undo() { return move(done_, undone_, true); }
Result<> UndoHistory::redo() { return move(undone_, done_, false); }

Result<> UndoHistory::move(std::deque<Step>& from, std::deque<Step>& to, bool back) {
  if (recorder_ == nullptr || from.empty()) return {};
  Step step = std::move(from.back());
  from.pop_back();
  auto moved = back ? recorder_->revert(step.changes) : recorder_->repeat(step.changes);
  if (!moved) {
    clear();
    return moved;
  }
  const Place shown = back ? step.before : step.after;
  if (back) {
    size_ -= step.size;
  } else {
    size_ += step.size;
  }
  to.push_back(std::move(step));
  return show(shown);
}

Result<> UndoHistory::show(const Place& place) {
  if (refresh_) {
    if (auto read = refresh_(); !read) return read;
  }
  if (auto bound = sets_.bind(); !bound) return bound;
  if (auto built = sets_.CostruisciAlbero(0); !built) return built;
  auto found = sets_.goToDepartment(place.department);
  if (!found) return fail(found.error());
  if (!*found) {
    if (auto none = sets_.goToDepartment(treeRoot); !none) return fail(none.error());
  }
  if (auto counted = sets_.recount(); !counted) return counted;
  if (place.article == 0) return {};
  auto article = sets_.goToArticle(place.article);
  return article ? Result<>() : fail(article.error());
}

}  // namespace kv
