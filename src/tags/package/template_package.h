#pragma once
// Template packages: which there are, what their files mean, and the two pools from which each language of a build is
// made.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"
#include "store/shop/shop_folders.h"

namespace kv {

/// The packages under "<applicationFolder>/template": names of the folders that hold a modello*.htm, sorted.
std::vector<std::string> templatePackages(const std::string& applicationFolder);

/// CanCopy: whether a pool file is a plain resource, to be copied as it is.
bool CanCopy(std::string_view nome);

/// CaricaVetFile: the custom showcase cell `kvan_vet.ini` of a package or pool, line ends removed, trimmed; empty when
/// there is none.
std::string CaricaVetFile(const std::string& folder);
/// The cell that a file's text holds: line ends removed, trimmed.
std::string vetCell(std::string_view fileText);

/// What the pools of one language are made from.
struct PoolSources {
  std::string shopFolder;
  std::string applicationFolder;
  std::string templateFolder;  ///< full path of the package
  std::string languageCode;    ///< of the language being built: the name of the package's language folder
  std::string pageExtension = ".php";
  /// Applies the script patches to the code pool; not set: none.
  std::function<void(const std::string& codePool)> PatchScript;
};

struct Pools {
  std::string templatePool;  ///< tmp/1 of the shop
  std::string codePool;      ///< tmp/2 of the shop
};

/// CreaPool: empties and fills tmp/1 and tmp/2 of the shop for the language of a suffix, and inserts <<1-IDlingua>>
/// into the references between their files. A file that can't be copied is simply not there.
Pools CreaPool(const PoolSources& sources, std::string_view lingua);

}  // namespace kv
