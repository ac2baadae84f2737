#include "publish/settings/publish_options.h"

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"

namespace kv {

bool isBuilt(const std::string& shopFolder) { return readStart(entryPath(shopFolder, "kvftp.dat"), 1).has_value(); }

// Every run begins a log of its first folder.
bool isFirstPublish(const std::string& shopFolder) {
  return !fileExists(entryPath(shopFolder, "kvftp1.log")) && !fileExists(entryPath(shopFolder, "kvftp.ini"));
}

PublishOptions PublishOptions::of(const PublishSettings& settings, bool canUseIncremental) {
  PublishOptions options;
  options.settings = settings;
  options.filtersTypes = !equalsIgnoringCase(settings.types, allTypes);
  options.types = groupsOf(settings.types);
  options.canUseIncremental = canUseIncremental;
  if (!canUseIncremental) options.settings.allRecords = true;
  return options;
}

void PublishOptions::reset() {
  settings.onlyModified = settings.onlyShopFiles = true;
  filtersTypes = false;
  types.fill(true);
  settings.disabled = false;
  settings.allRecords = true;
}

void PublishOptions::recommend() {
  settings.safeUpload = settings.contentCheck = settings.retry = true;
  settings.connections = recommendedConnections;
}

PublishSettings PublishOptions::chosen() const {
  PublishSettings result = settings;
  result.types = filtersTypes ? typesOf(types) : std::string(allTypes);
  return result;
}

std::string optionsFailure(const Error& error) { return "Errore: " + failureText(error); }

}  // namespace kv
