#include "builder/run/build_summary.h"

namespace kv {

std::string buildSummary(const BuildCounts& counts) {
  return "Reparti: " + std::to_string(counts.departments) + ", articoli: " + std::to_string(counts.articles) +
         ", lingue: " + std::to_string(counts.languages) + ". Pagine scritte: " + std::to_string(counts.pagesWritten) +
         ", rimaste uguali: " + std::to_string(counts.pagesUnchanged) + ".";
}

}  // namespace kv
