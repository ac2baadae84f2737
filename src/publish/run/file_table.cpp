#include "publish/run/file_table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

#include "platform/text/text.h"
#include "store/schema/schema.h"
#include "store/shop/shop_folders.h"

namespace kv {

std::string stampText(std::int64_t changedAt) {
  constexpr std::int64_t second = 1'000'000'000;
  std::int64_t fraction = changedAt % second;
  if (fraction < 0) fraction += second;
  const auto whole = static_cast<std::time_t>((changedAt - fraction) / second);
  std::tm parts{};
  if (::gmtime_r(&whole, &parts) == nullptr) return {};
  std::array<char, 32> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
  std::string digits = std::to_string(fraction);
  digits.insert(0, 9 - digits.size(), '0');
  return std::string(text.data(), size) + "." + digits;
}

bool hasSameContent(const SentFile& row, const std::string& digest) {
  return !row.stamp.empty() && !digest.empty() && row.digest == digest;
}

Result<FileTable> FileTable::open(const std::string& shopFolder, bool withDigests) {
  const std::string path = entryPath(shopFolder, transferFile);
  if (!fileExists(path)) {
    const auto tables = transferTables();
    if (auto created = createDatabase(path, tables); !created) return fail(created.error());
  }
  auto database = Database::open(path, OpenMode::Exclusive);
  if (!database) return fail(database.error());
  const auto rows = database->table("file");
  if (!rows) return fail(rows.error());
  bool hasDigests = std::any_of(rows->columns.begin(), rows->columns.end(),
                                [](const ColumnInfo& column) { return equalsIgnoringCase(column.name, "impronta"); });
  if (withDigests && !hasDigests) {
    if (auto added = database->execute("ALTER TABLE file ADD COLUMN impronta TEXT"); !added) return fail(added.error());
    hasDigests = true;
  }
  FileTable table(std::move(*database));
  table.hasDigests_ = hasDigests;
  return table;
}

FileTable::~FileTable() {
  if (database_.isOpen()) ignore(keep(), "files whose rows are lost are sent once more");
}

Result<> FileTable::begin() {
  if (group_ == 0) {
    if (auto begun = database_.begin(); !begun) return begun;
  }
  ++group_;
  return {};
}

Result<> FileTable::keep() {
  if (group_ == 0) return {};
  group_ = 0;
  return database_.commit();
}

Result<std::optional<SentFile>> FileTable::find(const std::string& key) {
  const std::string columns = hasDigests_ ? "data, peso, impronta" : "data, peso, NULL";
  auto query = database_.prepare("SELECT " + columns + " FROM file WHERE nome = ?1 AND nome = ?1 COLLATE BINARY");
  if (!query) return fail(query.error());
  query->bind(1, key);
  const auto found = query->step();
  if (!found) return fail(found.error());
  if (!*found) return std::optional<SentFile>();
  return std::optional<SentFile>(SentFile{std::string(query->text(0)), std::string(query->text(2)), query->integer(1)});
}

Result<> FileTable::write(const std::string& sql, const std::string& key, const FileStamp& stamp,
                          const std::string& digest) {
  if (auto begun = begin(); !begun) return begun;
  auto statement = database_.prepare(sql);
  if (!statement) return fail(statement.error());
  const std::string text = stampText(stamp.changedAt);
  statement->bind(1, key);
  statement->bind(2, text);
  statement->bind(3, static_cast<std::int64_t>(stamp.size));
  if (hasDigests_) statement->bind(4, digest);
  if (auto written = statement->execute(); !written) return written;
  return group_ < groupSize ? Result<>() : keep();
}

Result<> FileTable::add(const std::string& key, const FileStamp& stamp, const std::string& digest) {
  const char* const sql = hasDigests_ ? "INSERT INTO file (nome, data, peso, impronta) VALUES (?1, ?2, ?3, ?4)"
                                      : "INSERT INTO file (nome, data, peso) VALUES (?1, ?2, ?3)";
  return write(sql, key, stamp, digest);
}

Result<> FileTable::edit(const std::string& key, const FileStamp& stamp, const std::string& digest) {
  const std::string columns = hasDigests_ ? "data = ?2, peso = ?3, impronta = ?4" : "data = ?2, peso = ?3";
  return write("UPDATE file SET " + columns + " WHERE nome = ?1 AND nome = ?1 COLLATE BINARY", key, stamp, digest);
}

Result<> FileTable::doubt(std::span<const std::string> keys) {
  if (auto begun = begin(); !begun) return begun;
  auto statement = database_.prepare("UPDATE file SET data = NULL WHERE nome = ?1 AND nome = ?1 COLLATE BINARY");
  if (!statement) return fail(statement.error());
  for (const std::string& key : keys) {
    statement->bind(1, key);
    if (auto written = statement->execute(); !written) return written;
  }
  return keep();
}

Result<> FileTable::PulisciDB(const std::string& host, const std::string& folder) {
  if (auto kept = keep(); !kept) return kept;
  const std::string start = host + "/" + folder + "/";
  auto statement = database_.prepare("DELETE FROM file WHERE substr(nome, 1, length(?1)) = ?1 COLLATE BINARY");
  if (!statement) return fail(statement.error());
  statement->bind(1, start);
  return statement->execute();
}

Result<std::vector<std::string>> FileTable::names(const std::string& host, const std::string& folder) {
  const std::string start = host + "/" + folder + "/";
  auto query = database_.prepare(
      "SELECT substr(nome, length(?1) + 1) FROM file WHERE substr(nome, 1, length(?1)) = ?1 COLLATE BINARY "
      "AND instr(substr(nome, length(?1) + 1), '/') = 0 ORDER BY nome");
  if (!query) return fail(query.error());
  query->bind(1, start);
  std::vector<std::string> found;
  for (;;) {
    const auto row = query->step();
    if (!row) return fail(row.error());
    if (!*row) return found;
    found.emplace_back(query->text(0));
  }
}

Result<> FileTable::remove(const std::string& key) {
  if (auto begun = begin(); !begun) return begun;
  auto statement = database_.prepare("DELETE FROM file WHERE nome = ?1 AND nome = ?1 COLLATE BINARY");
  if (!statement) return fail(statement.error());
  statement->bind(1, key);
  if (auto written = statement->execute(); !written) return written;
  return group_ < groupSize ? Result<>() : keep();
}

}  // namespace kv
