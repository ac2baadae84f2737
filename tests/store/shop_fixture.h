#pragma once
// A machine with an application folder, shops to open and a scripted user, for the tests of the session's life.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "store/schema/schema.h"
#include "store/shop/session.h"
#include "support/fixed_clock.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

class ShopFixture : public ::testing::Test {
 protected:
  ShopFixture() : application(root / "app"), env{user, settings, clock, random, application, {}} {
    for (const char* folder : {"/template/base", "/languages"}) {
      const auto made = createFolders(application + folder);
      EXPECT_TRUE(made);
    }
    for (const char* name : {"/template/base/modello1.htm", "/template/base/modello2.htm", "/languages/italiano.lng"})
      std::ofstream(application + name) << "<KV_START><KV_END>";
  }

  /// A valid shop of the schema in use: version 1002, template "base", language "italiano", one article.
  std::string makeShop(const std::string& name, int version = 1002) {
    const std::string folder = root / name;
    makeShopIn(folder, version);
    return folder;
  }

  void makeShopIn(const std::string& folder, int version = 1002) {
    for (const char* working : {"work", "online", "scripts", "db"}) ASSERT_TRUE(createFolders(folder + "/" + working));
    std::filesystem::copy_file(model(), folder + "/catalog.mdb");
    if (version != 1002) run(folder, "UPDATE generale SET versione = " + std::to_string(version));
    touch(folder + "/kvftp.mdb");
    touch(folder + "/source.new");
  }

  /// Statements on the catalogue of a shop that is not open.
  static void run(const std::string& folder, const std::string& sql) {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue) << catalogue.error().what;
    const auto done = catalogue->execute(sql);
    ASSERT_TRUE(done) << done.error().what;
  }

  /// The first field of a query on the catalogue of a shop that is not open.
  static std::string read(const std::string& folder, const std::string& sql) {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
    if (!catalogue) return "not open: " + catalogue.error().what;
    const auto value = catalogue->scalar(sql);
    return value ? asText(*value) : "failed: " + value.error().what;
  }

  static void write(const std::string& path, std::string_view bytes) {
    ASSERT_TRUE(createFolders(std::string(folderOf(path))));
    ASSERT_TRUE(writeBytes(path, bytes));
  }

  std::string serverPath() const { return readBytes(application + "/serverpath.net").value_or("(none)"); }

  static Shown said(const std::string& text, Icon icon) { return {text, icon, Buttons::Ok, Answer::Ok, Answer::Ok}; }
  static Shown asked(const std::string& text, Answer preset, Answer given, Icon icon = Icon::Question) {
    return {text, icon, Buttons::YesNo, preset, given};
  }

  TempFolder root;
  std::string application;
  ScriptedUser user;
  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  Session session;
  Environment env;

 private:
  static void touch(const std::string& path) { std::ofstream(path, std::ios::app); }

  /// A catalogue made once for all tests of the program: making twenty tables takes longer than copying them.
  static std::string model() {
    static const TempFolder folder;
    const std::string path = folder / "catalog.mdb";
    if (fileExists(path)) return path;
    EXPECT_TRUE(createDatabase(path, catalogueTables()));
    run(folder.path(),
        "INSERT INTO generale (versione, template) VALUES (1002, 'base');"
        "INSERT INTO lingue (lingua1) VALUES ('italiano');"
        "INSERT INTO articoli (catID, titolo, ordinamento) VALUES ('cat001', 'Lampada', 100)");
    return path;
  }
};

}  // namespace kv::test
