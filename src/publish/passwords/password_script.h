#pragma once
// The PHP script that loads one-time passwords into the shop's online database. It is made, sent, called once and
// removed; what keeps a visitor from calling it meanwhile is its random name.

#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/clock.h"
#include "publish/passwords/password_lists.h"

namespace kv {

/// A new name: 20 random characters from "a" to "z", and ".php".
std::string passwordScriptName(RandomSource& random);
/// Whether a name is one that passwordScriptName can have made.
bool isPasswordScriptName(std::string_view name);

/// The passwords of both lists.
struct PasswordLists {
  std::vector<std::string> requests, responses;
};

/// The script, bytes with CR LF. It makes the table kv_OTP where there is none, empties it if `replaces`, adds the
/// passwords that aren't there yet, and answers "OK" or the database's error. The passwords are not escaped: the lists
/// hold characters and digits alone.
std::string passwordScript(const PasswordLists& lists, bool replaces);

/// What a script is made of.
struct PasswordScriptJob {
  PasswordFiles files;
  bool replaces = true;      ///< the passwords of the server go; else the new ones are added to them
  std::string shopFolder;    ///< remembers the script until it is gone
  std::string onlineFolder;  ///< receives the script
  std::string serverFolder;  ///< "host/folder", to which it will be sent
};

/// cmdAggiorna (update): makes the script, has `send` bring it into force, and deletes it from this machine whatever
/// came of that, together with scripts that an earlier run has left here. False when `send` says so. Failures as
/// readPasswordList and writePrivateBytes; then nothing was sent.
Result<bool> sendPasswordScript(const PasswordScriptJob& job, RandomSource& random,
                                const std::function<bool(const std::string& name)>& send);

}  // namespace kv
