// Scripts and resources of one language, and what stands once at the end of a build.

#include "builder/run/build_run.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

void makeScript(BuildRun& run, const std::string& input, const std::string& output) {
  PageJob job;
  job.input = input;
  job.output = output;
  run.makePage(job);
  run.files.add(output);
}

void copyResource(BuildRun& run, const std::string& from, const std::string& to) {
  must(copyFile(from, to));
  run.files.add(to);
}

// The same names for every language, so that the row of the last one wins: the files are entered for each language
// and made for the last.
void makeBackOffice(BuildRun& run) {
  const std::string folder = joinPath(run.env.applicationFolder, "backoffice");
  run.wrapper.setSources(&run.now.row, &run.now.words, &run.custom, "");
  for (const std::string& name : listFiles(folder, "*.*")) {
    run.checkCancel();
    const std::string input = joinPath(folder, name);
    if (run.now.number < run.languages.count) {
      run.files.add(run.script(name));
      continue;
    }
    if (endsWithIgnoringCase(name, ".php") || endsWithIgnoringCase(name, ".htm")) {
      makeScript(run, input, run.script(name));
    } else {
      copyResource(run, input, run.script(name));
    }
  }
  run.wrapper.setSources(&run.now.row, &run.now.words, &run.custom, run.now.lingua);
}

void makeScripts(BuildRun& run, std::string_view pattern, bool serverScripts) {
  const std::string& pool = run.now.pools.codePool;
  for (const std::string& name : listFiles(pool, pattern)) {
    run.checkCancel();
    // Order and search are served by PHP.
    if (equalsIgnoringCase(name, "kvorder.pl") || equalsIgnoringCase(name, "kvsearch.pl")) continue;
    makeScript(run, joinPath(pool, name),
               serverScripts ? run.script(name) : run.online(FileLingua(name, run.now.lingua)));
  }
}

void copyTemplateResources(BuildRun& run) {
  const std::string& pool = run.now.pools.templatePool;
  for (const std::string& name : listFiles(pool, "*.*")) {
    if (!CanCopy(name)) continue;
    run.checkCancel();
    copyResource(run, joinPath(pool, name), run.online(FileLingua(name, run.now.lingua)));
  }
}

void removePools(const BuildRun& run) {
  const std::string root = joinPath(run.session.ShopFolder, "tmp");
  for (const std::string& folder : {joinPath(root, "1"), joinPath(root, "2"), root}) {
    ignore(emptyFolder(folder), "the next build empties it");
    ignore(removeFolder(folder), "the next build uses it again");
  }
}

}  // namespace

void makeScriptsAndResources(BuildRun& run) {
  makeBackOffice(run);
  makeScripts(run, "*.js", false);
  makeScripts(run, "*.pl", true);
  makeScripts(run, "*.asp", false);
  makeScripts(run, "*.php", false);
  copyTemplateResources(run);
  for (const std::string_view name : {"db.sql", "dbdel.sql"})
    run.files.add(run.online(FileLingua(name, run.now.lingua)));
}

void finishBuild(BuildRun& run) {
  run.meter.position = run.meter.maximum;
  run.env.user.progress({"", run.meter.position, run.meter.maximum});
  const std::string work = joinPath(run.session.ShopFolder, "work");
  for (const std::string& name : listFiles(work, "*.*")) {
    run.checkCancel();
    copyResource(run, joinPath(work, name), run.online(name));
  }
  for (int i = 0; i < run.languages.count; ++i) {
    const std::string flag = run.languages.codes[static_cast<std::size_t>(i)] + ".gif";
    const auto entry = findEntry(run.languages.languagesFolder, flag);
    if (entry) copyResource(run, *entry, run.online("kvan_" + flag));
  }
  run.files.close();
  must(run.build.commit());
  run.build.close();
  must(run.files.write(joinPath(run.session.ShopFolder, "kvftp.dat")));
  removePools(run);
}

}  // namespace kv
