#pragma once
// Names of servers and of folders on them: how what was typed is normalised, and how the lines of a listing are read.

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// The name of a host as typed, without spaces at its ends, slashes around it, and "http://" or "ftp://" in any case
/// before it. A "\" counts as "/".
std::string serverHost(std::string_view typed);
/// A folder of the server as typed: "\" becomes "/", slashes at its end go unless it is "/" alone, and an empty one is
/// ".".
std::string serverFolder(std::string_view typed);

/// "folder/name" without a second slash at the root.
std::string joinServerPath(std::string_view folder, std::string_view name);
/// A folder as seen from the base: without the base and a slash in front; empty for the base itself, and as it is when
/// it lies elsewhere.
std::string relativeToBase(std::string_view folder, std::string_view base);

/// The folder that a line of a listing names, links to whatever included; nothing for a file, for "." and "..", and for
/// what no folder can be called: a path, and a name with a control character.
/// Both styles are read: "drwxr-xr-x 2 user group 4096 Jan  1 12:00 my shop" and "01-01-26  12:00PM  <DIR>  my shop".
/// A name keeps its bytes and the spaces inside it.
std::optional<std::string> listedFolder(std::string_view line);
/// NomeVirtualDirectory (name of a virtual directory): what follows the eight columns before a name, without line end
/// and without the target of a link (" -> target"). Servers that leave the group out have seven.
std::string NomeVirtualDirectory(std::string_view line);
/// NomeDirectoryDOS (name of a DOS directory): what follows "<DIR>", trimmed, without line end.
std::string NomeDirectoryDOS(std::string_view line);

/// A name of the server as text: UTF-8 as it is, other bytes read as Windows-1252.
std::string shownName(std::string_view bytes);

}  // namespace kv
