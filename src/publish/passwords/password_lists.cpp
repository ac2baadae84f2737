#include "publish/passwords/password_lists.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view aroundPasswords = " \r\n";

bool isRequestList(const std::string& path) { return endsWithIgnoringCase(path, ".ric"); }
bool isResponseList(const std::string& path) { return endsWithIgnoringCase(path, ".ris"); }
bool isRequestPage(const std::string& path) { return equalsIgnoringCase(baseName(path), "richieste.asp"); }
bool isResponsePage(const std::string& path) { return equalsIgnoringCase(baseName(path), "risposte.asp"); }

std::string_view withoutEnds(std::string_view line) {
  const std::size_t first = line.find_first_not_of(aroundPasswords);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(aroundPasswords) - first + 1);
}

}  // namespace

std::optional<PasswordFiles> passwordFilesOf(const std::vector<std::string>& chosen) {
  using Kind = bool (*)(const std::string&);
  constexpr std::array<std::pair<Kind, Kind>, 2> pairs{
      {{isRequestList, isResponseList}, {isRequestPage, isResponsePage}}};
  if (chosen.size() != 2) return std::nullopt;
  for (const auto& [requests, responses] : pairs) {
    if (requests(chosen[0]) && responses(chosen[1])) return PasswordFiles{chosen[0], chosen[1]};
    if (requests(chosen[1]) && responses(chosen[0])) return PasswordFiles{chosen[1], chosen[0]};
  }
  return std::nullopt;
}

std::string passwordFilesWanted() {
  return "E' necessario selezionare due file: \"xxxxxx.ric\" e \"xxxxxx.ris\",\n"
         "oppure \"richieste.asp\" e \"risposte.asp\".\n"
         "Per selezionare più file tenere premuto il tasto CTRL.";
}

bool hasForeignLineEnds(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\n') return true;
    if (bytes[i] != '\r') continue;
    if (i + 1 == bytes.size() || bytes[i + 1] != '\n') return true;
    ++i;
  }
  return false;
}

std::string withUsualLineEnds(std::string_view bytes) {
  std::string text;
  for (const std::string_view line : splitLines(bytes)) text.append(line).append("\r\n");
  return text;
}

std::vector<std::string> passwordsOf(std::string_view bytes) {
  std::vector<std::string> passwords;
  for (const std::string_view line : splitLines(bytes)) {
    if (const std::string_view password = withoutEnds(line); !password.empty()) passwords.emplace_back(password);
  }
  return passwords;
}

Result<std::vector<std::string>> readPasswordList(const std::string& path) {
  if (const auto stamp = fileStamp(path); stamp && stamp->size > mostListBytes) {
    return fail(ErrorKind::Other, path, "Una lista di password non supera 16 MB", EFBIG);
  }
  auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  if (!hasForeignLineEnds(*bytes)) return passwordsOf(*bytes);
  const std::string repaired = path + ".tmp";
  const std::string lines = withUsualLineEnds(*bytes);
  const bool written = writePrivateBytes(repaired, lines).has_value();
  const auto read = written ? readBytes(repaired) : Result<std::string>(lines);
  ignore(deleteFile(repaired), "it isn't there where nothing can be written");
  if (!read) return fail(read.error());
  return passwordsOf(*read);
}

}  // namespace kv
