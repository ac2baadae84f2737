// CreaPool: what is in the two pools of a language, and which references are rewritten there.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/value_of.h"
#include "tags/package/template_package.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;

class CreaPoolTest : public ::testing::Test {
 protected:
  CreaPoolTest() {
    sources.shopFolder = folder / "shop";
    sources.applicationFolder = folder / "app";
    sources.templateFolder = folder / "app/template/verde";
    sources.languageCode = "inglese";
    ignore(createFolders(sources.shopFolder), "a folder that misses fails the test later");
  }
  void put(const std::string& name, std::string_view bytes = "x") const {
    const std::string path = folder / name;
    ASSERT_TRUE(createFolders(std::string(folderOf(path))));
    ASSERT_TRUE(writeBytes(path, bytes));
  }
  void package(const std::string& name, std::string_view bytes = "x") const {
    put("app/template/verde/" + name, bytes);
  }
  std::string inTemplates(const std::string& name) const {
    return readBytes(folder / ("shop/tmp/1/" + name)).value_or("missing");
  }
  std::string inCode(const std::string& name) const {
    return readBytes(folder / ("shop/tmp/2/" + name)).value_or("missing");
  }

  test::TempFolder folder;
  PoolSources sources;
};

TEST_F(CreaPoolTest, EveryFileOfThePackageAndEveryScriptIsInItsPool) {
  for (const char* name : {"cart.htm", "modello1.htm", "logo.gif", "js1.js", "kvan_note.txt", "a.php"}) package(name);
  for (const char* name : {"js1.js", "a.pl", "b.asp", "c.php", "ve.dat", "d.kpg"}) put("app/code/" + std::string(name));
  const Pools pools = test::valueOf(CreaPool(sources, ""));
  EXPECT_EQ(pools.templatePool, folder / "shop/tmp/1");
  EXPECT_EQ(pools.codePool, folder / "shop/tmp/2");
  EXPECT_EQ(listFiles(pools.templatePool, "*.*"),
            (Names{"a.php", "cart.htm", "js1.js", "kvan_note.txt", "logo.gif", "modello1.htm"}));
  EXPECT_EQ(listFiles(pools.codePool, "*.*"), (Names{"a.pl", "b.asp", "c.php", "js1.js"}));
}

TEST_F(CreaPoolTest, WhatAnEarlierBuildLeftIsDeleted) {
  put("shop/tmp/1/old.htm");
  put("shop/tmp/2/old.js");
  put("shop/tmp/old.txt");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("old.htm"), "missing");
  EXPECT_EQ(inCode("old.js"), "missing");
  EXPECT_FALSE(fileExists(folder / "shop/tmp/old.txt"));
}

TEST_F(CreaPoolTest, AFileOfTheLanguageFolderReplacesOneOfThePackage) {
  package("Logo.gif", "package");
  package("inglese/logo.gif", "english");
  package("inglese/nota.txt", "added");
  package("francese/logo.gif", "french");
  ASSERT_TRUE(CreaPool(sources, "_l2"));
  EXPECT_EQ(inTemplates("Logo.gif"), "english");
  EXPECT_EQ(inTemplates("nota.txt"), "added");
  EXPECT_EQ(listFiles(folder / "shop/tmp/1", "*.*"), (Names{"Logo.gif", "nota.txt"}));
}

TEST_F(CreaPoolTest, ALanguageFoldersModelReplacesThePagesModelButReferencesToItStay) {
  package("modello2.htm", "package");
  package("inglese/modello2.htm", "english \"modello2.htm\" \"cart.htm\"");
  package("cart.htm", "\"modello2.htm\"");
  ASSERT_TRUE(CreaPool(sources, "_l2"));
  EXPECT_EQ(inTemplates("modello2.htm"), "english \"modello2.htm\" \"cart<<1-IDlingua>>.php\"");
  EXPECT_EQ(inTemplates("cart.htm"), "\"modello2.htm\"");
}

TEST_F(CreaPoolTest, TheShopsScriptsBeatThoseOfTheApplication) {
  put("app/code/funcs.php", "app");
  put("app/code/js1.js", "app");
  put("shop/code/FUNCS.php", "shop");
  put("shop/code/mine.pl", "shop");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inCode("funcs.php"), "shop");
  EXPECT_EQ(inCode("js1.js"), "app");
  EXPECT_EQ(inCode("mine.pl"), "shop");
}

TEST_F(CreaPoolTest, AShopWithOneLanguageGetsItsReferencesRewrittenToo) {
  package("cart.htm", "<a href=\"ORDER.htm\"><img src=logo.gif><script src='js1.js'>\xE8");
  package("order.htm", "");
  package("logo.gif", "\"cart.htm\"");
  put("app/code/js1.js", "f(\"cart.htm\", 'funcs.php')");
  put("app/code/funcs.php", "include \"funcs.php\";");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("cart.htm"),
            "<a href=\"order<<1-IDlingua>>.php\"><img src=logo<<1-IDlingua>>.gif><script "
            "src='js1<<1-IDlingua>>.js'>\xE8");
  EXPECT_EQ(inCode("js1.js"), "f(\"cart<<1-IDlingua>>.php\", 'funcs<<1-IDlingua>>.php')");
  EXPECT_EQ(inCode("funcs.php"), "include \"funcs<<1-IDlingua>>.php\";");
  EXPECT_EQ(inTemplates("logo.gif"), "\"cart.htm\"") << "a resource is no text";
}

TEST_F(CreaPoolTest, InTheFirstLanguageWithoutAPageExtensionReferencesStay) {
  package("cart.htm", "\"cart.htm\"");
  sources.pageExtension = ".htm";
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("cart.htm"), "\"cart.htm\"");
  ASSERT_TRUE(CreaPool(sources, "_l2"));
  EXPECT_EQ(inTemplates("cart.htm"), "\"cart<<1-IDlingua>>.htm\"");
}

TEST_F(CreaPoolTest, WhatIsNoResourceGetsNoReference) {
  for (const char* name : {"kvan_preview.jpg", "kvan_col_1.gif", "x.kpg"}) package(name);
  package("cart.htm", "'kvan_preview.jpg' 'kvan_col_1.gif' 'x.kpg' 'kvan_menu.ini'");
  package("kvan_menu.ini");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("cart.htm"), "'kvan_preview.jpg' 'kvan_col_1.gif' 'x.kpg' 'kvan_menu<<1-IDlingua>>.ini'");
}

TEST_F(CreaPoolTest, PatchesComeBeforeTheReferencesAreRewritten) {
  put("app/code/js2.js", "a");
  sources.PatchScript = [this](const std::string& codePool) {
    EXPECT_EQ(codePool, folder / "shop/tmp/2");
    EXPECT_EQ(inCode("js2.js"), "a");
    EXPECT_TRUE(writeBytes(codePool + "/js2.js", "'js2.js'"));
  };
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inCode("js2.js"), "'js2<<1-IDlingua>>.js'");
}

TEST_F(CreaPoolTest, AShopInTheApplicationFolderIsCopiedOnce) {
  put("app/code/js1.js", "app");
  sources.shopFolder = sources.applicationFolder;
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(readBytes(folder / "app/tmp/2/js1.js").value_or("missing"), "app");
}

TEST_F(CreaPoolTest, APageWithoutReferencesIsNotWrittenAgain) {
  package("a.htm", "no reference");
  package("b.htm", "\"a.htm\"");
  std::filesystem::file_time_type copied;
  // The hook runs between the copies and the rewriting.
  sources.PatchScript = [&](const std::string&) {
    const std::filesystem::path path = folder / "shop/tmp/1/a.htm";
    copied = std::filesystem::last_write_time(path) - std::chrono::hours(1);
    std::filesystem::last_write_time(path, copied);
  };
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(std::filesystem::last_write_time(folder / "shop/tmp/1/a.htm"), copied);
  EXPECT_EQ(inTemplates("b.htm"), "\"a<<1-IDlingua>>.php\"");
}

TEST_F(CreaPoolTest, AFileThatCannotBeCopiedIsSimplyNotThere) {
  package("cart.htm", "'logo.gif'");
  ASSERT_TRUE(createFolders(sources.templateFolder));
  std::filesystem::create_symlink(folder / "nowhere", sources.templateFolder + "/logo.gif");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("logo.gif"), "missing");
  EXPECT_NE(inTemplates("cart.htm"), "missing");
}

TEST_F(CreaPoolTest, AccentedNamesMeetReferencesInTheCodePageOfTheFiles) {
  package("citt\xC3\xA0.gif");
  package("cart.htm", "src=\"CITT\xC0.gif\"");
  ASSERT_TRUE(CreaPool(sources, ""));
  EXPECT_EQ(inTemplates("cart.htm"), "src=\"citt\xE0<<1-IDlingua>>.gif\"");
}

}  // namespace
}  // namespace kv
