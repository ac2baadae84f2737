#include "store/shop/backup_copies.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "store/shop/compact.h"
#include "store/shop/kept_order_key.h"
#include "store/shop/load_shop.h"
#include "store/shop/numbered_backup.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

namespace chrono = std::chrono;

constexpr std::string_view nameStart = "catalog-";
constexpr std::string_view nameEnd = ".mdb";
constexpr std::string_view stampPattern = "########T######Z";
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr const char* notKept = "Impossibile conservare una copia del catalogo nella cartella '";
constexpr const char* notKeptAdvice = "'.\nVerificare lo spazio libero sul disco e i permessi della cartella.";
constexpr const char* notRestored = "Impossibile ripristinare la copia del catalogo:\n";

std::string copiesFolder(const std::string& shopFolder) { return entryPath(shopFolder, backupFolder); }

int numberIn(std::string_view digits) { return static_cast<int>(leadingNumber(digits)); }

/// "20260712T071500Z" as seconds; empty for a date or time that doesn't exist.
std::optional<std::int64_t> secondsOf(std::string_view stamp) {
  const chrono::year_month_day day(chrono::year(numberIn(stamp.substr(0, 4))),
                                   chrono::month(static_cast<unsigned>(numberIn(stamp.substr(4, 2)))),
                                   chrono::day(static_cast<unsigned>(numberIn(stamp.substr(6, 2)))));
  const int hour = numberIn(stamp.substr(9, 2));
  const int minute = numberIn(stamp.substr(11, 2));
  const int second = numberIn(stamp.substr(13, 2));
  if (!day.ok() || hour > 23 || minute > 59 || second > 60) return std::nullopt;
  const auto time = chrono::sys_days(day) + chrono::hours(hour) + chrono::minutes(minute) + chrono::seconds(second);
  return chrono::floor<chrono::seconds>(time.time_since_epoch()).count();
}

std::string stampOf(std::int64_t seconds) {
  const chrono::sys_seconds time{chrono::seconds(seconds)};
  const auto midnight = chrono::floor<chrono::days>(time);
  const chrono::year_month_day day(midnight);
  const chrono::hh_mm_ss clock(time - midnight);
  const auto two = [](auto number) { return formatNumber(static_cast<std::int64_t>(number), "00"); };
  return formatNumber(static_cast<int>(day.year()), "0000") + two(static_cast<unsigned>(day.month())) +
         two(static_cast<unsigned>(day.day())) + "T" + two(clock.hours().count()) + two(clock.minutes().count()) +
         two(clock.seconds().count()) + "Z";
}

/// A copy with its number among those of the same second.
struct ListedCopy {
  BackupCopy copy;
  int turn = 1;
};

/// What a file name says about the copy; empty when it is not the name of a copy.
std::optional<ListedCopy> parseName(const std::string& name) {
  if (!name.starts_with(nameStart) || !name.ends_with(nameEnd)) return std::nullopt;
  const std::string_view middle =
      std::string_view(name).substr(nameStart.size(), name.size() - nameStart.size() - nameEnd.size());
  const std::string_view stamp = middle.substr(0, stampPattern.size());
  const std::string_view rest = middle.substr(stamp.size());
  if (!matchesLike(stamp, stampPattern)) return std::nullopt;
  if (!rest.empty() && !matchesLike(rest, "-#") && !matchesLike(rest, "-##")) return std::nullopt;
  const auto madeAt = secondsOf(stamp);
  if (!madeAt) return std::nullopt;
  std::optional<ListedCopy> listed(std::in_place);
  listed->copy.name = name;
  listed->copy.madeAt = *madeAt;
  if (!rest.empty()) listed->turn = numberIn(rest.substr(1));
  return listed;
}

std::string freeName(const std::string& folder, std::int64_t seconds) {
  const std::string start = std::string(nameStart) + stampOf(seconds);
  std::string name = start + std::string(nameEnd);
  for (int turn = 2; fileExists(joinPath(folder, name)); ++turn) {
    name = start + "-" + std::to_string(turn) + std::string(nameEnd);
  }
  return name;
}

bool isNewest(const std::string& shopFolder, const FileStamp& catalogue) {
  const auto copies = backupCopies(shopFolder);
  if (copies.empty()) return false;
  const auto newest = fileStamp(joinPath(copiesFolder(shopFolder), copies.front().name));
  return newest && *newest == catalogue;
}

/// The name of the copy made; empty when the newest one is the same.
Result<std::string> copyPresent(const std::string& shopFolder, Clock& clock) {
  const std::string catalogue = entryPath(shopFolder, catalogueFile);
  const auto stamp = fileStamp(catalogue);
  if (!stamp) return fail(stamp.error());
  if (isNewest(shopFolder, *stamp)) return std::string();
  const std::string folder = copiesFolder(shopFolder);
  if (auto made = createFolder(folder); !made) return fail(made.error());
  removeUnfinishedFiles(folder);
  std::string name = freeName(folder, static_cast<std::int64_t>(std::floor(clock.now())));
  if (auto copied = copyFile(catalogue, joinPath(folder, name)); !copied) return fail(copied.error());
  return name;
}

/// Deletes the oldest beyond those kept. A clock that was set back makes a new copy look old; it is kept nevertheless.
void dropOldest(const std::string& shopFolder, std::string_view justMade) {
  const auto copies = backupCopies(shopFolder);
  for (std::size_t i = copies.size(), left = copies.size(); i > 0 && left > copiesKept; --i) {
    const std::string& name = copies[i - 1].name;
    if (name == justMade) continue;
    ignore(deleteFile(joinPath(copiesFolder(shopFolder), name)), "the next copy tries to delete it again");
    --left;
  }
}

/// Holds a catalogue that is about to be replaced, after undoing the unfinished change of a killed writer: if its
/// journal stayed, the engine would apply it to the new file. A damaged one can't be held; the database is closed then.
Result<Database> holdPresent(const std::string& catalogue) {
  auto held = ApriDatabase(catalogue, true);
  if (!held) {
    const bool isTaken = held.error().kind == ErrorKind::InUse || held.error().kind == ErrorKind::ReadOnly;
    return isTaken ? Result<Database>(fail(held.error())) : Result<Database>(Database());
  }
  if (auto prepared = held->prepareRename(); !prepared) return fail(prepared.error());
  return held;
}

Result<> dropJournal(const std::string& shopFolder) {
  const std::string journal = entryPath(shopFolder, catalogueFile) + "-journal";
  return fileExists(journal) ? deleteFile(journal) : Result<>{};
}

}  // namespace

std::vector<BackupCopy> backupCopies(const std::string& shopFolder) {
  const std::string folder = copiesFolder(shopFolder);
  std::vector<ListedCopy> listed;
  for (const std::string& name : listFiles(folder, "catalog-*.mdb")) {
    auto one = parseName(name);
    const auto stamp = fileStamp(joinPath(folder, name));
    if (!one || !stamp) continue;
    one->copy.savedAt = stamp->changedAt / nanosecondsPerSecond;
    one->copy.size = stamp->size;
    listed.push_back(std::move(*one));
  }
  std::ranges::sort(listed, [](const ListedCopy& a, const ListedCopy& b) {
    return a.copy.madeAt != b.copy.madeAt ? a.copy.madeAt > b.copy.madeAt : a.turn > b.turn;
  });
  std::vector<BackupCopy> copies;
  copies.reserve(listed.size());
  for (ListedCopy& one : listed) copies.push_back(std::move(one.copy));
  return copies;
}

std::vector<BackupCopy> restorableCopies(const std::string& shopFolder) {
  std::vector<BackupCopy> copies = backupCopies(shopFolder);
  for (const std::string& name : numberedBackups(shopFolder)) {
    const auto stamp = fileStamp(joinPath(shopFolder, name));
    if (!stamp) continue;
    const std::int64_t savedAt = stamp->changedAt / nanosecondsPerSecond;
    copies.push_back({name, savedAt, savedAt, stamp->size});
  }
  std::ranges::stable_sort(copies, std::ranges::greater(), &BackupCopy::madeAt);
  return copies;
}

Result<bool> keepDatedCopy(const std::string& shopFolder, Clock& clock) {
  auto catalogue = ApriDatabase(entryPath(shopFolder, catalogueFile), false);
  if (!catalogue) return fail(catalogue.error());
  // Open until the copy is made, so that no other program changes the file in the meantime.
  if (auto held = catalogue->begin(); !held) return fail(held.error());
  const auto made = copyPresent(shopFolder, clock);
  if (!made) return fail(made.error());
  if (made->empty()) return false;
  dropOldest(shopFolder, *made);
  return true;
}

std::function<void(const std::string& shopFolder)> catalogueCopier(Environment& env) {
  return [&env](const std::string& shopFolder) {
    const auto kept = keepDatedCopy(shopFolder, env.clock);
    if (kept) return;
    const ErrorKind kind = kept.error().kind;
    const bool isToldByOpening = kind == ErrorKind::InUse || kind == ErrorKind::Corrupt || kind == ErrorKind::Missing ||
                                 kind == ErrorKind::ReadOnly;
    if (!isToldByOpening) env.user.message(notKept + copiesFolder(shopFolder) + notKeptAdvice, Icon::Exclamation);
  };
}

namespace {

/// Exchanges the catalogue for the replacement that lies beside it; the one that goes becomes a dated copy, unless the
/// newest copy is the same. A failure leaves the catalogue as it is.
Result<> exchangeForCopy(const std::string& shopFolder, const CatalogueExchange& files, Clock& clock) {
  const auto stamp = fileStamp(files.catalogue);
  if (!stamp) return fail(stamp.error());
  const bool isKept = isNewest(shopFolder, *stamp);
  const std::string folder = copiesFolder(shopFolder);
  const std::string name = freeName(folder, static_cast<std::int64_t>(std::floor(clock.now())));
  if (auto made = createFolder(folder); !made) return made;
  if (auto dropped = dropJournal(shopFolder); !dropped) return dropped;
  if (auto swapped = swapInCompacted(shopFolder, renameFile); !swapped) return swapped;
  if (isKept) return deleteFile(files.previous);
  if (auto moved = renameFile(files.previous, joinPath(folder, name)); !moved) {
    ignore(renameFile(files.previous, files.catalogue), "the first failure is the one to tell");
    return moved;
  }
  dropOldest(shopFolder, name);
  return {};
}

/// Gives the replacement the key that the shop's server knows: that of the catalogue which goes, if it can be read.
void carryOrderKey(const CatalogueExchange& files) {
  auto present = Database::open(files.catalogue, OpenMode::ReadOnly);
  if (!present) return;
  const auto key = readOrderKey(*present);
  present->close();
  if (!key || key->empty()) return;
  auto replacement = Database::open(files.replacement, OpenMode::Shared);
  const auto own = replacement ? readOrderKey(*replacement) : Result<std::string>(fail(replacement.error()));
  if (!own || *own == *key) return;
  ignore(writeOrderKey(*replacement, *key), "the next publish run brings the copy's own key along");
}

}  // namespace

Result<> restoreCopy(const std::string& shopFolder, std::string_view name, Clock& clock) {
  const auto copies = restorableCopies(shopFolder);
  const auto chosen = std::ranges::find(copies, name, &BackupCopy::name);
  if (chosen == copies.end()) return fail(ErrorKind::Missing, std::string(name), "no such copy");
  const std::string dated = joinPath(copiesFolder(shopFolder), chosen->name);
  const std::string copy = fileExists(dated) ? dated : joinPath(shopFolder, chosen->name);
  if (auto looked = Database::open(copy, OpenMode::ReadOnly); !looked) return fail(looked.error());
  const CatalogueExchange files(shopFolder);
  // The replacement is complete before the catalogue is held. From then on names alone change: to open and close the
  // held file once more would give its lock up (fcntl(2), advisory record locking).
  if (auto placed = copyFile(copy, files.replacement); !placed) return placed;
  if (fileExists(files.catalogue)) carryOrderKey(files);
  if (!fileExists(files.catalogue)) {
    if (auto dropped = dropJournal(shopFolder); !dropped) return dropped;
    return renameFile(files.replacement, files.catalogue);
  }
  const auto held = holdPresent(files.catalogue);
  auto exchanged = held ? exchangeForCopy(shopFolder, files, clock) : Result<>(fail(held.error()));
  if (!exchanged) ignore(deleteFile(files.replacement), "the next compaction deletes it");
  return exchanged;
}

bool RipristinaCopia(Session& session, Environment& env, const std::string& name) {
  const std::string shopFolder = session.ShopFolder;
  releaseCatalogue(session, env);
  const auto restored = restoreCopy(shopFolder, name, env.clock);
  if (!restored) env.user.message(notRestored + failureText(restored.error()), Icon::Critical);
  ignore(RiavviaSessione(session, env), "it has told the user of any failure");
  return restored.has_value();
}

Question restoreQuestion(const BackupCopy& copy) {
  return {"Il catalogo del negozio sarà sostituito dalla copia del " + formatTime(copy.madeAt) +
              ":\nle modifiche effettuate in seguito non ne fanno parte.\n"
              "Una copia del catalogo attuale sarà conservata.\n\nRipristinare la copia?",
          Buttons::YesNo, Answer::No, Icon::Exclamation};
}

std::string formatTime(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) return {};
  const auto two = [](int number) { return formatNumber(number, "00"); };
  return two(local.tm_mday) + "/" + two(local.tm_mon + 1) + "/" + std::to_string(local.tm_year + 1900) + " " +
         two(local.tm_hour) + ":" + two(local.tm_min);
}

std::string formatSize(std::uint64_t bytes) {
  constexpr std::uint64_t kilobyte = 1024;
  constexpr std::uint64_t megabyte = kilobyte * kilobyte;
  if (bytes < megabyte) return std::to_string((bytes + kilobyte - 1) / kilobyte) + " KB";
  const auto megabytes = static_cast<double>(bytes) / static_cast<double>(megabyte);
  return replaceAll(formatNumber(megabytes, "0.0"), ".", ",") + " MB";
}

}  // namespace kv
