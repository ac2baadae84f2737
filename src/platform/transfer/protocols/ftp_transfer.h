#pragma once
// FTP over a control connection of its own. For the sources of platform/transfer.

#include <memory>

#include "platform/transfer/transfer.h"

namespace kv {

/// A connection over FTP, with or without TLS.
std::unique_ptr<Transfer> makeFtpTransfer();

}  // namespace kv
