// A kill in the middle of a picture choice, a purge or a zip: the shop is whole, no row names a missing picture, and no
// file is half written.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "platform/database/database.h"
#include "platform/files/trees.h"
#include "platform/image/pixels.h"
#include "shell/cli/cli_program.h"
#include "support/killed_process.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

class KilledPictures : public ::testing::Test {
 protected:
  KilledPictures() : shop(home / "negozio"), application(home / "app") {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"new", "languages", "template"}) {
      EXPECT_TRUE(copyTree(data + "/" + folder, application + "/" + folder));
    }
    EXPECT_TRUE(copyTree(data + "/new", shop));
    for (const char* working : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + working));
    EXPECT_TRUE(emptyFolder(shop + "/work"));
    const auto pixels = PixelBuffer::create({1200, 900});
    photo = *jpegOf(*pixels, 90);
    EXPECT_TRUE(writeBytes(home / "Foto.jpg", photo));
    article = read("SELECT min(ID) FROM articoli");
    // The pictures of the model were taken away above.
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    EXPECT_TRUE(catalogue && catalogue->execute("UPDATE articoli SET immagine0 = ''"));
  }
  std::string read(const std::string& sql) const {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    const auto value = catalogue ? catalogue->scalar(sql) : fail(catalogue.error());
    return value ? asText(*value) : value.error().what;
  }
  /// Runs a command in a process of its own, which is killed at some moment.
  void killed(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--app", application});
    process.run([&] {
      std::ostringstream out, err;
      ignore(runCommandLine(arguments, {out, err, {}, ""}), "it may be killed before it ends");
    });
  }
  void expectWhole() const {
    EXPECT_EQ(read("PRAGMA integrity_check"), "ok");
    const std::string named = read("SELECT COALESCE(immagine0, '') FROM articoli WHERE ID = " + article);
    EXPECT_TRUE(named.empty() || readPixelsOf(joinPath(shop, "work/" + named))) << named << " is named";
    for (const std::string& name : listFiles(shop + "/work", "*")) {
      EXPECT_TRUE(readPixelsOf(joinPath(shop, "work/" + name))) << name << " is half written";
    }
  }

  test::TempFolder home;
  std::string shop, application, photo, article;
  test::KilledProcess process;
};

TEST_F(KilledPictures, AChoiceLeavesAWholePictureOrNone) {
  for (int i = 0; i <= test::operationsOf(50); ++i) {
    killed({"picture", shop, home / "Foto.jpg", "--article", article, "--slot", "0", "--fit", "180x135"});
    expectWhole();
  }
}

TEST_F(KilledPictures, APurgeNeverTakesAPictureInUse) {
  for (int i = 0; i <= test::operationsOf(50); ++i) {
    for (int n = 0; n < 30; ++n) {
      ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile_" + std::to_string(n) + ".jpg"), photo));
    }
    ASSERT_TRUE(writeBytes(joinPath(shop, "work/usata.jpg"), photo));
    {
      auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
      ASSERT_TRUE(catalogue && catalogue->execute("UPDATE articoli SET immagine0 = 'USATA.JPG'"));
    }
    killed({"purge", shop, "--delete"});
    EXPECT_TRUE(fileExists(joinPath(shop, "work/usata.jpg")));
    EXPECT_EQ(read("PRAGMA integrity_check"), "ok");
  }
}

TEST_F(KilledPictures, AZipIsWholeOrNotThere) {
  const std::string copy = home / "copia", zip = copy + "/negozio.zip";
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/foto.jpg"), std::string(3'000'000, 'x')));
  for (int i = 0; i <= test::operationsOf(50); ++i) {
    killed({"export", shop, copy, "--zip"});
    EXPECT_EQ(read("PRAGMA integrity_check"), "ok");
    EXPECT_FALSE(fileExists(copy + "/catalog.mdb")) << "what is not packed is no shop either";
    EXPECT_TRUE(!fileExists(zip) || std::system(("python3 -m zipfile -t '" + zip + "' > /dev/null 2>&1").c_str()) == 0);
    ASSERT_TRUE(!folderExists(copy) || removeBelow(copy));
  }
}

}  // namespace
}  // namespace kv
