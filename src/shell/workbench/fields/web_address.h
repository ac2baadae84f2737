#pragma once
// Addresses and folders of the connection settings: what follows from what was typed.

#include <string>
#include <string_view>

namespace kv {

/// What the addresses are made from, as the columns of `generale` hold it.
struct WebLocation {
  std::string URL, cartella, cartellaCGI;
};

struct FullAddresses {
  std::string shop;        ///< of its first page
  std::string backOffice;  ///< of its first page
};
/// NormalizzaURL (normalise the address): the full addresses of shop and back office; both empty while `URL` is empty.
FullAddresses NormalizzaURL(const WebLocation& location);

/// Whether a key may be typed into a folder of the server: ASCII letters, digits, "_", "/" and "\".
bool isFolderKey(std::string_view key);

/// The folder of the web site that a folder of the FTP server is reached under: without one leading and one trailing
/// slash, and, unless the server is Windows NT, without the server's usual root in front (www, public_html ...).
std::string webFolderOf(std::string_view ftpFolder, bool serverNT);

/// The web folder that replaces `current` once the FTP folder has been left: the one computed from the new
/// FTP folder when `current` is empty or still what was computed from the old one, else `current`.
std::string suggestedWebFolder(std::string_view current, std::string_view oldFtpFolder, std::string_view newFtpFolder,
                               bool serverNT);

/// The names of the search and order scripts, set again whenever address, folder or kind of server change.
inline constexpr std::string_view defaultCGIsearch = "kvsearch.php";
inline constexpr std::string_view defaultCGIordine = "kvorder.php";

}  // namespace kv
