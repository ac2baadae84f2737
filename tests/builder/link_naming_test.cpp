// Names of pages, public addresses and colours.

#include "builder/values/link_naming.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/text/public_address.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

TEST(LinkNamingTest, AnAddressTypedLooselyIsMadeClean) {
  EXPECT_EQ(publicAddress(" www.bottega.example/ ", " /shop/ "), "http://www.bottega.example/shop");
  EXPECT_EQ(publicAddress("https://bottega.example", ""), "https://bottega.example");
}

TEST(LinkNamingTest, AFolderWithoutASiteAddressFollowsTheSchemeAtOnce) {
  EXPECT_EQ(publicAddress("", "shop"), "http://shop");
  EXPECT_EQ(publicAddress(" ", ""), "http:/");
}

TEST(LinkNamingTest, ThePageFileOfASubPageIsCutAfterItsExtension) {
  EXPECT_EQ(PageFile("scarpe", 3, "_l2"), "scarpe_l2.php?n=3");
  EXPECT_EQ(NoASPQuery("scarpe_l2.php?n=3"), "scarpe_l2.php");
  EXPECT_EQ(NoASPQuery("a/index.php"), "a/index.php");
}

TEST(LinkNamingTest, PureRedIsTheLowByteOfAColour) {
  EXPECT_EQ(HTMLColor(255U), "#FF0000");
  EXPECT_EQ(HTMLColor(0x0A0B0CU), "#0C0B0A");
  EXPECT_EQ(HTMLColor(Colour{1, 2, 254}), "#0102FE");
}

TEST(LinkNamingTest, AnExtensionIsTrimmedLoweredAndCut) {
  EXPECT_EQ(ImpostaEstensione(" HTML5 x"), ".html5");
  EXPECT_EQ(ImpostaEstensione(""), ".htm");
  EXPECT_EQ(ImpostaEstensione(" . "), ".htm");
  EXPECT_EQ(ImpostaEstensione("./x"), ".htm");
  EXPECT_EQ(ImpostaEstensione("abcdefgh"), ".abcde");
}

TEST(LinkNamingTest, TheIndexAddressIsEmptyWhileTheSiteHasNone) {
  EXPECT_EQ(IndirizzoIndice("", "shop"), "");
  EXPECT_EQ(IndirizzoIndice("bottega.example", "shop"), "http://bottega.example/shop/index.php");
}

TEST(LinkNamingTest, RelativeAddressesBecomeAbsoluteAndTheOthersStay) {
  EXPECT_EQ(absoluteText("<img src=\"a.gif\"><a HREF=\"http://x\"><a href=\"<<1-x>>\"><a href=\"$arg1\">", "http://s"),
            "<img src=\"http://s/a.gif\"><a HREF=\"http://x\"><a href=\"<<1-x>>\"><a href=\"$arg1\">");
  EXPECT_EQ(absoluteText("<a href=\"MailTo:a@b\"><a href=\"javascript:x\"><body background=\"b.gif", "http://s"),
            "<a href=\"MailTo:a@b\"><a href=\"javascript:x\"><body background=\"http://s/b.gif");
  EXPECT_EQ(absoluteText("<a href=\"\">", "http://s"), "<a href=\"\">");
}

TEST(LinkNamingTest, APageIsMadeAbsoluteFromFileToFile) {
  TempFolder folder;
  ASSERT_TRUE(writeText(folder / "a.htm", "<a href=\"caffè.htm\">"));
  ASSERT_TRUE(MakeAbsolute(folder / "a.htm", folder / "b.htm", "http://s"));
  EXPECT_EQ(readBytes(folder / "b.htm").value(), "<a href=\"http://s/caff\xE8.htm\">");
  EXPECT_FALSE(MakeAbsolute(folder / "manca.htm", folder / "c.htm", "http://s"));
  EXPECT_FALSE(fileExists(folder / "c.htm"));
}

TEST(LinkNamingTest, TheDepartmentMenuKeepsItsValues) {
  EXPECT_EQ(absoluteText("<select name=\"kvRepartiMenu\"><option value=\"a.php\"></select>"
                         "<select name=\"x\"><option value=\"a.php\"></select>",
                         "http://s"),
            "<select name=\"kvRepartiMenu\"><option value=\"a.php\"></select>"
            "<select name=\"x\"><option value=\"http://s/a.php\"></select>");
}

}  // namespace
}  // namespace kv::test
