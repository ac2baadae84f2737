#include "builder/checkout/payment_scripts.h"

#include <utility>

#include "commerce/gateways/payment_modules.h"
#include "tags/syntax/file_naming.h"

namespace kv {

std::vector<std::string> SetPG(const std::string& name, const PageSources& sources, BuildOutput& output) {
  std::vector<std::string> made;
  for (const ModuleScript& script : moduleScripts(output.folders().shop, name)) {
    const std::string file = script.name + ".php";
    PageJob job;
    job.input = script.path;
    job.output = output.folders().onlineFile(FileLingua(file, sources.lingua));
    if (script.usable && output.tryPage(job, sources)) {
      made.push_back(std::move(job.output));
    } else {
      output.warn("Errore nell'elaborazione del file " + file);
    }
  }
  return made;
}

}  // namespace kv
