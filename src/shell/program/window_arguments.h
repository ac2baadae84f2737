#pragma once
// The arguments of the program with the window.

#include <span>
#include <string>

#include "platform/ports/result.h"

namespace kv {

struct WindowArguments {
  std::string applicationFolder;  ///< of --app, as typed; empty means the user's own
  std::string shop;               ///< a shop folder to open, as typed; empty means the last one
  bool help = false;
  bool version = false;
};

/// Reads the arguments after the program's name. "--app=X" and "--app X" mean the same; after "--" every argument is
/// a name. Malformed, `what` saying in Italian what is wrong.
Result<WindowArguments> parseWindowArguments(std::span<const std::string> arguments);

/// The text of --help.
std::string windowUsage();

}  // namespace kv
