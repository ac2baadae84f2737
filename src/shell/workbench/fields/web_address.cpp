#include "shell/workbench/fields/web_address.h"

#include <array>

#include "builder/values/link_naming.h"
#include "platform/text/public_address.h"
#include "platform/text/text.h"

namespace kv {
namespace {

// In this order: the longer root of a pair comes first.
constexpr std::array<std::string_view, 6> serverRoots{
    "www", "public_html", "usr/local/etc/httpd/htdocs", "usr/local/etc/httpd", "httpdocs", "htdocs"};

std::string_view withoutOuterSlashes(std::string_view text) {
  text = trim(text);
  if (text.starts_with('/')) text.remove_prefix(1);
  if (text.ends_with('/')) text.remove_suffix(1);
  return text;
}

}  // namespace

FullAddresses NormalizzaURL(const WebLocation& location) {
  if (trim(location.URL).empty()) return {};
  return {IndirizzoIndice(location.URL, location.cartella),
          publicAddress(location.URL, location.cartellaCGI) + "/index.php"};
}

bool isFolderKey(std::string_view key) {
  if (key.size() != 1) return false;
  const char c = key[0];
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '/' ||
         c == '\\';
}

std::string webFolderOf(std::string_view ftpFolder, bool serverNT) {
  const std::string_view folder = withoutOuterSlashes(ftpFolder);
  if (serverNT) return std::string(folder);
  for (const std::string_view root : serverRoots) {
    if (folder == root) return {};
    if (folder.starts_with(root) && folder[root.size()] == '/') return std::string(folder.substr(root.size() + 1));
  }
  return std::string(folder);
}

std::string suggestedWebFolder(std::string_view current, std::string_view oldFtpFolder, std::string_view newFtpFolder,
                               bool serverNT) {
  if (newFtpFolder == oldFtpFolder) return std::string(current);
  if (!trim(current).empty() && current != webFolderOf(oldFtpFolder, serverNT)) return std::string(current);
  return webFolderOf(newFtpFolder, serverNT);
}

}  // namespace kv
