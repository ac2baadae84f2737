#pragma once
// The question about a server whose certificate or key doesn't pass.

#include "platform/ports/user_port.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// Names the server, why it doesn't pass, and what the certificate says; default No.
Question trustQuestion(const UntrustedServer& server);

}  // namespace kv
