// The eight ways to a server: straight, over SOCKS, over the kinds of FTP proxies, and through a pipe.
#include "support/socks_relay.h"
#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::FtpManners;
using test::ScriptedFtpServer;
using test::SocksRelay;
using Names = std::vector<std::string>;

class AFirewall : public test::TransferFixture {
 protected:
  static ConnectionSettings over(ConnectionSettings settings, FirewallKind kind, const std::string& port) {
    settings.firewall = kind;
    settings.firewallHost = "127.0.0.1";
    settings.firewallPort = port;
    return settings;
  }
  static FtpManners proxy() {
    FtpManners manners;
    manners.proxyUser = "porta";
    manners.proxyPassword = "chiave";
    manners.wantsHost = true;
    return manners;
  }
  /// Logs in over an FTP proxy and gives the commands, passwords as the listener sees them.
  Names loginOver(FirewallKind kind, const ScriptedFtpServer& server, const std::string& user) {
    auto settings = over(settingsOf(server), kind, server.port());
    settings.host = "ftp.negozio.it";
    settings.ftpPort = "21";
    settings.tls = TlsMode::IfOffered;
    settings.firewallUser = user;
    settings.firewallPassword = user.empty() ? "" : "chiave";
    EXPECT_EQ(enter(settings), "ok");
    EXPECT_EQ(dialogue().find("segreto"), std::string::npos);
    EXPECT_EQ(dialogue().find("chiave"), std::string::npos);
    return server.commands();
  }
};

TEST_F(AFirewall, OfSocksCarriesBothConnections) {
  for (const auto kind : {FirewallKind::Socks4, FirewallKind::Socks5}) {
    ScriptedFtpServer server;
    SocksRelay relay(kind == FirewallKind::Socks4 ? 4 : 5);
    auto settings = over(settingsOf(server), kind, relay.port());
    settings.passive = false;  // no server can connect to this machine through the proxy
    ASSERT_EQ(enter(settings), "ok");
    EXPECT_EQ(textOf(transfer->upload(localFile("a", "bytes"), "a", TransferMode::Binary)), "ok");
    EXPECT_EQ(server.file("/a"), "bytes");
    ASSERT_EQ(relay.asked().size(), 2U);
    EXPECT_NE(relay.asked()[0].find("number:" + server.port()), std::string::npos);
    transfer->abort();
  }
}

TEST_F(AFirewall, OfSocksResolvesTheNameOfTheServer) {
  for (const auto kind : {FirewallKind::Socks4, FirewallKind::Socks5}) {
    ScriptedFtpServer server;
    const bool is4 = kind == FirewallKind::Socks4;
    SocksRelay relay(is4 ? 4 : 5, 0, is4 ? "" : "porta", "chiave");
    auto settings = over(settingsOf(server), kind, relay.port());
    settings.host = "ftp.negozio.invalid";
    settings.firewallUser = "porta";
    settings.firewallPassword = "chiave";
    EXPECT_EQ(enter(settings), "ok");
    EXPECT_EQ(relay.asked(), Names{(is4 ? "porta@" : "") + std::string("ftp.negozio.invalid:") + server.port()});
    transfer->abort();
  }
}

TEST_F(AFirewall, OfSocksThatRefusesIsNamed) {
  ScriptedFtpServer server;
  SocksRelay fourth(4, 1), fifth(5, 5), closed(5, 0, "porta", "chiave");
  EXPECT_EQ(enter(over(settingsOf(server), FirewallKind::Socks4, fourth.port())),
            "20001 il firewall non apre la connessione: richiesta rifiutata");
  EXPECT_EQ(enter(over(settingsOf(server), FirewallKind::Socks5, fifth.port())),
            "20001 il firewall non apre la connessione: connessione rifiutata");
  EXPECT_EQ(enter(over(settingsOf(server), FirewallKind::Socks5, closed.port())),
            "20001 il firewall non apre la connessione: richiede un utente e una password");
  auto settings = over(settingsOf(server), FirewallKind::Socks5, closed.port());
  settings.firewallUser = "porta";
  settings.firewallPassword = "sbagliata";
  EXPECT_EQ(enter(settings), "20001 il firewall non apre la connessione: utente o password non validi");
  EXPECT_EQ(enter(over(settingsOf(server), FirewallKind::Socks5, server.port())),
            "20001 il firewall non apre la connessione: non è un proxy SOCKS 5");
}

TEST_F(AFirewall, OfTheKindUserIsToldTheServerWithTheName) {
  ScriptedFtpServer server(proxy());
  EXPECT_EQ(loginOver(FirewallKind::ProxyUser, server, "porta"),
            (Names{"USER porta", "PASS chiave", "USER mario@ftp.negozio.it", "PASS segreto"}));
}

TEST_F(AFirewall, OfTheKindUserMayHaveNoLoginOfItsOwn) {
  FtpManners manners;
  manners.wantsHost = true;
  ScriptedFtpServer server(manners);
  EXPECT_EQ(loginOver(FirewallKind::ProxyUser, server, ""), (Names{"USER mario@ftp.negozio.it", "PASS segreto"}));
}

TEST_F(AFirewall, OfTheKindSiteIsToldTheServerAfterItsLogin) {
  ScriptedFtpServer server(proxy());
  EXPECT_EQ(loginOver(FirewallKind::ProxySite, server, "porta"),
            (Names{"USER porta", "PASS chiave", "SITE ftp.negozio.it", "USER mario", "PASS segreto"}));
}

TEST_F(AFirewall, OfTheKindOpenIsToldTheServerAfterItsLogin) {
  ScriptedFtpServer server(proxy());
  EXPECT_EQ(loginOver(FirewallKind::ProxyOpen, server, "porta"),
            (Names{"USER porta", "PASS chiave", "OPEN ftp.negozio.it", "USER mario", "PASS segreto"}));
}

TEST_F(AFirewall, OfTheKindProxyGetsBothLoginsAtOnce) {
  FtpManners manners;
  manners.user = "mario@porta@ftp.negozio.it";
  manners.password = "segreto@chiave";
  ScriptedFtpServer server(manners);
  EXPECT_EQ(loginOver(FirewallKind::ProxyProxy, server, "porta"),
            (Names{"USER mario@porta@ftp.negozio.it", "PASS segreto@chiave"}));
}

TEST_F(AFirewall, ThatIsAPipeIsSpokenToLikeTheServer) {
  ScriptedFtpServer server;
  EXPECT_EQ(loginOver(FirewallKind::SimplePipe, server, "porta"), (Names{"AUTH TLS", "USER mario", "PASS segreto"}));
}

TEST_F(AFirewall, IsToldAPortThatIsNotTheUsualOne) {
  ScriptedFtpServer server(proxy());
  auto settings = over(settingsOf(server), FirewallKind::ProxyOpen, server.port());
  settings.ftpPort = "2121";
  settings.firewallUser = "porta";
  settings.firewallPassword = "chiave";
  ASSERT_EQ(enter(settings), "ok");
  EXPECT_EQ(server.commands("OPEN"), Names{"OPEN 127.0.0.1 2121"});
}

TEST_F(AFirewall, ThatDoesNotKnowItsUserIsQuoted) {
  ScriptedFtpServer server(proxy());
  auto settings = over(settingsOf(server), FirewallKind::ProxySite, server.port());
  settings.firewallUser = "porta";
  settings.firewallPassword = "sbagliata";
  EXPECT_EQ(enter(settings), "20530 530 proxy: password errata");
}

TEST_F(AFirewall, OfAnFtpProxyCannotBeAskedForTlsThatIsRequired) {
  ScriptedFtpServer server(proxy());
  auto settings = over(settingsOf(server), FirewallKind::ProxyUser, server.port());
  settings.tls = TlsMode::Required;
  EXPECT_EQ(enter(settings), "20003 il server non offre una connessione cifrata (TLS)");
  EXPECT_EQ(server.commands("USER"), Names{}) << "nothing secret is said";
}

}  // namespace
}  // namespace kv
