// The names of pages and of their copies in other languages.
#include <gtest/gtest.h>

#include "tags/syntax/file_naming.h"

namespace kv {
namespace {

TEST(PutExt, APageTakesThePageExtension) {
  EXPECT_EQ(PutExt("order.htm", ".php"), "order.php");
  EXPECT_EQ(PutExt("ORDER.HTM", ".php"), "ORDER.php");
  EXPECT_EQ(PutExt("a.b.htm", ".php"), "a.b.php");
}

TEST(PutExt, AResultsPageStays) {
  EXPECT_EQ(PutExt("results.htm", ".php"), "results.htm");
  EXPECT_EQ(PutExt("results_l2.htm", ".php"), "results_l2.htm");
  EXPECT_EQ(PutExt("Results.HTM", ".php"), "Results.HTM");
  EXPECT_EQ(PutExt("myresults.htm", ".php"), "myresults.php");
}

TEST(PutExt, ANameThatDoesNotEndInHtmStays) {
  for (const char* name : {"x.html", "x.php", "htm", "x.htm?n=1", ""}) EXPECT_EQ(PutExt(name, ".php"), name);
}

TEST(PutExt, WithoutAPageExtensionOfItsOwnEveryNameStays) {
  for (const char* extension : {"", ".htm", ".HTM"}) EXPECT_EQ(PutExt("cart.htm", extension), "cart.htm");
}

TEST(FileLingua, TheSuffixIsBeforeTheLastDot) {
  EXPECT_EQ(FileLingua("a.b.htm", "_l2"), "a.b_l2.htm");
  EXPECT_EQ(FileLingua("scarpe.php?n=3", "_l3"), "scarpe_l3.php?n=3");
  EXPECT_EQ(FileLingua("cart.htm", ""), "cart.htm");
}

TEST(FileLingua, ANameWithoutADotStays) { EXPECT_EQ(FileLingua("leggimi", "_l2"), "leggimi"); }

}  // namespace
}  // namespace kv
