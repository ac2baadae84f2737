#include "shell/cli/command_line.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace kv {
namespace {

constexpr std::array<std::pair<std::string_view, CliCommand>, 8> commands{
    {{"build", CliCommand::Build},
     {"check", CliCommand::Check},
     {"export-sql", CliCommand::ExportSql},
     {"new", CliCommand::New},
     {"prices", CliCommand::Prices},
     {"replicate-list", CliCommand::ReplicateList},
     {"replicate-language", CliCommand::ReplicateLanguage},
     {"upgrade", CliCommand::Upgrade}}};
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
    return valued(argument);
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
    const BulkOption* bulk = bulkOption(name);
    if (bulk != nullptr && !bulk->hasValue && equals == std::string::npos) return take(*bulk, {});
    if (name != "--app" && name != "--answer" && (bulk == nullptr || !bulk->hasValue)) {
      return wrong("opzione sconosciuta: " + argument);
    }
    if (equals == std::string::npos && rest_.empty()) return wrong("manca il valore di " + name);
    const std::string value = equals == std::string::npos ? next() : argument.substr(equals + 1);
    if (value.empty()) return wrong("manca il valore di " + name);
    if (bulk != nullptr) return take(*bulk, value);
    if (name == "--app") {
      line_.applicationFolder = value;
      return {};
    }
    const auto answer = find(answers, value);
    if (!answer) return wrong("risposta sconosciuta: " + value + " (yes, no, ok, cancel)");
    line_.answers.push_back(*answer);
    return {};
  }

  Result<> take(const BulkOption& option, const std::string& value) {
    used_.push_back(&option);
    if (option.take(line_.bulk, value)) return {};
    return wrong("valore non ammesso per " + std::string(option.name) + ": " + value);
  }

  Result<CommandLine> finish() {
    if (names_.empty()) return wrong("manca il comando");
    const auto command = find(commands, names_[0]);
    if (!command) return wrong("comando sconosciuto: " + names_[0]);
    if (names_.size() < 2 || names_[1].empty()) return wrong("manca la cartella del negozio");
    if (names_.size() > 2) return wrong("argomento di troppo: " + names_[2]);
    for (const BulkOption* option : used_) {
      if (!knowsOption(names_[0], *option)) return wrong("opzione sconosciuta: " + std::string(option->name));
    }
    const std::string missing = missingOption(names_[0], line_.bulk);
    if (!missing.empty()) return wrong("manca l'opzione " + missing);
    line_.command = *command;
    line_.shop = names_[1];
    return line_;
  }

  std::span<const std::string> rest_;
  std::vector<std::string> names_;
  std::vector<const BulkOption*> used_;
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
         "  upgrade NEGOZIO     apre il negozio e dice che cosa è stato aggiornato\n"
         "  prices NEGOZIO --percent +10 --list 0,3 [--department ID] [--offers] [--variants] [--round]\n"
         "                      varia in percentuale i prezzi dei listini indicati\n"
         "  replicate-list NEGOZIO --from 0 --to 1,2 [--percent -5] [--round] [--offers] [--variants]\n"
         "                 [--quantity-discounts] [--department-discounts] [--restrictions]\n"
         "                      copia un listino in altri\n"
         "  replicate-language NEGOZIO --from 1 --to 2 --what shop,departments,articles,variants [--only-empty]\n"
         "                      copia i testi di una lingua in un'altra\n"
         "\n"
         "Opzioni:\n"
         "  --dry-run       con upgrade, prices, replicate-list e replicate-language: mostra l'anteprima e non\n"
         "                  modifica nulla\n"
         "  --app CARTELLA  cartella dell'applicazione (altrimenti quella dell'utente)\n"
         "  --answer yes|no|ok|cancel\n"
         "                  risposta alle domande; ripetibile: la prima risposta va alla prima domanda,\n"
         "                  l'ultima vale anche per tutte le successive. \"yes\" e \"ok\" confermano,\n"
         "                  \"no\" e \"cancel\" rifiutano. Senza --answer vale la risposta predefinita\n"
         "                  di ogni domanda\n"
         "  --help          mostra questo testo\n"
         "  --version       mostra la versione\n"
         "\n"
         "Ctrl-C annulla alla prima occasione; un secondo Ctrl-C termina subito.\n"
         "Stato di uscita: 0 operazione completata, 1 non completata, 2 argomenti errati, 130 annullata.\n";
}

std::string versionText() { return "korvane-cli " KORVANE_VERSION "\n"; }

}  // namespace kv
