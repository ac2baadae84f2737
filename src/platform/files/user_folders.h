#pragma once
// Where the files of one user belong.
// Source: freedesktop.org, XDG base directories 0.8.

#include <string>

namespace kv {

/// A folder of this user: the one that the environment variable names, when it is an absolute path; else `below` in the
/// home folder.
std::string userFolder(const char* variable, const std::string& below);

/// The home folder of this user: what HOME names, when it is an absolute path; else what the system knows; else "/".
std::string homeFolder();

}  // namespace kv
