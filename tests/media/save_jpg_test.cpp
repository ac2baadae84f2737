// A bitmap written as a JPEG file: the same pixels as libjpeg's own settings give, and what is kept of an old file.
#include "media/bitmap/save_jpg.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
// jpeglib.h needs std::size_t and FILE declared before it.
#include <jpeglib.h>

#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

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

/// The same pixels as red, green, blue from the top, written by libjpeg at quality 90 as its manual's example does.
std::string plainJpeg(const cDIBSection& bitmap) {
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* bytes = nullptr;
  unsigned long count = 0;
  jpeg_mem_dest(&jpeg, &bytes, &count);
  jpeg.image_width = static_cast<JDIMENSION>(bitmap.Width());
  jpeg.image_height = static_cast<JDIMENSION>(bitmap.Height());
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 90, TRUE);
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = 0; y < bitmap.Height(); ++y) {
    std::vector<JSAMPLE> row;
    for (int x = 0; x < bitmap.Width(); ++x) {
      for (int channel = 2; channel >= 0; --channel) row.push_back(bitmap.pixels().row(y)[x * 3 + channel]);
    }
    JSAMPROW pointer = row.data();
    jpeg_write_scanlines(&jpeg, &pointer, 1);
  }
  jpeg_finish_compress(&jpeg);
  std::string made(reinterpret_cast<const char*>(bytes), count);
  jpeg_destroy_compress(&jpeg);
  std::free(bytes);
  return made;
}

TEST(SavedJpeg, DecodesToThePixelsOfTheUsualSettings) {
  const test::TempFolder root;
  const cDIBSection bitmap = softPicture();
  ASSERT_TRUE(SaveJPG(bitmap, root / "a.jpg", 90));
  const auto saved = readPixelsOf(root / "a.jpg");
  const auto wanted = readPixels(plainJpeg(bitmap));
  ASSERT_TRUE(saved && wanted);
  ASSERT_EQ(saved->size(), wanted->size());
  for (int y = 0; y < 43; ++y) {
    ASSERT_TRUE(std::equal(saved->row(y), saved->row(y) + 61 * 3, wanted->row(y))) << y;
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
  EXPECT_EQ(fileStamp(path)->changedAt, before->changedAt);
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
