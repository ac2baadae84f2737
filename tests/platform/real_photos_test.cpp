// A photo of a wallpaper package, brought into other forms by programs of others: what is read here is what ImageMagick
// reads.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <cstdlib>
#include <map>

#include "platform/files/files.h"
#include "platform/image/pixels.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

constexpr const char* photo = "/usr/share/backgrounds/Fossa_by_Jasper_Roks.jpg";

/// All forms, made once for all tests: each takes a program's start.
class RealPhotos : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new test::TempFolder;
    run(std::string("convert '") + photo + "' -resize '240x160!' -strip -quality 92 base.jpg");
    run("convert base.jpg base.png");
  }
  static void TearDownTestSuite() { delete folder; }

  static void run(const std::string& command) {
    ASSERT_EQ(std::system(("export MAGICK_THREAD_LIMIT=1; cd '" + folder->path() + "' && " + command).c_str()), 0)
        << command;
  }
  static std::string made(const std::string& name) { return *folder / name; }
  /// A form that `command` writes from base.png.
  static std::string form(const std::string& options, const std::string& name) {
    run("convert base.png " + options + " " + name);
    return made(name);
  }

  /// The pixels as ImageMagick reads them: upright, on white, as red, green, blue from the top.
  static std::string others(const std::string& path) {
    run("convert '" + path +
        "[0]' -auto-orient -background white -alpha remove -colorspace sRGB -depth 8 rgb:seen.rgb");
    return readBytes(made("seen.rgb")).value_or("");
  }
  /// How far ours are from them, as the mean over all colours; -1 when one of them can't be read.
  static double distance(const std::string& path, const std::string& wanted) {
    const auto pixels = readPixelsOf(path);
    if (!pixels) return -1;
    const ImageSize size = pixels->size();
    if (wanted.size() != static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 3) return -1;
    double sum = 0;
    std::size_t at = 0;
    for (int y = 0; y < size.height; ++y) {
      const std::uint8_t* const row = pixels->row(y);
      for (int x = 0; x < size.width * 3; ++x, ++at) {
        const int ours = row[x / 3 * 3 + 2 - x % 3];
        sum += std::abs(ours - static_cast<int>(static_cast<std::uint8_t>(wanted[at])));
      }
    }
    return sum / static_cast<double>(wanted.size());
  }
  static void expectSame(const std::string& path, double most) {
    const double far = distance(path, others(path));
    EXPECT_GE(far, 0) << path;
    EXPECT_LE(far, most) << path;
    EXPECT_EQ(shownSize(path), (ImageSize{240, 160})) << path;
  }

  /// A profile of Display P3, by its primaries and white: SMPTE EG 432-1, with the curve of sRGB.
  static void writeWideProfile(const std::string& path) {
    const cmsCIExyY white{0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries{{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
    const cmsFloat64Number curve[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    cmsToneCurve* const one = cmsBuildParametricToneCurve(nullptr, 4, curve);
    cmsToneCurve* const each[3] = {one, one, one};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, each);
    ASSERT_TRUE(cmsSaveProfileToFile(profile, path.c_str()));
    cmsCloseProfile(profile);
    cmsFreeToneCurve(one);
  }

  static test::TempFolder* folder;
};
test::TempFolder* RealPhotos::folder = nullptr;

TEST_F(RealPhotos, LosslessFormsAreReadToTheByte) {
  expectSame(made("base.png"), 0);
  expectSame(form("-interlace PNG", "interlaced.png"), 0);
  expectSame(form("-colors 64", "palette.png"), 0);
  expectSame(form("-colors 64", "palette.gif"), 0);
  expectSame(form("-define webp:lossless=true", "lossless.webp"), 0);
}

TEST_F(RealPhotos, JpegsOfEverySamplingAreReadAsOthersReadThem) {
  expectSame(made("base.jpg"), 0.5);
  expectSame(form("-interlace JPEG -quality 85", "progressive.jpg"), 0.5);
  expectSame(form("-sampling-factor 1x1 -quality 70", "full.jpg"), 0.5);
  expectSame(form("-colorspace Gray", "grey.jpg"), 0.5);
}

TEST_F(RealPhotos, JpegsAreReadToTheByteAsDjpegReadsThem) {
  form("-interlace JPEG -quality 85", "progressive.jpg");
  form("-sampling-factor 1x1 -quality 70", "full.jpg");
  run("djpeg -pnm base.jpg > base.ppm && cjpeg -quality 75 -optimize -outfile turbo.jpg base.ppm");
  run("cjpeg -quality 30 -sample 2x1 -restart 1 -outfile restarts.jpg base.ppm");
  for (const char* name : {"base.jpg", "progressive.jpg", "full.jpg", "turbo.jpg", "restarts.jpg"}) {
    run(std::string("djpeg -pnm ") + name + " > read.ppm");
    const std::string read = readBytes(made("read.ppm")).value_or("");
    ASSERT_EQ(read.substr(0, 15), "P6\n240 160\n255\n") << name;
    EXPECT_EQ(distance(made(name), read.substr(15)), 0) << name;
  }
}

TEST_F(RealPhotos, FourInksAndSixteenBitsComeOutAsAScreenShowsThem) {
  expectSame(form("-colorspace CMYK", "inks.jpg"), 1);
  expectSame(form("-depth 16 -evaluate add 0.2%", "deep.png"), 1);
}

TEST_F(RealPhotos, ColoursOfAWideScreenComeOutAsThoseOfAnOrdinaryOne) {
  writeWideProfile(made("wide.icc"));
  cmsHPROFILE ordinary = cmsCreate_sRGBProfile();
  ASSERT_TRUE(cmsSaveProfileToFile(ordinary, made("ordinary.icc").c_str()));
  cmsCloseProfile(ordinary);
  run("convert base.png -quality 95 -profile wide.icc +write wide.png +write wide.jpg -profile ordinary.icc -depth 8 "
      "rgb:brought.rgb");
  const std::string wanted = readBytes(made("brought.rgb")).value_or("");
  for (const auto& [name, most] : {std::pair{"wide.png", 0.5}, {"wide.jpg", 2.0}}) {
    const double far = distance(made(name), wanted);
    EXPECT_GE(far, 0) << name;
    EXPECT_LE(far, most) << name;
  }
  EXPECT_GT(distance(made("wide.png"), others(made("base.png"))), 3) << "the stored numbers are shown";
}

TEST_F(RealPhotos, AnAnimationShowsItsFirstPicture) {
  run("convert -delay 10 base.png \\( base.png -negate \\) -colors 64 moving.gif");
  expectSame(made("moving.gif"), 0);
}

TEST_F(RealPhotos, AWebpOfItsOwnToolIsReadAsThatToolReadsIt) {
  run("cwebp -quiet -q 75 base.png -o lossy.webp && dwebp -quiet lossy.webp -ppm -o lossy.ppm");
  expectSame(made("lossy.ppm").replace(made("lossy.ppm").size() - 3, 3, "webp"), 1.5);
}

TEST_F(RealPhotos, EveryTurnOfACameraComesOutUpright) {
  // What exiftran does to the stored pixels so that a turn by the orientation brings them back.
  const std::map<int, std::string> turns{{2, "-F"}, {3, "-1"}, {4, "-f"}, {5, "-t"}, {6, "-2"}, {7, "-T"}, {8, "-9"}};
  const std::string wanted = others(made("base.jpg"));
  for (const auto& [orientation, turn] : turns) {
    run("exiftran " + turn + " -o turned.jpg base.jpg 2>/dev/null");
    const std::string stored = readBytes(made("turned.jpg")).value_or("");
    std::string note(
        "\xFF\xE1\x00\x22"
        "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\0\0\0\0\0\0\0",
        36);
    note[29] = static_cast<char>(orientation);
    const std::string noted = made("noted.jpg");
    ASSERT_TRUE(writeBytes(noted, stored.substr(0, 2) + note + stored.substr(2)));
    EXPECT_EQ(shownSize(noted), (ImageSize{240, 160})) << orientation;
    const double far = distance(noted, wanted);
    EXPECT_GE(far, 0) << orientation;
    EXPECT_LE(far, 1.5) << orientation;
  }
}

TEST_F(RealPhotos, OneThatIsCutOffAtAnyTenthIsRefused) {
  form("-quality 80", "whole.webp");
  for (const char* name : {"base.jpg", "base.png", "whole.webp"}) {
    const std::string bytes = readBytes(made(name)).value_or("");
    for (std::size_t tenth = 1; tenth < 10; ++tenth) {
      EXPECT_FALSE(readPixels(bytes.substr(0, bytes.size() * tenth / 10))) << name << ' ' << tenth;
    }
  }
}

}  // namespace
}  // namespace kv
