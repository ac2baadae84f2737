#include "platform/transfer/protocols/ssh_line.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/text/text.h"
#include "platform/transfer/protocols/ftp_control.h"
#include "platform/transfer/protocols/known_hosts.h"
#include "platform/transfer/server_way.h"

namespace kv {
namespace {

// The first that both sides know is taken. DSA is left out: nobody trusts it any more.
constexpr std::string_view keyTypes = "ssh-ed25519,ecdsa-sha2-nistp256,ecdsa-sha2-nistp384,ecdsa-sha2-nistp521,ssh-rsa";
// The library signs with an RSA key by SHA-1 alone, which servers of these years refuse.
constexpr const char* nothingInCommon =
    "il server SSH e Korvane non hanno in comune un tipo di chiave o di cifratura: una chiave RSA del server è "
    "accettata "
    "soltanto con SHA-1. Chiedere al fornitore una chiave Ed25519 o ECDSA, oppure pubblicare per FTP con TLS";
constexpr int accessDenied = transferOther + 530;
// Of one session. A file needs less than a megabyte; a server that floods us with answers is left, after
// a moment: the library doesn't pause while they come.
constexpr std::size_t mostMemory = std::size_t{16} * 1024 * 1024;
constexpr int mostRepeats = 64;  // of a call that has nothing to wait for any more

/// The library's own state, made before its first session.
bool isLibraryReady() {
  static const bool isReady = libssh2_init(0) == 0;
  return isReady;
}

SshMemory& memoryOf(void** abstract) { return *static_cast<SshMemory*>(*abstract); }

void keepForSession(void* made, std::size_t size, SshMemory& memory) {
  if (made == nullptr) return;
  memory.live[made] = size;
  memory.bytes += size;
}

void dropForSession(void* given, SshMemory& memory) {
  const auto found = memory.live.find(given);
  if (found == memory.live.end()) return;
  memory.bytes -= found->second;
  memory.live.erase(found);
}

void* allocateForSession(std::size_t size, void** abstract) {
  SshMemory& memory = memoryOf(abstract);
  if (size > mostMemory - memory.bytes) return nullptr;  // the library then gives up what it is doing
  void* const made = std::malloc(size);
  keepForSession(made, size, memory);
  return made;
}

void freeForSession(void* given, void** abstract) {
  dropForSession(given, memoryOf(abstract));
  std::free(given);
}

void* resizeForSession(void* given, std::size_t size, void** abstract) {
  SshMemory& memory = memoryOf(abstract);
  if (size > mostMemory - memory.bytes) return nullptr;
  const auto found = memory.live.find(given);
  const std::size_t before = found == memory.live.end() ? 0 : found->second;
  dropForSession(given, memory);
  void* const made = std::realloc(given, size);
  // A failed one leaves the memory as it was.
  made == nullptr ? keepForSession(given, before, memory) : keepForSession(made, size, memory);
  return made;
}

/// Answers each question of the server with the password: the one that there is asks for it.
// NOLINTNEXTLINE(readability-function-size): the library says which parameters there are
void answerWithPassword(const char* /*name*/, int /*nameLength*/, const char* /*instruction*/,
                        int /*instructionLength*/, int count, const LIBSSH2_USERAUTH_KBDINT_PROMPT* /*prompts*/,
                        LIBSSH2_USERAUTH_KBDINT_RESPONSE* responses, void** abstract) {
  const std::string& password = memoryOf(abstract).password;
  for (int i = 0; i < count; ++i) {
    auto* const text = static_cast<char*>(allocateForSession(password.size() + 1, abstract));
    if (text == nullptr) return;
    std::memcpy(text, password.c_str(), password.size() + 1);
    responses[i].text = text;  // freed by the library
    responses[i].length = static_cast<unsigned int>(password.size());
  }
}

/// Repeats a call that frees something. The connection is shut down by then, so that nothing is waited for.
template <class Call>
void repeatAtEnd(const Call& call) {
  for (int i = 0; i < mostRepeats && call() == LIBSSH2_ERROR_EAGAIN; ++i) {
  }
}

std::string hostNameOf(const ConnectionSettings& settings) {
  return knownHostName(settings.host, serverPort(settings));
}

}  // namespace

void SshMemory::release() {
  for (const auto& [one, size] : live) std::free(one);
  live.clear();
  bytes = 0;
  password.clear();
}

tl::unexpected<Error> statusFailure(unsigned long status) {
  switch (status) {
    case LIBSSH2_FX_NO_SUCH_FILE:
    case LIBSSH2_FX_NO_SUCH_PATH:
      return transferFailure(transferFolderMissing, "il file o la cartella non esiste");
    case LIBSSH2_FX_PERMISSION_DENIED:
    case LIBSSH2_FX_WRITE_PROTECT:
      return transferFailure(transferFileCommand + 53, "permesso negato");
    case LIBSSH2_FX_NO_SPACE_ON_FILESYSTEM:
    case LIBSSH2_FX_QUOTA_EXCEEDED:
      return transferFailure(transferFileCommand + 52, "lo spazio sul server è esaurito");
    default:
      return transferFailure(transferFileCommand,
                             "operazione rifiutata dal server (SFTP " + std::to_string(status) + ")");
  }
}

tl::unexpected<Error> SshLine::failure(ssize_t code) const {
  if (code == LIBSSH2_ERROR_SFTP_PROTOCOL && sftp_ != nullptr) return statusFailure(libssh2_sftp_last_error(sftp_));
  char* text = nullptr;
  libssh2_session_last_error(session_, &text, nullptr, 0);
  const std::string reason = text == nullptr || *text == '\0' ? std::to_string(code) : serverText(text);
  return transferFailure(transferNoConnection, "errore della connessione SSH (" + reason + ")");
}

Result<ssize_t> SshLine::complete(const Call& call, Patience& patience) {
  for (;;) {
    const ssize_t outcome = call();
    if (outcome >= 0) return outcome;
    if (outcome != LIBSSH2_ERROR_EAGAIN) return failure(outcome);
    const int directions = libssh2_session_block_directions(session_);
    short events = 0;
    if ((directions & LIBSSH2_SESSION_BLOCK_OUTBOUND) != 0) events = POLLOUT;
    if (events == 0 || (directions & LIBSSH2_SESSION_BLOCK_INBOUND) != 0) events = static_cast<short>(events | POLLIN);
    if (auto ready = patience.await(wire_.descriptor(), events); !ready) return fail(ready.error());
  }
}

Result<> SshLine::open(const ConnectionSettings& settings, Patience& patience) {
  close();
  if (isFtpProxy(settings.firewall)) {
    return transferFailure(transferOther, "un proxy FTP non porta connessioni SFTP");
  }
  auto wire = openServerWay(settings, patience);
  if (!wire) return fail(wire.error());
  session_ = isLibraryReady()
                 ? libssh2_session_init_ex(&allocateForSession, &freeForSession, &resizeForSession, &memory_)
                 : nullptr;
  if (session_ == nullptr) return transferFailure(transferOther, "la connessione SSH non può essere preparata");
  wire_ = std::move(*wire);
  wire_.keepAlive();
  libssh2_session_set_blocking(session_, 0);
  if (auto preferred = preferKnownKeys(settings); !preferred) return preferred;
  const auto shake = [this] { return libssh2_session_handshake(session_, wire_.descriptor()); };
  if (auto shaken = complete(shake, patience); !shaken) {
    const bool isDisagreement = libssh2_session_last_errno(session_) == LIBSSH2_ERROR_KEX_FAILURE;
    return isDisagreement ? transferFailure(transferOther, nothingInCommon) : fail(shaken.error());
  }
  return trustKey(settings);
}

Result<> SshLine::preferKnownKeys(const ConnectionSettings& settings) {
  // A server that has got a further key still shows the one by which it is known.
  std::string types;
  if (!settings.knownHostsFile.empty()) {
    const auto known = KnownHosts::read(settings.knownHostsFile);
    if (!known) {
      return transferFailure(transferNotTrusted, "il file " + settings.knownHostsFile + " non può essere letto");
    }
    for (const std::string& type : known->typesOf(hostNameOf(settings))) types += type + ",";
  }
  types += keyTypes;
  if (libssh2_session_method_pref(session_, LIBSSH2_METHOD_HOSTKEY, types.c_str()) == 0) return {};
  return transferFailure(transferOther, "la connessione SSH non può essere preparata");
}

Result<> SshLine::trustKey(const ConnectionSettings& settings) {
  std::size_t size = 0;
  int type = 0;
  const char* const bytes = libssh2_session_hostkey(session_, &size, &type);
  if (bytes == nullptr) return transferFailure(transferNotTrusted, "il server non mostra una chiave");
  return askAbout(settings, HostKey(std::string(bytes, size)));
}

Result<> SshLine::askAbout(const ConnectionSettings& settings, const HostKey& key) {
  const std::string host = hostNameOf(settings);
  auto known = settings.knownHostsFile.empty() ? KnownHosts() : KnownHosts::read(settings.knownHostsFile);
  if (!known) return transferFailure(transferNotTrusted, known.error().what);
  const KnownHosts::Standing standing = known->standingOf(host, key);
  if (standing == KnownHosts::Standing::Known) return {};
  if (standing == KnownHosts::Standing::Changed) {
    return transferFailure(transferNotTrusted,
                           "la chiave del server " + settings.host + " è cambiata (" + key.type() + " " +
                               key.fingerprint() +
                               "): qualcuno potrebbe essersi messo al suo posto, e la password non è stata inviata.\n"
                               "Se il fornitore conferma la nuova chiave, togliere la riga \"" +
                               host + "\" dal file " + settings.knownHostsFile);
  }
  UntrustedServer server{settings.host, {}, key.type(), key.fingerprint()};
  server.isKey = true;
  if (!trust || !trust(server)) return transferFailure(transferNotTrusted, "la chiave del server non è conosciuta");
  if (!settings.knownHostsFile.empty()) ignore(known->remember(host, key), "the next connection asks again");
  return {};
}

Result<> SshLine::logIn(const ConnectionSettings& settings, Patience& patience) {
  if (auto known = givePassword(settings, patience); !known) return known;
  return openChannel(patience);
}

Result<std::string> SshLine::offeredMethods(const std::string& user, Patience& patience) {
  // Null, with no error, when the server is content with the name.
  const auto methods = obtain<const char>(
      [&]() -> const char* {
        const char* const found = libssh2_userauth_list(session_, user.c_str(), static_cast<unsigned int>(user.size()));
        return found == nullptr && libssh2_userauth_authenticated(session_) == 1 ? "" : found;
      },
      patience);
  if (!methods) return fail(methods.error());
  return std::string(*methods);
}

Result<bool> SshLine::tryToLogIn(const Call& call, Patience& patience) {
  const auto done = complete(call, patience);
  if (done) return true;
  if (libssh2_session_last_errno(session_) == LIBSSH2_ERROR_AUTHENTICATION_FAILED) return false;
  return fail(done.error());
}

Result<> SshLine::givePassword(const ConnectionSettings& settings, Patience& patience) {
  const std::string& user = settings.user;
  const auto userSize = static_cast<unsigned int>(user.size());
  const auto offered = offeredMethods(user, patience);
  if (!offered) return fail(offered.error());
  if (offered->empty()) return {};
  const std::string& password = memory_.password = settings.password;
  const auto plain = [&] {
    return libssh2_userauth_password_ex(session_, user.c_str(), userSize, password.c_str(),
                                        static_cast<unsigned int>(password.size()), nullptr);
  };
  const auto asked = [&] {
    return libssh2_userauth_keyboard_interactive_ex(session_, user.c_str(), userSize, &answerWithPassword);
  };
  const auto offers = [&](const char* method) { return offered->find(method) != std::string::npos; };
  Result<bool> isAccepted = offers("password") ? tryToLogIn(plain, patience) : Result<bool>(false);
  if (isAccepted && !*isAccepted && offers("keyboard-interactive")) isAccepted = tryToLogIn(asked, patience);
  if (!isAccepted) return fail(isAccepted.error());
  if (*isAccepted) return {};
  return transferFailure(accessDenied, "il server non accetta l'utente o la password (ammette: " + *offered + ")");
}

Result<> SshLine::openChannel(Patience& patience) {
  const auto opened = obtain<LIBSSH2_SFTP>([this] { return libssh2_sftp_init(session_); }, patience);
  if (!opened) return transferFailure(opened.error().number, "il server non offre SFTP: " + opened.error().what);
  sftp_ = *opened;
  return {};
}

void SshLine::leave() {
  if (session_ == nullptr) return;
  ignore(libssh2_session_disconnect(session_, "bye"), "the connection is closed whether the server hears it or not");
}

void SshLine::close() {
  if (session_ != nullptr) {
    if (wire_.isOpen()) ignore(::shutdown(wire_.descriptor(), SHUT_RDWR), "it may be gone already");
    LIBSSH2_SFTP* const channel = std::exchange(sftp_, nullptr);
    if (channel != nullptr) repeatAtEnd([&] { return libssh2_sftp_shutdown(channel); });
    LIBSSH2_SESSION* const session = std::exchange(session_, nullptr);
    repeatAtEnd([&] { return libssh2_session_free(session); });
  }
  memory_.release();
  wire_.close();
}

}  // namespace kv
