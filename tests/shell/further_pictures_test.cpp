// What is said beside the picture of an article: the pictures that the site shows with it.
#include "shell/workbench/fields/further_pictures.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

TEST(FurtherPictures, AreCountedAndNamed) {
  TempFolder folder;
  for (const char* name : {"vaso.jpg", "vaso-2.jpg", "vaso-3.jpg", "piatto.jpg", "piatto-2.jpg", "tazza.jpg"}) {
    ASSERT_TRUE(writeBytes(folder / name, "x"));
  }
  EXPECT_EQ(furtherPictures(folder / "vaso.jpg"), "E altre 2: vaso-2.jpg, vaso-3.jpg");
  EXPECT_EQ(furtherPictures(folder / "piatto.jpg"), "E un'altra: piatto-2.jpg");
  EXPECT_EQ(furtherPictures(folder / "tazza.jpg"), "");
  EXPECT_EQ(furtherPictures(""), "");
}

}  // namespace
}  // namespace kv::test
