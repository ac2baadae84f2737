// What a build that failed tells the merchant, to the character.

#include "builder/run/build_messages.h"

#include <gtest/gtest.h>

#include "builder/values/build_failure.h"

namespace kv::test {
namespace {

const char* const closing =
    "In seguito agli errori verificatisi, il contenuto della cartella '/negozio/online'\n"
    "potrebbe essere corrotto: evitare di trasferirne il contenuto online.\n"
    "Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.\n";

TEST(BuildMessagesTest, AFailureIsShownWithItsNumberAndWhereItHappened) {
  const std::string advice =
      "\n\nE' possibile che il template utilizzato contenga errori di progettazione: provare ad utilizzare un altro "
      "template.\n\n";
  EXPECT_EQ(
      buildFailureText({ErrorKind::Full, "/negozio/online/a.php", "No space left on device", 28}, "/negozio/online"),
      "Si è verificato un errore imprevisto:\n28 No space left on device (/negozio/online/a.php)" + advice + closing);
  EXPECT_EQ(buildFailureText({ErrorKind::Other, "", "Prezzo troppo grande: A1", overflowFailure}, "/negozio/online"),
            "Si è verificato un errore imprevisto:\n6 Prezzo troppo grande: A1" + advice + closing);
}

TEST(BuildMessagesTest, RunningOutOfTextSpaceNamesTheSettingToChange) {
  EXPECT_EQ(buildFailureText({ErrorKind::Full, "cat001", "out of string space", outOfTextSpace}, "/negozio/online"),
            std::string("Una o più pagine dei reparti contengono troppi articoli:\n"
                        "impostare un valore più basso (e diverso da zero) nel campo\n"
                        "\"Max articoli/pagina\" nella scheda \"Reparti\"\n\n") +
                closing);
}

TEST(BuildMessagesTest, TheFourteenOfEngineAndSystemIsAnUnforeseenFailure) {
  const std::string text = buildFailureText({ErrorKind::Missing, "sql.mdb", "unable to open database file", 14}, "o");
  EXPECT_EQ(text.rfind("Si è verificato un errore imprevisto:\n14 unable to open database file (sql.mdb)", 0), 0U)
      << text;
}

TEST(BuildMessagesTest, MissingLanguageModulesAreListedOnePerLine) {
  EXPECT_EQ(missingModulesText({"inglese", "tedesco"}),
            "I seguenti moduli linguistici non sono stati trovati:\ninglese\ntedesco\n\n"
            "Per costruire il negozio è necessario installare i moduli linguistici mancanti,\n"
            "oppure cambiare le lingue selezionate (menu \"File/Configura lingue\")");
}

}  // namespace
}  // namespace kv::test
