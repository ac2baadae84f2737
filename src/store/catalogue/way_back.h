#pragma once
// The way back to before a step of any session: by row images where they still fit, else by the dated copy that was
// made before it; what would be lost, and what each step changed. The rules of the window frmCronologia.

#include "store/catalogue/step_log.h"
#include "store/shop/backup_copies.h"

namespace kv {

/// Why the way by rows is closed.
enum class RowObstacle {
  Changed,  ///< rows are no longer as the steps left them
  NotKept,  ///< a step was too big for its rows to be kept
  Damaged   ///< the rows of a step are damaged in the log
};

/// How one gets back to before a step.
struct WayBack {
  std::int64_t step = 0;                        ///< ID in the log
  std::string name;                             ///< of that step
  bool byRows = false;                          ///< the images of all steps since then fit
  RowObstacle obstacle = RowObstacle::Changed;  ///< without `byRows`: why
  BackupCopy copy;               ///< otherwise: the newest copy made before the step; an empty name: there is none
  std::vector<LoggedStep> lost;  ///< the steps that would be undone or lost, newest first
  std::size_t rows = 0;          ///< changes of rows that would be undone; 0 for a copy

  bool isThere() const { return byRows || !copy.name.empty(); }
};

/// Finds the way back to before a step, and tries it on the rows without keeping anything. Missing for a step that is
/// not in the log or was undone; otherwise as Database::begin.
Result<WayBack> planWayBack(Session& session, StepLog& log, std::int64_t step);
/// Goes the way of rows, all of it or nothing; called as a command of the history, so that it can be undone. Malformed
/// when the rows no longer fit.
Result<> goBackByRows(Database& catalogue, StepLog& log, const WayBack& way);

/// What the user is asked before: what would be lost, by name and date; No is the default.
Question wayBackQuestion(const WayBack& way);
/// What to say where there is no way back.
std::string noWayBack(const WayBack& way);
/// What to say while the log can't be written.
std::string unwrittenText(const Error& error);
/// What to say instead of what a step changed, when that can't be read.
std::string unreadableStepText(const Error& error);
/// How undo names the way back.
std::string wayBackStep(const WayBack& way);
/// How the log names a restored copy.
std::string restoredStep(const BackupCopy& copy);

/// What a step changed, a line each: "Articolo 12, prezzo: 10 -> 12", at most `most` lines and one that says how many
/// more there are. The names of columns are read from the open catalogue.
std::vector<std::string> describeStep(Database& catalogue, const RowChanges& changes, std::size_t most = 200);

/// "fatto", "annullato" or "perso con una copia ripristinata".
std::string_view stateText(StepState state);

}  // namespace kv
