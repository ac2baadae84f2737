#include "shell/cli/exchange_commands.h"

#include <algorithm>

#include "import/accounting/accounting_source.h"
#include "media/purge/unused_pictures.h"
#include "platform/files/files.h"
#include "shell/cli/accounting_command.h"
#include "shell/cli/cli_session.h"
#include "store/catalogue/used_pictures.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/primo_import.h"
#include "store/exchange/primo_preview.h"

namespace kv {
namespace {

/// Whether each character names a part of an export, in either case: those of the usage, and W, without passwords.
bool areExportCharacters(const std::string& with) {
  return std::ranges::all_of(with,
                             [](char c) { return std::string_view("TLSRPWtlsrpw").find(c) != std::string::npos; });
}

/// A folder that is made for an export, with those above it; those that were made go with this object unless they are
/// to be kept.
class MadeFolders {
 public:
  explicit MadeFolders(const std::string& path) {
    for (std::string at = path; !at.empty() && !folderExists(at); at = folderOf(at)) made_.push_back(at);
    ignore(createFolders(path), "the export tells of a folder that can't be written");
  }
  MadeFolders(const MadeFolders&) = delete;
  MadeFolders& operator=(const MadeFolders&) = delete;
  ~MadeFolders() {
    for (const std::string& path : made_) ignore(removeFolder(path), "it may hold what couldn't be removed");
  }
  void keep() { made_.clear(); }

 private:
  std::vector<std::string> made_;  // the deepest first
};

/// A name on a line of its own: a character that would end the line shows as "?".
std::string onOneLine(std::string name) {
  std::ranges::replace_if(
      name, [](char c) { return c == '\n' || c == '\r'; }, '?');
  return name;
}

}  // namespace

CliOutcome exportShop(const std::string& shop, const CommandLine& line, Environment& env) {
  const std::string with = line.option("--with");
  if (!areExportCharacters(with)) {
    env.user.message("valore non ammesso per --with: " + with, Icon::Exclamation);
    return CliOutcome::WrongUsage;
  }
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  MadeFolders folders(absolutePath(line.object));
  const auto options = [&](const ExportOffer&) {
    return exportTag(exportChoice(with + (line.has("--zip") ? "Z" : "")));
  };
  const ExportOutcome outcome = EsportaNegozio(open.session, env, options);
  if (outcome == ExportOutcome::Done) folders.keep();
  switch (outcome) {
    case ExportOutcome::Done:
      return CliOutcome::Done;
    case ExportOutcome::Cancelled:
      return CliOutcome::Cancelled;
    case ExportOutcome::Left:
    case ExportOutcome::Failed:
      break;
  }
  return CliOutcome::Failed;
}

CliOutcome importShop(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  const std::string source = absolutePath(line.object);
  // A shop is a folder: a file is the accounting package's, and so are the tables of one in a folder. Who names options
  // of an accounting import means one.
  const bool isMeant = line.has("--options") || line.has("--variant") || line.has("--company");
  if (isMeant || fileExists(source) || isAccountingSource(source)) return importAccounting(shop, line, env, out);
  CliSession open(env);
  const bool dryRun = line.has("--dry-run");
  if (!(dryRun ? open.openToLook(shop) : open.open(shop)) || !holdsSource(env, source)) return CliOutcome::Failed;
  if (dryRun) {
    const auto preview = previewOfShop(open.session.catalogue, source);
    if (!preview) return refused(env, preview.error().what);
    out << *preview;
    return CliOutcome::Done;
  }
  const auto outcome = ImportaNegozio(open.session, env, [&] { return importPrimoShop(open.session, env, source); });
  return outcome == PrimoOutcome::Done ? CliOutcome::Done : CliOutcome::Failed;
}

CliOutcome purgePictures(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  PicturePurge purge({entryPath(shop, "work"),
                      [&](const TextReader& read) { return usedPictures(open.session.catalogue, read); },
                      {},
                      {}},
                     env.user);
  if (!purge.search()) return CliOutcome::Failed;
  for (const UnusedPicture& picture : purge.unused()) out << onOneLine(picture.name) << '\n';
  if (!line.has("--delete") || !purge.hasUnused()) return CliOutcome::Done;
  purge.tickAll(true);
  return purge.deleteTicked() && purge.keptCount() == 0 ? CliOutcome::Done : CliOutcome::Failed;
}

}  // namespace kv
