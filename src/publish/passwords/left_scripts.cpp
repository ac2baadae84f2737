#include "publish/passwords/left_scripts.h"

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"
#include "publish/passwords/password_script.h"

namespace kv {
namespace {

/// A file that can't be read is a failure here: what is in it would be lost with the next writing.
Result<std::vector<LeftScript>> readLeftScripts(const std::string& shopFolder) {
  const auto text = readBytes(joinPath(shopFolder, leftScriptsFile));
  if (text) return parseLeftScripts(*text);
  if (text.error().kind == ErrorKind::Missing) return std::vector<LeftScript>();
  return fail(text.error());
}

Result<> writeLeftScripts(const std::string& shopFolder, const std::vector<LeftScript>& scripts) {
  const std::string path = joinPath(shopFolder, leftScriptsFile);
  if (scripts.empty()) {
    auto deleted = deleteFile(path);
    if (!deleted && deleted.error().kind == ErrorKind::Missing) return {};
    return deleted;
  }
  std::string text;
  for (const LeftScript& one : scripts) text += one.serverFolder + "/" + one.name + "\r\n";
  return writePrivateBytes(path, text);
}

}  // namespace

std::vector<LeftScript> parseLeftScripts(std::string_view text) {
  std::vector<LeftScript> scripts;
  for (const std::string_view line : splitLines(text)) {
    const std::size_t slash = line.rfind('/');
    if (slash == std::string_view::npos || !isPasswordScriptName(line.substr(slash + 1))) continue;
    scripts.push_back({std::string(line.substr(0, slash)), std::string(line.substr(slash + 1))});
  }
  return scripts;
}

std::vector<LeftScript> leftScripts(const std::string& shopFolder) {
  return readLeftScripts(shopFolder).value_or(std::vector<LeftScript>());
}

Result<> rememberScript(const std::string& shopFolder, const LeftScript& script) {
  auto scripts = readLeftScripts(shopFolder);
  if (!scripts) return fail(scripts.error());
  scripts->push_back(script);
  return writeLeftScripts(shopFolder, *scripts);
}

Result<> forgetScript(const std::string& shopFolder, std::string_view name) {
  auto scripts = readLeftScripts(shopFolder);
  if (!scripts) return fail(scripts.error());
  const auto sameName = [&](const LeftScript& one) { return one.name == name; };
  if (std::erase_if(*scripts, sameName) == 0) return {};
  return writeLeftScripts(shopFolder, *scripts);
}

}  // namespace kv
