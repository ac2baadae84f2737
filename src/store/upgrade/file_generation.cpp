#include <array>
#include <span>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"
#include "store/shop/backup_copies.h"
#include "store/shop/shop_folders.h"
#include "store/upgrade/shop_upgrade.h"

namespace kv {
namespace {

constexpr std::string_view generationFile = "ve.dat";

/// The files that a generation has renewed, below `code`.
struct Generation {
  std::string_view name;
  std::span<const std::string_view> files;
};

constexpr std::array<std::string_view, 4> firstFiles{"Cilme/form.kpg", "Contrassegno/form.kpg",
                                                     "Pagamento anticipato/form.kpg", "Paypal/form.kpg"};
constexpr std::array<std::string_view, 2> secondFiles{"Cilme/newform.kpg", "Bankpass/bpurlms.new"};
constexpr std::array<std::string_view, 8> thirdFiles{
    "SysPay.kpg",      "SysPay/syspay.new", "SysPay/syspayurlms.php", "SysPay/syspayrec.php", "SysPay/syspayback.php",
    "SysPay/form.kpg", "SysPay/conf.ini",   "Omnipay/omniend.new"};
constexpr std::array<Generation, 3> generations{{{"1.0.4", firstFiles}, {"1.0.6", secondFiles}, {"1.0.8", thirdFiles}}};

/// The first line of the stamp, nothing taken from its ends; below every generation when it can't be read.
std::string presentGeneration(const std::string& code) {
  const auto stamp = readBytes(entryPath(code, generationFile));
  if (!stamp || stamp->empty()) return {};
  return std::string(splitLines(*stamp).front());
}

/// Keeps a file in `backup` under its name, or that name with a number where another file has it.
Result<> keepFile(const std::string& file, std::string_view name, const std::string& shopFolder, ShopUpgrade& upgrade) {
  const auto bytes = readBytes(file);
  if (!bytes) return fail(bytes.error());
  const std::string wanted = joinPath(entryPath(shopFolder, backupFolder), joinPath("code", name));
  if (auto made = createFolders(std::string(folderOf(wanted))); !made) return made;
  std::string path = wanted;
  for (int number = 2; fileExists(path) && readBytes(path).value_or("") != *bytes; ++number) {
    path = wanted + "-" + std::to_string(number);
  }
  if (auto written = writePrivateBytes(path, *bytes); !written) return written;
  upgrade.kept.push_back(path);
  return {};
}

Result<> renewFile(const std::string& shopFolder, const std::string& applicationFolder, std::string_view name,
                   ShopUpgrade& upgrade) {
  const std::string from = joinPath(joinPath(applicationFolder, "new/code"), name);
  const std::string to = entryPath(shopFolder, joinPath("code", name));
  if (fileExists(to) && readBytes(to).value_or("") != readBytes(from).value_or("")) {
    // Account data may be in it, which no one else has.
    if (auto kept = keepFile(to, name, shopFolder, upgrade); !kept) return kept;
  }
  if (auto copied = copyFile(from, to); !copied) return copied;
  upgrade.files.emplace_back(name);
  return {};
}

/// What was renewed after a generation; nothing in the application folder itself.
std::vector<std::string_view> filesSince(const std::string& present, bool isApplication) {
  std::vector<std::string_view> files;
  for (const Generation& generation : generations) {
    if (isApplication || present >= generation.name) continue;
    files.insert(files.end(), generation.files.begin(), generation.files.end());
  }
  return files;
}

}  // namespace

void planFiles(const std::string& shopFolder, const std::string& applicationFolder, ShopUpgrade& upgrade) {
  const std::string present = presentGeneration(entryPath(shopFolder, "code"));
  if (present >= currentGeneration) return;
  for (const std::string_view name : filesSince(present, isApplicationFolder(shopFolder, applicationFolder))) {
    upgrade.files.emplace_back(name);
  }
  upgrade.stamped = true;
}

Result<> upgradeFiles(const std::string& shopFolder, const std::string& applicationFolder, ShopUpgrade& upgrade) {
  const std::string code = entryPath(shopFolder, "code");
  const std::string present = presentGeneration(code);
  if (present >= currentGeneration) return {};
  for (const std::string_view name : filesSince(present, isApplicationFolder(shopFolder, applicationFolder))) {
    if (auto renewed = renewFile(shopFolder, applicationFolder, name, upgrade); !renewed) return renewed;
  }
  if (auto written = writeBytes(entryPath(code, generationFile), std::string(currentGeneration) + "\r\n"); !written) {
    return written;
  }
  upgrade.stamped = true;
  return {};
}

}  // namespace kv
