// Names of pictures in the image folder: what they are made of, and that none is ever given twice.
#include "media/choice/picture_names.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"
#include "support/test_seed.h"

namespace kv {
namespace {

class PictureNames : public ::testing::Test {
 protected:
  void present(const std::string& name) { ASSERT_TRUE(writeBytes(folder / name, "x")); }
  std::string named(const std::string& source, bool forceJpg = false) const {
    return uniquePictureName(folder.path(), source, forceJpg);
  }
  test::TempFolder folder;
};

TEST_F(PictureNames, TheTailIsOneAboveTheHighest) {
  present("foto_00a1.gif");
  present("foto_00a2.gif");
  EXPECT_EQ(named("foto_00a1.gif"), "foto_00a3.gif");
}

TEST_F(PictureNames, CapitalsSpacesAndAccentsArePlain) {
  EXPECT_EQ(named("Città Bella.JPG"), "citt__bella_0001.jpg");
  EXPECT_EQ(named("/a/b c/Foto di Mare.PNG"), "foto_di_mare_0001.png");
}

TEST_F(PictureNames, AReducedPictureIsAJpeg) {
  EXPECT_EQ(named("foto.gif", true), "foto_0001.jpg");
  EXPECT_EQ(named("foto.gif", false), "foto_0001.gif");
}

TEST_F(PictureNames, EachOtherCharacterIsOneUnderscore) {
  EXPECT_EQ(named("aàb€c.jpg"), "a_b_c_0001.jpg");
  EXPECT_EQ(named("a\xFF.jpg"), "a__0001.jpg") << "a byte that is no UTF-8";
}

TEST_F(PictureNames, ANameWithoutPointHasNoExtension) { EXPECT_EQ(named("foto"), "foto_0001"); }

TEST_F(PictureNames, TheLastPointCounts) { EXPECT_EQ(named("foto.di.mare.Gif"), "foto_di_mare_0001.gif"); }

TEST_F(PictureNames, ATailNeedsAStemAndHexadecimalDigits) {
  EXPECT_EQ(named("_00a1.jpg"), "_00a1_0001.jpg") << "a tail alone is a stem";
  EXPECT_EQ(named("foto_zzzz.jpg"), "foto_zzzz_0001.jpg");
  EXPECT_EQ(named("foto_00A1.jpg"), "foto_0001.jpg") << "lower-cased first";
  EXPECT_EQ(named("foto_00a.jpg"), "foto_00a_0001.jpg");
}

TEST_F(PictureNames, TailsOfAnyCaseAndNoOtherNamesAreCounted) {
  present("FOTO_00AF.JPG");
  present("foto_00zz.jpg");
  present("foto_0fff.gif");
  present("fotografia_0fff.jpg");
  EXPECT_EQ(named("foto.jpg"), "foto_00b0.jpg");
}

TEST_F(PictureNames, TheTailGrowsToFiveDigitsAndNothingIsOverwritten) {
  present("foto_ffff.jpg");
  EXPECT_EQ(named("foto.jpg"), "foto_10000.jpg");
  present("foto_10000.jpg");
  present("Foto_10001.JPG");
  EXPECT_EQ(named("foto.jpg"), "foto_10002.jpg");
}

TEST_F(PictureNames, NothingIsOverwrittenInAFolderThatCantBeListed) {
  present("foto_0001.jpg");
  present("foto_0002.jpg");
  test::FailingFiles gate(1, test::AfterFailure::FailsToo);
  gate.onlyAt({FileStep::List});
  EXPECT_EQ(named("foto.jpg"), "foto_0003.jpg");
}

TEST_F(PictureNames, AnExtensionCarriesNoLineEndAndNoQuote) {
  EXPECT_EQ(named("foto.j\np\"g"), "foto_0001.j_p_g");
  EXPECT_EQ(named("foto.jp\xE9"), "foto_0001.jp_");
  EXPECT_EQ(named("\xFF\nmare.jpg"), "__mare_0001.jpg");
}

TEST_F(PictureNames, AStemThatLeavesNoRoomForItsTailIsCut) {
  EXPECT_EQ(named(std::string(246, 'X') + ".jpg"), std::string(246, 'x') + "_0001.jpg") << "255 bytes";
  const std::string cut(231, 'x');
  EXPECT_EQ(named(std::string(247, 'X') + ".jpg"), cut + "_0001.jpg");
  present(cut + "_0001.jpg");
  EXPECT_EQ(named(std::string(251, 'x') + ".png", true), cut + "_0002.jpg");
}

TEST_F(PictureNames, NamesOfChanceNeverMeet) {
  std::mt19937 chance(test::seed());
  const std::vector<std::string> pieces{"foto", "Foto", "_00a1", "_ffff", "_", "à", " ", "É", ".", "x", "0", "_0001"};
  std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
  // The folder is listed for each name, so that many with few pictures take less time than a large one.
  for (unsigned i = 0; i < test::seeds(40); ++i) {
    const test::TempFolder pictures;
    std::set<std::string> given;
    for (int n = 0; n < test::operationsOf(250); ++n) {
      std::string source;
      for (int part = 0; part < 3; ++part) source += pieces[piece(chance)];
      const std::string name = uniquePictureName(pictures.path(), source + ".jpg", n % 2 == 0);
      ASSERT_TRUE(given.insert(foldCase(name)).second) << name << " for " << source;
      std::ofstream(pictures / name) << 'x';
    }
  }
}

TEST_F(PictureNames, TheListShowsPicturesOnly) {
  for (const char* name : {"b.JPG", "a.gif", "c.webp", "d.jpeg", "e.png", "f.txt", "g.jpg.bak"}) present(name);
  ASSERT_TRUE(createFolder(folder / "z.jpg"));
  EXPECT_EQ(pictureFiles(folder.path()), (std::vector<std::string>{"a.gif", "b.JPG", "c.webp", "d.jpeg", "e.png"}));
}

}  // namespace
}  // namespace kv
