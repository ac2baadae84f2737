#pragma once
// SFTP through the port of a transfer. For the sources of platform/transfer.

#include <memory>

#include "platform/transfer/transfer.h"

namespace kv {

/// A connection over SFTP. It has no current folder of its own, so that the object keeps one; "SITE chmod", "MDTM" and
/// "NOOP" are the raw commands that it has something for. A server may refuse to rename over a file that is there.
std::unique_ptr<Transfer> makeSftpTransfer();

}  // namespace kv
