// What commerce adds to the daily work of a large shop: the copying of a language beside one bare UPDATE of the same
// texts, the opening of a shop that is up to date with and without the look whether it is, and the patching of the
// scripts beside the build that it is a part of. Each runs in a process of its own, all in turn, so that they see the
// same machine; the fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "bench_shop.h"
#include "catalogue_shop.h"
#include "commerce/replication/language_replication.h"
#include "measure.h"
#include "platform/files/settings.h"
#include "platform/files/trees.h"
#include "platform/ports/clock.h"
#include "store/schema/column_family.h"
#include "store/schema/schema.h"
#include "store/shop/load_shop.h"
#include "store/upgrade/script_patches.h"
#include "store/upgrade/shop_upgrade.h"

namespace {

using kv::bench::inOwnProcess;
using kv::bench::keepFaster;
using kv::bench::Measured;
using kv::bench::printBar;
using kv::bench::secondsOf;
using kv::bench::Timed;
namespace fs = std::filesystem;

constexpr int upkeepRounds = 5;
constexpr double copyBar = 3;
constexpr double openingBar = 1.1;
constexpr double patchBar = 0.05;
constexpr int builtArticles = 1000;
constexpr int builtLanguages = 4;  // each has a pool of its own, whose scripts are patched

constexpr const char* inUse =
    ";INSERT INTO lingue (lingua1, lingua2, lingua3, lingua4) VALUES ('italiano', 'inglese', 'francese', 'tedesco');"
    "UPDATE generale SET template = 'classico'";

/// "UPDATE" of the texts of language 2, each by `term`, in which "?" is the same text of language 1.
std::string setTexts(const std::string& term) {
  std::string fields;
  for (const kv::ColumnRule& column : kv::languageViewRule("articoli")->columns) {
    const bool isText = column.type == kv::ColumnType::Text || column.type == kv::ColumnType::Memo;
    if (!isText || !column.inLanguageView || column.spread != kv::Spread::Languages) continue;
    std::string value = term;
    if (const auto at = value.find('?'); at != std::string::npos) value.replace(at, 1, column.name);
    fields += (fields.empty() ? "UPDATE articoli SET " : ", ") + column.name + "_l2 = " + value;
  }
  return fields;
}

class LargeShop {
 public:
  LargeShop(const std::string& folder, int articles)
      : folder_(folder), shop_(folder, articles, setTexts("'x' || ID") + inUse) {
    // The first opening brings the catalogue up to date.
    const std::string stamp = std::string(kv::currentGeneration) + "\r\n";
    fs::create_directories(shop_.shop() + "/code");
    for (const auto& [file, text] : {std::pair{"/kvftp.mdb", std::string()}, {"/code/ve.dat", stamp}}) {
      if (!kv::writeBytes(shop_.shop() + file, text)) std::abort();
    }
    const std::string source = shop_.shop() + "/source.new";
    if (!fs::exists(source) && !kv::createDatabase(source, kv::tagDatabaseTables())) std::abort();
    open(true);
  }
  Timed bare() const { return {shop_.bareSeconds(setTexts("?")), 0}; }
  Timed copied() const {
    kv::Database catalogue = shop_.fresh();
    kv::bench::SilentUser user(kv::Answer::Yes);
    return {secondsOf([&] {
              return kv::ReplicaLingue(catalogue, {1, 2, {false, false, true, false}}, user) == kv::BulkEnd::Done;
            }),
            0};
  }
  Timed opened(bool upgraded) const { return {open(upgraded), 0}; }

 private:
  std::string application() const { return folder_ + "/app"; }
  double open(bool upgraded) const {
    kv::bench::SilentUser user(kv::Answer::Yes);
    kv::MemorySettings settings;
    kv::Environment env{user, settings, kv::systemClock(), kv::systemRandom(), application(), {}};
    if (upgraded) {
      env.hooks.AggiornaNegozio = [&env](const std::string& folder) {
        kv::AggiornaNegozio(folder, env.applicationFolder);
      };
    }
    kv::Session session;
    session.ShopFolder = shop_.shop();
    return secondsOf([&] { return kv::CaricaNegozio(session, env) == kv::LoadResult::Opened; });
  }

  std::string folder_;
  kv::bench::CatalogueShop shop_;
};

/// The patching of the pools of all languages, the scripts being such as are changed.
Timed patched(const std::string& folder) {
  kv::MemorySettings settings;
  const kv::PatchFacts facts{settings, true, true};
  double seconds = 0;
  for (int language = 0; language < builtLanguages; ++language) {
    fs::remove_all(folder + "/pool");
    if (!kv::createFolders(folder + "/pool") || !kv::copyTree(folder + "/app/code", folder + "/pool")) std::abort();
    for (const auto& script : fs::directory_iterator(folder + "/pool")) {
      std::string text = kv::readBytes(script.path().string()).value_or("");
      if (const auto mark = text.find(kv::patchedMark); mark != std::string::npos) {
        text.replace(mark, kv::patchedMark.size(), "$alldisp = \"\"; $Lingua = \"\";");
      }
      if (!kv::writeBytes(script.path().string(), text)) std::abort();
    }
    seconds += secondsOf([&] {
      kv::PatchScript(folder + "/pool", facts);
      return true;
    });
  }
  return {seconds, 0};
}

int run(const std::string& folder, int articles) {
  const LargeShop shop(folder + "/large", articles);
  kv::bench::BenchShop built(folder + "/built", builtArticles, builtLanguages);
  Measured bare, copied, plain, upgraded, build, patch;
  for (int i = 0; i < upkeepRounds; ++i) {
    keepFaster(bare, inOwnProcess([&] { return shop.bare(); }));
    keepFaster(copied, inOwnProcess([&] { return shop.copied(); }));
    keepFaster(plain, inOwnProcess([&] { return shop.opened(false); }));
    keepFaster(upgraded, inOwnProcess([&] { return shop.opened(true); }));
    built.clearOutput();
    keepFaster(build, inOwnProcess([&] {
                 double pages = 0;
                 return Timed{secondsOf([&] { return built.build(&pages); }), pages};
               }));
    keepFaster(patch, inOwnProcess([&] { return patched(folder + "/built"); }));
  }
  for (const Measured& one : {bare, copied, plain, upgraded, build, patch}) {
    if (one.ok && one.wall > 0) continue;
    std::printf("one of the runs failed\n");
    return 1;
  }
  std::printf("%d articles: UPDATE of a language's texts %.3f s, its copying %.3f s\n", articles, bare.wall,
              copied.wall);
  std::printf("opening %.3f s, with the look whether the shop is up to date %.3f s\n", plain.wall, upgraded.wall);
  std::printf("%d articles: build %.3f s, patching of its scripts %.4f s\n\nBars\n", builtArticles, build.wall,
              patch.wall);
  printBar("language copied / UPDATE", copied.wall / bare.wall, copyBar);
  printBar("opening with the look / without", upgraded.wall / plain.wall, openingBar);
  printBar("patching / build", patch.wall / build.wall, patchBar);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const kv::bench::FreshFolder folder;
  for (const char* shop : {"/large", "/built"}) fs::create_directories(folder.path() + shop);
  return run(folder.path(), quick ? 10000 : 100000);
}
