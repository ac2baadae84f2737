#pragma once
// Where the data files that came with the program are, and the application folder a run works with.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// The folder of the running program, without trailing separator; empty when the system doesn't tell.
std::string programFolder();

/// The shipped data: "../share/korvane" seen from `programs`, so that a moved or unpacked tree works; else the folder
/// of the install prefix. Missing when neither is there.
Result<std::string> installedData(const std::string& programs);

/// The application folder: `chosen` as it is (made absolute) when not empty, else the user's own, brought up to date
/// from the shipped data.
Result<std::string> findApplicationFolder(const std::string& chosen, const std::string& programs);

}  // namespace kv
