#pragma once
// "Verifica connessione": server, folder, PHP and database tried in turn, and what was found in plain words. Nothing on
// the server is changed.

#include <functional>
#include <string>

#include "platform/ports/user_port.h"
#include "platform/transfer/http_client.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// What is tried.
struct ConnectionCheck {
  ConnectionSettings connection;  ///< login and way to the server
  std::string folderFTP;          ///< the shop's folder on the server, as typed
  std::string siteBase;           ///< "http://host/folder", without a closing slash; empty: the shop has no address
};

/// Who takes part. References outlive the check.
struct CheckParts {
  Transfer& transfer;
  HttpClient& http;
  UserPort& user;               ///< asked about a server that isn't trusted
  std::function<bool()> yield;  ///< processes events; false ends the check
};

/// Tries all four and returns a line for each, separated by "\n". What can't be tried because an earlier one failed is
/// left out; the site is tried whatever the server of files said.
std::string checkConnection(const ConnectionCheck& check, const CheckParts& parts);

}  // namespace kv
