#include "shell/workbench/open_document.h"

#include "platform/files/files.h"
#include "store/shop/session.h"

namespace kv {

bool ApriDocumento(const std::string& file, const std::string& cartella, Settings& settings,
                   const DocumentOpener& open) {
  constexpr std::string_view key = "previewretry";
  std::string retry = settings.get(settingsSection, key);
  if (retry.empty()) {
    retry = "on";
    // A setting that can't be stored is asked for again the next time; the document opens all the same.
    ignore(settings.set(settingsSection, key, retry), "the next opening stores it");
  }
  if (file.empty()) return false;
  if (open(file, cartella) >= openedWell) return false;
  if (cartella.empty() || retry != "on") return true;
  return open(joinPath(cartella, file), {}) < openedWell;
}

}  // namespace kv
