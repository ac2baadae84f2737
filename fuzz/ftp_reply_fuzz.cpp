// What an FTP server says: control replies of any bytes are replies in range or refused, and lines of a listing name
// folders that could be one, or none.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/text/text.h"
#include "platform/transfer/protocols/ftp_reply.h"
#include "publish/settings/server_names.h"

namespace {

void checkReplies(std::string_view text) {
  kv::FtpReplyParser parser;
  for (const std::string_view line : kv::splitLines(text)) {
    const auto whole = parser.take(line);
    if (!whole) {
      if (whole.error().kind != kv::ErrorKind::Malformed) std::abort();
      return;
    }
    if (*whole && ((*whole)->code < 100 || (*whole)->code > 599)) std::abort();
    if (*whole && (*whole)->text.size() > text.size()) std::abort();
  }
}

void checkListing(std::string_view text) {
  for (const std::string_view line : kv::splitLines(text)) {
    const auto folder = kv::listedFolder(line);
    if (folder && (folder->empty() || *folder == "." || *folder == ".." || folder->size() > line.size())) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checkReplies(text);
  checkListing(text);
  const auto passive = kv::passivePort(text);
  const auto extended = kv::extendedPassivePort(text);
  if ((passive && *passive == 0) || (extended && *extended == 0)) std::abort();
  const auto folder = kv::quotedFolder(text);
  if (folder && folder->size() > size) std::abort();
  return 0;
}
