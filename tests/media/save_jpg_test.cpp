// A bitmap written as a JPEG file: the same pixels as the program cjpeg gives, and what is kept of an old file.
#include "media/bitmap/save_jpg.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files/files.h"
#include "support/command_output.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

/// A soft picture with some detail; odd width, so that rows are padded.
cDIBSection softPicture() {
  cDIBSection made;
  EXPECT_TRUE(made.Create(61, 43));
  for (int y = 0; y < made.Height(); ++y) {
    std::uint8_t* const row = made.DIBSectionBitsPtr() + static_cast<std::size_t>(y) * made.BytesPerScanLine();
    for (int i = 0; i < made.Width() * 3; ++i) row[i] = static_cast<std::uint8_t>((i * 5 + y * 3 + i % 3 * 40) % 256);
  }
  return made;
}

/// A bitmap of chance: every byte its own, the hardest picture for a coder.
cDIBSection noisyPicture(int width, int height) {
  cDIBSection made;
  EXPECT_TRUE(made.Create(width, height));
  made.RandomiseBits(false, systemRandom());
  return made;
}

/// The bitmap as a file of the "netpbm" kind: red, green, blue from the top.
std::string asNetpbm(const cDIBSection& bitmap) {
  std::string made = "P6\n" + std::to_string(bitmap.Width()) + " " + std::to_string(bitmap.Height()) + "\n255\n";
  for (int y = 0; y < bitmap.Height(); ++y) {
    const std::uint8_t* const row = bitmap.pixels().row(y);
    for (int x = 0; x < bitmap.Width(); ++x) {
      for (int channel = 2; channel >= 0; --channel) made += static_cast<char>(row[x * 3 + channel]);
    }
  }
  return made;
}

/// What the program djpeg of libjpeg-turbo decodes from a JPEG.
std::string decodedByDjpeg(const std::string& path) { return test::outputOf("djpeg -pnm '" + path + "'"); }

TEST(SavedJpeg, DecodesToTheSamePixelsAsOneOfCjpegAtThatQuality) {
  const test::TempFolder root;
  for (const cDIBSection& bitmap : {softPicture(), noisyPicture(180, 135), noisyPicture(1, 1), noisyPicture(17, 3)}) {
    SCOPED_TRACE(std::to_string(bitmap.Width()) + " x " + std::to_string(bitmap.Height()));
    ASSERT_TRUE(writeBytes(root / "a.ppm", asNetpbm(bitmap)));
    for (const int quality : {90, 40}) {
      ASSERT_EQ(test::outputOf("cjpeg -quality " + std::to_string(quality) + " -outfile '" + root / "cjpeg.jpg' '" +
                               root / "a.ppm' 2>&1"),
                "");
      ASSERT_TRUE(SaveJPG(bitmap, root / "a.jpg", quality));
      const std::string wanted = decodedByDjpeg(root / "cjpeg.jpg");
      ASSERT_EQ(wanted.substr(0, 3), "P6\n");
      EXPECT_TRUE(decodedByDjpeg(root / "a.jpg") == wanted) << "quality " << quality;
    }
  }
}

TEST(SavedJpeg, AnOldFileKeepsItsTimeAndPermissions) {
  const test::TempFolder root;
  const std::string path = root / "a.jpg";
  ASSERT_TRUE(writeBytes(path, "prima"));
  const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000);
  std::filesystem::last_write_time(path, old);
  std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const auto before = fileStamp(path);
  ASSERT_TRUE(before);
  ASSERT_TRUE(SaveJPG(softPicture(), path, 90));
  EXPECT_TRUE(readPixelsOf(path));
  EXPECT_EQ(test::valueOf(fileStamp(path)).changedAt, before->changedAt);
  EXPECT_EQ(std::filesystem::status(path).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(SavedJpeg, AFailureHasTheNumberAndTheTextOfTheModule) {
  const test::TempFolder root;
  const auto none = SaveJPG(cDIBSection(), root / "a.jpg", 90);
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().number, 26001);
  EXPECT_EQ(none.error().what, "Failed to initialise the IJL library: -1");
  EXPECT_EQ(none.error().where, "Korvane.mIntelJPEGLibrary");
  const auto lost = SaveJPG(softPicture(), root / "niente/a.jpg", 90);
  ASSERT_FALSE(lost);
  EXPECT_EQ(lost.error().number, 26001);
  EXPECT_EQ(lost.error().kind, ErrorKind::Missing);
  EXPECT_EQ(lost.error().what, "Failed to save to JPG " + std::to_string(ENOENT));
}

TEST(SavedJpeg, AFullDiskLeavesTheOldFileAtEveryWrite) {
  const test::TempFolder root;
  const std::string path = root / "a.jpg";
  ASSERT_TRUE(writeBytes(path, "prima"));
  bool reached = true;
  for (std::int64_t failing = 1; reached; ++failing) {
    test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
    const auto saved = SaveJPG(softPicture(), path, 90);
    reached = gate.hasFailed();
    if (!reached) continue;
    ASSERT_FALSE(saved) << failing;
    EXPECT_EQ(saved.error().kind, ErrorKind::Full);
    EXPECT_EQ(readBytes(path).value_or(""), "prima");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(root.path()), {}), 1) << "no half file";
  }
  EXPECT_TRUE(readPixelsOf(path)) << "the disk has room again";
}

}  // namespace
}  // namespace kv
