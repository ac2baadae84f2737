// The lists of one-time passwords that a bank sends, and the list of scripts that were left. Whatever the line ends,
// the repaired form has the same passwords and needs no repair; no password has a line end or is empty; a name to be
// deleted is always one of our own.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "publish/passwords/left_scripts.h"
#include "publish/passwords/password_script.h"

namespace {

void requirePasswords(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string repaired = kv::withUsualLineEnds(bytes);
  requirePasswords(!kv::hasForeignLineEnds(repaired));
  const auto passwords = kv::passwordsOf(bytes);
  requirePasswords(passwords == kv::passwordsOf(repaired));
  for (const std::string& one : passwords) {
    requirePasswords(!one.empty() && one.find_first_of("\r\n") == std::string::npos && one.front() != ' ' &&
                     one.back() != ' ');
  }
  const std::string script = kv::passwordScript({passwords, passwords}, size % 2 == 0);
  requirePasswords(script.ends_with("?>\r\n") && script.find("('stop',3)\";\r\n") != std::string::npos);
  for (const kv::LeftScript& left : kv::parseLeftScripts(bytes)) {
    requirePasswords(kv::isPasswordScriptName(left.name) && left.name.find('/') == std::string::npos);
  }
  return 0;
}
