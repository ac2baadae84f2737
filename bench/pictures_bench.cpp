// Pictures of a shop: the reduction beside a plain loop, a photo from file to file with the memory it takes, lighter
// forms beside the programs that make them one by one, the purge beside a bare read, an export beside cp and zip. Each
// pair runs in turn on the same machine, and the fastest of each counts.
//
// Arguments: --quick (fewer pictures and articles); names of parts (memory, reduction, files, light, purge, export), of
// which only those are measured.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "builder/run/light_pictures.h"
#include "measure.h"
#include "media/bitmap/save_jpg.h"
#include "media/choice/picture_choice.h"
#include "media/purge/unused_pictures.h"
#include "platform/files/trees.h"
#include "store/catalogue/used_pictures.h"
#include "store/exchange/export_shop.h"
#include "store/shop/load_shop.h"

namespace {

using kv::bench::inOwnProcess;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::Timed;
using kv::bench::verdict;
namespace fs = std::filesystem;
using Parts = std::set<std::string>;

constexpr int pictureRounds = 3;
constexpr int photoRounds = 9;  // of a tenth of a second each
constexpr kv::ImageSize photoSize{4000, 3000};
constexpr kv::ImageSize lightSize{1000, 750};  // as wide as a page shows a photo, with both narrower forms
constexpr kv::ImageSize boxOfPhotos{180, 135};
constexpr double spareMiB = 32;  // what a process may use beside the pixels that it reads and writes

class BenchUser final : public kv::UserPort {
 public:
  std::string folder;
  void message(const std::string&, kv::Icon) override {}
  kv::Answer question(const kv::Question&) override { return kv::Answer::Yes; }
  std::string chooseFolder(const std::string&, const std::string&) override { return folder; }
  void progress(const kv::Progress&) override {}
  bool yield() override { return true; }
};

/// The fastest of some rounds of two kinds of work, in turn.
struct Pair {
  double ours = 1e9, theirs = 1e9;
};
Pair inTurn(const std::function<bool()>& ours, const std::function<bool()>& theirs, int rounds = pictureRounds) {
  Pair pair;
  for (int round = 0; round < rounds; ++round) {
    const double one = secondsOf(ours), other = secondsOf(theirs);
    if (one == 0 || other == 0) std::abort();
    pair = {std::min(pair.ours, one), std::min(pair.theirs, other)};
  }
  return pair;
}
void printPair(const char* what, const Pair& pair, double bar) {
  const double ratio = pair.ours / pair.theirs;
  std::printf("%-58s %8.3f s %8.3f s  ratio %5.2f  bar %4.2f  %s\n", what, pair.ours, pair.theirs, ratio, bar,
              verdict(ratio <= bar));
  std::fflush(stdout);
}

bool runs(const std::string& command) { return std::system(command.c_str()) == 0; }

/// A picture with the detail of a photo.
kv::cDIBSection detailed(int width, int height) {
  kv::cDIBSection made;
  if (!made.Create(width, height)) std::abort();
  std::uint8_t* bytes = made.DIBSectionBitsPtr();
  unsigned value = 11;
  for (std::size_t i = 0; i < made.pixels().byteCount(); ++i) {
    value = value * 1664525U + 1013904223U;
    bytes[i] = static_cast<std::uint8_t>(i / 3 / 16 % 180 + (value >> 27U));
  }
  return made;
}

/// The rules of the reduction as a plain loop.
void plainLoop(const kv::cDIBSection& from, kv::cDIBSection& to) {
  const auto xScale = static_cast<float>((from.Width() - 1) / static_cast<double>(to.Width()));
  const auto yScale = static_cast<float>((from.Height() - 1) / static_cast<double>(to.Height()));
  for (int y = 0; y < to.Height(); ++y) {
    const double sy = static_cast<double>(yScale) * y, fy = sy - std::floor(sy);
    const std::uint8_t* const row = from.DIBSectionBitsPtr() + static_cast<std::size_t>(sy) * from.BytesPerScanLine();
    std::uint8_t* const out = to.DIBSectionBitsPtr() + static_cast<std::size_t>(y) * to.BytesPerScanLine();
    for (int x = 0; x < to.Width(); ++x) {
      const double sx = static_cast<double>(xScale) * x, fx = sx - std::floor(sx);
      const std::uint8_t* const at = row + static_cast<std::size_t>(sx) * 3;
      const std::uint8_t* const below = at + from.BytesPerScanLine();
      for (int c = 0; c < 3; ++c) {
        const double left = std::nearbyint((1 - fy) * at[c] + fy * below[c]);
        const double right = std::nearbyint((1 - fy) * at[c + 3] + fy * below[c + 3]);
        const double value = std::nearbyint((1 - fx) * left + fx * right);
        out[x * 3 + c] = static_cast<std::uint8_t>(value > 255 ? 255 : value);
      }
    }
  }
}

void measureReduction(const kv::cDIBSection& photo) {
  for (const kv::ImageSize size : {kv::ImageSize{180, 135}, kv::ImageSize{2000, 1500}}) {
    kv::cDIBSection ours, theirs;
    if (!ours.Create(size.width, size.height) || !theirs.Create(size.width, size.height)) std::abort();
    const int times = size.width < 1000 ? 200 : 5;
    const auto repeated = [times](const std::function<void()>& work) {
      for (int i = 0; i < times; ++i) work();
      return true;
    };
    const Pair pair = inTurn([&] { return repeated([&] { kv::ignore(photo.Resample(ours), "both have pixels"); }); },
                             [&] { return repeated([&] { plainLoop(photo, theirs); }); });
    const bool areEqual = std::equal(ours.DIBSectionBitsPtr(), ours.DIBSectionBitsPtr() + ours.pixels().byteCount(),
                                     theirs.DIBSectionBitsPtr());
    printPair(size.width < 1000 ? "12 megapixels to 180 x 135, beside a plain loop"
                                : "12 megapixels to 2000 x 1500, beside a plain loop",
              pair, 1.0);
    if (!areEqual) std::printf("  the bytes differ: MISSED\n");
  }
}

/// A photo brought into the box of a shop's pictures, from file to file.
bool fitPhoto(const std::string& file, const std::string& work) {
  kv::MemorySettings settings;
  BenchUser user;
  kv::PictureChoice choice(settings, user, work, {});
  choice.values.fits = true;
  choice.values.limits = boxOfPhotos;
  return choice.accept(file).has_value();
}

/// The peak of a photo from file to file. Runs before this process holds a photo itself: a child begins with its pages.
void measureMemory(const std::string& folder) {
  const std::string file = folder + "/grande.jpg", work = folder + "/memoria";
  if (!kv::createFolders(work)) std::abort();
  const auto timed = [](const std::function<bool()>& action) {
    return inOwnProcess([&] { return Timed{secondsOf(action), 0}; });
  };
  const Measured written =
      timed([&] { return kv::SaveJPG(detailed(photoSize.width, photoSize.height), file, 90).has_value(); });
  const Measured fitted = timed([&] { return fitPhoto(file, work); });
  if (!written.ok || !fitted.ok) std::abort();
  const auto mebibytes = [](kv::ImageSize size) { return size.width * size.height * 3 / 1048576.0; };
  const double bar = mebibytes(photoSize) + mebibytes(boxOfPhotos) + spareMiB;
  std::printf("%-58s %8.1f MiB %10s           bar %5.1f  %s\n", "peak of a photo from file to file", fitted.peakMiB, "",
              bar, verdict(fitted.peakMiB <= bar));
}

void measureFileToFile(const kv::cDIBSection& photo, const std::string& folder) {
  const std::string file = folder + "/foto.jpg", work = folder + "/work";
  if (!kv::SaveJPG(photo, file, 90) || !kv::createFolders(work)) std::abort();
  const auto ours = [&] { return fitPhoto(file, work); };
  const auto plain = [&] {
    auto pixels = kv::readPixels(kv::readBytes(file).value_or(""));
    kv::cDIBSection from, to;
    from.CreateFromPicture(std::move(*pixels));
    if (!to.Create(180, 135)) return false;
    plainLoop(from, to);
    const auto jpeg = kv::jpegOf(to.pixels(), 90);
    return jpeg && kv::writeBytes(work + "/piano.jpg", *jpeg);
  };
  const std::string convert =
      "convert '" + file + "' -filter triangle -resize '180x135!' -quality 90 '" + work + "/altro.jpg'";
  printPair("a photo from file to file, beside decode, loop and encode", inTurn(ours, plain, photoRounds), 1.05);
  const auto previews = [&](int sizes) {
    kv::MemorySettings settings;
    BenchUser user;
    kv::PictureChoice choice(settings, user, work, {});
    choice.values.fits = true;
    bool isSeen = true;
    for (int i = 0; i < sizes; ++i) {
      choice.values.limits = {90 + 60 * i, 90 + 60 * i};
      isSeen = choice.preview(file).size.width > 0 && isSeen;
    }
    return isSeen;
  };
  printPair("three sizes of a photo, beside one",
            inTurn([&] { return previews(3); }, [&] { return previews(1); }, photoRounds), 1.8);
  const std::string vips = "vips resize '" + file + "' '" + work + "/terzo.jpg[Q=90]' 0.045 --kernel linear";
  printPair("a photo from file to file, beside convert", inTurn(ours, [&] { return runs(convert); }), 0.8);
  printPair("a photo from file to file, beside vips resize", inTurn(ours, [&] { return runs(vips); }), 1.0);
}

/// As many copies of one photo: what is measured depends on their number and pixels alone.
void makePhotos(const std::string& work, int count) {
  const auto photo = kv::jpegOf(detailed(lightSize.width, lightSize.height).pixels(), 90);
  if (!kv::createFolders(work) || !photo) std::abort();
  for (int i = 0; i < count; ++i) {
    if (!kv::writeBytes(work + "/foto_" + std::to_string(i) + ".jpg", *photo)) std::abort();
  }
}

// The other programs take the longest of all that is measured here, the same for each photo: some of them stand for
// all.
void measureLight(const std::string& folder, int count) {
  const std::string shop = folder + "/leggero", work = shop + "/work";
  makePhotos(work, count);
  const std::vector<std::string> names = kv::listFiles(work, "*");
  const auto all = [&] {
    kv::LightFolder light(shop);
    for (const std::string& name : names) {
      if (!light.formsOf(work + "/" + name, names)) return false;
    }
    return light.finish().has_value();
  };
  const double ours = secondsOf(all), again = secondsOf(all);
  const int sample = std::max(count / 8, 5);
  const double theirs = secondsOf([&] {
    return runs("cd '" + work + "' && mkdir ../altri && for f in $(ls | head -n " + std::to_string(sample) +
                "); do cwebp -quiet -q 80 $f -o ../altri/$f.webp && "
                "for w in 480 960; do convert $f -resize $w ../altri/w.png && cwebp -quiet -q 80 ../altri/w.png -o "
                "../altri/$f.$w.webp || exit 1; done; done");
  });
  printPair(
      ("lighter forms of " + std::to_string(count) + " photos, beside convert and cwebp by " + std::to_string(sample))
          .c_str(),
      {ours, theirs * count / sample}, 0.8);
  printPair("the same once more, beside the first time", {again, ours}, 0.05);
}

void measurePurge(kv::Database& catalogue, const std::string& folder, int count) {
  const std::string work = folder + "/immagini";
  if (!kv::createFolders(work)) std::abort();
  for (int i = 0; i < count; ++i) {
    if (!kv::writeBytes(work + "/foto_" + std::to_string(i) + ".jpg", "x")) std::abort();
  }
  const auto search = [&](bool withTexts) {
    BenchUser user;
    kv::PurgeSources sources{
        work, [&](const kv::TextReader& read) { return kv::usedPictures(catalogue, read); }, {}, {}};
    if (withTexts) sources.texts = [&](const kv::TextReader& read) { return kv::readAllTexts(catalogue, read); };
    return kv::PicturePurge(std::move(sources), user).search();
  };
  const auto bare = [&] {
    auto rows = catalogue.prepare("SELECT immagine0, immagine1, immagine2 FROM articoli");
    std::size_t bytes = 0;
    while (rows->step().value_or(false)) {
      for (int column = 0; column < 3; ++column) bytes += rows->text(column).size();
    }
    return bytes > 0;
  };
  printPair("unused pictures, beside a bare read of the columns", inTurn([&] { return search(false); }, bare), 3);
  const auto texts = [&] {
    std::size_t bytes = 0;
    return kv::readAllTexts(catalogue, [&](std::string_view text) { bytes += text.size(); }) && bytes > 0;
  };
  printPair("the same with what texts name, beside a read of all texts", inTurn([&] { return search(true); }, texts),
            3);
}

void measureExport(kv::Session& session, kv::Environment& env, BenchUser& user, const std::string& folder) {
  const std::string work = session.ShopFolder + "/work", copy = folder + "/copia";
  for (int i = 0; i < 2000; ++i) {
    if (!kv::writeBytes(work + "/peso_" + std::to_string(i) + ".jpg", std::string(100'000, 'x'))) std::abort();
  }
  const auto exported = [&](const std::string& tag) {
    fs::remove_all(copy);
    fs::create_directory(copy);
    user.folder = copy;
    return kv::EsportaNegozio(session, env, [&](const kv::ExportOffer&) { return tag; }) == kv::ExportOutcome::Done;
  };
  const std::string other = "'" + folder + "/altra'";
  printPair("an export, beside cp -a",
            inTurn([&] { return exported("OK"); },
                   [&] { return runs("rm -rf " + other + " && cp -a '" + session.ShopFolder + "' " + other); }),
            1.3);
  printPair("an export as zip, beside zip -0",
            inTurn([&] { return exported("OKZ"); },
                   [&] {
                     return runs("cd '" + session.ShopFolder + "' && rm -f " + other + ".zip && zip -0 -q -r " + other +
                                 ".zip .");
                   }),
            1.2);
}

/// The model shop with many articles, each with a picture and a description of a kilobyte.
void makeShop(const std::string& folder, int articles, int usedPictures) {
  const std::string data = KORVANE_APP_DATA;
  for (const char* part : {"new", "languages", "template"}) {
    if (!kv::copyTree(data + "/" + part, folder + "/app/" + part)) std::abort();
  }
  if (!kv::copyTree(data + "/new", folder + "/shop")) std::abort();
  for (const char* part : {"work", "online", "scripts", "db"}) {
    if (!kv::createFolders(folder + "/shop/" + part)) std::abort();
  }
  auto catalogue = kv::Database::open(folder + "/shop/catalog.mdb", kv::OpenMode::Shared);
  const std::string rows =
      "INSERT INTO articoli (catID, titolo, descrizione, immagine0, immagine1) WITH RECURSIVE n(i) AS (SELECT 1 UNION "
      "ALL "
      "SELECT i + 1 FROM n WHERE i < " +
      std::to_string(articles) +
      ") SELECT (SELECT min(ID) FROM categorie), 'Vaso ' || i, "
      "replace(hex(zeroblob(40)), '0', 'Ogni pezzo. '), 'foto_' || (i % " +
      std::to_string(usedPictures) +
      ") || '.jpg', 'foto_' || (i % 50) || '.jpg' "
      "FROM n";
  if (!catalogue || !catalogue->execute(rows)) std::abort();
}

void measureShop(const std::string& folder, bool isQuick, const Parts& parts) {
  const int pictures = isQuick ? 1'000 : 10'000;
  makeShop(folder, isQuick ? 10'000 : 100'000, pictures * 9 / 10);
  BenchUser user;
  kv::MemorySettings settings;
  kv::Environment env{user, settings, kv::systemClock(), kv::systemRandom(), folder + "/app", {}};
  kv::Session session;
  session.ShopFolder = folder + "/shop";
  if (!kv::writeBytes(folder + "/app/serverpath.net", session.ShopFolder + "\r\n")) std::abort();
  if (kv::CaricaNegozio(session, env) != kv::LoadResult::Opened) std::abort();
  if (parts.contains("purge")) measurePurge(session.catalogue, folder, pictures);
  if (parts.contains("export")) measureExport(session, env, user, folder);
}

}  // namespace

int main(int count, char** arguments) {
  bool isQuick = false;
  Parts parts;
  for (int i = 1; i < count; ++i) {
    if (std::string_view(arguments[i]) == "--quick") {
      isQuick = true;
    } else {
      parts.insert(arguments[i]);
    }
  }
  if (parts.empty()) parts = {"memory", "reduction", "files", "light", "purge", "export"};
  const kv::bench::FreshFolder folder;
  std::printf("%-58s %10s %10s\n", "", "ours", "theirs");
  if (parts.contains("memory")) measureMemory(folder.path());
  if (parts.contains("reduction") || parts.contains("files")) {
    const kv::cDIBSection photo = detailed(photoSize.width, photoSize.height);
    if (parts.contains("reduction")) measureReduction(photo);
    if (parts.contains("files")) measureFileToFile(photo, folder.path());
  }
  if (parts.contains("light")) measureLight(folder.path(), isQuick ? 10 : 200);
  if (parts.contains("purge") || parts.contains("export")) measureShop(folder.path(), isQuick, parts);
  return 0;
}
