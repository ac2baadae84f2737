// The part of a picture that is kept, and what turns and cuts make of the choice.
#include "media/choice/picture_crop.h"

#include <gtest/gtest.h>

#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_choice.h"
#include "platform/files/files.h"
#include "platform/image/photo_location.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

constexpr CropShape anyShape = cropShapes[0], square = cropShapes[1], fourToThree = cropShapes[2];

TEST(KeptPart, TheLargestOfAShapeIsInTheMiddle) {
  EXPECT_EQ(largestPart({400, 200}, anyShape), (PixelPart{0, 0, 400, 200}));
  EXPECT_EQ(largestPart({400, 200}, square), (PixelPart{100, 0, 200, 200}));
  EXPECT_EQ(largestPart({300, 400}, fourToThree), (PixelPart{0, 87, 300, 225}));
  EXPECT_EQ(largestPart({1, 1000}, fourToThree), (PixelPart{0, 499, 1, 1})) << "never less than a pixel";
}

TEST(KeptPart, ADragGoesInAnyDirectionAndEndsAtTheEdge) {
  EXPECT_EQ(partBetween({400, 200}, {10, 20}, {50, 40}, anyShape), (PixelPart{10, 20, 40, 20}));
  EXPECT_EQ(partBetween({400, 200}, {50, 40}, {10, 20}, anyShape), (PixelPart{10, 20, 40, 20}));
  EXPECT_EQ(partBetween({400, 200}, {350, 150}, {900, 900}, anyShape), (PixelPart{350, 150, 50, 50}));
  EXPECT_EQ(partBetween({400, 200}, {-9, -9}, {-5, -5}, anyShape), (PixelPart{0, 0, 1, 1}));
  EXPECT_EQ(partBetween({400, 200}, {400, 200}, {400, 200}, anyShape), (PixelPart{399, 199, 1, 1}));
}

TEST(KeptPart, AFixedShapeNarrowsTheDragFromItsFirstPoint) {
  EXPECT_EQ(partBetween({400, 200}, {10, 20}, {110, 60}, square), (PixelPart{10, 20, 40, 40}));
  EXPECT_EQ(partBetween({400, 200}, {110, 60}, {10, 20}, square), (PixelPart{70, 20, 40, 40}));
}

TEST(KeptPart, TypedNumbersAreMovedIntoThePicture) {
  EXPECT_EQ(fittedPart({400, 200}, {390, 0, 50, 50}, anyShape), (PixelPart{350, 0, 50, 50}));
  EXPECT_EQ(fittedPart({400, 200}, {0, 0, 900, 0}, anyShape), (PixelPart{0, 0, 400, 1}));
  EXPECT_EQ(fittedPart({400, 200}, {0, 100, 80, 7}, fourToThree), (PixelPart{0, 100, 80, 60}));
  EXPECT_EQ(fittedPart({400, 200}, {0, 0, 400, 7}, fourToThree), (PixelPart{0, 0, 266, 199}));
}

class EditingAPicture : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(createFolder(work));
    cDIBSection bitmap;
    ASSERT_TRUE(bitmap.Create(100, 50));
    ASSERT_TRUE(SaveJPG(bitmap, photo, 90));
    ASSERT_TRUE(SaveJPG(bitmap, work + "/mia_0004.jpg", 90));
  }
  test::TempFolder root;
  std::string work = root / "work", photo = root / "Foto.jpeg";
  MemorySettings settings;
  test::ScriptedUser user;
  PictureChoice choice{settings, user, work, {}};
};

TEST_F(EditingAPicture, AQuarterTurnIsWrittenAsANewJpeg) {
  choice.edits.quarters = 1;
  EXPECT_EQ(choice.preview(photo).mode, PictureMode::Reduced);
  EXPECT_EQ(choice.preview(photo).size, (ImageSize{50, 100}));
  EXPECT_EQ(choice.accept(photo), "foto_0001.jpg");
  EXPECT_EQ(shownSize(work + "/foto_0001.jpg"), (ImageSize{50, 100}));
}

TEST_F(EditingAPicture, FourQuartersAreNone) {
  for (const int quarters : {1, 2, 3, 0}) {
    choice.edits.quarters = quarters;
    EXPECT_EQ(choice.turnedPicture(photo).size(), (quarters % 2 != 0 ? ImageSize{50, 100} : ImageSize{100, 50}));
  }
  EXPECT_EQ(choice.preview(photo).mode, PictureMode::AsItIs);
}

TEST_F(EditingAPicture, ThePartOfTheTurnedPictureIsReducedToTheBox) {
  choice.edits = {1, PixelPart{0, 0, 40, 80}};
  choice.values.fits = true;
  choice.values.limits = {20, 20};
  EXPECT_EQ(choice.preview(photo).size, (ImageSize{10, 20}));
  EXPECT_EQ(choice.accept(photo), "foto_0001.jpg");
  EXPECT_EQ(shownSize(work + "/foto_0001.jpg"), (ImageSize{10, 20}));
}

TEST_F(EditingAPicture, OneOfTheShopGetsANameOfItsOwnAndTheOldFileStays) {
  const std::string old = work + "/mia_0004.jpg";
  const std::string before = test::valueOf(readBytes(old));
  choice.tab = PictureTab::Shop;
  choice.edits.part = PixelPart{10, 10, 30, 20};
  EXPECT_EQ(choice.accept(old), "mia_0005.jpg");
  EXPECT_EQ(test::valueOf(readBytes(old)), before);
  EXPECT_EQ(shownSize(work + "/mia_0005.jpg"), (ImageSize{30, 20}));
}

TEST_F(EditingAPicture, TheMostOfAPictureIsReadOnceForAllThatIsTried) {
  ASSERT_EQ(choice.preview(photo).size, (ImageSize{100, 50}));
  ASSERT_TRUE(deleteFile(photo));
  choice.edits.quarters = 3;
  EXPECT_EQ(choice.preview(photo).size, (ImageSize{50, 100}));
  EXPECT_EQ(choice.accept(photo), "") << "OK reads the file as it is then";
}

TEST_F(EditingAPicture, TheLocationOfACopiedPhotoStaysUnlessItIsLeftOut) {
  const std::string note = "\xFF\xE1" + std::string(1, '\0') + "\x2B" + "http://ns.adobe.com/xap/1.0/" +
                           std::string(1, '\0') + "GPSLatitude'";
  const std::string plain = test::valueOf(readBytes(photo));
  ASSERT_EQ(note.size(), 45U);
  ASSERT_TRUE(writeBytes(photo, plain.substr(0, 2) + note + plain.substr(2)));
  EXPECT_TRUE(choice.preview(photo).tellsLocation);
  EXPECT_EQ(choice.accept(photo), "foto_0001.jpeg");
  EXPECT_EQ(test::valueOf(readBytes(work + "/foto_0001.jpeg")), test::valueOf(readBytes(photo))) << "copied as it is";
  choice.values.dropsLocation = true;
  EXPECT_EQ(choice.accept(photo), "foto_0002.jpeg");
  EXPECT_EQ(test::valueOf(readBytes(work + "/foto_0002.jpeg")), plain);
  EXPECT_TRUE(readLoadImage(settings).dropsLocation) << "remembered by OK";
}

}  // namespace
}  // namespace kv
