#include "store/catalogue/step_log.h"

#include <algorithm>

#include "platform/files/file_digest.h"
#include "platform/files/files.h"
#include "store/catalogue/tree_change.h"
#include "store/shop/backup_copies.h"

namespace kv {
namespace {

constexpr std::string_view logFile = "cronologia.mdb";
/// IDs of steps that wait to be written; those of the file stay below.
constexpr std::int64_t firstWaiting = std::int64_t{1} << 62;

constexpr const char* anAid = "the record of the steps is an aid, which no command fails for";

constexpr const char* logTables =
    "CREATE TABLE passi (ID INTEGER PRIMARY KEY AUTOINCREMENT, quando INTEGER, sessione INTEGER, nome LONGTEXT,"
    " stato INTEGER, righe LONGBLOB, impronta LONGTEXT)";

/// A file of an earlier release has no column for them.
bool hasDigests(Database& database) { return database.prepare("SELECT impronta FROM passi").has_value(); }
Result<> giveDigests(Database& database) { return database.execute("ALTER TABLE passi ADD COLUMN impronta LONGTEXT"); }

std::int64_t secondsNow(Clock& clock) { return static_cast<std::int64_t>(clock.now()); }

bool isOurs(Database& database) {
  return database.scalar("SELECT quando + sessione + stato FROM passi WHERE righe IS NULL AND nome = ''").has_value();
}

/// A new file instead of one that isn't there or is no record of steps.
Result<Database> makeLog(const std::string& path) {
  if (auto made = createFolders(std::string(folderOf(path))); !made) return fail(made.error());
  for (const char* end : {"", "-journal"})
    ignore(deleteFile(path + end), "a file in the way is reported by the making");
  auto database = Database::create(path);
  if (!database) return database;
  if (auto made = database->execute(logTables); !made) return fail(made.error());
  return database;
}

}  // namespace

StepLog::StepLog(std::string shopFolder, Clock& clock, StepLimits limits)
    : shopFolder_(std::move(shopFolder)), clock_(clock), limits_(limits) {}

std::int64_t StepLog::waitingID(std::size_t index) const {
  return firstWaiting + static_cast<std::int64_t>(written_ + index);
}

std::string StepLog::path() const { return entryPath(entryPath(shopFolder_, backupFolder), logFile); }

StepLog::~StepLog() {
  try {
    write();
  } catch (...) {  // no memory: what was told already stays unwritten
  }
}

Result<> StepLog::open(bool create) {
  if (database_.isOpen()) return {};
  auto opened = Database::open(path(), OpenMode::Shared);
  if (opened && !isOurs(*opened)) opened = Result<Database>(fail(ErrorKind::Corrupt, path(), "no table of steps"));
  if (!opened && create) {
    const ErrorKind kind = opened.error().kind;
    if (kind == ErrorKind::Missing || kind == ErrorKind::Corrupt) opened = makeLog(path());
  }
  if (!opened) return fail(opened.error());
  database_ = std::move(*opened);
  keepsDigests_ = hasDigests(database_);
  // After a loss of power the file may be damaged, and is made again then; a kill leaves it whole.
  ignore(database_.execute("PRAGMA synchronous=OFF"), anAid);
  return {};
}

void StepLog::stepDone(const std::string& name, const RowChanges& changes) {
  undone_.clear();
  std::size_t size = 0;
  for (const RowChange& change : changes) size += sizeInMemory(change);
  for (const WaitingStep& step : waiting_) size += step.images ? step.images->size() : 0;
  WaitingStep step{name, secondsNow(clock_), StepState::Done, std::nullopt};
  if (size <= limits_.oneStep) step.images = packChanges(changes);
  done_.push_back(waitingID(waiting_.size()));
  waiting_.push_back(std::move(step));
  write();
}

void StepLog::write() {
  if (waiting_.empty() && states_.empty()) return;
  if (database_.isOpen() && !fileExists(path())) forgetFile();
  auto written = open(true);
  if (written) written = prepare();
  std::int64_t added = 0;
  const bool hasSteps = !waiting_.empty();
  while (written && !waiting_.empty()) {
    const auto& images = waiting_.front().images;
    const auto size = images ? static_cast<std::int64_t>(images->size()) : 0;
    written = writeFirst();
    if (written) added += size;
  }
  if (written) written = writeStates();
  failure_ = written ? std::nullopt : std::optional(written.error());
  if (hasSteps && database_.isOpen()) trim(added);
}

void StepLog::forgetFile() {
  database_.close();
  for (auto* steps : {&done_, &undone_}) {
    for (std::int64_t& step : *steps) step = step < firstWaiting ? 0 : step;
  }
  states_.clear();
  session_ = 0;
  bytes_ = unknownSize;
}

Result<> StepLog::prepare() {
  if (!keepsDigests_) {
    if (auto given = giveDigests(database_); !given) return given;
    keepsDigests_ = true;
  }
  if (session_ != 0) return {};
  const auto last = database_.scalar("SELECT MAX(sessione) FROM passi");
  if (!last) return fail(last.error());
  session_ = asInteger(*last) + 1;
  return {};
}

Result<> StepLog::writeFirst() {
  std::int64_t ID = 0;
  const auto work = [&]() -> Result<> {
    if (auto written = writeStep(waiting_.front()); !written) return written;
    const auto given = database_.scalar("SELECT last_insert_rowid()");
    if (!given) return fail(given.error());
    ID = asInteger(*given);
    return database_.commit();
  };
  if (auto begun = database_.begin(); !begun) return begun;
  if (auto written = work(); !written) {
    database_.rollback();
    return written;
  }
  for (auto* steps : {&done_, &undone_}) std::ranges::replace(*steps, waitingID(0), ID);
  waiting_.pop_front();
  ++written_;
  return {};
}

Result<> StepLog::writeStates() {
  while (!states_.empty()) {
    const auto& [ID, state] = *states_.begin();
    auto marked = runWith(database_, "UPDATE passi SET stato = ?1 WHERE ID = ?2",
                          {Value(static_cast<std::int64_t>(state)), Value(ID)});
    if (!marked) return marked;
    states_.erase(states_.begin());
  }
  return {};
}

Result<> StepLog::writeStep(const WaitingStep& step) {
  Value images = Null{}, digest = Null{};
  if (step.images) {
    images = Bytes(step.images->begin(), step.images->end());
    digest = bytesDigest(*step.images);
  }
  return runWith(database_,
                 "INSERT INTO passi (quando, sessione, nome, stato, righe, impronta) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
                 {Value(step.madeAt), Value(session_), Value(step.name), Value(static_cast<std::int64_t>(step.state)),
                  std::move(images), std::move(digest)});
}

void StepLog::trim(std::int64_t added) {
  ignore(runWith(database_, "DELETE FROM passi WHERE ID <= (SELECT MAX(ID) FROM passi) - ?1",
                 {Value(static_cast<std::int64_t>(limits_.steps))}),
         anAid);
  // Adding up the images of all steps takes longer than a step, so it is done only when they may be too many.
  const auto bytes = static_cast<std::int64_t>(limits_.bytes);
  bytes_ += added;
  if (bytes_ >= 0 && bytes_ <= bytes) return;
  ignore(runWith(database_,
                 "DELETE FROM passi WHERE ID <= (SELECT MAX(ID) FROM (SELECT ID, SUM(LENGTH(righe)) OVER (ORDER BY ID "
                 "DESC) AS finora FROM passi) WHERE finora > ?1) AND ID < (SELECT MAX(ID) FROM passi)",
                 {Value(bytes)}),
         anAid);
  const auto kept = database_.scalar("SELECT SUM(LENGTH(righe)) FROM passi");
  bytes_ = kept ? asInteger(*kept) : unknownSize;
}

void StepLog::mark(std::int64_t ID, StepState state) {
  if (ID == 0) return;
  if (ID >= firstWaiting) {
    waiting_[static_cast<std::size_t>(ID - waitingID(0))].state = state;
  } else {
    states_[ID] = state;
  }
  write();
}

void StepLog::stepUndone() {
  if (done_.empty()) return;
  undone_.push_back(done_.back());
  done_.pop_back();
  mark(undone_.back(), StepState::Undone);
}

void StepLog::stepRepeated() {
  if (undone_.empty()) return;
  done_.push_back(undone_.back());
  undone_.pop_back();
  mark(done_.back(), StepState::Done);
}

void StepLog::noteRestored(const std::string& name, std::int64_t copyMadeAt) {
  if (open(true)) {
    ignore(runWith(database_, "UPDATE passi SET stato = 2 WHERE stato = 0 AND quando >= ?1", {Value(copyMadeAt)}),
           anAid);
  }
  // It is no step of this session.
  waiting_.push_back({name, secondsNow(clock_), StepState::Done, std::nullopt});
  write();
}

std::vector<LoggedStep> StepLog::steps() {
  std::vector<LoggedStep> list;
  for (std::size_t i = waiting_.size(); i-- > 0;) {
    const WaitingStep& step = waiting_[i];
    list.push_back({waitingID(i), step.madeAt, session_, step.name, step.state, step.images.has_value()});
  }
  if (!open(false)) return list;
  auto row =
      database_.prepare("SELECT ID, quando, sessione, nome, stato, righe IS NOT NULL FROM passi ORDER BY ID DESC");
  if (!row) return list;
  for (auto found = row->step(); found && *found; found = row->step()) {
    const std::int64_t state = row->integer(4);
    list.push_back({row->integer(0), row->integer(1), row->integer(2), std::string(row->text(3)),
                    state == 0 ? StepState::Done : (state == 1 ? StepState::Undone : StepState::Left), row->flag(5)});
    if (const auto changed = states_.find(list.back().ID); changed != states_.end())
      list.back().state = changed->second;
  }
  return list;
}

Result<RowChanges> StepLog::changesOf(std::int64_t ID) {
  if (ID >= firstWaiting) return changesOfWaiting(static_cast<std::size_t>(ID - waitingID(0)));
  if (!open(false)) return fail(ErrorKind::Missing, path(), "no record of steps");
  auto row = database_.prepare(keepsDigests_ ? "SELECT righe, impronta FROM passi WHERE ID = ?1"
                                             : "SELECT righe, NULL FROM passi WHERE ID = ?1");
  if (!row) return fail(row.error());
  row->bind(1, ID);
  const auto found = row->step();
  if (!found) return fail(found.error());
  if (!*found || row->isNull(0)) return fail(ErrorKind::Missing, path(), "no row images");
  const std::string_view images = row->bytes(0);
  // A step of an earlier release has no digest.
  const bool isWhole = row->isNull(1) || row->text(1) == bytesDigest(images);
  if (isWhole) {
    if (auto changes = unpackChanges(images)) return changes;
  }
  return fail(ErrorKind::Corrupt, path(), "the row images of step " + std::to_string(ID) + " are damaged");
}

Result<RowChanges> StepLog::changesOfWaiting(std::size_t index) const {
  if (index >= waiting_.size() || !waiting_[index].images) return fail(ErrorKind::Missing, path(), "no row images");
  return unpackChanges(*waiting_[index].images);
}

}  // namespace kv
