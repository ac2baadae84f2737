#include "shell/cli/command_line.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace kv {
namespace {

/// A command: what its second name is called when it is missing, and its own options, those that end in "=" with a
/// value.
struct CommandRow {
  CliCommand command;
  const char* object = nullptr;  ///< null: the command takes the shop alone
  std::vector<std::string> options{};
};

const std::map<std::string_view, CommandRow>& commands() {
  static const std::map<std::string_view, CommandRow> rows{
      {"build", {CliCommand::Build}},
      {"check", {CliCommand::Check}},
      {"doctor", {CliCommand::Doctor, nullptr, {"--json"}}},
      {"export-sql", {CliCommand::ExportSql}},
      {"new", {CliCommand::New}},
      {"export", {CliCommand::Export, "la cartella di destinazione", {"--with=", "--zip"}}},
      {"import",
       {CliCommand::Import, "la cartella di origine", {"--dry-run", "--options=", "--variant=", "--company="}}},
      {"purge", {CliCommand::Purge, nullptr, {"--delete"}}},
      {"picture", {CliCommand::Picture, "il file dell'immagine", {"--article=", "--department=", "--slot=", "--fit="}}},
      {"import-table",
       {CliCommand::ImportTable,
        "il foglio",
        {"--dry-run", "--table=", "--map=", "--mode=", "--key=", "--shape=", "--header="}}},
      {"export-table", {CliCommand::ExportTable, "il foglio", {"--table=", "--columns="}}},
      {"publish", {CliCommand::Publish, nullptr, {"--dry-run", "--all"}}},
      {"orders", {CliCommand::Orders, nullptr, {"--since=", "--csv="}}},
      {"upgrade", {CliCommand::Upgrade, nullptr, bulkOptionsOf("upgrade")}},
      {"prices", {CliCommand::Prices, nullptr, bulkOptionsOf("prices")}},
      {"replicate-list", {CliCommand::ReplicateList, nullptr, bulkOptionsOf("replicate-list")}},
      {"replicate-language", {CliCommand::ReplicateLanguage, nullptr, bulkOptionsOf("replicate-language")}}};
  return rows;
}

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

  static bool isKnown(const std::string& spelling) {
    if (spelling == "--app=" || spelling == "--answer=") return true;
    return std::ranges::any_of(commands(), [&](const auto& row) {
      return std::ranges::find(row.second.options, spelling) != row.second.options.end();
    });
  }

  /// An option with a value, after "=" or in the next argument, or a flag.
  Result<> valued(const std::string& argument) {
    const auto equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    if (equals == std::string::npos && isKnown(name)) {
      line_.options[name].clear();
      return {};
    }
    if (!isKnown(name + "=")) return wrong("opzione sconosciuta: " + argument);
    if (equals == std::string::npos && rest_.empty()) return wrong("manca il valore di " + name);
    const std::string value = equals == std::string::npos ? next() : argument.substr(equals + 1);
    if (value.empty()) return wrong("manca il valore di " + name);
    return take(name, value);
  }

  Result<> take(const std::string& name, const std::string& value) {
    if (name == "--app") {
      line_.applicationFolder = value;
    } else if (name != "--answer") {
      const auto [given, isFirst] = line_.options.try_emplace(name, value);
      if (!isFirst && given->second != value) return wrong("due valori diversi per " + name);
    } else if (const auto answer = find(answers, value)) {
      line_.answers.push_back(*answer);
    } else {
      return wrong("risposta sconosciuta: " + value + " (yes, no, ok, cancel)");
    }
    return {};
  }

  /// The values of the commands that change many rows; nothing for any other command.
  Result<> readBulk() {
    for (const auto& [name, value] : line_.options) {
      const BulkOption* option = bulkOption(name);
      if (option == nullptr || !knowsOption(names_[0], *option)) continue;
      if (!option->take(line_.bulk, value)) return wrong("valore non ammesso per " + name + ": " + value);
    }
    const std::string missing = missingOption(names_[0], line_.bulk);
    return missing.empty() ? Result<>() : Result<>(wrong("manca l'opzione " + missing));
  }

  /// The shop, and the object of a command that has one: all there, none empty, and no more.
  Result<> checkNames(const CommandRow& row) const {
    if (names_.size() < 2 || names_[1].empty()) return wrong("manca la cartella del negozio");
    const std::size_t count = row.object == nullptr ? 2 : 3;
    if (names_.size() < count || names_.back().empty()) return wrong(std::string("manca ") + row.object);
    if (names_.size() > count) return wrong("argomento di troppo: " + names_[count]);
    return {};
  }

  /// The first option given that the command doesn't take.
  std::optional<std::string> foreignOption(const CommandRow& row) const {
    for (const auto& [option, value] : line_.options) {
      const std::string spelling = value.empty() ? option : option + "=";
      if (std::ranges::find(row.options, spelling) == row.options.end()) return option;
    }
    return std::nullopt;
  }

  Result<CommandLine> finish() {
    if (names_.empty()) return wrong("manca il comando");
    const auto found = commands().find(names_[0]);
    if (found == commands().end()) return wrong("comando sconosciuto: " + names_[0]);
    const CommandRow& row = found->second;
    if (auto fits = checkNames(row); !fits) return fail(fits.error());
    if (auto option = foreignOption(row)) {
      return wrong("opzione non prevista per il comando " + names_[0] + ": " + *option);
    }
    if (auto read = readBulk(); !read) return fail(read.error());
    line_.command = row.command;
    line_.shop = names_[1];
    if (row.object != nullptr) line_.object = names_[2];
    return line_;
  }

  std::span<const std::string> rest_;
  std::vector<std::string> names_;
  CommandLine line_;
  bool namesOnly_ = false;
  bool ended_ = false;
};

constexpr std::string_view usageOfCommands =
    "Uso: korvane-cli [opzioni] COMANDO NEGOZIO\n"
    "\n"
    "Comandi:\n"
    "  build NEGOZIO       costruisce il sito del negozio contenuto nella cartella NEGOZIO\n"
    "  check NEGOZIO       apre il negozio e dice che cosa non va, senza costruirlo\n"
    "  doctor NEGOZIO      controlla il negozio e dice che cosa troverebbe un visitatore. --json: in forma JSON.\n"
    "                      Stato di uscita: 0 niente da segnalare, 1 soltanto avvisi, 2 errori\n"
    "  export-sql NEGOZIO  scrive i file SQL del negozio costruito nella cartella online\n"
    "  new NEGOZIO         crea un nuovo negozio nella cartella NEGOZIO\n"
    "  export NEGOZIO CARTELLA\n"
    "                      esporta il negozio nella CARTELLA vuota. --with TLSRP: T il template, L i moduli\n"
    "                      linguistici, S gli script, P i tag personalizzati di tutti i negozi; R resetta le\n"
    "                      cartelle di lavoro del negozio esportato, W ne toglie le password. --zip: nella\n"
    "                      CARTELLA un unico file .zip\n"
    "  import NEGOZIO ORIGINE\n"
    "                      sostituisce i dati del negozio con quelli del negozio Primo contenuto nella cartella\n"
    "                      ORIGINE. --dry-run: dice soltanto che cosa verrebbe importato\n"
    "  import NEGOZIO ORIGINE [--options CIFRE] [--variant 0..5] [--company ID]\n"
    "                      importa reparti e articoli da Orsa Gestionale, se ORIGINE ne è il database o una\n"
    "                      cartella con Categoria.csv e Articoli.csv. --options: la riga delle impostazioni\n"
    "  purge NEGOZIO       elenca le immagini inutilizzate. --delete: le cancella\n"
    "  picture NEGOZIO FILE --article ID|--department ID --slot 0|1|2\n"
    "                      imposta un'immagine e ne mostra nome e dimensioni. --fit 180x135: la adatta a queste\n"
    "                      dimensioni massime\n"
    "  import-table NEGOZIO FOGLIO [--table TABELLA] [--map FILE] [--mode all|change|add|sync] [--key CHIAVE]\n"
    "                 [--shape handle|tipo|riferimento|feed|no] [--header RIGA]\n"
    "                      importa un foglio CSV, XLSX o ODS in una tabella: articoli, reparti, varianti, "
    "valori,\n"
    "                      paesi o spedizione. --mode: aggiunge e modifica, solo modifica, solo aggiunge, o "
    "mette\n"
    "                      anche fuori catalogo gli articoli che il foglio non elenca. --map: righe\n"
    "                      \"intestazione=colonna\". --dry-run: dice soltanto che cosa cambierebbe.\n"
    "                      --shape: da quale esportazione di un altro negozio, o da un feed XML, vengono gli\n"
    "                      articoli (altrimenti si riconosce dalle intestazioni); no: da nessuna. --header: la\n"
    "                      riga delle intestazioni, se non è quella che si riconosce tra le prime dieci\n"
    "  export-table NEGOZIO FOGLIO [--table TABELLA] [--columns codice,titolo,prezzo]\n"
    "                      scrive una tabella in un foglio CSV o XLSX, che si può importare di nuovo\n"
    "  publish NEGOZIO     mette online il negozio costruito, con le impostazioni del negozio. --all invia\n"
    "                      anche i file già presenti sul server. --dry-run elenca i file da inviare\n"
    "                      e quelli che si proporrebbe di eliminare\n"
    "  orders NEGOZIO [--since AAAA-MM-GG] [--csv FILE]\n"
    "                      riceve dal server gli ordini nuovi e li elenca tutti, o quelli da un giorno in poi.\n"
    "                      --csv: li scrive anche in un file CSV. Senza collegamento elenca quelli già ricevuti\n"
    "  upgrade NEGOZIO     apre il negozio e dice che cosa è stato aggiornato\n"
    "  prices NEGOZIO --percent +10 --list 0,3 [--department ID] [--offers] [--variants] [--round]\n"
    "                      varia in percentuale i prezzi dei listini indicati\n"
    "  replicate-list NEGOZIO --from 0 --to 1,2 [--percent -5] [--round] [--offers] [--variants]\n"
    "                 [--quantity-discounts] [--department-discounts] [--restrictions]\n"
    "                      copia un listino in altri\n"
    "  replicate-language NEGOZIO --from 1 --to 2 --what shop,departments,articles,variants [--only-empty]\n"
    "                      copia i testi di una lingua in un'altra\n";

constexpr std::string_view usageOfOptions =
    "\n"
    "Opzioni:\n"
    "  --dry-run       con publish, import, import-table, upgrade, prices, replicate-list e\n"
    "                  replicate-language: mostra l'anteprima e non modifica nulla\n"
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

}  // namespace

Result<CommandLine> parseCommandLine(std::span<const std::string> arguments) { return Parser(arguments).parse(); }

std::string usageText() { return std::string(usageOfCommands) + std::string(usageOfOptions); }

std::string versionText() { return "korvane-cli " KORVANE_VERSION "\n"; }

}  // namespace kv
