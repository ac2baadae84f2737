#pragma once
// Replies of an FTP server: from lines to a code and a text, and what single replies hold.
// Source: RFC 959, section 4.2; RFC 2428 for the extended passive reply.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// One whole reply.
struct FtpReply {
  int code = 0;      ///< 100 to 599
  std::string text;  ///< its lines without codes, "\n" between them; bytes as they came

  // By the first digit: another reply follows; done; more is wanted; refused.
  bool isPreliminary() const { return code < 200; }
  bool isDone() const { return code >= 200 && code < 300; }
  bool wantsMore() const { return code >= 300 && code < 400; }
  bool isRefusal() const { return code >= 400; }
};

/// Puts the lines of a reply together.
class FtpReplyParser {
 public:
  /// The most bytes that a reply may have, of all its lines.
  static constexpr std::size_t longest = std::size_t{256} * 1024;
  /// Takes the next line, without CR LF. The reply, once it is whole. Malformed, quoting the start of the line, when a
  /// reply does not begin with three digits from 100 to 599 and a space, a hyphen or the end, or becomes too long.
  Result<std::optional<FtpReply>> take(std::string_view line);

 private:
  FtpReply open_;  // the reply of several lines that isn't whole yet; code 0 when there is none
};

/// The port of "227 Entering Passive Mode (127,0,0,1,4,1)". Its address is not used: in a private network it is often
/// wrong, and a server could have any other machine connected to with it. Malformed when there are no six numbers up to
/// 255, or the port is 0.
Result<std::uint16_t> passivePort(std::string_view text);
/// The port of "229 Entering Extended Passive Mode (|||1025|)". Malformed when there is none.
Result<std::uint16_t> extendedPassivePort(std::string_view text);
/// The folder of "257 "/a ""b""" created": a doubled quote is one. Malformed when no quoted text is there.
Result<std::string> quotedFolder(std::string_view text);

}  // namespace kv
