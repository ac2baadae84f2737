#pragma once
// Undo and redo of what the merchant did to the catalogue: each command is a step with its name, kept as images of the
// rows it changed, with the files it wrote. Kept for the session; a change of shop clears it. The clipboard is not the
// history's matter.

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/database/changes/changes.h"
#include "store/catalogue/catalogue_sets.h"
#include "store/catalogue/file_edits.h"

namespace kv {

/// Who keeps a record of the steps beyond the session.
class StepListener {
 public:
  virtual ~StepListener() = default;
  /// A step was done; what was undone is gone.
  virtual void stepDone(const std::string& name, const RowChanges& changes) = 0;
  /// The last step that was done has been undone.
  virtual void stepUndone() = 0;
  /// The last step that was undone has been done again.
  virtual void stepRepeated() = 0;
};

/// Rows are put back by their own keys, so a step can only be undone while the rows are as it left them.
class UndoHistory {
 public:
  /// The memory that steps take by default, in bytes.
  /// 64 MiB of row images.
  static constexpr std::size_t usualBytes = std::size_t{64} << 20;

  /// What is read again after the rows of a step were put back or forward, before the lists are shown.
  using Refresh = std::function<Result<>()>;

  /// refresh: reads what the session keeps of the catalogue's rows (readSessionFacts); empty: nothing to read.
  /// mostBytes: the oldest steps are dropped when all of them take more; the last one stays, however big.
  explicit UndoHistory(CatalogueSets& sets, Refresh refresh = {}, std::size_t mostBytes = usualBytes)
      : sets_(sets), refresh_(std::move(refresh)), mostBytes_(mostBytes) {}

  /// Starts watching the session's catalogue, with an empty history; end() must come before it closes.
  /// end() does nothing without begin(), and drops every step. Both are called by whoever opens and closes a shop.
  void begin();
  /// Stops watching; until the next begin() commands run and nothing is recorded.
  void end();

  /// Who is told of each step from now on; null: nobody. It outlives the history.
  void listen(StepListener* listener) { listener_ = listener; }

  /// Runs a command and keeps what it changed as one step; none when it changed nothing. Steps that were undone are
  /// gone then. The command's failure is handed through, and what it wrote before is reverted; what can't be reverted
  /// is a step all the same. When what it changed cannot be read, the change stays, the history is cleared, and that
  /// failure is returned. A command inside a command belongs to the outer one.
  /// `name` is what the menu entries of undo and redo show. Without begin() the command just runs.
  Result<> record(const std::string& name, const std::function<Result<>()>& command);

  /// Files that the running command has written: they go back and forward with its rows, and make a step by themselves.
  /// Nothing is kept outside of a command. The listener is told of a step's rows alone.
  void noteFiles(FileEdits edits);

  bool canUndo() const { return !done_.empty(); }
  bool canRedo() const { return !undone_.empty(); }
  /// The name of the step that would be undone or done again; empty when there is none.
  std::string undoName() const { return done_.empty() ? std::string() : done_.back().name; }
  std::string redoName() const { return undone_.empty() ? std::string() : undone_.back().name; }

  /// How often the catalogue was changed since begin(): by commands, by undo and by redo.
  std::uint64_t changes() const { return changes_; }

  /// Undoes the last step, or does it again; the sets are read again, and the cursors are where they were before or
  /// after it. Malformed when somebody else changed the rows or the files meanwhile: the history is cleared then. Any
  /// other failure leaves rows, files, sets and history as they were.
  /// Nothing happens, and there is no failure, when there is no such step.
  Result<> undo();
  Result<> redo();
  /// Drops all steps and goes on watching.
  void clear();

 private:
  struct Step {
    std::string name;                ///< as given to record()
    RowChanges changes;              ///< the rows before and after
    CatalogueCursors before, after;  ///< where the cursors were
    FileEdits files;                 ///< the files before and after
    std::size_t size = 0;            ///< bytes of its row images and files
  };
  /// Runs the command and turns what the recorder saw into a step.
  Result<> recordWatched(Step step, const std::function<Result<>()>& command);
  /// Moves the last step of one stack to the other; `back`: undo. Clears the history on Malformed.
  Result<> move(std::deque<Step>& from, std::deque<Step>& to, bool back);
  /// Writes the rows of a step and shows them, in one transaction: all of it or nothing.
  Result<> exchange(const Step& step, bool back);
  Result<CatalogueLists> exchangeRows(const Step& step, bool back);
  /// Reads what the session keeps of the rows, and what is shown with these cursors.
  Result<CatalogueLists> readShown(const CatalogueCursors& cursors);
  /// Adds a step, drops what was undone, and the oldest steps over the limit.
  void keep(Step step);

  CatalogueSets& sets_;
  Refresh refresh_;
  StepListener* listener_ = nullptr;
  std::size_t mostBytes_;
  std::unique_ptr<ChangeRecorder> recorder_;  ///< null while no catalogue is watched
  std::deque<Step> done_, undone_;            ///< the newest last
  std::size_t size_ = 0;                      ///< bytes of the steps done
  std::uint64_t changes_ = 0;                 ///< since begin()
  FileEdits files_;                           ///< written by the command that runs
  int depth_ = 0;                             ///< commands running inside one another
};

}  // namespace kv
