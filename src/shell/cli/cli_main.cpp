// korvane-cli: builds, checks and makes shops without a window.

#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "platform/files/private_file.h"
#include "shell/cli/cli_program.h"
#include "shell/cli/interrupt.h"
#include "shell/program/installed_data.h"

namespace {

int terminalWidth() {
  winsize size{};
  const bool told = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return told ? size.ws_col : kv::ConsoleOptions().width;
}

}  // namespace

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + (count > 0 ? 1 : 0), values + count);
  kv::forbidCoreFiles();
  kv::noteInterrupts();
  kv::ConsoleOptions screen;
  screen.terminal = isatty(STDERR_FILENO) == 1;
  screen.width = terminalWidth();
  screen.cancelled = kv::wasInterrupted;
  const kv::CliContext context{std::cout, std::cerr, screen, kv::programFolder()};
  return static_cast<int>(kv::runCommandLine(arguments, context));
}
