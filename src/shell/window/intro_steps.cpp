#include "shell/window/intro_steps.h"

#include <algorithm>

namespace kv {

std::span<const IntroStep> introSteps() {
  static const std::vector<IntroStep> steps{
      {"Se desideri, aggiungi uno o più reparti (oppure sottoreparti) posizionandoti nella relativa scheda",
       "kReparti",
       {14, 15, 20},
       {}},
      {"Nel reparto selezionato puoi aggiungere articoli", "kArticoli", {2, 3}, {}},
      {"Inserisci il tuo indirizzo e-mail: qui riceverai gli ordini del negozio", "kSito", {}, {"email_ordini"}},
      {"Completa tutti i campi con i parametri necessari per accedere via FTP al tuo spazio web",
       "kInternet",
       {},
       {"username", "password", "folderFTP", "folderCGI", "hostname"}},
      {"Inserisci i parametri per l'accesso al database MySql che ti ha fornito il provider",
       "kInternet",
       {},
       {"db_hostname", "db_username", "db_password", "db_dbname"}},
      {"Scegli un nome utente e una password per proteggere il BackOffice",
       "kInternet",
       {},
       {"bo_username", "bo_password"}},
      {"Ora inserisci l'URL del tuo sito e le cartelle in cui sono raggiungibili via web il negozio e il BackOffice",
       "kInternet",
       {},
       {"cartella", "cartellaCGI", "URL"}},
      {"E' giunto il momento di costruire il negozio... Premi l'apposito tasto della barra superiore", "", {50}, {}},
      {"Infine, trasferisci il negozio sul server con il client FTP integrato e aggiorna il database", "", {51}, {}}};
  return steps;
}

int widthBesideIntro(int screenWidth, int mainWidth, int introWidth, int least) {
  return std::min(mainWidth, std::max(least, screenWidth - introWidth));
}

IntroPlacement placeIntro(int screenWidth, int mainLeft, int mainWidth, int introWidth) {
  if (mainWidth + introWidth >= screenWidth) return {0, screenWidth - introWidth};
  if (mainLeft + mainWidth + introWidth <= screenWidth) return {mainLeft, mainLeft + mainWidth};
  return {screenWidth - introWidth - mainWidth, screenWidth - introWidth};
}

}  // namespace kv
