// What a build holds no longer than it needs it.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "builder/run/make_pages.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

TEST(BuildMemory, NoStatementOverTheCatalogueIsKeptForANextTimeThatNeverComes) {
  TempShop shop;
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::int64_t afterwards = sqlite3_memory_used();
  shop.session.catalogue.keepStatements(false);
  EXPECT_LT(afterwards - sqlite3_memory_used(), 50'000);  // more than a megabyte was kept
}

}  // namespace
}  // namespace kv::test
