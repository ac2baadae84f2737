// korvane-cli with whole shops and pictures: what it prints, what it leaves on the disk, and how it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "builder/doctor/doctor.h"
#include "platform/database/database.h"
#include "platform/files/files.h"
#include "platform/image/pixels.h"
#include "shell/cli/cli_program.h"
#include "shell/cli/cli_session.h"
#include "support/failing_files.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class MovingShops : public ::testing::Test {
 protected:
  MovingShops() : shop(home / "negozio"), application(home / "app") {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"new", "template", "languages"}) {
      EXPECT_TRUE(copyTree(data + "/" + folder, application + "/" + folder));
    }
    EXPECT_TRUE(copyTree(data + "/new", shop));
    for (const char* working : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + working));
    for (const std::string& name : listFiles(shop + "/work", "*"))
      EXPECT_TRUE(deleteFile(joinPath(shop, "work/" + name)));
  }
  CliOutcome run(std::vector<std::string> arguments) {
    out.str("");
    err.str("");
    arguments.insert(arguments.end(), {"--app", application});
    return runCommandLine(arguments, {out, err, {}, ""});
  }
  std::string read(const std::string& folder, const std::string& sql) const {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
    const auto value = catalogue ? catalogue->scalar(sql) : fail(catalogue.error());
    return value ? asText(*value) : value.error().what;
  }
  void change(const std::string& folder, const std::string& sql) const {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue);
    const auto done = catalogue->execute(sql);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// The merchant silences what the doctor finds, all of it or the errors alone.
  void silence(bool warningsToo) {
    test::ScriptedUser user;
    MemorySettings settings;
    Environment env{user, settings, systemClock(), systemRandom(), application, {}};
    CliSession open(env);
    ASSERT_TRUE(open.open(shop));
    const auto examination = examineShop(open.session, application);
    ASSERT_TRUE(examination);
    for (const Finding& finding : examination->findings) {
      const bool isWanted = warningsToo || finding.severity == Severity::Error;
      if (isWanted) {
        ASSERT_TRUE(silenceFinding(open.session.catalogue, finding));
      }
    }
  }
  std::string savePicture(const std::string& name, ImageSize size) const {
    const auto pixels = PixelBuffer::create(size);
    EXPECT_TRUE(pixels && writeBytes(home / name, test::valueOf(jpegOf(*pixels, 90))));
    return home / name;
  }

  test::TempFolder home;
  std::string shop, application;
  std::ostringstream out, err;
};

TEST_F(MovingShops, AnExportIsAShopThatCanBeChecked) {
  change(shop, "UPDATE articoli SET titolo = 'Unico'");
  ASSERT_EQ(run({"export", shop, home / "copia", "--with", "TLR"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(err.str(),
              HasSubstr("sono stati esportati\nil database del negozio, il template, i moduli linguistici."));
  EXPECT_EQ(read(home / "copia", "SELECT titolo FROM articoli"), "Unico");
  EXPECT_TRUE(folderExists(home / "copia/template"));
  EXPECT_EQ(run({"check", home / "copia"}), CliOutcome::Done) << err.str();
}

TEST_F(MovingShops, AZipHoldsAShopThatCanBeChecked) {
  change(shop, "UPDATE articoli SET titolo = 'Unico'");
  ASSERT_EQ(run({"export", shop, home / "copia", "--with", "tW", "--zip"}), CliOutcome::Done) << err.str();
  ASSERT_EQ(listFiles(home / "copia", "*"), (std::vector<std::string>{"negozio.zip"}));
  const std::string unpack = "python3 -m zipfile -e '" + (home / "copia/negozio.zip") + "' '" + (home / "aperto") + "'";
  ASSERT_EQ(std::system(unpack.c_str()), 0);
  EXPECT_EQ(read(home / "aperto", "SELECT titolo FROM articoli"), "Unico");
  EXPECT_EQ(run({"check", home / "aperto"}), CliOutcome::Done) << err.str();
}

TEST_F(MovingShops, AnExportThatFailsLeavesTheFoldersAsTheyWere) {
  ASSERT_TRUE(createFolders(home / "copia/altro"));
  EXPECT_EQ(run({"export", shop, home / "copia"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("La cartella selezionata non è vuota"));
  change(shop, "UPDATE generale SET template = ''");
  EXPECT_EQ(run({"export", shop, home / "copia/altro/una/nuova"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("è necessario selezionare un template"));
  EXPECT_TRUE(folderExists(home / "copia/altro"));
  EXPECT_FALSE(folderExists(home / "copia/altro/una"));
}

TEST_F(MovingShops, AnImportReplacesTheRowsAfterABackup) {
  const std::string source = home / "primo";
  ASSERT_TRUE(copyTree(shop, source));
  change(source, "UPDATE generale SET versione = 250; UPDATE articoli SET titolo = 'Primo'");
  EXPECT_EQ(run({"import", shop, source, "--dry-run"}), CliOutcome::Done);
  EXPECT_THAT(out.str(), StartsWith("Versione del negozio di origine: 250\narticoli: "));
  EXPECT_NE(read(shop, "SELECT titolo FROM articoli"), "Primo");
  EXPECT_FALSE(fileExists(shop + "/catalog.000"));
  EXPECT_EQ(run({"import", shop, source}), CliOutcome::Done) << err.str();
  EXPECT_THAT(err.str(), HasSubstr("col nome \"catalog.000\""));
  EXPECT_THAT(err.str(), HasSubstr("Importazione terminata correttamente"));
  EXPECT_EQ(read(shop, "SELECT titolo FROM articoli"), "Primo");
}

TEST_F(MovingShops, AnImportOfSomethingElseFails) {
  EXPECT_EQ(run({"import", shop, home.path()}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("La cartella selezionata non contiene un negozio"));
  const std::string source = home / "nuovo";
  ASSERT_TRUE(copyTree(shop, source));
  EXPECT_EQ(run({"import", shop, source, "--dry-run"}), CliOutcome::Failed);
  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), StartsWith("Impossibile importare: la versione del database di origine non è supportata\n"));
  EXPECT_EQ(run({"import", shop, source, "--variant", "3"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Il database \"" + source + "\" non può essere aperto"))
      << "an option of the accounting import asks for no other";
}

TEST_F(MovingShops, TheDoctorTellsByItsExitStatusHowBadTheShopIs) {
  change(shop, "UPDATE articoli SET prezzo = 0");
  EXPECT_EQ(run({"doctor", shop}), CliOutcome::FoundErrors);
  EXPECT_THAT(out.str(), HasSubstr("\nErrore\tNegozio: manca il nome del database\n"));
  EXPECT_THAT(out.str(), HasSubstr("al prezzo di 0\n"));
  change(shop, "UPDATE articoli SET prezzo = 10000");
  EXPECT_EQ(run({"doctor", shop, "--json"}), CliOutcome::FoundErrors);
  EXPECT_THAT(out.str(), StartsWith("[\n {\"check\": "));
  EXPECT_THAT(out.str(), Not(HasSubstr("price.zero")));
  EXPECT_EQ(run({"doctor", home / "nulla"}), CliOutcome::FoundErrors);
}

TEST_F(MovingShops, TheDoctorEndsWithOneForWarningsAndWithZeroForNothing) {
  silence(false);
  EXPECT_EQ(static_cast<int>(run({"doctor", shop})), 1);
  EXPECT_THAT(out.str(), StartsWith("Avviso\t"));
  EXPECT_THAT(out.str(), Not(HasSubstr("Errore\t")));
  silence(true);
  EXPECT_EQ(static_cast<int>(run({"doctor", shop})), 0);
  EXPECT_EQ(out.str(), "Nessun avviso.\n");
}

TEST_F(MovingShops, APurgeNamesUnusedPicturesAndDeletesThemWhenAsked) {
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile.gif"), "x"));
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/LOGO.gif"), "x"));
  change(shop, "UPDATE generale SET immagine0 = 'logo.gif'");
  EXPECT_EQ(run({"purge", shop}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "inutile.gif\n");
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile\n.gif"), "x"));
  EXPECT_EQ(run({"purge", shop}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "inutile?.gif\ninutile.gif\n") << "a line is a picture, whatever its name holds";
  ASSERT_TRUE(deleteFile(joinPath(shop, "work/inutile\n.gif")));
  EXPECT_TRUE(fileExists(joinPath(shop, "work/inutile.gif")));
  EXPECT_EQ(run({"purge", shop, "--delete", "--answer", "no"}), CliOutcome::Failed);
  EXPECT_TRUE(fileExists(joinPath(shop, "work/inutile.gif")));
  EXPECT_EQ(run({"purge", shop, "--delete"}), CliOutcome::Done);
  EXPECT_THAT(err.str(), HasSubstr("1 file cancellati"));
  EXPECT_EQ(listFiles(shop + "/work", "*"), (std::vector<std::string>{"LOGO.gif"}));
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile.gif"), "x"));
  test::FailingFiles gate(1);
  gate.onlyFor("/inutile.gif");
  EXPECT_EQ(run({"purge", shop, "--delete"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("0 file cancellati\nNon è stato possibile cancellare:\ninutile.gif\n"));
}

TEST_F(MovingShops, APictureIsReducedStoredAndTold) {
  const std::string file = savePicture("Foto Mare.jpg", {400, 200});
  const std::string article = read(shop, "SELECT ID FROM articoli");
  ASSERT_EQ(run({"picture", shop, file, "--article", article, "--slot", "2", "--fit", "180x135"}), CliOutcome::Done)
      << err.str();
  EXPECT_EQ(out.str(), "foto_mare_0001.jpg 180x90\n");
  EXPECT_EQ(read(shop, "SELECT immagine2 || imgX2 || 'x' || imgY2 FROM articoli WHERE ID = " + article),
            "foto_mare_0001.jpg180x90");
}

TEST_F(MovingShops, APictureOfADepartmentIsCopiedAsItIs) {
  const std::string file = savePicture("a.jpeg", {40, 20});
  const std::string department = read(shop, "SELECT ID FROM categorie");
  ASSERT_EQ(run({"picture", shop, file, "--department", department, "--slot", "1"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(out.str(), "a_0001.jpeg 40x20\n");
  EXPECT_EQ(read(shop, "SELECT imgX1 FROM categorie WHERE ID = '" + department + "'"), "40");
}

TEST_F(MovingShops, APictureNeedsARowASlotAndAFile) {
  const std::string file = savePicture("a.jpg", {4, 4});
  using Arguments = std::vector<std::string>;
  for (const Arguments& options :
       {Arguments{"--slot", "0"}, Arguments{"--article", "1"}, Arguments{"--article", "1", "--slot", "3"},
        Arguments{"--department", "cat001", "--slot", "2"}, Arguments{"--article", "x", "--slot", "0"},
        Arguments{"--article", "1", "--department", "cat001", "--slot", "0"},
        Arguments{"--article", "1", "--slot", "0", "--fit", "271x10"}}) {
    Arguments all{"picture", shop, file};
    all.insert(all.end(), options.begin(), options.end());
    EXPECT_EQ(run(all), CliOutcome::WrongUsage) << ::testing::PrintToString(options);
  }
  EXPECT_EQ(run({"picture", shop, file, "--article", "999999", "--slot", "0"}), CliOutcome::Failed);
  EXPECT_EQ(
      run({"picture", shop, shop + "/catalog.mdb", "--article", read(shop, "SELECT ID FROM articoli"), "--slot", "0"}),
      CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("L'immagine non può essere letta"));
  EXPECT_TRUE(listFiles(shop + "/work", "*").empty());
}

TEST_F(MovingShops, OptionsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(run({"export", shop, home / "copia", "--with", "TQ"}), CliOutcome::WrongUsage);
  EXPECT_EQ(err.str(), "valore non ammesso per --with: TQ\n");
  EXPECT_FALSE(folderExists(home / "copia"));
  EXPECT_EQ(run({"purge", shop, "--dry-run"}), CliOutcome::WrongUsage);
  EXPECT_THAT(err.str(), StartsWith("korvane-cli: opzione non prevista per il comando purge: --dry-run\n"));
  EXPECT_EQ(run({"export", shop}), CliOutcome::WrongUsage);
  EXPECT_THAT(err.str(), StartsWith("korvane-cli: manca la cartella di destinazione\n"));
}

}  // namespace
}  // namespace kv
