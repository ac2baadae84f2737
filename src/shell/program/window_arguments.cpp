#include "shell/program/window_arguments.h"

namespace kv {

Result<WindowArguments> parseWindowArguments(std::span<const std::string> arguments) {
  WindowArguments read;
  bool names = false;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (!names && argument == "--") {
      names = true;
    } else if (!names && (argument == "--help" || argument == "-h")) {
      read.help = true;
    } else if (!names && argument == "--version") {
      read.version = true;
    } else if (!names && argument == "--app") {
      if (at + 1 == arguments.size()) return fail(ErrorKind::Malformed, argument, "manca la cartella dopo --app");
      read.applicationFolder = arguments[++at];
    } else if (!names && argument.starts_with("--app=")) {
      read.applicationFolder = argument.substr(std::string_view("--app=").size());
    } else if (!names && argument.starts_with('-') && argument.size() > 1) {
      return fail(ErrorKind::Malformed, argument, "opzione sconosciuta: " + argument);
    } else if (!read.shop.empty()) {
      return fail(ErrorKind::Malformed, argument, "è possibile aprire un solo negozio");
    } else {
      read.shop = argument;
    }
  }
  return read;
}

std::string windowUsage() {
  return "Uso: korvane [--app CARTELLA] [NEGOZIO]\n\n"
         "Apre il negozio indicato, altrimenti l'ultimo aperto.\n\n"
         "  --app CARTELLA   cartella dell'applicazione; altrimenti quella dell'utente\n"
         "  --help           mostra questo testo\n"
         "  --version        mostra la versione\n";
}

}  // namespace kv
