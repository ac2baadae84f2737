#include "store/exchange/moved_pieces.h"

#include "platform/files/files.h"

namespace kv {

std::string exportMessage(const std::string& folder, const MovedPieces& report) {
  std::string text = "Nella cartella \"" + folder + "\" ";
  if (report.pieces.empty()) {
    text += "è stato esportato il database del negozio.";
  } else {
    text += "sono stati esportati\nil database del negozio";
    for (const std::string& piece : report.pieces) text += ", " + piece;
    text += ".";
  }
  const std::string code = "\"" + joinPath(folder, "code") + "\".";
  if (report.scripts.empty()) {
    return text +
           "\n\nNon sono stati invece esportati eventuali script personalizzati: se necessario\n"
           "questi ultimi dovranno essere copiati manualmente in " +
           code;
  }
  text += "\n\nSono stati inoltre esportati i seguenti script:\n\n";
  for (const std::string& script : report.scripts) text += script + "\n";
  return text + "Eventuali altri script personalizzati se necessario dovranno essere copiati\nmanualmente in " + code;
}

}  // namespace kv
