#include "store/catalogue/way_back.h"

#include <algorithm>

#include "platform/ports/failure_text.h"
#include "store/catalogue/tree_change.h"

namespace kv {
namespace {

constexpr std::size_t lostShown = 12;  // steps named in the question

/// The steps from a step on that are in effect, newest first; empty when it is not there or was undone.
std::vector<LoggedStep> stepsFrom(std::vector<LoggedStep> steps, std::int64_t step) {
  std::erase_if(steps, [step](const LoggedStep& one) { return one.ID < step || one.state != StepState::Done; });
  if (steps.empty() || steps.back().ID != step) steps.clear();
  return steps;
}

/// Reverts the steps one after the other; the number of rows.
Result<std::size_t> revertSteps(Database& catalogue, StepLog& log, const std::vector<LoggedStep>& steps) {
  std::size_t rows = 0;
  for (const LoggedStep& step : steps) {
    const auto changes = log.changesOf(step.ID);
    if (!changes) return fail(changes.error());
    if (auto reverted = ChangeRecorder::revertAsChange(catalogue, *changes); !reverted) return fail(reverted.error());
    rows += changes->size();
  }
  return rows;
}

RowObstacle obstacleOf(const Error& error, const StepLog& log) {
  if (error.where != log.path()) return RowObstacle::Changed;
  return error.kind == ErrorKind::Missing ? RowObstacle::NotKept : RowObstacle::Damaged;
}

std::string_view obstacleText(RowObstacle obstacle) {
  if (obstacle == RowObstacle::NotKept) return "Di un passo troppo grande non sono conservate le righe";
  if (obstacle == RowObstacle::Damaged) return "Le righe di un passo sono danneggiate nella cronologia";
  return "Le righe sono cambiate in seguito";
}

/// The newest copy that was made before a step.
BackupCopy copyBefore(const std::string& shopFolder, const LoggedStep& step) {
  for (BackupCopy& copy : backupCopies(shopFolder)) {
    if (copy.madeAt <= step.madeAt) return copy;
  }
  return {};
}

}  // namespace

Result<WayBack> planWayBack(Session& session, StepLog& log, std::int64_t step) {
  WayBack way;
  way.step = step;
  const auto steps = log.steps();
  way.lost = stepsFrom(steps, step);
  if (way.lost.empty()) return fail(ErrorKind::Missing, log.path(), "no such step in effect");
  way.name = way.lost.back().name;
  if (auto begun = session.catalogue.begin(); !begun) return fail(begun.error());
  const auto rows = revertSteps(session.catalogue, log, way.lost);
  session.catalogue.rollback();
  if (rows) {
    way.byRows = true;
    way.rows = *rows;
    return way;
  }
  way.obstacle = obstacleOf(rows.error(), log);
  way.copy = copyBefore(session.ShopFolder, way.lost.back());
  // The copy is of an opening: what was done between it and the step goes as well.
  std::vector<LoggedStep> since = steps;
  std::erase_if(since,
                [&way](const LoggedStep& one) { return one.madeAt < way.copy.madeAt || one.state != StepState::Done; });
  if (!way.copy.name.empty()) way.lost = std::move(since);
  return way;
}

Result<> goBackByRows(Database& catalogue, StepLog& log, const WayBack& way) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  const auto rows = revertSteps(catalogue, log, way.lost);
  if (rows) return catalogue.commit();
  catalogue.rollback();
  return fail(rows.error());
}

Question wayBackQuestion(const WayBack& way) {
  std::string text = "Il catalogo tornerà com'era prima di: " + way.name + ".\n";
  if (way.byRows) {
    text += "Righe da riportare indietro: " + std::to_string(way.rows) + ". Si potrà annullare con Ctrl+Z.\n";
  } else {
    text += std::string(obstacleText(way.obstacle)) + ": sarà ripristinata la copia del " +
            formatTime(way.copy.madeAt) + ".\nUna copia del catalogo attuale sarà conservata.\n";
  }
  text += "\nAndrà perso:";
  for (std::size_t i = 0; i < std::min(way.lost.size(), lostShown); ++i) {
    text += "\n" + formatTime(way.lost[i].madeAt) + "  " + way.lost[i].name;
  }
  const std::size_t more = way.lost.size() - std::min(way.lost.size(), lostShown);
  if (more > 0) text += more == 1 ? "\ne un altro passo" : "\ne altri " + std::to_string(more) + " passi";
  return {text + "\n\nTornare indietro?", Buttons::YesNo, Answer::No, Icon::Exclamation};
}

std::string noWayBack(const WayBack& way) {
  return "Non si può tornare a prima di: " + way.name + ".\n" + std::string(obstacleText(way.obstacle)) +
         ", e nessuna copia del catalogo è così vecchia.";
}

std::string unwrittenText(const Error& error) {
  std::string reason = error.what;
  if (error.kind == ErrorKind::Full) reason = "il disco è pieno";
  if (error.kind == ErrorKind::InUse) reason = "un altro programma usa il file";
  if (error.kind == ErrorKind::ReadOnly) reason = "il file o la cartella è in sola lettura";
  return "Gli ultimi passi non sono ancora scritti in backup/cronologia.mdb: " + reason +
         ". Il catalogo è salvato; i passi saranno scritti appena possibile, prima della chiusura del negozio.";
}

std::string unreadableStepText(const Error& error) {
  if (error.kind != ErrorKind::Corrupt) return failureText(error);
  return "Le righe di questo passo sono danneggiate nel file cronologia.mdb: non si può più leggere che cosa ha "
         "cambiato.\nIl catalogo è intatto.\n\nDettaglio: " +
         error.what;
}

std::string wayBackStep(const WayBack& way) { return "Torna a prima di: " + way.name; }

std::string restoredStep(const BackupCopy& copy) { return "Ripristinata la copia del " + formatTime(copy.madeAt); }

std::string_view stateText(StepState state) {
  if (state == StepState::Done) return "fatto";
  return state == StepState::Undone ? "annullato" : "perso con una copia ripristinata";
}

}  // namespace kv
