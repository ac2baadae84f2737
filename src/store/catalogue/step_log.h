#pragma once
// The steps of the undo history, kept beyond the session in `backup/cronologia.mdb` of the shop folder: name, time and
// row images of each, with a digest of them. The file is an aid: one that is damaged is replaced, one that can't be
// written stays as it is, and no command fails for it: its steps are kept in memory, and written with the
// next one that can be. A shop in which nothing was changed has none.

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "platform/ports/clock.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// What became of a step.
enum class StepState {
  Done,    ///< its rows are as it left them, unless later steps changed them
  Undone,  ///< by the undo of its session
  Left     ///< a dated copy was restored that is older than it
};

/// One step as the list shows it.
struct LoggedStep {
  std::int64_t ID = 0;       ///< ascending in the order of the steps
  std::int64_t madeAt = 0;   ///< seconds since 1970-01-01 00:00 UTC
  std::int64_t session = 0;  ///< number of its session
  std::string name;
  StepState state = StepState::Done;
  bool hasImages = false;  ///< false for a step too big to be kept, and for a restored copy
};

/// How much is kept; the oldest steps go first.
struct StepLimits {
  std::size_t steps = 2000;                    ///< rows of the list
  std::size_t bytes = std::size_t{32} << 20;   ///< of all row images
  std::size_t oneStep = std::size_t{8} << 20;  ///< of one step: a bigger one is kept without images
};

class StepLog final : public StepListener {
 public:
  /// Opens nothing yet. The clock outlives the log.
  StepLog(std::string shopFolder, Clock& clock, StepLimits limits = {});
  /// Tries once more to write what waits.
  ~StepLog() override;
  StepLog(const StepLog&) = delete;
  StepLog& operator=(const StepLog&) = delete;

  // StepListener; nothing fails.
  void stepDone(const std::string& name, const RowChanges& changes) override;
  void stepUndone() override;
  void stepRepeated() override;

  /// All steps, newest first, those that wait to be written included; of a file that can't be read none.
  /// The IDs hold until the next step is done, undone or repeated.
  std::vector<LoggedStep> steps();
  /// The row images of a step. Missing for a step without, Corrupt when they are no longer as they were written.
  Result<RowChanges> changesOf(std::int64_t ID);
  /// Notes that a dated copy made at a time (seconds) has become the catalogue: later steps are left.
  void noteRestored(const std::string& name, std::int64_t copyMadeAt);

  /// Why the last steps could not be written; nothing when the file holds all of them.
  const std::optional<Error>& failure() const { return failure_; }

  /// The path of the file.
  std::string path() const;

 private:
  /// A step that isn't in the file yet.
  struct WaitingStep {
    std::string name;
    std::int64_t madeAt = 0;
    StepState state = StepState::Done;
    std::optional<std::string> images;  ///< packed; none for a step too big
  };

  /// Opens the file, made where it is missing and that is wanted.
  Result<> open(bool create);
  /// Writes what waits, step by step, as far as that works.
  void write();
  /// Lets go of a file that was deleted meanwhile, so that another one is made.
  void forgetFile();
  /// Gives an open file what writing takes: the column of digests, the number of this session.
  Result<> prepare();
  /// Writes the oldest step that waits, and knows it by its ID in the file from then on.
  Result<> writeFirst();
  /// Writes states that steps of the file have got.
  Result<> writeStates();
  /// The ID of a step as long as it waits.
  std::int64_t waitingID(std::size_t index) const;
  Result<> writeStep(const WaitingStep& step);
  Result<RowChanges> changesOfWaiting(std::size_t index) const;
  /// Notes whether a step is done or undone.
  void mark(std::int64_t ID, StepState state);
  /// Deletes the oldest steps beyond the bound, after images of so many bytes were added.
  void trim(std::int64_t added);

  std::string shopFolder_;
  Clock& clock_;
  StepLimits limits_;
  Database database_;
  bool keepsDigests_ = false;                 ///< the open file has a column for them
  std::int64_t session_ = 0;                  ///< number of this session; 0 before its first step
  std::vector<std::int64_t> done_, undone_;   ///< steps of this session, the newest last; 0: its file is gone
  std::deque<WaitingStep> waiting_;           ///< the newest last
  std::size_t written_ = 0;                   ///< steps that have waited and are in the file now
  std::map<std::int64_t, StepState> states_;  ///< of steps in the file, not written there yet
  std::optional<Error> failure_;
  /// At least the bytes of all images in the file; below 0 while they were not counted.
  static constexpr std::int64_t unknownSize = -(std::int64_t{1} << 62);
  std::int64_t bytes_ = unknownSize;
};

/// Row images as bytes, and back; Corrupt for bytes that are none.
std::string packChanges(const RowChanges& changes);
Result<RowChanges> unpackChanges(std::string_view bytes);

}  // namespace kv
