#include "builder/run/payment_scripts.h"

#include "commerce/gateways/payment_modules.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

bool makeScript(BuildRun& run, const ModuleScript& script, const std::string& output) {
  if (!script.usable) return false;
  PageJob job;
  job.input = script.path;
  job.output = output;
  try {
    return run.wrapper.CreaPagina(job);
  } catch (const RunFailure&) {
    return false;  // the script is the merchant's; the shop is built without it
  }
}

}  // namespace

std::vector<std::string> SetPG(BuildRun& run, const std::string& name) {
  std::vector<std::string> made;
  for (const ModuleScript& script : moduleScripts(run.session.ShopFolder, name)) {
    const std::string file = script.name + ".php";
    std::string output = run.online(FileLingua(file, run.now.lingua));
    if (makeScript(run, script, output)) {
      made.push_back(std::move(output));
    } else {
      run.env.user.message("Errore nell'elaborazione del file " + file, Icon::Exclamation);
    }
  }
  return made;
}

}  // namespace kv
