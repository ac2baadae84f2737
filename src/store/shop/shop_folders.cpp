#include "store/shop/shop_folders.h"

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

std::string withoutTrailingSeparator(std::string_view path) {
  while (path.size() > 1 && path.back() == '/' && !isRoot(path)) path.remove_suffix(1);
  return std::string(path);
}

bool isApplicationFolder(std::string_view folder, std::string_view applicationFolder) {
  return equalsIgnoringCase(withoutTrailingSeparator(folder), withoutTrailingSeparator(applicationFolder));
}

std::string ScegliCartella(UserPort& user, const std::string& prompt, const std::string& initial) {
  return withoutTrailingSeparator(user.chooseFolder(prompt, initial));
}

Result<Database> ApriDatabase(const std::string& path, bool exclusive) {
  auto opened = Database::open(path, exclusive ? OpenMode::Exclusive : OpenMode::Shared);
  // Reading the version of a shop that was copied from a read-only medium must succeed, so that loading it can offer
  // the repair.
  if (!opened && !exclusive && opened.error().kind == ErrorKind::ReadOnly)
    return Database::open(path, OpenMode::ReadOnly);
  return opened;
}

Result<> CopiaAlbero(const std::string& from, const std::string& to) {
  if (!folderExists(from)) return fail(ErrorKind::Missing, from, "no such folder");
  if (auto made = createFolders(to); !made) return made;
  return copyTree(from, to);
}

Result<> SvuotaCartella(const std::string& path) { return emptyFolder(path); }

Result<int> catalogueVersion(Database& catalogue) {
  auto statement = catalogue.prepare("SELECT versione FROM generale");
  if (!statement) return fail(statement.error());
  auto row = statement->step();
  if (!row) return fail(row.error());
  if (!*row) return fail(ErrorKind::Corrupt, "generale", "no row");
  return static_cast<int>(statement->integer(0));
}

std::string installedTemplate(const std::string& applicationFolder, const std::string& name) {
  const std::string folder = entryPath(applicationFolder, templateFolder);
  const std::string package = entryPath(folder, name);
  return joinPath(baseName(folder), baseName(package));
}

std::vector<std::string> pageModels(const std::string& packageFolder) {
  std::vector<std::string> models = listFiles(packageFolder, "modello*.htm");
  for (std::string& name : models) name.erase(name.rfind('.'));
  return models;
}

}  // namespace kv
