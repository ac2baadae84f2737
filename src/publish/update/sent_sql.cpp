#include "publish/update/sent_sql.h"

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "sqlexport/export_files.h"
#include "store/schema/schema.h"
#include "store/shop/shop_folders.h"

namespace kv {

Result<> forgetSentSql(const std::string& shopFolder) {
  const std::string path = entryPath(shopFolder, transferFile);
  if (!fileExists(path)) return {};
  auto table = Database::open(path, OpenMode::Shared);
  if (!table) return fail(table.error());
  // A key is host, folder and name; its end is compared as a text, for "_" has a meaning in a pattern.
  auto rows = table->prepare("DELETE FROM file WHERE SUBSTR(nome, -LENGTH(?1)) = ?1 COLLATE NOCASE");
  if (!rows) return fail(rows.error());
  for (const std::string_view suffix : languageSuffixes) {
    const LanguageFiles files = languageFiles(ExportKind::Full, suffix, {});
    for (const std::string& name : {files.load, files.drop}) {
      const std::string end = "/" + name;
      rows->bind(1, end);
      if (auto deleted = rows->execute(); !deleted) return deleted;
    }
  }
  return {};
}

}  // namespace kv
