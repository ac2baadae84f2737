#include "builder/run/build_messages.h"

#include "builder/values/build_failure.h"

namespace kv {

std::string closingLines(const std::string& onlineFolder) {
  return "In seguito agli errori verificatisi, il contenuto della cartella '" + onlineFolder +
         "'\n"
         "potrebbe essere corrotto: evitare di trasferirne il contenuto online.\n"
         "Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.\n";
}

std::string buildFailureText(const Error& error, const std::string& onlineFolder) {
  // Engine and system have a 14 of their own, of another meaning.
  if (error.number == outOfTextSpace && error.kind == ErrorKind::Full) {
    return "Una o più pagine dei reparti contengono troppi articoli:\n"
           "impostare un valore più basso (e diverso da zero) nel campo\n"
           "\"Max articoli/pagina\" nella scheda \"Reparti\"\n\n" +
           closingLines(onlineFolder);
  }
  const std::string where = error.where.empty() ? "" : " (" + error.where + ")";
  return "Si è verificato un errore imprevisto:\n" + std::to_string(error.number) + " " + error.what + where +
         "\n\n"
         "E' possibile che il template utilizzato contenga errori di progettazione: provare ad utilizzare un altro "
         "template.\n\n" +
         closingLines(onlineFolder);
}

std::string noLanguageText() {
  return "Il negozio non ha una prima lingua:\n"
         "per costruirlo è necessario sceglierla (menu \"File/Configura lingue\")";
}

std::string missingModulesText(const std::vector<std::string>& codes) {
  std::string missing;
  for (const std::string& code : codes) missing += code + "\n";
  return "I seguenti moduli linguistici non sono stati trovati:\n" + missing +
         "\nPer costruire il negozio è necessario installare i moduli linguistici mancanti,\n"
         "oppure cambiare le lingue selezionate (menu \"File/Configura lingue\")";
}

}  // namespace kv
