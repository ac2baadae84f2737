#pragma once
// What the user reads about the way to a server: the question about one whose certificate or key doesn't pass, and what
// may help where no data connection comes about.

#include "platform/ports/user_port.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// Names the server, why it doesn't pass, and what the certificate says, or the key and its type; default No.
Question trustQuestion(const UntrustedServer& server);

/// Goes after the message of transferNoData.
inline constexpr const char* otherModeHint =
    "\nProvare a cambiare la modalità di connessione (attiva/passiva)\n"
    "nelle proprietà FTP avanzate (scheda \"Internet\", pulsante \"Avanzate\")";

}  // namespace kv
