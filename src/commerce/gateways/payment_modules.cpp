#include "commerce/gateways/payment_modules.h"

#include <algorithm>
#include <optional>

#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view codeFolder = "code";
constexpr std::string_view descriptorExtension = ".kpg";
constexpr std::string_view settingsFile = "conf.ini";
constexpr std::string_view scriptExtension = ".php";

bool isEmptyName(std::string_view name) { return trim(name).empty(); }

// An entry of a listing is always inside its folder, so a name with a separator in it finds nothing.
std::optional<std::string> codeEntry(const std::string& shopFolder, std::string_view name) {
  return findEntry(entryPath(shopFolder, codeFolder), name);
}

/// Copies a folder beside its target and then gives it the target's name; an empty folder of that name gives way. One
/// without files that can't be removed (it holds folders) is filled where it is.
Result<> placeWhole(const std::string& from, const std::string& to) {
  if (folderExists(to) && !removeFolder(to)) return copyTree(from, to);
  const std::string unfinished = joinPath(folderOf(to), "." + std::string(baseName(to)) + ".kvtmp");
  if (auto copied = copyTree(from, unfinished); !copied) return copied;
  return renameFile(unfinished, to);
}

/// Takes a module's files with account data from all users but their owner: those of an older shop are open to
/// everyone.
void closeToOthers(const std::string& descriptor, const std::string& folder, const std::vector<std::string>& names) {
  constexpr std::string_view why = "a module on a medium that can't be changed works all the same";
  ignore(restrictToOwner(descriptor), why);
  for (const std::string& name : names) {
    if (!equalsIgnoringCase(name, settingsFile) && !name.ends_with(scriptExtension)) continue;
    ignore(restrictToOwner(joinPath(folder, name)), why);
  }
}

bool isPlainName(std::string_view name) { return name.find_first_of("/\\") == std::string_view::npos; }

}  // namespace

std::vector<ModuleSetting> parseModuleSettings(std::string_view text) {
  std::vector<ModuleSetting> settings;
  for (const std::string_view line : splitLines(text)) {
    const auto equals = line.find('=');
    if (equals != std::string_view::npos) settings.emplace_back(line.substr(0, equals), line.substr(equals + 1));
  }
  return settings;
}

std::vector<ModuleSetting> moduleSettings(const std::string& shopFolder, std::string_view name) {
  if (isEmptyName(name)) return {};
  const auto folder = codeEntry(shopFolder, name);
  if (!folder) return {};
  const auto file = findEntry(*folder, "conf.ini");
  if (!file) return {};
  const auto text = readText(*file);
  return text ? parseModuleSettings(*text) : std::vector<ModuleSetting>();
}

std::string ReadKpg(const std::string& shopFolder, std::string_view name) {
  if (isEmptyName(name)) return {};
  const auto file = codeEntry(shopFolder, std::string(name).append(descriptorExtension));
  if (file) {
    if (auto text = readText(*file)) return std::move(*text);
  }
  return std::string(unreadableDescriptor);
}

std::string ReadKpgAction(const std::string& shopFolder, std::string_view name, std::string_view lingua) {
  const auto settings = moduleSettings(shopFolder, name);
  const auto action = std::find_if(settings.begin(), settings.end(), [](const ModuleSetting& setting) {
    return setting.first == "php(default)" || setting.first == "action";
  });
  return action == settings.end() ? std::string() : action->second + std::string(lingua).append(scriptExtension);
}

std::vector<ModuleScript> moduleScripts(const std::string& shopFolder, std::string_view name) {
  std::vector<ModuleScript> scripts;
  const auto folder = codeEntry(shopFolder, name);
  for (const auto& [key, value] : moduleSettings(shopFolder, name)) {
    if (key != "php(default)" && key != "php" && key != "php(sel)") continue;
    const std::string file = value + std::string(scriptExtension);
    const bool usable = isPlainName(value);
    const auto entry = usable ? findEntry(*folder, file) : std::nullopt;
    scripts.push_back({value, entry ? *entry : joinPath(*folder, file), usable});
  }
  return scripts;
}

void CompletaGateway(const std::string& shopFolder, const std::string& applicationFolder) {
  const std::string shipped = joinPath(applicationFolder, "new/code");
  const std::string code = entryPath(shopFolder, codeFolder);
  for (const std::string_view name : paymentModules) {
    const auto present = codeEntry(shopFolder, name);
    const auto files = present ? readFileNames(*present, "*.*") : std::vector<std::string>();
    if (!files) continue;  // the merchant's account may be in it
    const std::string descriptor = std::string(name).append(descriptorExtension);
    if (!files->empty()) {
      closeToOthers(joinPath(code, descriptor), *present, *files);
      continue;
    }
    const std::string from = joinPath(shipped, name);
    if (!folderExists(from)) continue;
    if (!createFolders(code)) continue;
    // The descriptor first and the folder whole at the end: a module whose folder is there is complete, whenever an
    // earlier run was cut off. A descriptor that isn't shipped is no reason to leave the module out.
    ignore(copyFile(joinPath(shipped, descriptor), joinPath(code, descriptor)),
           "the build reports a missing descriptor");
    ignore(placeWhole(from, present.value_or(joinPath(code, name))), "the next opening tries again");
  }
}

}  // namespace kv
