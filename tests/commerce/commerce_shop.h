#pragma once
// The shipped model shop, opened for the rules of the commerce dialogs: its catalogue, its payment modules, a user.

#include <gtest/gtest.h>

#include <string>

#include "platform/files/files.h"
#include "platform/ports/result.h"
#include "store/shop/session.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

class CommerceShop : public ::testing::Test {
 protected:
  CommerceShop() {
    const std::string data = KORVANE_APP_DATA;
    session.ShopFolder = root / "negozio";
    EXPECT_TRUE(createFolders(session.ShopFolder));
    EXPECT_TRUE(copyFile(data + "/catalog.mdb", session.ShopFolder + "/catalog.mdb"));
    // Nothing of it has to survive the test, so nothing waits for the disk.
    auto opened = Database::open(session.ShopFolder + "/catalog.mdb", OpenMode::Scratch);
    EXPECT_TRUE(opened);
    if (opened) session.catalogue = std::move(*opened);
    session.languageCount = 2;
    session.languageNames = {"italiano", "inglese", "", ""};
  }
  /// Gives the shop the payment modules as they are shipped.
  void copyModules() {
    const auto copied = copyTree(std::string(KORVANE_APP_DATA) + "/new/code", session.ShopFolder + "/code");
    ASSERT_TRUE(copied) << copied.error().what;
  }
  void sql(const std::string& statements) {
    const auto done = session.catalogue.execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// The first field of the first row of a query, as text.
  std::string field(const std::string& query) {
    const auto value = session.catalogue.scalar(query);
    if (!value) return "failed: " + value.error().what;
    return isNull(*value) ? "(null)" : asText(*value);
  }

  TempFolder root;
  Session session;
  ScriptedUser user;
};

}  // namespace kv::test
