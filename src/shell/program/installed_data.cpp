#include "shell/program/installed_data.h"

#include <filesystem>
#include <system_error>

#include "platform/files/application_folder.h"
#include "platform/files/files.h"

namespace kv {

std::string programFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : program.parent_path().string();
}

Result<std::string> installedData(const std::string& programs) {
  if (!programs.empty()) {
    const std::string beside = absolutePath(joinPath(programs, "../share/korvane"));
    if (folderExists(beside)) return beside;
  }
  if (folderExists(KORVANE_DATA_DIR)) return std::string(KORVANE_DATA_DIR);
  return fail(ErrorKind::Missing, KORVANE_DATA_DIR, "no installed data");
}

Result<std::string> findApplicationFolder(const std::string& chosen, const std::string& programs) {
  if (!chosen.empty()) {
    std::string folder = absolutePath(chosen);
    if (!folderExists(folder)) return fail(ErrorKind::Missing, folder, "no such folder");
    return folder;
  }
  const auto installed = installedData(programs);
  if (!installed) return fail(installed.error());
  std::string folder = userApplicationFolder();
  const auto update = prepareApplicationFolder(*installed, folder);
  if (!update) return fail(update.error());
  return folder;
}

}  // namespace kv
