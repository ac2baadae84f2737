#include "platform/text/public_address.h"

#include "platform/text/text.h"

namespace kv {
namespace {

std::string_view withoutLastSlash(std::string_view text) {
  if (!text.empty() && text.back() == '/') text.remove_suffix(1);
  return text;
}

}  // namespace

std::string publicAddress(std::string_view url, std::string_view folder) {
  url = trim(url);
  std::string address = url.find("://") == std::string_view::npos ? "http://" : "";
  address.append(url);
  if (address.ends_with('/')) address.pop_back();
  folder = withoutLastSlash(trim(folder));
  if (!folder.empty() && folder.front() == '/') folder.remove_prefix(1);
  if (!folder.empty()) address.append("/").append(folder);
  return address;
}

}  // namespace kv
