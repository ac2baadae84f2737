// The web host of this machine as a process of the program: what it is started with, what is read from it, and that it
// ends with the program. A few lines of Python are the host.

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "shell/program/frm_local_host.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

/// Notes its arguments, says half of its line and, once there is a file "go", the rest; then it waits for its end.
constexpr const char* servingHost =
    "import pathlib, signal, sys, time\n"
    "note = pathlib.Path(__file__).parent\n"
    "def leave(*_):\n"
    "    (note / 'ended').write_text('yes')\n"
    "    sys.exit(0)\n"
    "signal.signal(signal.SIGTERM, leave)\n"
    "(note / 'arguments').write_text('\\n'.join(sys.argv[1:]))\n"
    "print('building', flush=True)\n"
    "sys.stdout.write('shop http://127.0.0')\n"
    "sys.stdout.flush()\n"
    "(note / 'half').write_text('said')\n"
    "while not (note / 'go').exists(): time.sleep(0.01)\n"
    "print('.1:8123/\\nadmin http://127.0.0.1:8123/ris/', flush=True)\n"
    "sys.stdin.read()\n"
    "leave()\n";
constexpr const char* refusingHost = "import sys\nsys.exit('local-host: manca nginx')\n";

class HostOfTheProgram : public ::testing::Test {
 protected:
  HostOfTheProgram() : application(folder / "programma"), process(application, "/opt/bin"), host(process.port()) {
    EXPECT_TRUE(createFolders(application + "/host"));
  }
  void write(const char* script) { ASSERT_TRUE(writeBytes(application + "/host/local-host", script)); }
  std::string note(const char* name) const { return readBytes(application + "/host/" + name).value_or("(missing)"); }
  /// Reports until `isEnough`; a host that says nothing fails the test by its time limit.
  template <class Condition>
  HostReport reportWhen(Condition isEnough) {
    HostReport report = host.wait();
    while (!isEnough(report)) report = host.wait();
    return report;
  }

  TempFolder folder;
  std::string application;
  HostProcess process;
  LocalHost host;
};

TEST_F(HostOfTheProgram, IsStartedWithTheShopAndTheProgramsOfThisInstallation) {
  write(servingHost);
  ASSERT_TRUE(host.start("/negozi/uno"));
  reportWhen([&](const HostReport&) { return note("half") == "said"; });
  const std::string arguments = note("arguments");
  EXPECT_TRUE(arguments.starts_with("view\n/negozi/uno\n--home\n")) << arguments;
  EXPECT_TRUE(arguments.ends_with("/korvane/vedi\n--cli\n/opt/bin/korvane-cli\n--app\n" + application)) << arguments;
}

TEST_F(HostOfTheProgram, HasNoAddressUntilItsLineIsWhole) {
  write(servingHost);
  ASSERT_TRUE(host.start("/negozi/uno"));
  reportWhen([&](const HostReport&) { return note("half") == "said"; });
  EXPECT_EQ(host.wait().address, "");
  ASSERT_TRUE(writeBytes(application + "/host/go", ""));
  const HostReport report = reportWhen([](const HostReport& one) { return !one.address.empty(); });
  EXPECT_TRUE(report.isRunning);
  EXPECT_EQ(report.address, "http://127.0.0.1:8123/");
}

TEST_F(HostOfTheProgram, IsEndedBeforeAnotherShopIsShownAndWhenItIsStopped) {
  write(servingHost);
  ASSERT_TRUE(host.start("/negozi/uno"));
  reportWhen([&](const HostReport&) { return note("half") == "said"; });
  ASSERT_TRUE(host.start("/negozi/due"));
  EXPECT_EQ(note("ended"), "yes");
  reportWhen([&](const HostReport&) { return note("arguments").starts_with("view\n/negozi/due\n"); });
  host.stop();
  EXPECT_FALSE(host.wait().isRunning);
}

TEST_F(HostOfTheProgram, SaysWhyItEnded) {
  write(refusingHost);
  ASSERT_TRUE(host.start("/negozi/uno"));
  const HostReport report = reportWhen([](const HostReport& one) { return !one.isRunning; });
  EXPECT_EQ(report.failure, "manca nginx");
  EXPECT_EQ(report.address, "");
}

}  // namespace
}  // namespace kv::test
