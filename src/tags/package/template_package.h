#pragma once
// Template packages: which ones are installed, what their files mean, and the two pools from which a build makes each
// language.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"
#include "store/shop/shop_folders.h"

namespace kv {

/// The packages under "<applicationFolder>/template": names of the folders that hold a modello*.htm, sorted.
std::vector<std::string> templatePackages(const std::string& applicationFolder);

/// CanCopy (can copy): whether a pool file is a plain resource, which is copied to the site unchanged.
bool CanCopy(std::string_view nome);

/// CaricaVetFile (load the showcase file): the custom showcase cell `kvan_vet.ini` of a package or pool, line ends
/// removed, trimmed; empty when there is none.
std::string CaricaVetFile(const std::string& folder);
/// The cell that a file's text holds: line ends removed, trimmed.
std::string vetCell(std::string_view fileText);

/// What the pools of one language are made from.
struct PoolSources {
  std::string shopFolder;         ///< full path; its scripts replace those of the application
  std::string applicationFolder;  ///< full path
  std::string templateFolder;     ///< full path of the package
  std::string languageCode;       ///< of the language being built; also the name of the package's folder for it
  std::string pageExtension = ".php";
  /// Applies the script patches to the code pool; not set: none.
  std::function<void(const std::string& codePool)> PatchScript;
};

/// The full paths of the pools of one language.
struct Pools {
  std::string templatePool;  ///< tmp/1 of the shop
  std::string codePool;      ///< tmp/2 of the shop
};

/// CreaPool (make the pools): empties and fills tmp/1 and tmp/2 of the shop for the language of a suffix, and inserts
/// <<1-IDlingua>> into the references between their files. A file that can't be copied is missing there; a folder that
/// can't be listed is a failure.
Result<Pools> CreaPool(const PoolSources& sources, std::string_view lingua);

}  // namespace kv
