// A signal closes the window the way its menu does.

#include <chrono>
#include <csignal>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"
#include "shell/program/frm_session_end.h"

namespace kv::test {
namespace {

constexpr std::chrono::seconds longestWait{60};

class SessionEndTest : public WindowFixture, public testing::WithParamInterface<int> {};

TEST_P(SessionEndTest, ASignalStoresWhatWasTypedAndClosesTheWindow) {
  open();
  goArticles();
  type(line(EditedSet::Articoli, "titolo"), "Alba chiara");
  ignore(std::signal(GetParam(), SIG_DFL), "whoever starts the tests may ignore it, as nohup does");
  const SessionEnd end;
  QTimer::singleShot(0, [] { ignore(std::raise(GetParam()), "the signal is looked at where it arrives"); });
  const QObject whileItWaits;
  QTimer::singleShot(longestWait, &whileItWaits, [] { QApplication::exit(1); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli WHERE titolo = 'Alba chiara'"), "1");
}

INSTANTIATE_TEST_SUITE_P(EachSignal, SessionEndTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(WindowFixture, ASignalClosesTheDialogOverTheWindowToo) {
  open();
  const SessionEnd end;
  FormDialog dialog("Prova", window.get());
  QTimer::singleShot(0, [] { ignore(std::raise(SIGTERM), "the signal is looked at where it arrives"); });
  QTimer::singleShot(0, [&] { dialog.exec(); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace kv::test
