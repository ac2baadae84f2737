#include "store/catalogue/step_log.h"

#include "platform/files/file_digest.h"
#include "platform/files/files.h"
#include "store/catalogue/tree_change.h"
#include "store/shop/backup_copies.h"

namespace kv {
namespace {

constexpr std::string_view logFile = "cronologia.mdb";
constexpr const char* anAid = "the record of the steps is an aid, which no command fails for";

constexpr const char* logTables =
    "CREATE TABLE passi (ID INTEGER PRIMARY KEY AUTOINCREMENT, quando INTEGER, sessione INTEGER, nome LONGTEXT,"
    " stato INTEGER, righe LONGBLOB, impronta LONGTEXT)";

/// A file of an earlier release has no column for them.
bool hasDigests(Database& database) { return database.prepare("SELECT impronta FROM passi").has_value(); }
bool giveDigests(Database& database) {
  return database.execute("ALTER TABLE passi ADD COLUMN impronta LONGTEXT").has_value();
}

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

std::string StepLog::path() const { return entryPath(entryPath(shopFolder_, backupFolder), logFile); }

bool StepLog::open(bool create) {
  if (database_.isOpen()) return true;
  auto opened = Database::open(path(), OpenMode::Shared);
  if (opened && !isOurs(*opened)) opened = Result<Database>(fail(ErrorKind::Corrupt, path(), "no table of steps"));
  if (!opened && !create) return false;
  if (!opened) {
    const ErrorKind kind = opened.error().kind;
    if (kind != ErrorKind::Missing && kind != ErrorKind::Corrupt) return false;
    opened = makeLog(path());
  }
  if (!opened) return false;
  database_ = std::move(*opened);
  keepsDigests_ = hasDigests(database_);
  // After a loss of power the file may be damaged, and is made again then; a kill leaves it whole.
  ignore(database_.execute("PRAGMA synchronous=OFF"), anAid);
  return true;
}

void StepLog::stepDone(const std::string& name, const RowChanges& changes) {
  undone_.clear();
  std::size_t size = 0;
  for (const RowChange& change : changes) size += sizeInMemory(change);
  const bool isKept = size <= limits_.oneStep;
  done_.push_back(append(name, isKept ? packChanges(changes) : std::string(), isKept));
}

std::int64_t StepLog::append(const std::string& name, const std::string& images, bool hasImages) {
  if (!open(true)) return 0;
  if (!keepsDigests_) keepsDigests_ = giveDigests(database_);
  if (session_ == 0) {
    const auto last = database_.scalar("SELECT MAX(sessione) FROM passi");
    session_ = last ? asInteger(*last) + 1 : 1;
  }
  auto insert = database_.prepare(
      "INSERT INTO passi (quando, sessione, nome, stato, righe, impronta) VALUES (?1, ?2, ?3, 0, ?4, ?5)");
  if (!insert) return 0;
  insert->bind(1, secondsNow(clock_));
  insert->bind(2, session_);
  insert->bind(3, name);
  const Bytes bytes(images.begin(), images.end());
  const Value field = hasImages ? Value(bytes) : Value(Null{});
  insert->bind(4, field);
  const Value digest = hasImages ? Value(bytesDigest(images)) : Value(Null{});
  insert->bind(5, digest);
  if (!insert->execute()) return 0;
  const auto ID = database_.scalar("SELECT last_insert_rowid()");
  trim();
  return ID ? asInteger(*ID) : 0;
}

void StepLog::trim() {
  const auto steps = static_cast<std::int64_t>(limits_.steps), bytes = static_cast<std::int64_t>(limits_.bytes);
  ignore(runWith(database_, "DELETE FROM passi WHERE ID <= (SELECT ID FROM passi ORDER BY ID DESC LIMIT 1 OFFSET ?1)",
                 {Value(steps)}),
         anAid);
  ignore(runWith(database_,
                 "DELETE FROM passi WHERE ID <= (SELECT MAX(ID) FROM (SELECT ID, SUM(LENGTH(righe)) OVER (ORDER BY ID "
                 "DESC) AS finora FROM passi) WHERE finora > ?1) AND ID < (SELECT MAX(ID) FROM passi)",
                 {Value(bytes)}),
         anAid);
}

void StepLog::mark(std::int64_t ID, StepState state) {
  if (ID == 0 || !open(false)) return;
  ignore(runWith(database_, "UPDATE passi SET stato = ?1 WHERE ID = ?2",
                 {Value(static_cast<std::int64_t>(state)), Value(ID)}),
         anAid);
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
  if (!open(true)) return;
  ignore(runWith(database_, "UPDATE passi SET stato = 2 WHERE stato = 0 AND quando >= ?1", {Value(copyMadeAt)}), anAid);
  ignore(append(name, {}, false), "it is no step of this session");
}

std::vector<LoggedStep> StepLog::steps() {
  std::vector<LoggedStep> list;
  if (!open(false)) return list;
  auto row =
      database_.prepare("SELECT ID, quando, sessione, nome, stato, righe IS NOT NULL FROM passi ORDER BY ID DESC");
  if (!row) return list;
  for (auto found = row->step(); found && *found; found = row->step()) {
    const std::int64_t state = row->integer(4);
    list.push_back({row->integer(0), row->integer(1), row->integer(2), std::string(row->text(3)),
                    state == 0 ? StepState::Done : (state == 1 ? StepState::Undone : StepState::Left), row->flag(5)});
  }
  return list;
}

Result<RowChanges> StepLog::changesOf(std::int64_t ID) {
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

}  // namespace kv
