#include "publish/settings/server_trust.h"

namespace kv {

Question trustQuestion(const UntrustedServer& server) {
  return {"Il certificato del server " + server.host + " non è valido:\n" + server.reason +
              "\n\nIntestatario: " + server.subject + "\nImpronta: " + server.fingerprint +
              "\n\nChi è in ascolto sulla rete potrebbe leggere la password. Si desidera proseguire?",
          Buttons::YesNo, Answer::No, Icon::Exclamation};
}

}  // namespace kv
