#include "store/catalogue/undo_history.h"

#include "platform/text/text.h"
#include "store/schema/side_tables.h"
#include "store/schema/working_copies.h"

namespace kv {
namespace {

// The clipboard is no matter of the history, nor are the copies a dialog keeps aside; a serial number once given is
// not given again, and a key that the server may know is not forgotten, whatever is undone.
bool isWatched(std::string_view table) {
  return !startsWithIgnoringCase(table, "clip") && !startsWithIgnoringCase(table, "sqlite_") && !isWorkingCopy(table) &&
         table != orderKeyTableName;
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

Result<> UndoHistory::record(const std::string& name, const std::function<Result<>()>& command) {
  if (recorder_ == nullptr || depth_ > 0) return command();
  // What was written outside of any command (a build's token, a folder that was reset) is no part of this step.
  if (recorder_->touched()) {
    if (auto others = recorder_->take(); !others) return fail(others.error());
  }
  auto before = sets_.cursors();
  if (!before) return fail(before.error());
  Step step;
  step.name = name;
  step.before = std::move(*before);
  return recordWatched(std::move(step), command);
}

void UndoHistory::noteFiles(FileEdits edits) {
  if (recorder_ != nullptr && depth_ > 0) addFileEdits(files_, std::move(edits));
}

Result<> UndoHistory::recordWatched(Step step, const std::function<Result<>()>& command) {
  ++depth_;
  auto outcome = command();
  --depth_;
  step.files = std::exchange(files_, {});
  // A command that changed the shop has ended this history.
  if (recorder_ == nullptr) return outcome;
  auto changes = recorder_->take();
  if (!changes) {
    clear();
    return outcome ? Result<>(fail(changes.error())) : outcome;
  }
  if (!outcome && recorder_->revert(*changes)) {
    if (exchangeFiles(step.files, true)) return outcome;
    changes->clear();
  }
  if (changes->empty() && step.files.empty()) return outcome;
  step.changes = std::move(*changes);
  step.after = sets_.cursors().value_or(step.before);
  keep(std::move(step));
  return outcome;
}

void UndoHistory::keep(Step step) {
  ++changes_;
  for (const RowChange& change : step.changes) step.size += sizeInMemory(change);
  for (const FileEdit& file : step.files) step.size += file.before.value_or("").size() + file.after.value_or("").size();
  size_ += step.size;
  undone_.clear();
  if (listener_ != nullptr) listener_->stepDone(step.name, step.changes);
  done_.push_back(std::move(step));
  while (size_ > mostBytes_ && done_.size() > 1) {
    size_ -= done_.front().size;
    done_.pop_front();
  }
}

Result<> UndoHistory::undo() { return move(done_, undone_, true); }
Result<> UndoHistory::redo() { return move(undone_, done_, false); }

Result<> UndoHistory::move(std::deque<Step>& from, std::deque<Step>& to, bool back) {
  if (recorder_ == nullptr || from.empty()) return {};
  if (auto moved = exchange(from.back(), back); !moved) {
    if (moved.error().kind == ErrorKind::Malformed) clear();
    return moved;
  }
  to.push_back(std::move(from.back()));
  from.pop_back();
  if (listener_ != nullptr) back ? listener_->stepUndone() : listener_->stepRepeated();
  if (back) {
    size_ -= to.back().size;
  } else {
    size_ += to.back().size;
  }
  return {};
}

/// Puts the rows and files of a step back or forward and shows them; all of it or nothing.
Result<> UndoHistory::exchange(const Step& step, bool back) {
  Session& session = sets_.session();
  if (auto begun = session.catalogue.begin(); !begun) return begun;
  auto lists = exchangeRows(step, back);
  const Result<> exchanged = lists ? exchangeFiles(step.files, back) : Result<>(fail(lists.error()));
  if (!exchanged) session.catalogue.rollback();
  Result<> kept = exchanged ? session.catalogue.commit() : exchanged;
  if (!kept) {
    if (exchanged) ignore(exchangeFiles(step.files, !back), "the first failure is the one to report");
    if (refresh_) ignore(refresh_(), "the first failure is the one to report");
    return kept;
  }
  sets_.show(std::move(*lists));
  return {};
}

/// Puts the rows of a step back or forward; what is shown of them then.
Result<CatalogueLists> UndoHistory::exchangeRows(const Step& step, bool back) {
  auto moved = back ? recorder_->revert(step.changes) : recorder_->repeat(step.changes);
  if (!moved) return fail(moved.error());
  return readShown(back ? step.before : step.after);
}

/// What the session keeps of the rows, and all that is shown of them with the cursors of a step.
Result<CatalogueLists> UndoHistory::readShown(const CatalogueCursors& cursors) {
  Session& session = sets_.session();
  if (refresh_) {
    if (auto read = refresh_(); !read) return fail(read.error());
  }
  auto settings = readSettings(session);
  if (!settings) return fail(settings.error());
  auto lists = readLists(session, cursors);
  if (!lists) return lists;
  const auto articles = countAllArticles(session);
  if (!articles) return fail(articles.error());
  lists->generale = std::move(*settings);
  lists->articles = *articles;
  return lists;
}

}  // namespace kv
