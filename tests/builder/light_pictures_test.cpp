// The lighter forms of pictures in a build: beside each picture and in the list of files, made once, and gone when they
// are turned off.
#include "builder/run/light_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "builder/run/build_settings.h"
#include "platform/files/files.h"
#include "platform/image/pixels.h"
#include "support/failing_files.h"
#include "support/temp_shop.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class LightBuild : public ::testing::Test {
 protected:
  /// A photo wide enough for a narrower form.
  void photo(const std::string& name, int width = 600) {
    auto pixels = checked(PixelBuffer::create({width, 200}));
    for (int x = 0; x < width * 3; ++x) pixels->row(100)[x] = static_cast<std::uint8_t>(x * 37);
    ASSERT_TRUE(writeBytes(work(name), valueOf(jpegOf(*pixels, 95))));
  }
  std::string work(const std::string& name) { return joinPath(joinPath(shop.folder(), "work"), name); }
  std::string kept(const std::string& name) { return joinPath(joinPath(shop.folder(), "leggere"), name); }
  std::vector<std::string> online() { return listFiles(joinPath(shop.folder(), "online"), "*.webp"); }
  std::string fileList() { return readBytes(joinPath(shop.folder(), "kvftp.dat")).value_or(""); }
  void setLight(bool wanted) { ASSERT_TRUE(storeLightPictures(shop.folder(), wanted)); }
  void build() {
    shop.random = FixedRandom();
    ASSERT_EQ(shop.build(), BuildOutcome::Done);
  }
  /// All that a build has made, the lighter forms left out: files by their paths, lists and rows by their names.
  std::map<std::string, std::string> made() {
    std::map<std::string, std::string> all;
    for (const std::string& folder : {shop.session.onlineFolder, shop.session.scriptFolder}) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().string();
        if (entry.is_regular_file() && !path.ends_with(".webp")) all[path] = readBytes(path).value_or("?");
      }
    }
    for (const std::string& line : shop.fileList()) {
      if (!line.ends_with(".webp")) all["kvftp.dat"] += line + "\n";
    }
    auto database = Database::open(joinPath(shop.folder(), "db/sql.mdb"), OpenMode::ReadOnly);
    const auto tables = database ? database->tables() : fail(database.error());
    EXPECT_TRUE(tables);
    for (const TableInfo& table : *tables) all["rows of " + table.name] = shop.rows("SELECT * FROM " + table.name);
    return all;
  }

  TempShop shop;
};

TEST_F(LightBuild, AnUntouchedShopHasNone) {
  photo("foto_0001.jpg");
  EXPECT_FALSE(wantsLightPictures(shop.folder()));
  build();
  EXPECT_THAT(online(), ElementsAre());
  EXPECT_FALSE(folderExists(kept("")));
  EXPECT_FALSE(fileExists(joinPath(shop.folder(), "costruzione.ini")));
}

TEST_F(LightBuild, TheFormsAreBesideThePictureAndInTheListOfFiles) {
  photo("foto_0001.jpg");
  photo("piccola_0001.jpg", 300);
  setLight(true);
  build();
  EXPECT_THAT(online(), ElementsAre("foto_0001.jpg.480.webp", "foto_0001.jpg.webp", "piccola_0001.jpg.webp"));
  for (const std::string& name : online()) EXPECT_THAT(fileList(), HasSubstr(name + "\r\n")) << name;
}

TEST_F(LightBuild, ASecondBuildMakesNone) {
  photo("foto_0001.jpg");
  setLight(true);
  build();
  const auto first = fileStamp(kept("foto_0001.jpg.webp"));
  build();
  const auto second = fileStamp(kept("foto_0001.jpg.webp"));
  ASSERT_TRUE(first && second);
  EXPECT_TRUE(*first == *second) << "what is written again has another time";
  EXPECT_EQ(online().size(), 2U);
}

TEST_F(LightBuild, AChangedPictureGetsNewForms) {
  photo("foto_0001.jpg");
  setLight(true);
  build();
  photo("foto_0001.jpg", 300);
  build();
  EXPECT_FALSE(fileExists(kept("foto_0001.jpg.480.webp")));
  EXPECT_EQ(imageSize(kept("foto_0001.jpg.webp")), (ImageSize{300, 200}));
  EXPECT_THAT(fileList(), Not(HasSubstr("foto_0001.jpg.480.webp")));
}

TEST_F(LightBuild, FormsOfAPictureThatIsGoneGoToo) {
  photo("foto_0001.jpg");
  setLight(true);
  build();
  ASSERT_TRUE(deleteFile(work("foto_0001.jpg")));
  build();
  EXPECT_FALSE(fileExists(kept("foto_0001.jpg.webp")));
}

TEST_F(LightBuild, TurnedOffTheSiteHasNoneLeft) {
  photo("foto_0001.jpg");
  setLight(true);
  build();
  setLight(false);
  build();
  EXPECT_THAT(online(), ElementsAre());
  EXPECT_FALSE(folderExists(joinPath(shop.folder(), "leggere")));
  EXPECT_THAT(fileList(), Not(HasSubstr(".webp")));
}

TEST_F(LightBuild, ADamagedPictureIsCopiedAndHasNone) {
  ASSERT_TRUE(writeBytes(work("rotta.jpg"), "\xFF\xD8 testo"));
  setLight(true);
  build();
  EXPECT_THAT(online(), ElementsAre());
  EXPECT_THAT(fileList(), HasSubstr("rotta.jpg\r\n"));
}

TEST_F(LightBuild, APictureOfTheMerchantKeepsItsName) {
  photo("foto_0001.jpg");
  ASSERT_TRUE(writeBytes(work("foto_0001.jpg.webp"), "mia"));
  setLight(true);
  build();
  EXPECT_EQ(valueOf(readBytes(joinPath(shop.folder(), "online/foto_0001.jpg.webp"))), "mia");
}

TEST_F(LightBuild, EveryPageAndRowIsTheSameWithAndWithout) {
  photo("foto_0001.jpg");
  photo("foto_0002.jpg", 1000);
  shop.templateFile("index.htm", "<<1-titolo>> <<1-immagine0>>");
  shop.update("generale", {{"titolo", std::string("Negozio")}, {"immagine0", std::string("foto_0002.jpg")}});
  for (const char* department : {"cat001", "cat002"}) {
    shop.department(department, {{"titolo", std::string("Vasi")},
                                 {"template", std::string("modello1")},
                                 {"immagine0", std::string("foto_0001.jpg")},
                                 {"immagine1", std::string("foto_0002.jpg")}});
    for (const char* picture : {"foto_0001.jpg", "FOTO_0002.jpg", ""}) {
      shop.article(department, {{"titolo", std::string("Vaso")},
                                {"immagine0", std::string(picture)},
                                {"immagine1", std::string("foto_0001.jpg")}});
    }
  }
  build();
  const auto plain = made();
  EXPECT_EQ(online().size(), 0U);
  EXPECT_GT(plain.size(), 10U);
  setLight(true);
  build();
  EXPECT_EQ(online().size(), 5U) << "two wholes, three narrower ones";
  const auto light = made();
  ASSERT_EQ(light.size(), plain.size());
  for (const auto& [name, bytes] : plain) EXPECT_TRUE(light.at(name) == bytes) << name;
}

TEST_F(LightBuild, AFullDiskAtAnyWriteOfAFormIsToldAndTheNextBuildMakesThemAll) {
  photo("foto_0001.jpg");
  setLight(true);
  int refused = 0;
  for (std::int64_t failing = 1;; ++failing) {
    FailingFiles gate(failing, AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
    gate.onlyFor(".webp");
    shop.user.shown.clear();
    const BuildOutcome outcome = shop.build();
    if (!gate.hasFailed()) break;
    ++refused;
    ASSERT_NE(outcome, BuildOutcome::Done) << failing;
    EXPECT_FALSE(shop.user.shown.empty()) << failing;
    for (const char* form : {"foto_0001.jpg.webp", "foto_0001.jpg.480.webp"}) {
      EXPECT_TRUE(!fileExists(kept(form)) || imageSize(kept(form))) << form << " is half written, " << failing;
    }
    ASSERT_EQ(std::system(("rm -rf '" + kept("") + "' '" + joinPath(shop.folder(), "online") + "'/*").c_str()), 0);
  }
  EXPECT_GE(refused, 12) << "two forms here, two beside the pages";
  EXPECT_THAT(online(), ElementsAre("foto_0001.jpg.480.webp", "foto_0001.jpg.webp"));
}

TEST_F(LightBuild, TheSettingIsThatOfTheShop) {
  MemorySettings program;
  ASSERT_TRUE(storeBuildSettings(shop.session, program, {true, ".htm", true}));
  EXPECT_TRUE(valueOf(loadBuildSettings(shop.session)).light);
  ASSERT_TRUE(storeBuildSettings(shop.session, program, {true, ".htm", false}));
  EXPECT_FALSE(valueOf(loadBuildSettings(shop.session)).light);
}

}  // namespace
}  // namespace kv::test
