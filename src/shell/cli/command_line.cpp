#include "shell/cli/command_line.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace kv {
namespace {

constexpr std::array<std::pair<std::string_view, CliCommand>, 5> commands{{{"build", CliCommand::Build},
                                                                           {"check", CliCommand::Check},
                                                                           {"export-sql", CliCommand::ExportSql},
                                                                           {"new", CliCommand::New},
                                                                           {"publish", CliCommand::Publish}}};
constexpr std::array<std::pair<std::string_view, Answer>, 4> answers{
    {{"yes", Answer::Yes}, {"no", Answer::No}, {"ok", Answer::Ok}, {"cancel", Answer::Cancel}}};

template <class Value, std::size_t size>
std::optional<Value> find(const std::array<std::pair<std::string_view, Value>, size>& table, std::string_view name) {
  for (const auto& [key, value] : table) {
    if (key == name) return value;
  }
  return std::nullopt;
}

tl::unexpected<Error> wrong(std::string what) { return fail(ErrorKind::Malformed, "korvane-cli", std::move(what)); }

/// One walk along the arguments.
class Parser {
 public:
  explicit Parser(std::span<const std::string> arguments) : rest_(arguments) {}

  Result<CommandLine> parse() {
    while (!rest_.empty() && !ended_) {
      if (auto done = option(next()); !done) return fail(done.error());
    }
    if (ended_) return line_;
    return finish();
  }

 private:
  std::string next() {
    std::string argument = rest_.front();
    rest_ = rest_.subspan(1);
    return argument;
  }

  Result<> option(const std::string& argument) {
    if (namesOnly_ || argument.size() < 2 || argument.front() != '-') {
      names_.push_back(argument);
      return {};
    }
    if (argument == "--") {
      namesOnly_ = true;
      return {};
    }
    if (argument == "--help" || argument == "-h") return end(CliCommand::Help);
    if (argument == "--version") return end(CliCommand::Version);
    if (argument == "--dry-run") return flag(line_.dryRun);
    if (argument == "--all") return flag(line_.all);
    return valued(argument);
  }

  static Result<> flag(bool& on) {
    on = true;
    return {};
  }

  Result<> end(CliCommand command) {
    line_ = {};
    line_.command = command;
    ended_ = true;
    return {};
  }

  /// An option with a value, after "=" or in the next argument.
  Result<> valued(const std::string& argument) {
    const auto equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    if (name != "--app" && name != "--answer") return wrong("opzione sconosciuta: " + argument);
    if (equals == std::string::npos && rest_.empty()) return wrong("manca il valore di " + name);
    const std::string value = equals == std::string::npos ? next() : argument.substr(equals + 1);
    if (value.empty()) return wrong("manca il valore di " + name);
    if (name == "--app") {
      line_.applicationFolder = value;
      return {};
    }
    const auto answer = find(answers, value);
    if (!answer) return wrong("risposta sconosciuta: " + value + " (yes, no, ok, cancel)");
    line_.answers.push_back(*answer);
    return {};
  }

  Result<CommandLine> finish() {
    if (names_.empty()) return wrong("manca il comando");
    const auto command = find(commands, names_[0]);
    if (!command) return wrong("comando sconosciuto: " + names_[0]);
    if (names_.size() < 2 || names_[1].empty()) return wrong("manca la cartella del negozio");
    if (names_.size() > 2) return wrong("argomento di troppo: " + names_[2]);
    if (*command != CliCommand::Publish && (line_.dryRun || line_.all)) {
      return wrong("--dry-run e --all valgono solo per publish");
    }
    line_.command = *command;
    line_.shop = names_[1];
    return line_;
  }

  std::span<const std::string> rest_;
  std::vector<std::string> names_;
  CommandLine line_;
  bool namesOnly_ = false;
  bool ended_ = false;
};

}  // namespace

Result<CommandLine> parseCommandLine(std::span<const std::string> arguments) { return Parser(arguments).parse(); }

std::string usageText() {
  return "Uso: korvane-cli [opzioni] COMANDO NEGOZIO\n"
         "\n"
         "Comandi:\n"
         "  build NEGOZIO       costruisce il sito del negozio contenuto nella cartella NEGOZIO\n"
         "  check NEGOZIO       apre il negozio e dice che cosa non va, senza costruirlo\n"
         "  export-sql NEGOZIO  scrive i file SQL del negozio costruito nella cartella online\n"
         "  new NEGOZIO         crea un nuovo negozio nella cartella NEGOZIO\n"
         "  publish NEGOZIO     mette online il negozio costruito, con le impostazioni del negozio\n"
         "\n"
         "Opzioni:\n"
         "  --app CARTELLA  cartella dell'applicazione (altrimenti quella dell'utente)\n"
         "  --answer yes|no|ok|cancel\n"
         "                  risposta alle domande; ripetibile: la prima risposta va alla prima domanda,\n"
         "                  l'ultima vale anche per tutte le successive. \"yes\" e \"ok\" confermano,\n"
         "                  \"no\" e \"cancel\" rifiutano. Senza --answer vale la risposta predefinita\n"
         "                  di ogni domanda\n"
         "  --all           publish: invia anche i file già presenti sul server\n"
         "  --dry-run       publish: elenca i file da inviare, senza inviarli\n"
         "  --help          mostra questo testo\n"
         "  --version       mostra la versione\n"
         "\n"
         "Ctrl-C annulla alla prima occasione; un secondo Ctrl-C termina subito.\n"
         "Stato di uscita: 0 operazione completata, 1 non completata, 2 argomenti errati, 130 annullata.\n";
}

std::string versionText() { return "korvane-cli " KORVANE_VERSION "\n"; }

}  // namespace kv
