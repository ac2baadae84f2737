#pragma once
// UpdateFTP: sends one folder of the shop to one folder of the server, each file that is new or newer than what the
// file table remembers. One object serves one run, its two folders one after the other over one connection.

#include <deque>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/ports/clock.h"
#include "platform/ports/user_port.h"
#include "platform/transfer/transfer.h"
#include "publish/run/file_choice.h"
#include "publish/run/file_table.h"
#include "publish/run/ftp_log.h"
#include "publish/run/main_stack.h"
#include "publish/run/publish_view.h"

namespace kv {

/// What the pending command of the connection is; it decides what a failure means.
enum class FtpState {
  MakeFolder = -1,
  Other = 0,
  UploadNew = 1,    ///< a row is added on success
  UploadKnown = 2,  ///< the row is changed on success
  EnterTarget = 4,
  DeleteBefore = 5,
  LeaveEmpty = 6  ///< closing a run that had nothing to send
};

/// What happens to password lists of a payment system.
enum class OtpMode { None = 0, Replace = 1, Append = 2 };

/// The choices of a run.
struct UploadOptions {
  ConnectionSettings connection;  ///< host normalised, user, password and the way to the server
  FileChoice choice;
  bool sendAll = false;        ///< files that are not newer too
  bool keepNoSession = false;  ///< the second folder gets a connection of its own
  bool disabled = false;       ///< the merchant carries the files by hand
  bool serverNT = false;       ///< the server is Windows: no permissions are set
  OtpMode otpMode = OtpMode::None;
  bool safeUpload = false;    ///< each file under a temporary name, then renamed over the old one; pages late, SQL last
  bool contentCheck = false;  ///< a newer file with the bytes last sent isn't sent
  int connections = 1;        ///< 1 to 4, over which files are sent at once; kinds of files come in their order then
  /// How long to wait before each further attempt after the connection broke, in milliseconds; empty: none is made.
  std::vector<int> retryPauses{};
  /// The local folders of the shop, if files on the server that the shop no longer has are offered for removal; empty:
  /// nothing is removed.
  std::vector<std::string> cleanUpFolders{};
};

/// One folder to be sent.
struct FolderUpload {
  std::string localFolder;
  std::string title;         ///< goes after "Korvane - " in the window's title
  std::string logPath;       ///< of its log
  std::string remoteFolder;  ///< as typed
  bool firstFolder = true;   ///< the shop's own, with which the connection begins
};

/// Who takes part in a run. References outlive it.
struct UploadParts {
  Transfer& transfer;
  UserPort& user;
  PublishView& view;
  FileTable& table;
  Clock& clock;
};

/// Sends one folder after the other over one connection, or several side by side.
class FolderUploader {
 public:
  FolderUploader(UploadParts parts, UploadOptions options);
  FolderUploader(const FolderUploader&) = delete;
  FolderUploader& operator=(const FolderUploader&) = delete;
  ~FolderUploader();

  /// UpdateFTP (update by FTP): sends one folder. False when it failed, was refused or cancelled; the user knows why.
  bool UpdateFTP(const FolderUpload& folder);
  /// HideForm (hide the form): breaks the connection off.
  void HideForm();
  /// Whether the user has cancelled.
  bool cancelled() const { return cancelled_; }
  /// What was sent so far.
  const PublishReport& report() const { return report_; }

 private:
  /// What is known of the file in hand.
  struct FileInHand {
    std::string name, path, key;
    FileStamp stamp;
    std::string digest;  // empty when it isn't wanted
    bool known = false;
  };
  /// One connection and what goes over it. The first one is the run's own and enters the folders; the others only send.
  struct Lane {
    Transfer& transfer;
    int number = 1;
    FileInHand file{};
    FtpState state = FtpState::Other;
    bool failed = false;
    bool broken = false;           // failed, by a broken connection, and untold: there are attempts left
    std::size_t attemptsLeft = 0;  // for the file in hand
    std::uint64_t fileBytes = 0;   // of the file in hand, sent so far
    std::uint64_t fileSize = 0;    // of the file in hand while it is to be sent
  };

  /// Asks the merchant to carry the files over himself; false when he cancels.
  bool carriedByHand();
  /// Enters the folder of the server and sends these files of the local one.
  bool sendFolder(const std::vector<std::string>& names);
  /// Says why the local folder can't be listed; false.
  bool unreadableFolder(const Error& error);
  /// The end of a folder without files: a refusal of the shop's own, which was never built.
  bool emptyFolder();
  /// Connects where the first folder asks for it, and goes to the target folder.
  bool enterServer();
  /// Sends what is new or newer, then offers to clean up.
  bool sendFiles(const std::vector<std::string>& names);
  /// Marks the rows of the next files as doubtful before they are sent again, in case one breaks off.
  void doubtNext(const std::vector<std::string>& names, std::size_t from);
  /// The name of a file in the table: server, folder and name.
  std::string keyOf(const std::string& name) const;
  /// The run's own connection.
  Lane& first() { return lanes_.front(); }
  /// A lane over a connection, whose lines go to the log with the lane's number.
  Lane& addLane(Transfer& transfer);
  /// Adds connections up to the number wanted.
  void makeFurtherLanes();
  /// Sends one kind of files after the other, each over all lanes at once.
  void sendSideBySide(const std::vector<std::string>& names);
  /// The size of a file of the folder that is new or newer; nothing for one that isn't sent.
  std::optional<std::uint64_t> bytesToSend(const std::string& name);
  /// How many files from `begin` to before `end` are new or newer, up to the number of lanes.
  std::size_t filesForLanes(const std::vector<std::string>& names, std::size_t begin, std::size_t end);
  /// Adds up the bytes of the files to be sent; false when the user has cancelled meanwhile.
  bool measure(const std::vector<std::string>& names);
  /// Takes files up to `end` one after the other that no lane has taken yet.
  void sendNext(Lane& lane, const std::vector<std::string>& names, std::size_t end);
  /// The same over a further connection, which is made first; nothing where the host allows none.
  void helpSending(Lane& lane, const std::vector<std::string>& names, std::size_t end);
  /// Says good-bye to the further connections, or breaks them off after a failure.
  void leaveFurtherLanes();
  /// Compares a file with its row in the table, and sends it when it differs.
  void sendIfNewer(Lane& lane, const std::string& name);
  /// Where the content is compared, notes the file's digest; false, and the row follows, when the host has that
  /// content.
  bool hasNewContent(Lane& lane, const std::optional<SentFile>& row);
  /// Sends the file in hand; after a broken connection once more after each pause.
  void sendWithRetries(Lane& lane);
  /// Makes the connection of a lane again, as far as the target folder.
  bool connectAgain(Lane& lane);
  /// Sends the file in hand and sets its rights.
  void sendFile(Lane& lane);
  /// Sends it under its name; the old file is deleted first, but for one that is appended to.
  void storeFile(Lane& lane);
  /// Sends it under a temporary name, then lets it take the old file's.
  void storeSafely(Lane& lane);
  /// Lets the temporary file take the name of an old one that is moved aside; on a refusal the old one has its name.
  static TransferCompletion exchange(Lane& lane, const std::string& temporary, const TransferCompletion& refusal);
  static FtpState uploadState(const Lane& lane) {
    return lane.file.known ? FtpState::UploadKnown : FtpState::UploadNew;
  }
  /// Lets the host run a script, and write a list of passwords.
  void setRights(Lane& lane);
  /// Enters the file in hand in the report and the table.
  void noteSent(Lane& lane);
  /// Ends the folder when the table can't be written, and says why once.
  void showTableError(Lane& lane, const Result<>& written);
  /// CreaCartella (create folder): makes the target folder part by part.
  void CreaCartella();
  /// Goes to a part of the target folder, made where it is missing.
  bool enterOrMake(const std::string& part);
  /// Asks whether the missing target folder is to be made; what was sent there is forgotten.
  void offerFolder();
  /// Asks about files of the server that the shop no longer has.
  void offerCleanUp();
  /// Deletes such a file; `left` gets its name when it stays.
  void removeFromServer(const std::string& name, std::vector<std::string>& left);
  /// Fails for good and says why once, or notes a broken connection while there are attempts left.
  void refuse(Lane& lane, const TransferCompletion& completion, const std::string& hint = {});
  /// WaitFTP (wait for the server): goes on from an answer by what the lane was doing.
  void WaitFTP(Lane& lane, FtpState state, const TransferCompletion& completion);
  /// What a refusal means in the lane's state: some are no failure.
  void completeFailed(Lane& lane, const TransferCompletion& completion);
  /// MessaggioFTP (message of the transfer): a line of the log, or the operation shown.
  void MessaggioFTP(const std::string& text, bool toLog);
  /// Shows how far the file in hand and the folder have come.
  void showProgress(Lane& lane, std::uint64_t fileBytes);
  /// Processes events; false once the user has cancelled.
  bool mayGoOn();
  /// Asks about a server whose certificate or key isn't known, once for each.
  bool trusts(const UntrustedServer& server);
  /// Whether this folder begins with a connection of its own.
  bool opensSession() const;

  MainStackUser user_;
  MainStackView view_;
  UploadParts parts_;
  UploadOptions options_;
  FolderUpload folder_;
  std::string host_, target_, base_;
  std::vector<std::unique_ptr<Transfer>> furtherTransfers_;
  std::deque<Lane> lanes_;
  std::size_t next_ = 0;            // file of the folder that no lane has taken yet
  std::set<std::string> accepted_;  // fingerprints that the user has accepted
  FtpLog log_;
  bool failed_ = false;
  bool shown_ = false;
  bool cancelled_ = false;
  PublishProgress progress_;
  PublishReport report_;
  double startedAt_ = 0;
  std::uint64_t bytesLeft_ = 0;  // of the folder, without the files in hand
};

}  // namespace kv
