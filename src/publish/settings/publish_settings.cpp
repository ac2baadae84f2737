#include "publish/settings/publish_settings.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "publish/settings/key_lines.h"
#include "store/shop/session.h"

namespace kv {
namespace {

constexpr std::string_view separatorSetting = "QS2";
constexpr std::string_view advancedSeparator = ";\\g";
constexpr int shortestSilence = 5, longestSilence = 3600;
constexpr int mostSendingConnections = 4;

/// A whole number within limits; what is no number leaves the target as it is.
void readPublishNumber(std::string_view value, int least, int most, int& target) {
  const auto number = toNumber(value);
  if (number) target = static_cast<int>(std::clamp(*number, double{0} + least, double{0} + most));
}

void readPublishValue(const KeyLine& line, PublishSettings& settings) {
  const std::string_view value = line.value;
  struct Flag {
    std::string_view key;
    bool PublishSettings::*field;
    bool (*read)(std::string_view);
  };
  constexpr auto unlessZero = [](std::string_view text) { return !isZero(text); };
  static constexpr Flag flags[] = {{"MODE:", &PublishSettings::onlyModified, unlessZero},
                                   {"SHOP:", &PublishSettings::onlyShopFiles, unlessZero},
                                   {"OPDB:", &PublishSettings::allRecords, unlessZero},
                                   {"DISA:", &PublishSettings::disabled, isOn},
                                   {"OPTM:", &PublishSettings::optimised, isOn},
                                   {"LOCK:", &PublishSettings::lockTables, unlessZero},
                                   {"SAFE:", &PublishSettings::safeUpload, isOn},
                                   {"HASH:", &PublishSettings::contentCheck, isOn},
                                   {"RETR:", &PublishSettings::retry, isOn},
                                   {"PULI:", &PublishSettings::cleanUp, isOn}};
  for (const Flag& flag : flags) {
    if (line.key == flag.key) settings.*flag.field = flag.read(value);
  }
  if (line.key == "TYPE:") settings.types = value;
  if (line.key == "CONN:") readPublishNumber(value, 1, mostSendingConnections, settings.connections);
  if (line.key == "WAIT:") readPublishNumber(value, shortestSilence, longestSilence, settings.silenceSeconds);
}

void addLaterPublishKeys(const PublishSettings& settings, std::vector<KeyLine>& lines) {
  const PublishSettings untouched;
  const auto addFlag = [&](const char* key, bool on) {
    if (on) lines.push_back({key, oneOrZero(on)});
  };
  const auto addNumber = [&](const char* key, int number, int usual) {
    if (number != usual) lines.push_back({key, std::to_string(number)});
  };
  addFlag("SAFE:", settings.safeUpload);
  addFlag("HASH:", settings.contentCheck);
  addFlag("RETR:", settings.retry);
  addNumber("CONN:", settings.connections, untouched.connections);
  addFlag("PULI:", settings.cleanUp);
  addNumber("WAIT:", settings.silenceSeconds, untouched.silenceSeconds);
}

std::string publishSettingsPath(const std::string& shopFolder) { return entryPath(shopFolder, publishSettingsFile); }

}  // namespace

PublishSettings parsePublishSettings(std::string_view text) {
  PublishSettings settings;
  for (const KeyLine& line : parseKeyLines(text)) readPublishValue(line, settings);
  return settings;
}

std::string publishSettingsText(const PublishSettings& settings) {
  std::vector<KeyLine> lines{{"MODE:", oneOrZero(settings.onlyModified)},
                             {"SHOP:", oneOrZero(settings.onlyShopFiles)},
                             {"TYPE:", settings.types},
                             {"OPDB:", minusOneOrZero(settings.allRecords)},
                             {"DISA:", minusOneOrZero(settings.disabled)},
                             {"OPTM:", oneOrZero(settings.optimised)},
                             {"LOCK:", minusOneOrZero(settings.lockTables)}};
  addLaterPublishKeys(settings, lines);
  return keyLinesText(lines);
}

PublishSettings readPublishSettings(const std::string& shopFolder) {
  const auto text = readText(publishSettingsPath(shopFolder));
  return text ? parsePublishSettings(*text) : PublishSettings();
}

Result<> writePublishSettings(const std::string& shopFolder, const PublishSettings& settings) {
  const std::string path = publishSettingsPath(shopFolder);
  if (settings != PublishSettings()) return writeText(path, publishSettingsText(settings));
  auto deleted = deleteFile(path);
  if (!deleted && deleted.error().kind == ErrorKind::Missing) return {};
  return deleted;
}

PublishSettings AvanzateTrasf(const std::string& shopFolder, Settings& settings, LockStatements& lock) {
  PublishSettings choices = readPublishSettings(shopFolder);
  readLockOption(shopFolder, lock);
  const std::string_view separator = choices.optimised ? advancedSeparator : std::string_view();
  if (settings.get(settingsSection, separatorSetting) != separator) {
    ignore(settings.set(settingsSection, separatorSetting, separator), "the export goes by the old one, as its mark");
  }
  return choices;
}

std::string typesOf(const std::array<bool, typeGroups.size()>& chosen) {
  std::string types;
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    if (chosen[i]) types += typeGroups[i];
  }
  return types + ".";
}

std::array<bool, typeGroups.size()> groupsOf(std::string_view types) {
  std::array<bool, typeGroups.size()> chosen{};
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    const std::string group = std::string(typeGroups[i]) + ".";
    chosen[i] = equalsIgnoringCase(types, allTypes) || findIgnoringCase(types, group) != std::string_view::npos;
  }
  return chosen;
}

bool acceptsType(std::string_view types, std::string_view fileName) {
  if (equalsIgnoringCase(types, allTypes)) return true;
  const std::size_t dot = fileName.rfind('.');
  if (dot == std::string_view::npos) return false;
  // A name that ends with its dot has an empty extension, to which every list says yes.
  const std::string_view extension = dot + 1 == fileName.size() ? std::string_view() : fileName.substr(dot);
  return findIgnoringCase(types, std::string(extension) + ".") != std::string_view::npos;
}

}  // namespace kv
