#include "platform/files/user_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/files/files.h"

namespace kv {

std::string homeFolder() {
  const char* const home = std::getenv("HOME");
  if (home != nullptr && home[0] == '/') return home;
  const passwd* const user = ::getpwuid(::geteuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

std::string userFolder(const char* variable, const std::string& below) {
  const char* const named = std::getenv(variable);
  if (named != nullptr && named[0] == '/') return named;
  return joinPath(homeFolder(), below);
}

}  // namespace kv
