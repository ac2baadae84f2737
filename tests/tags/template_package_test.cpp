// Template packages: which are offered, which of their files are resources, the showcase cell.
#include "tags/package/template_package.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;
using Names = std::vector<std::string>;

void put(const std::string& path, std::string_view bytes = "x") {
  ASSERT_TRUE(createFolders(std::string(folderOf(path))));
  ASSERT_TRUE(writeBytes(path, bytes));
}

TEST(TemplatePackages, AFolderWithoutAModelIsNotOffered) {
  const TempFolder application;
  put(application / "template/verde/modello1.htm");
  put(application / "template/Blu/MODELLO_a.HTM");
  put(application / "template/vuoto/cart.htm");
  put(application / "template/vuoto/modello1.html.txt");
  put(application / "template/modello1.htm");
  EXPECT_EQ(templatePackages(application.path()), (Names{"Blu", "verde"}));
}

TEST(TemplatePackages, WithoutAFolderOfTemplatesNoneIsOffered) {
  const TempFolder application;
  EXPECT_EQ(templatePackages(application.path()), Names{});
}

TEST(PageModels, ModelsAreNamedWithoutTheirExtension) {
  const TempFolder package;
  for (const char* name : {"modello2.htm", "Modello1.htm", "modello.htm", "cart.htm", "mymodello.htm"}) {
    put(package / name);
  }
  EXPECT_EQ(pageModels(package.path()), (Names{"modello", "Modello1", "modello2"}));
}

TEST(CanCopy, PagesScriptsAndWhatTheProgramReadsAreNoResources) {
  for (const char* name : {"cart.htm", "x.html", "a.shtml", "modello1.htm", "kvan_col_0.gif", "kvan_col_x", "a.php",
                           "a.kpg", "a.PL", "kvan_preview.jpg", "KVAN_NOTE.TXT", "js1.js", "JS9.JS", "a.htm.bak"}) {
    EXPECT_FALSE(CanCopy(name)) << name;
  }
}

TEST(CanCopy, EveryOtherFileIsAResource) {
  for (const char* name :
       {"menu.js", "js10.js", "jsa.js", "js.js", "logo.gif", "style.css", "kvan_menu.ini", "kvan_vet.ini",
        "kvan_offerta.gif", "kvan_novita.gif", "mykvan_col_0.gif", "htm", "readme"}) {
    EXPECT_TRUE(CanCopy(name)) << name;
  }
}

TEST(CaricaVetFile, LineEndsAndOuterSpacesAreRemoved) {
  const TempFolder folder;
  put(folder / "Kvan_Vet.ini", "  <td>\r\n a \xE8\n</td>\r\n ");
  EXPECT_EQ(CaricaVetFile(folder.path()), "<td> a è</td>");
}

TEST(CaricaVetFile, AnAbsentOrEmptyFileIsNoCell) {
  const TempFolder folder;
  EXPECT_EQ(CaricaVetFile(folder.path()), "");
  put(folder / "kvan_vet.ini", " \r\n ");
  EXPECT_EQ(CaricaVetFile(folder.path()), "");
}

}  // namespace
}  // namespace kv
