#pragma once
// The steps of the undo history, kept beyond the session in `backup/cronologia.mdb` of the shop folder: name, time and
// row images of each, with a digest of them. The file is an aid: one that is damaged is replaced, one that can't be
// written stays as it is, and no command fails for it. A shop in which nothing was changed has none.

#include <cstdint>
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

  // StepListener; nothing fails.
  void stepDone(const std::string& name, const RowChanges& changes) override;
  void stepUndone() override;
  void stepRepeated() override;

  /// All steps, newest first; none when there is no file or it can't be read.
  std::vector<LoggedStep> steps();
  /// The row images of a step. Missing for a step without, Corrupt when they are no longer as they were written.
  Result<RowChanges> changesOf(std::int64_t ID);
  /// Notes that a dated copy made at a time (seconds) has become the catalogue: later steps are left.
  void noteRestored(const std::string& name, std::int64_t copyMadeAt);

  /// The path of the file.
  std::string path() const;

 private:
  /// Opens the file, made where it is missing and that is wanted; false when it can't be.
  bool open(bool create);
  /// Adds a step; its ID.
  std::int64_t append(const std::string& name, const std::string& images, bool hasImages);
  /// Notes whether a step is done or undone.
  void mark(std::int64_t ID, StepState state);
  /// Deletes the oldest steps beyond the bound.
  void trim();

  std::string shopFolder_;
  Clock& clock_;
  StepLimits limits_;
  Database database_;
  bool keepsDigests_ = false;                ///< the open file has a column for them
  std::int64_t session_ = 0;                 ///< number of this session; 0 before its first step
  std::vector<std::int64_t> done_, undone_;  ///< steps of this session, the newest last; 0: not kept
};

/// Row images as bytes, and back; Corrupt for bytes that are none.
std::string packChanges(const RowChanges& changes);
Result<RowChanges> unpackChanges(std::string_view bytes);

}  // namespace kv
