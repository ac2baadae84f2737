#include "shell/program/window_arguments.h"

namespace kv {
namespace {

constexpr std::string_view folderOption = "--app=";

/// Reads the option at `at`, which moves on to its value when that is an argument of its own.
Result<> readOption(std::span<const std::string> arguments, std::size_t& at, WindowArguments& read) {
  const std::string& argument = arguments[at];
  if (argument == "--help" || argument == "-h") {
    read.help = true;
  } else if (argument == "--version") {
    read.version = true;
  } else if (argument.starts_with(folderOption)) {
    read.applicationFolder = argument.substr(folderOption.size());
  } else if (argument != "--app") {
    return fail(ErrorKind::Malformed, argument, "opzione sconosciuta: " + argument);
  } else if (at + 1 == arguments.size()) {
    return fail(ErrorKind::Malformed, argument, "manca la cartella dopo --app");
  } else {
    read.applicationFolder = arguments[++at];
  }
  return {};
}

}  // namespace

Result<WindowArguments> parseWindowArguments(std::span<const std::string> arguments) {
  WindowArguments read;
  bool names = false;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    const bool isOption = !names && argument.starts_with('-') && argument.size() > 1;
    if (isOption && argument == "--") {
      names = true;
    } else if (isOption) {
      if (auto done = readOption(arguments, at, read); !done) return fail(done.error());
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
