#include "store/exchange/primo_source.h"

#include "platform/database/database.h"
#include "platform/database/jet/jet_file.h"
#include "platform/files/files.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

Result<> copyTables(const JetFile& from, Database& to) {
  Result<> done = to.begin();
  for (const JetTableInfo& table : from.tables()) {
    if (done) done = from.copyTable(table, to);
  }
  if (done) return to.commit();
  to.rollback();
  return done;
}

}  // namespace

Result<PrimoSource> PrimoSource::open(const std::string& path) {
  const auto start = readStart(path, jetStartSize);
  if (!start || !isJetStart(*start)) return PrimoSource(path, std::nullopt);
  const auto jet = JetFile::open(path);
  if (!jet) return fail(jet.error());
  auto folder = WorkingFolder::make();
  if (!folder) return fail(folder.error());
  const std::string copy = joinPath(folder->path(), catalogueFile);
  auto database = Database::create(copy);
  if (!database) return fail(database.error());
  if (auto copied = copyTables(*jet, *database); !copied) return fail(copied.error());
  return PrimoSource(copy, std::move(*folder));
}

}  // namespace kv
