#include "builder/output/site_folders.h"

#include "platform/files/files.h"

namespace kv {

namespace {

Result<> probeFolder(const std::string& folder, std::string_view probe, UserPort& user) {
  if (writeBytes(joinPath(folder, probe), "", AtLink::Replace)) return {};
  const std::string message = "La cartella di lavoro '" + folder +
                              "' non esiste: \n"
                              "selezionare un'altra cartella (oppure resettare le cartelle di lavoro) e ripetere "
                              "l'operazione";
  user.message(message, Icon::Exclamation);
  return fail(ErrorKind::Told, folder, message);
}

}  // namespace

std::string SiteFolders::onlineFile(std::string_view name) const { return joinPath(online, name); }
std::string SiteFolders::scriptFile(std::string_view name) const { return joinPath(scripts, name); }
std::string SiteFolders::shopFile(std::string_view name) const { return entryPath(shop, name); }

void sweepFolders(const SiteFolders& folders) {
  for (const std::string& folder : {folders.online, folders.scripts, folders.shop, folders.shopFile("db")}) {
    removeUnfinishedFiles(folder);
  }
}

void writeMarker(const SiteFolders& folders, const std::string& token, int languages) {
  for (const std::string& name : listFiles(folders.online, "*.sc")) {
    ignore(deleteFile(folders.onlineFile(name)), "the probe of the folder tells of one that can't be written");
  }
  ignore(writeText(folders.onlineFile(token + ".sc"), std::to_string(languages) + "\r\n"),
         "the probe of the folder tells of one that can't be written");
}

Result<> probeFolders(const SiteFolders& folders, std::string_view probe, UserPort& user) {
  if (auto probed = probeFolder(folders.online, probe, user); !probed) return probed;
  if (auto probed = probeFolder(folders.scripts, probe, user); !probed) return probed;
  ignore(deleteFile(folders.onlineFile(probe)), "an empty file left there is never listed");
  ignore(deleteFile(folders.scriptFile(probe)), "both folders may be the same");
  return {};
}

void removePools(const SiteFolders& folders) {
  const std::string root = folders.shopFile("tmp");
  for (const std::string& folder : {joinPath(root, "1"), joinPath(root, "2"), root}) {
    ignore(emptyFolder(folder), "the next build empties it");
    ignore(removeFolder(folder), "the next build uses it again");
  }
}

}  // namespace kv
