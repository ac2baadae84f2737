#pragma once
// Undo and redo of what the merchant did to the catalogue: each command is a step with its name, kept as images of the
// rows it changed. Kept for the session; a change of shop clears it. The clipboard is not the history's matter.

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/database/changes.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

class UndoHistory {
 public:
  /// The memory that steps take by default, in bytes.
  static constexpr std::size_t usualBytes = std::size_t{64} << 20;

  /// What is read again after the rows of a step were put back or forward, before the lists are shown.
  using Refresh = std::function<Result<>()>;

  /// refresh: reads what the session keeps of the catalogue's rows (readSessionFacts); empty: nothing to read.
  /// mostBytes: the oldest steps are dropped when all of them take more; the last one stays, however big.
  explicit UndoHistory(CatalogueSets& sets, Refresh refresh = {}, std::size_t mostBytes = usualBytes)
      : sets_(sets), refresh_(std::move(refresh)), mostBytes_(mostBytes) {}

  /// Starts watching the session's catalogue, with an empty history; end() must come before it closes.
  void begin();
  void end();

  /// Runs a command and keeps what it changed as one step; none when it changed nothing. Steps that were undone are
  /// gone then. The command's failure is handed through, and what it wrote before is reverted; what can't be reverted
  /// is a step all the same. When what it changed cannot be read, the change stays, the history is cleared, and that
  /// failure is returned. A command inside a command belongs to the outer one.
  Result<> record(const std::string& name, const std::function<Result<>()>& command);

  bool canUndo() const { return !done_.empty(); }
  bool canRedo() const { return !undone_.empty(); }
  /// The name of the step that would be undone or done again; empty when there is none.
  std::string undoName() const { return done_.empty() ? std::string() : done_.back().name; }
  std::string redoName() const { return undone_.empty() ? std::string() : undone_.back().name; }

  /// Undoes the last step, or does it again; the sets are read again, and the cursors are where they were before or
  /// after it. Malformed when somebody else changed the rows meanwhile: the history is cleared then. Any other failure
  /// leaves rows, sets and history as they were.
  Result<> undo();
  Result<> redo();
  void clear();

 private:
  struct Step {
    std::string name;
    RowChanges changes;
    CatalogueCursors before, after;
    std::size_t size = 0;
  };
  Result<> recordWatched(Step step, const std::function<Result<>()>& command);
  Result<> move(std::deque<Step>& from, std::deque<Step>& to, bool back);
  Result<> exchange(const Step& step, bool back);
  Result<CatalogueLists> readShown(const CatalogueCursors& cursors);
  void keep(Step step);

  CatalogueSets& sets_;
  Refresh refresh_;
  std::size_t mostBytes_;
  std::unique_ptr<ChangeRecorder> recorder_;
  std::deque<Step> done_, undone_;
  std::size_t size_ = 0;  ///< bytes of the steps done
  int depth_ = 0;
};

}  // namespace kv
