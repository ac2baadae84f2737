#include "builder/run/make_pages.h"

#include "builder/run/build_run.h"
#include "platform/files/files.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

constexpr int outOfTextSpace = 14;

std::string closingLines(const BuildRun& run) {
  return "In seguito agli errori verificatisi, il contenuto della cartella '" + run.session.onlineFolder +
         "'\n"
         "potrebbe essere corrotto: evitare di trasferirne il contenuto online.\n"
         "Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.\n";
}

std::string failureText(const BuildRun& run, const RunFailure& failure) {
  if (failure.number == outOfTextSpace) {
    return "Una o più pagine dei reparti contengono troppi articoli:\n"
           "impostare un valore più basso (e diverso da zero) nel campo\n"
           "\"Max articoli/pagina\" nella scheda \"Reparti\"\n\n" +
           closingLines(run);
  }
  return "Si è verificato un errore imprevisto:\n" + std::to_string(failure.number) + " " + failure.text +
         "\n\n"
         "E' possibile che il template utilizzato contenga errori di progettazione: provare ad utilizzare un altro "
         "template.\n\n" +
         closingLines(run);
}

void runPhases(BuildRun& run) {
  prepareBuild(run);
  for (int number = 1; number <= run.languages.count; ++number) {
    prepareLanguage(run, number);
    makeDepartments(run);
    makeShopPages(run);
    makeScriptsAndResources(run);
    storeTagRows(run);
  }
  finishBuild(run);
}

// A run that ended early leaves its list and its databases as far as they came.
void leave(BuildRun& run) noexcept {
  try {
    storeTagRows(run);
  } catch (const RunFailure&) {
    // The failure that ended the run has been told; the working database is made anew by the next one.
  }
  if (run.files.size() > 0) {
    ignore(run.files.write(joinPath(run.session.ShopFolder, "kvftp.dat")), "what ended the run is the failure to tell");
  }
  if (run.build.isOpen()) ignore(run.build.commit(), "what ended the run is the failure to tell");
}

BuildOutcome guardedRun(BuildRun& run) {
  UserPort& user = run.env.user;
  try {
    runPhases(run);
    return BuildOutcome::Done;
  } catch (const RunCancelled&) {
    leave(run);
    return BuildOutcome::Cancelled;
  } catch (const PageRefused&) {
    leave(run);
    user.message(closingLines(run), Icon::Exclamation);
  } catch (const RunStopped&) {
    leave(run);
  } catch (const RunFailure& failure) {
    leave(run);
    user.message(failureText(run, failure), Icon::Critical);
  }
  return BuildOutcome::Failed;
}

}  // namespace

BuildRun::BuildRun(Session& openSession, Environment& environment, const BuildParts& otherParts)
    : session(openSession),
      env(environment),
      parts(otherParts),
      templateFolder(joinPath(environment.applicationFolder, openSession.templatePath)),
      wrapper(environment.user) {
  languages.count = session.languageCount;
  languages.codes = session.languageNames;
  languages.languagesFolder = joinPath(environment.applicationFolder, "languages");
  languages.pageExtension = pageExtension;
  languages.flags = readFlagSizes(languages);
}

void BuildRun::checkCancel() const {
  if (!env.user.yield()) throw RunCancelled();
}

void BuildRun::AggiornaProg() const {
  std::string caption = "Lingua " + std::to_string(now.number);
  caption += ": Reparti " + std::to_string(meter.departmentsDone) + "/" + std::to_string(meter.departments);
  caption += " Articoli " + std::to_string(meter.articlesDone) + "/" + std::to_string(meter.articles);
  env.user.progress({caption, meter.position, meter.maximum});
}

void BuildRun::makePage(const PageJob& job) {
  if (!wrapper.CreaPagina(job)) throw PageRefused();
}

void BuildRun::setLanguageLinks(std::string_view file) {
  for (int i = 1; i <= maxLanguages; ++i) {
    const bool linked = !file.empty() && i <= languages.count && i != now.number;
    now.row.set("lingua" + std::to_string(i), linked ? CreaTagLingua(languages, file, i) : std::string());
  }
}

std::string BuildRun::online(std::string_view name) const { return joinPath(session.onlineFolder, name); }
std::string BuildRun::script(std::string_view name) const { return joinPath(session.scriptFolder, name); }

void storeTagRows(BuildRun& run) {
  if (!run.tags.isOpen()) return;
  must(run.tags.begin());
  must(run.tags.execute("DELETE FROM categoria; DELETE FROM articoli"));
  const PageTagRow& row = run.now.row;
  std::string names, marks;
  for (const std::string& name : row.names()) {
    names += (names.empty() ? "\"" : ",\"") + name + "\"";
    marks += marks.empty() ? "?" : ",?";
  }
  Statement insert = must(run.tags.prepare("INSERT INTO categoria (" + names + ") VALUES (" + marks + ")"));
  int place = 0;
  for (const std::string& value : row.values()) insert.bind(++place, std::string_view(value));
  must(insert.execute());
  DerivedRowWriter articles = must(DerivedRowWriter::open(run.tags, "articoli", run.columns, {}));
  for (std::size_t i = 0; i < run.rowCount; ++i) must(articles.write(run.rows[i], {}));
  must(run.tags.commit());
}

BuildOutcome MakePages(Session& session, Environment& env, const BuildParts& parts, BuildCounts* counts) {
  BuildRun run(session, env, parts);
  const BuildOutcome outcome = guardedRun(run);
  if (counts != nullptr) {
    counts->departments = run.meter.departments;
    counts->articles = run.meter.articles;
    counts->languages = run.languages.count;
    counts->pagesWritten = run.wrapper.counts().written;
    counts->pagesUnchanged = run.wrapper.counts().unchanged;
    counts->filesListed = run.files.size();
  }
  if (outcome == BuildOutcome::Done) {
    env.user.message("Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.",
                     Icon::Information);
  }
  return outcome;
}

}  // namespace kv
