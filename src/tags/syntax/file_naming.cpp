#include "tags/syntax/file_naming.h"

#include "platform/text/text.h"

namespace kv {

std::string FileLingua(std::string_view file, std::string_view lingua) {
  std::string result(file);
  if (const std::size_t dot = result.rfind('.'); dot != std::string::npos) result.insert(dot, lingua);
  return result;
}

std::string PutExt(std::string_view file, std::string_view pageExtension) {
  const bool renames = !pageExtension.empty() && !equalsIgnoringCase(pageExtension, ".htm");
  if (!renames || !endsWithIgnoringCase(file, ".htm") || matchesLike(file, "results*.htm")) return std::string(file);
  std::string result(file.substr(0, file.rfind('.')));
  return result.append(pageExtension);
}

}  // namespace kv
