#include "publish/settings/server_trust.h"

namespace kv {

Question trustQuestion(const UntrustedServer& server) {
  if (server.isKey) {
    return {"La chiave del server " + server.host + " non è ancora conosciuta.\n\nTipo: " + server.reason +
                "\nImpronta: " + server.fingerprint +
                "\n\nProseguire solo se è quella indicata dal fornitore: chi è in ascolto sulla rete potrebbe essersi "
                "messo al posto del server. Si desidera ricordarla e proseguire?",
            Buttons::YesNo, Answer::No, Icon::Exclamation};
  }
  return {"Il certificato del server " + server.host + " non è valido:\n" + server.reason +
              "\n\nIntestatario: " + server.subject + "\nImpronta: " + server.fingerprint +
              "\n\nChi è in ascolto sulla rete potrebbe leggere la password. Si desidera proseguire?",
          Buttons::YesNo, Answer::No, Icon::Exclamation};
}

}  // namespace kv
