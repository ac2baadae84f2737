// What the check of the connection says of a server of files, a folder, PHP and a database.

#include "publish/settings/connection_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/answering_host.h"
#include "support/listing_server.h"
#include "support/scripted_user.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ConnectionCheckTest : public ::testing::Test {
 protected:
  ConnectionCheckTest() {
    server.home = "/";
    server.folders["/www"] = {};
    host.pages["http://a.it/updatedb.php?w=phpinfo"] = {200, "PHP 8.2.7 (fpm-fcgi, 64 bit)\nmemory_limit: 128M\n"};
    host.pages["http://a.it/index.php"] = {200, "<html>"};
  }
  std::string run() {
    return checkConnection(check, {server, host, user, [this] { return user.yield(); }});
  }

  ConnectionCheck check{{}, "www/", "http://a.it"};
  ListingServer server;
  AnsweringHost host;
  ScriptedUser user;
};

TEST_F(ConnectionCheckTest, EverythingThatWorksIsALine) {
  EXPECT_EQ(run(),
            "Server FTP: accesso riuscito.\nCartella del negozio (www): presente.\n"
            "PHP: risponde (PHP 8.2.7 (fpm-fcgi, 64 bit)).\nDatabase: raggiunto.");
  EXPECT_EQ(server.commands.back(), "quit");
}

TEST_F(ConnectionCheckTest, AServerOutOfReachIsToldAndTheSiteIsTriedAllTheSame) {
  server.failures["connect"] = {transferNoConnection, "connessione rifiutata", {}};
  EXPECT_THAT(run(), HasSubstr("Server FTP: non raggiunto (connessione rifiutata)."));
  EXPECT_THAT(run(), HasSubstr("Database: raggiunto."));
  EXPECT_THAT(run(), Not(HasSubstr("Cartella")));
}

TEST_F(ConnectionCheckTest, ARefusedLoginIsToldApart) {
  server.failures["login"] = {transferOther + 530, "530 Login incorrect", {}};
  EXPECT_THAT(run(), HasSubstr("Server FTP: raggiunto, ma l'accesso è negato (530 Login incorrect)."));
  EXPECT_FALSE(server.isConnected());
}

TEST_F(ConnectionCheckTest, AMissingFolderIsNoFault) {
  check.folderFTP = "nuova";
  EXPECT_THAT(run(), HasSubstr("Cartella del negozio (nuova): non c'è ancora"));
}

TEST_F(ConnectionCheckTest, AShopThatIsNotOnlineYetIsTold) {
  host.pages.clear();
  EXPECT_THAT(run(), HasSubstr("PHP: il negozio non è ancora all'indirizzo http://a.it;"));
  EXPECT_THAT(run(), Not(HasSubstr("Database")));
}

TEST_F(ConnectionCheckTest, AHostWithoutPhpIsTold) {
  host.pages["http://a.it/updatedb.php?w=phpinfo"] = {200, "<?php\r\n// ***1.0.7***"};
  EXPECT_THAT(run(), HasSubstr("PHP: il server mostra il testo degli script invece di eseguirli."));
}

TEST_F(ConnectionCheckTest, ADatabaseOutOfReachIsTold) {
  host.pages["http://a.it/index.php"] = {503, "guasto"};
  EXPECT_THAT(run(), HasSubstr("Database: non raggiunto."));
}

TEST_F(ConnectionCheckTest, ASiteThatDoesNotAnswerIsTold) {
  host.failing = 1;
  EXPECT_THAT(run(), HasSubstr("PHP: il sito http://a.it non risponde (Could not resolve host)."));
}

TEST_F(ConnectionCheckTest, WithoutAnAddressOnlyTheServerIsTried) {
  check.siteBase.clear();
  EXPECT_THAT(run(), HasSubstr("PHP: manca l'URL del sito."));
  EXPECT_TRUE(host.requests.empty());
}

}  // namespace
}  // namespace kv::test
