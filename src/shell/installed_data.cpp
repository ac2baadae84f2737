#include "shell/installed_data.h"

#include <filesystem>
#include <system_error>

#include "platform/application_folder.h"
#include "platform/files.h"

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

std::string absolutePath(const std::string& path) {
  if (path.empty()) return path;
  std::error_code error;
  const auto full = std::filesystem::absolute(path, error);
  std::string text = (error ? std::filesystem::path(path) : full).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

}  // namespace kv
