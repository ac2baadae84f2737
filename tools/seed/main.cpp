// korvane-seed: makes the databases of a shop from seed files.
//   korvane-seed --pictures FOLDER --out FOLDER SEED...
// It leaves catalog.mdb, kvftp.mdb, source.new and new.mdb in the folder; on any fault it names file and line, leaves
// none of them, and returns 1.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "catalogue_check.h"
#include "catalogue_seeder.h"
#include "platform/files/files.h"
#include "seed_file.h"
#include "store/schema/schema.h"

namespace {

struct Arguments {
  std::string pictures;
  std::string out;
  std::vector<std::string> seeds;
};

bool read(std::span<char*> words, Arguments& arguments) {
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string word = words[i];
    if ((word == "--pictures" || word == "--out") && i + 1 < words.size())
      (word == "--out" ? arguments.out : arguments.pictures) = words[++i];
    else if (word.starts_with("--"))
      return false;
    else
      arguments.seeds.push_back(word);
  }
  return !arguments.pictures.empty() && !arguments.out.empty() && !arguments.seeds.empty();
}

kv::Result<> fill(kv::Database& catalogue, const Arguments& arguments) {
  if (kv::Result<> done = catalogue.begin(); !done) return done;
  std::vector<kv::SeedRow> rows;
  for (const std::string& path : arguments.seeds) {
    // Seed files are UTF-8, so they are read as bytes and not as a shop's text.
    const kv::Result<std::string> text = kv::readBytes(path);
    if (!text) return kv::fail(text.error());
    auto more = kv::parseSeed(path, *text);
    if (!more) return kv::fail(more.error());
    std::move(more->begin(), more->end(), std::back_inserter(rows));
  }
  const auto joined = kv::joinRows(std::move(rows));
  if (!joined) return kv::fail(joined.error());
  kv::CatalogueSeeder seeder(catalogue, arguments.pictures);
  if (kv::Result<> done = seeder.insert(*joined); !done) return done;
  if (kv::Result<> done = seeder.number(); !done) return done;
  return catalogue.commit();
}

kv::Result<> check(kv::Database& catalogue, const Arguments& arguments) {
  const auto complaints = kv::complaintsAbout(catalogue, arguments.pictures);
  if (!complaints) return kv::fail(complaints.error());
  if (complaints->empty()) return {};
  std::string all;
  for (const std::string& complaint : *complaints) all += "\n  " + complaint;
  return kv::fail(kv::ErrorKind::Malformed, "catalog.mdb", "breaks the rules of a catalogue:" + all);
}

struct Output {
  const char* name;
  std::vector<kv::TableInfo> tables;
};

kv::Result<> make(const Arguments& arguments, std::span<const Output> outputs) {
  if (kv::Result<> done = kv::createFolders(arguments.out); !done) return done;
  for (const Output& output : outputs) {
    const std::string path = kv::joinPath(arguments.out, output.name);
    if (kv::fileExists(path))
      if (kv::Result<> done = kv::deleteFile(path); !done) return done;
    if (kv::Result<> done = kv::createDatabase(path, output.tables); !done) return done;
  }
  kv::Result<kv::Database> catalogue =
      kv::Database::open(kv::joinPath(arguments.out, "catalog.mdb"), kv::OpenMode::Exclusive);
  if (!catalogue) return kv::fail(catalogue.error());
  if (kv::Result<> done = fill(*catalogue, arguments); !done) return done;
  return check(*catalogue, arguments);
}

}  // namespace

int main(int count, char** words) {
  Arguments arguments;
  if (!read({words, static_cast<std::size_t>(count)}, arguments)) {
    std::fputs("usage: korvane-seed --pictures FOLDER --out FOLDER SEED...\n", stderr);
    return 2;
  }
  const std::vector<Output> outputs{{"catalog.mdb", kv::catalogueTables()},
                                    {"kvftp.mdb", kv::transferTables()},
                                    {"source.new", kv::tagDatabaseTables()},
                                    {"new.mdb", kv::buildDatabaseTables()}};
  const kv::Result<> made = make(arguments, outputs);
  if (made) return 0;
  std::fprintf(stderr, "%s: %s\n", made.error().where.c_str(), made.error().what.c_str());
  for (const Output& output : outputs) (void)kv::deleteFile(kv::joinPath(arguments.out, output.name));
  return 1;
}
