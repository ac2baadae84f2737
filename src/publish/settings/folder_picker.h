#pragma once
// Browsing the folders of the server, to choose one: the rules of frmFolderFTP.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/ports/user_port.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// The message for a server that can't be reached or doesn't let in.
inline constexpr std::string_view serverOutOfReach =
    "Impossibile comunicare con l'host specificato:\nricontrollare il nome dell'host, lo username, la password e "
    "riprovare\n(oppure modificare le impostazioni FTP avanzate).";
inline constexpr std::string_view accessDenied = "Accesso negato";

/// One folder of the listing.
struct ServerEntry {
  std::string name;   ///< bytes as the server has them
  std::string shown;  ///< as text
};

/// A session with the server. Each command waits for its end; `yield` goes on meanwhile and cancels by false.
class FolderPicker {
 public:
  /// References outlive the picker. What the server refuses is told to `user` here.
  FolderPicker(Transfer& transfer, UserPort& user, std::function<bool()> yield);

  /// Connects, logs in, and lists the folder after the login, which is the base of what is returned. False, and the
  /// user was told, when that is not possible; the session is over then.
  bool open(const ConnectionSettings& settings);
  /// A double click: changes into a folder of the list. False when the session is over; a folder that may not be
  /// entered is told, and the list stays.
  bool enter(const std::string& name);
  /// cmdUP: changes into the parent folder. As enter.
  bool up();
  /// A single click: the folder is the chosen one.
  void select(const std::string& name);
  /// A folder typed by hand is the chosen one.
  void type(const std::string& folder) { selected_ = folder; }
  /// Takes leave of the server.
  void close();
  /// Breaks the session off, also in the middle of a command.
  void abort();

  const std::string& current() const { return current_; }    ///< txtPath
  const std::string& selected() const { return selected_; }  ///< txtSelFolder
  const std::vector<ServerEntry>& entries() const { return entries_; }
  /// ">" and the chosen folder as seen from the base; empty text after ">" for the base itself.
  std::string result() const;

 private:
  bool arrive();  // reads the current folder and lists it
  bool refused(const TransferCompletion& completion);

  Transfer& transfer_;
  UserPort& user_;
  std::string base_, current_, selected_;
  std::vector<ServerEntry> entries_;
};

/// The folder in a result of the picker; nothing for a text that means no choice.
std::optional<std::string> chosenServerFolder(std::string_view result);

}  // namespace kv
