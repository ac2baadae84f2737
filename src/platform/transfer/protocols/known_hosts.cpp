#include "platform/transfer/protocols/known_hosts.h"

#include <openssl/evp.h>

#include <array>
#include <sstream>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/files/settings.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view usualSshPort = "22";
constexpr std::size_t lengthBytes = 4;

std::string inBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // the library adds a null
  const int size =
      EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                      reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

bool namesHost(std::string_view hosts, std::string_view host) {
  for (;;) {
    const std::size_t comma = hosts.find(',');
    if (equalsIgnoringCase(hosts.substr(0, comma), host)) return true;
    if (comma == std::string_view::npos) return false;
    hosts.remove_prefix(comma + 1);
  }
}

}  // namespace

std::string HostKey::type() const {
  if (bytes_.size() < lengthBytes) return {};
  std::size_t length = 0;
  for (std::size_t i = 0; i < lengthBytes; ++i) length = length << 8U | static_cast<unsigned char>(bytes_[i]);
  return length > bytes_.size() - lengthBytes ? std::string() : bytes_.substr(lengthBytes, length);
}

std::string HostKey::base64() const { return inBase64(bytes_); }

std::string HostKey::fingerprint() const {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (EVP_Digest(bytes_.data(), bytes_.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1) return {};
  std::string text = inBase64({reinterpret_cast<const char*>(digest.data()), size});
  while (text.ends_with('=')) text.pop_back();
  return "SHA256:" + text;
}

std::string knownHostName(std::string_view host, std::string_view port) {
  const std::string name = foldCase(host);
  return port == usualSshPort ? name : "[" + name + "]:" + std::string(port);
}

std::vector<KnownHosts::Line> KnownHosts::linesOf(std::string_view text) {
  std::vector<Line> lines;
  for (const std::string_view one : splitLines(text)) {
    if (one.starts_with('#') || one.starts_with('@') || one.starts_with('|')) continue;
    std::istringstream words{std::string(one)};
    Line line;
    if (words >> line.hosts >> line.type >> line.base64) lines.push_back(std::move(line));
  }
  return lines;
}

Result<KnownHosts> KnownHosts::read(std::string path) {
  KnownHosts known;
  known.path_ = std::move(path);
  auto text = readBytes(known.path_);
  if (!text && text.error().kind != ErrorKind::Missing) return fail(text.error());
  if (text) known.text_ = std::move(*text);
  known.lines_ = linesOf(known.text_);
  return known;
}

std::vector<const KnownHosts::Line*> KnownHosts::linesAbout(const std::string& host) const {
  std::vector<const Line*> found;
  for (const Line& line : lines_) {
    if (namesHost(line.hosts, host)) found.push_back(&line);
  }
  return found;
}

KnownHosts::Standing KnownHosts::standingOf(const std::string& host, const HostKey& key) const {
  const auto lines = linesAbout(host);
  for (const Line* line : lines) {
    if (line->type == key.type() && line->base64 == key.base64()) return Standing::Known;
  }
  return lines.empty() ? Standing::Unknown : Standing::Changed;
}

std::vector<std::string> KnownHosts::typesOf(const std::string& host) const {
  std::vector<std::string> types;
  for (const Line* line : linesAbout(host)) types.push_back(line->type);
  return types;
}

Result<> KnownHosts::remember(const std::string& host, const HostKey& key) {
  std::string text = text_;
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  text += host + " " + key.type() + " " + key.base64() + "\n";
  if (auto made = createFolders(std::string(folderOf(path_))); !made) return made;
  if (auto written = writePrivateBytes(path_, text); !written) return written;
  text_ = std::move(text);
  lines_ = linesOf(text_);
  return {};
}

std::string userKnownHostsPath() { return joinPath(folderOf(userSettingsPath()), "known_hosts"); }

}  // namespace kv
