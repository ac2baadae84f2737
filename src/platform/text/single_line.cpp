#include "platform/text/single_line.h"

#include <algorithm>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view breaks = "\r\n\t\v\f";

}  // namespace

std::string singleLine(std::string_view text) {
  if (text.find_first_of(breaks) == std::string_view::npos) return std::string(text);
  std::string line;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(breaks), text.size());
    const std::string_view part = trim(text.substr(0, end));
    if (!line.empty() && !part.empty()) line += ' ';
    line += part;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return line;
}

}  // namespace kv
