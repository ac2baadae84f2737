#pragma once
// Other programs that a test asks for an answer.

#include <array>
#include <cstdio>
#include <string>

namespace kv::test {

/// What a command writes to its standard output; after "failed: " when it ends with an error.
inline std::string outputOf(const std::string& command) {
  std::string text;
  std::FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return "cannot run";
  std::array<char, 4096> piece{};
  for (std::size_t n = 0; (n = std::fread(piece.data(), 1, piece.size(), pipe)) > 0;) text.append(piece.data(), n);
  return ::pclose(pipe) == 0 ? text : "failed: " + text;
}

}  // namespace kv::test
