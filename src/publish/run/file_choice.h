#pragma once
// Which files of a folder may be sent.

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The names of the last build's files, case folded: each file of a run is looked for in it.
using BuiltFiles = std::unordered_set<std::string>;

/// By what files are chosen.
struct FileChoice {
  bool shopOnly = true;        ///< only files of the last build's list
  std::string types = "ALL.";  ///< "ALL.", or extensions and a last dot: ".htm.css."
  BuiltFiles list;             ///< the last build's list, as CaricaListaFiles gives it
};

/// CaricaListaFiles (load the list of files): the names of kvftp.dat of a shop, case folded.
/// The list's folders are left out, so that a shop that was moved since its build can be sent. Empty when it hasn't
/// been built.
BuiltFiles CaricaListaFiles(const std::string& shopFolder);

/// CaricaFile (is the file loaded): whether a file may be sent. The cached dumps (".sc") never are.
/// path: its name, or a path that ends with it.
bool CaricaFile(std::string_view path, const FileChoice& choice);

/// Names of files of ours that a server need not keep: of those that were sent there, the ones that the last build
/// doesn't list, but for what a run would send again. SQL files, which the host deletes, and password lists, which
/// no build makes, are never among them, nor is a file of a type that isn't transferred. Without a list there are none.
/// sent: names in the server's folder, by the file table. localFolders: of the shop.
std::vector<std::string> surplusFiles(std::vector<std::string> sent, const FileChoice& choice,
                                      const std::vector<std::string>& localFolders);

/// The kind of a file by its name: 0 for what pages show, 1 for a page, 2 for an SQL file.
int sendingRank(const std::string& name);
/// The order in which visitors notice least of a publish under way: pictures and scripts, then the pages that show
/// them, the SQL files last. Within a kind the order stays.
std::vector<std::string> inSendingOrder(std::vector<std::string> names);

}  // namespace kv
