// What OK of the picture dialog does, by the four modes, and what a failure leaves.
#include "media/choice/picture_choice.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_names.h"
#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

class ChoosingAPicture : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(createFolder(work));
    cDIBSection bitmap;
    ASSERT_TRUE(bitmap.Create(400, 200));
    std::fill_n(bitmap.DIBSectionBitsPtr(), bitmap.pixels().byteCount(), std::uint8_t{200});
    ASSERT_TRUE(SaveJPG(bitmap, large, 90));
    ASSERT_TRUE(bitmap.Create(20, 10));
    ASSERT_TRUE(SaveJPG(bitmap, small, 90));
  }
  PictureChoice choice(bool fits = true) {
    PictureChoice made(settings, user, work, "vecchia.jpg");
    made.values.fits = fits;
    return made;
  }
  std::vector<std::string> inWork() const { return listFiles(work, "*"); }

  test::TempFolder root;
  std::string work = root / "work", large = root / "Larga.jpeg", small = root / "Piccola.JPEG";
  MemorySettings settings;
  test::ScriptedUser user;
};

TEST_F(ChoosingAPicture, OneLargerThanTheBoxIsReduced) {
  PictureChoice chosen = choice();
  const PicturePreview shown = chosen.preview(large);
  EXPECT_EQ(shown.mode, PictureMode::Reduced);
  EXPECT_EQ(shown.size, (ImageSize{180, 90}));
  EXPECT_EQ(shown.picture.Width(), 180);
  EXPECT_EQ(chosen.accept(large), "larga_0001.jpg");
  EXPECT_EQ(shownSize(work + "/larga_0001.jpg"), (ImageSize{180, 90}));
}

TEST_F(ChoosingAPicture, APhotoThatTheCameraHeldSidewaysIsUprightWhenItIsReduced) {
  cDIBSection stored;
  ASSERT_TRUE(stored.Create(400, 200));
  const std::size_t row = stored.BytesPerScanLine();
  for (std::size_t y = 0; y < 200; ++y) std::fill_n(stored.DIBSectionBitsPtr() + y * row, row / 2, std::uint8_t{250});
  const std::string photo = root / "foto.jpg";
  ASSERT_TRUE(SaveJPG(stored, photo, 90));
  // The stored left is the top of what was seen.
  const std::string note(
      "\xFF\xE1\x00\x22"
      "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
      36);
  const std::string bytes = readBytes(photo).value();
  ASSERT_TRUE(writeBytes(photo, bytes.substr(0, 2) + note + bytes.substr(2)));
  EXPECT_EQ(choice().accept(photo), "foto_0001.jpg");
  EXPECT_EQ(imageSize(work + "/foto_0001.jpg"), (ImageSize{90, 180})) << "without a turn that is only noted";
  const auto made = readPixelsOf(work + "/foto_0001.jpg");
  ASSERT_TRUE(made);
  EXPECT_GT(made->row(0)[60], 200);
  EXPECT_LT(made->row(179)[60], 50);
}

TEST_F(ChoosingAPicture, OneThatFitsIsCopiedAsItIs) {
  PictureChoice chosen = choice();
  EXPECT_EQ(chosen.preview(small).mode, PictureMode::AsItIs);
  EXPECT_EQ(chosen.accept(small), "piccola_0001.jpeg");
  EXPECT_EQ(readBytes(work + "/piccola_0001.jpeg").value(), readBytes(small).value());
}

TEST_F(ChoosingAPicture, WithoutTheTickNothingIsReduced) {
  PictureChoice chosen = choice(false);
  EXPECT_EQ(chosen.preview(large).mode, PictureMode::AsItIs);
  EXPECT_EQ(chosen.accept(large), "larga_0001.jpeg");
}

TEST_F(ChoosingAPicture, AnUnreadableFileGivesNoPreviewAndAnEmptyTag) {
  ASSERT_TRUE(writeBytes(root / "x.jpg", "testo"));
  PictureChoice chosen = choice();
  const PicturePreview shown = chosen.preview(root / "x.jpg");
  EXPECT_EQ(shown.mode, PictureMode::Unreadable);
  EXPECT_EQ(shown.picture.Width(), 0);
  EXPECT_EQ(chosen.accept(root / "x.jpg"), "");
  EXPECT_TRUE(inWork().empty());
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(settings.get("LoadImage", "MaxSize"), "");
}

TEST_F(ChoosingAPicture, OneOfTheShopIsTakenByItsNameAndNotCopied) {
  ASSERT_TRUE(copyFile(large, work + "/larga_0007.jpg"));
  PictureChoice chosen = choice();
  chosen.tab = PictureTab::Shop;
  const PicturePreview shown = chosen.preview(work + "/larga_0007.jpg");
  EXPECT_EQ(shown.mode, PictureMode::OfShop);
  EXPECT_EQ(shown.size, (ImageSize{400, 200})) << "the box is of the disk's tab";
  EXPECT_EQ(chosen.accept(work + "/larga_0007.jpg"), "larga_0007.jpg");
  EXPECT_EQ(inWork(), (std::vector<std::string>{"larga_0007.jpg"}));
}

TEST_F(ChoosingAPicture, OneOfTheShopWhoseNameNoPageCanGiveIsCopiedUnderOneOfItsOwn) {
  for (const char* name : {"a\nb.jpg", "c\"d.jpg", "\xFF\xE8.jpg", "\u0444.jpg"}) {
    ASSERT_TRUE(copyFile(small, joinPath(work, name)));
    PictureChoice chosen = choice();
    chosen.tab = PictureTab::Shop;
    const auto taken = chosen.accept(joinPath(work, name));
    EXPECT_EQ(taken, uniquePictureName(root / "niente", name, false)) << name;
    EXPECT_EQ(readBytes(joinPath(work, taken.value_or(""))).value_or(""), readBytes(small).value()) << name;
  }
  ASSERT_TRUE(copyFile(small, work + "/Città €.jpg"));
  PictureChoice chosen = choice();
  chosen.tab = PictureTab::Shop;
  EXPECT_EQ(chosen.accept(work + "/Città €.jpg"), "Città €.jpg");
  ASSERT_TRUE(writeBytes(work + "/rotta.jpg", "testo"));
  EXPECT_EQ(chosen.accept(work + "/rotta.jpg"), "rotta.jpg") << "that it can't be read changes nothing";
}

TEST_F(ChoosingAPicture, TheSettingsAreStoredByOkAlone) {
  PictureChoice chosen = choice();
  chosen.values.path = root.path();
  EXPECT_TRUE(chosen.leaveWidth("100"));
  ignore(chosen.preview(large), "only the size is looked at");
  EXPECT_EQ(settings.get("LoadImage", "MaxWidth"), "");
  ASSERT_TRUE(chosen.accept(small));
  EXPECT_EQ(settings.get("LoadImage", "MaxWidth"), "100");
  EXPECT_EQ(settings.get("LoadImage", "MaxHeight"), "180");
  EXPECT_EQ(settings.get("LoadImage", "MaxSize"), "1");
  EXPECT_EQ(settings.get("LoadImage", "Path"), root.path());
}

TEST_F(ChoosingAPicture, ALimitOutOfRangeIsToldAndTheOldOneHolds) {
  PictureChoice chosen = choice();
  EXPECT_TRUE(chosen.leaveHeight("270"));
  EXPECT_FALSE(chosen.leaveHeight("271"));
  EXPECT_EQ(chosen.values.limits.height, 270);
  EXPECT_EQ(user.shown, (std::vector<test::Shown>{{"Specificare un numero compreso fra 5 e 270", Icon::Exclamation}}));
}

TEST_F(ChoosingAPicture, TwiceTheSameFileGivesTwoPictures) {
  PictureChoice chosen = choice();
  EXPECT_EQ(chosen.accept(large), "larga_0001.jpg");
  EXPECT_EQ(chosen.accept(large), "larga_0002.jpg");
}

TEST_F(ChoosingAPicture, AFailureIsToldAndLeavesNoHalfFile) {
  for (const std::string& source : {large, small}) {
    for (std::int64_t failing = 1;; ++failing) {
      user.shown.clear();
      test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
      gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
      PictureChoice chosen = choice();
      const auto name = chosen.accept(source);
      if (!gate.hasFailed()) break;
      EXPECT_EQ(name, std::nullopt) << failing;
      ASSERT_EQ(user.shown.size(), 1U) << failing;
      EXPECT_EQ(user.shown[0].icon, Icon::Critical);
      EXPECT_EQ(std::distance(std::filesystem::directory_iterator(work), {}), 0) << failing;
    }
    std::filesystem::remove_all(work);
    ASSERT_TRUE(createFolder(work));
  }
}

TEST_F(ChoosingAPicture, AFolderThatMayNotBeWrittenIsTold) {
  std::filesystem::permissions(work, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  PictureChoice chosen = choice();
  EXPECT_EQ(chosen.accept(large), std::nullopt);
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(ChoosingAPicture, AVanishedFolderIsMadeAgain) {
  std::filesystem::remove_all(work);
  PictureChoice chosen = choice();
  EXPECT_EQ(chosen.accept(large), "larga_0001.jpg");
}

TEST_F(ChoosingAPicture, ASideTheCatalogueCannotHoldIsRefusedByNameUnlessItIsReduced) {
  const std::string wide = root / "striscia.jpg";
  cDIBSection bitmap;
  ASSERT_TRUE(bitmap.Create(32768, 1));
  ASSERT_TRUE(SaveJPG(bitmap, wide, 90));
  PictureChoice asItIs = choice(false);
  EXPECT_EQ(asItIs.accept(wide), std::nullopt);
  EXPECT_EQ(user.texts(), std::vector<std::string>{
                              "L'immagine \"striscia.jpg\" è di 32768 x 1 punti, e nessun lato può superare 32767 "
                              "punti.\nRidurla prima di sceglierla, o farla adattare alle misure."});
  EXPECT_TRUE(inWork().empty());
  ASSERT_TRUE(copyFile(wide, work + "/striscia.jpg"));
  asItIs.tab = PictureTab::Shop;
  EXPECT_EQ(asItIs.accept(work + "/striscia.jpg"), std::nullopt);
  user.shown.clear();
  PictureChoice reduced = choice(true);
  EXPECT_EQ(reduced.accept(wide), "striscia_0001.jpg");
  EXPECT_TRUE(user.texts().empty());
  ASSERT_TRUE(bitmap.Create(32767, 1));
  ASSERT_TRUE(SaveJPG(bitmap, wide, 90));
  EXPECT_EQ(choice(false).accept(wide), "striscia_0002.jpg");
}

/// The start of a GIF, which holds its size, and no picture.
std::string gifOfSize(int width, int height) {
  std::string start = "GIF89a";
  for (const int side : {width, height}) (start += static_cast<char>(side % 256)) += static_cast<char>(side / 256);
  return start + std::string(3, '\0');
}

TEST_F(ChoosingAPicture, OneTooLargeToBeReadIsToldWithItsSizeAndTheLimit) {
  const std::string huge = root / "enorme.gif", film = root / "film.jpg";
  ASSERT_TRUE(writeBytes(huge, gifOfSize(60000, 60000)));
  ASSERT_TRUE(copyFile(small, film));
  std::filesystem::resize_file(film, (std::uintmax_t{300} << 20) + 1);
  PictureChoice chosen = choice();
  EXPECT_EQ(chosen.preview(huge).mode, PictureMode::Unreadable);
  EXPECT_EQ(chosen.accept(huge), std::nullopt);
  EXPECT_EQ(chosen.accept(film), std::nullopt);
  EXPECT_EQ(user.shown, (std::vector<test::Shown>{
                            {"L'immagine \"enorme.gif\" è di 60000 x 60000 punti, in tutto più dei 64 milioni "
                             "che si possono leggere.\nRidurla con un altro programma prima di sceglierla.",
                             Icon::Exclamation},
                            {"L'immagine \"film.jpg\" occupa 301 MB, più dei 256 che si possono "
                             "leggere.\nRidurla con un altro programma prima di sceglierla.",
                             Icon::Exclamation}}));
  ASSERT_TRUE(writeBytes(huge, gifOfSize(8000, 8000)));
  EXPECT_EQ(chosen.accept(huge), "") << "of the size that is read, but damaged";
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_TRUE(inWork().empty());
}

}  // namespace
}  // namespace kv
