#include "shell/cli/shop_commands.h"

#include "builder/doctor/doctor.h"
#include "builder/run/build_parts.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "shell/cli/cli_session.h"
#include "sqlexport/full_export.h"
#include "store/shop/open_shop.h"

namespace kv {
namespace {

CliOutcome outcomeOf(BuildOutcome outcome) {
  switch (outcome) {
    case BuildOutcome::Done:
      return CliOutcome::Done;
    case BuildOutcome::Cancelled:
      return CliOutcome::Cancelled;
    case BuildOutcome::Failed:
      return CliOutcome::Failed;
  }
  return CliOutcome::Failed;
}

void printMade(const Session& session, const BuildCounts& counts, std::ostream& out) {
  out << "Reparti " << counts.departments << ", articoli " << counts.articles << ", lingue " << counts.languages
      << ".\nPagine scritte " << counts.pagesWritten << ", invariate " << counts.pagesUnchanged << "; file elencati "
      << counts.filesListed << ".\nPagine: " << session.onlineFolder << "\nScript: " << session.scriptFolder << '\n';
}

std::string missingLanguages(const Session& session, const std::string& applicationFolder) {
  std::string missing;
  const std::string folder = entryPath(applicationFolder, "languages");
  for (int i = 0; i < session.languageCount; ++i) {
    const std::string& code = session.languageNames[static_cast<std::size_t>(i)];
    if (!findEntry(folder, code + ".lng")) missing += "\n" + code;
  }
  return missing;
}

/// Names every fault, not only the first.
bool showFaults(const CliSession& open, Environment& env) {
  bool faulty = false;
  const auto fault = [&](const std::string& text) {
    env.user.message(text, Icon::Exclamation);
    faulty = true;
  };
  if (!open.hasTemplate()) fault("Per costruire il negozio è necessario scegliere un template");
  const std::string missing = missingLanguages(open.session, env.applicationFolder);
  if (!missing.empty()) fault("I seguenti moduli linguistici non sono stati trovati:" + missing);
  for (const std::string& folder : {open.session.onlineFolder, open.session.scriptFolder}) {
    if (!folderExists(folder)) fault("La cartella di lavoro '" + folder + "' non esiste");
  }
  return faulty;
}

void printExported(const Session& session, const ExportReport& report, std::ostream& out) {
  if (report.published.empty()) {
    out << "Nessun file SQL: la costruzione non ha annotato il numero delle lingue.\n";
    return;
  }
  if (report.languages == 0) {
    out << "File SQL dell'esportazione precedente, ancora validi";
  } else {
    out << "Lingue " << report.languages << ", righe " << report.rows;
  }
  out << "; file:";
  for (const std::string& name : report.published) out << ' ' << name;
  out << ".\nCartella: " << session.onlineFolder << '\n';
}

/// Tells what an export did, and how it ended.
CliOutcome endOfExport(const Session& session, const ExportReport& report, Environment& env, std::ostream& out) {
  if (report.cancelled) return CliOutcome::Cancelled;
  printExported(session, report, out);
  for (const std::string& name : report.unwritten) {
    env.user.message("Impossibile scrivere il file " + joinPath(session.onlineFolder, name), Icon::Critical);
  }
  const bool whole = !report.failed && report.unwritten.empty() && !report.published.empty();
  return whole ? CliOutcome::Done : CliOutcome::Failed;
}

}  // namespace

CliOutcome refused(Environment& env, const std::string& text) {
  env.user.message(text, Icon::Exclamation);
  return CliOutcome::Failed;
}

CliOutcome failedOrCancelled(Environment& env) { return env.user.yield() ? CliOutcome::Failed : CliOutcome::Cancelled; }

CliOutcome buildShop(const std::string& shop, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  if (!open.hasTemplate()) return refused(env, "Per costruire il negozio è necessario scegliere un template");
  BuildCounts counts;
  const CliOutcome outcome = outcomeOf(MakePages(open.session, env, shopBuildParts(open.session, env), &counts));
  if (outcome == CliOutcome::Done) printMade(open.session, counts, out);
  return outcome;
}

CliOutcome checkShop(const std::string& shop, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  if (showFaults(open, env)) return CliOutcome::Failed;
  out << "Il negozio può essere costruito: articoli " << open.session.articleCount << ", lingue "
      << open.session.languageCount << ", " << open.session.templatePath << ".\n";
  return CliOutcome::Done;
}

CliOutcome examineFromCli(const std::string& shop, bool asJson, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::FoundErrors;
  const auto examination = examineShop(open.session, env.applicationFolder);
  if (!examination) {
    env.user.message(failureText(examination.error()), Icon::Critical);
    return CliOutcome::FoundErrors;
  }
  const FindingCounts counts = countFindings(examination->findings);
  if (asJson) {
    out << findingsAsJson(examination->findings);
  } else {
    for (const Finding& finding : examination->findings) {
      out << severityName(finding.severity) << '\t' << finding.text << '\n';
    }
    out << findingSummary(counts) << ".\n";
  }
  if (counts.errors > 0) return CliOutcome::FoundErrors;
  return counts.warnings > 0 ? CliOutcome::FoundWarnings : CliOutcome::Done;
}

CliOutcome exportShopSql(const std::string& shop, Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!open.open(shop)) return CliOutcome::Failed;
  const auto word = open.session.catalogue.scalar("SELECT db_security FROM generale");
  const std::string sec = word ? asText(*word) : std::string();
  if (sec.empty() || !fileExists(joinPath(open.session.onlineFolder, sec + ".sc"))) {
    return refused(env,
                   "Il negozio non è stato costruito: è necessario costruire il sito prima di esportarne il database");
  }
  for (const std::string& name : listFiles(open.session.onlineFolder, "*.sql")) {
    ignore(deleteFile(joinPath(open.session.onlineFolder, name)),
           "a copy that is in the way is reported when it is replaced");
  }
  LockStatements lock;
  readLockOption(shop, lock);
  ExportReport report;
  ExportFullSql({shop, open.session.onlineFolder, env.user, env.settings, lock}, sec, &report);
  return endOfExport(open.session, report, env, out);
}

CliOutcome newShop(Environment& env, std::ostream& out) {
  CliSession open(env);
  if (!NuovoNegozio(open.session, env) || !open.session.catalogue.isOpen()) return CliOutcome::Failed;
  out << "Nuovo negozio: " << open.session.ShopFolder << '\n';
  return CliOutcome::Done;
}

}  // namespace kv
