#pragma once
// The two lists of one-time passwords that a bank hands out: which files they are, and the passwords in them. The bytes
// of a password are kept as they are.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The paths of both lists.
struct PasswordFiles {
  std::string requests;   ///< "xxxxxx.ric" or "richieste.asp"
  std::string responses;  ///< "xxxxxx.ris" or "risposte.asp"
};

/// The two lists among the files that were chosen, in any order and case; nothing unless they are exactly two, one of
/// each kind and both named in the same way.
std::optional<PasswordFiles> passwordFilesOf(const std::vector<std::string>& chosen);
/// What is said when passwordFilesOf gives nothing.
std::string passwordFilesWanted();

/// Whether a CR or LF is elsewhere than in a CR LF.
bool hasForeignLineEnds(std::string_view bytes);
/// The same lines, each closed with CR LF; a line ends at the nearest CR LF, LF or CR.
std::string withUsualLineEnds(std::string_view bytes);
/// The passwords of a list, one a line, without spaces and line ends around them; empty lines give none.
std::vector<std::string> passwordsOf(std::string_view bytes);

/// The most bytes of a list; a bank's has some thousand lines.
inline constexpr std::uint64_t mostListBytes = std::uint64_t{16} << 20;
/// The passwords of a file. One with foreign line ends is rewritten beside itself, as its name and ".tmp", read from
/// there, and the copy is deleted; where nothing can be written it is read all the same. Failures as readBytes; Other
/// with EFBIG above mostListBytes.
Result<std::vector<std::string>> readPasswordList(const std::string& path);

}  // namespace kv
