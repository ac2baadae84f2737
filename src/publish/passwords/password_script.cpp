#include "publish/passwords/password_script.h"

#include <algorithm>
#include <initializer_list>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "publish/passwords/left_scripts.h"

namespace kv {
namespace {

constexpr std::size_t scriptNameLength = 20;
constexpr std::uint32_t scriptAlphabet = 26;
constexpr std::string_view scriptExtension = ".php";

void addLines(std::string& script, std::initializer_list<std::string_view> lines) {
  for (const std::string_view line : lines) script.append(line).append("\r\n");
}

void addRows(std::string& script, const std::vector<std::string>& passwords, std::string_view type) {
  for (const std::string& password : passwords) {
    script.append("('").append(password).append("',").append(type).append("),\r\n");
  }
}

/// A file that goes with this object.
class FileForNow {
 public:
  explicit FileForNow(std::string path) : path_(std::move(path)) {}
  FileForNow(const FileForNow&) = delete;
  FileForNow& operator=(const FileForNow&) = delete;
  ~FileForNow() { ignore(deleteFile(path_), "it may not have been written"); }

 private:
  std::string path_;
};

}  // namespace

std::string passwordScriptName(RandomSource& random) {
  std::string name;
  for (std::size_t i = 0; i < scriptNameLength; ++i) name += static_cast<char>('a' + random.below(scriptAlphabet));
  return name.append(scriptExtension);
}

bool isPasswordScriptName(std::string_view name) {
  if (name.size() != scriptNameLength + scriptExtension.size() || !name.ends_with(scriptExtension)) return false;
  name.remove_suffix(scriptExtension.size());
  return std::all_of(name.begin(), name.end(), [](char one) { return one >= 'a' && one <= 'z'; });
}

std::string passwordScript(const PasswordLists& lists, bool replaces) {
  std::string script;
  addLines(script, {"<?php", "include \"funcs.php\";", "error_reporting(0);", "", "$sql = \"CREATE TABLE kv_OTP (",
                    "pwd varchar(50) binary NOT NULL default '',", "pwdtype tinyint(4) NOT NULL default '0',",
                    "UNIQUE KEY pwd (pwd),", "KEY pwdtype (pwdtype)", ")\";", "$result = mysql_query($sql);", ""});
  if (replaces) addLines(script, {"$sql = \"DELETE FROM kv_OTP\";", "$result = mysql_query($sql);", ""});
  addLines(script, {"$sql = \"INSERT IGNORE kv_OTP (pwd,pwdtype) VALUES "});
  addRows(script, lists.requests, "1");
  addRows(script, lists.responses, "2");
  addLines(script, {"('stop',3)\";", "if ($result = mysql_query($sql)) {", "echo 'OK';", "} else {",
                    "echo mysql_error();", "}", "?>"});
  return script;
}

Result<bool> sendPasswordScript(const PasswordScriptJob& job, RandomSource& random,
                                const std::function<bool(const std::string& name)>& send) {
  const auto requests = readPasswordList(job.files.requests);
  if (!requests) return fail(requests.error());
  const auto responses = readPasswordList(job.files.responses);
  if (!responses) return fail(responses.error());
  for (const LeftScript& left : leftScripts(job.shopFolder)) {
    ignore(deleteFile(joinPath(job.onlineFolder, left.name)), "most were deleted by the run that made them");
  }
  const std::string name = passwordScriptName(random);
  // Before there is anything to leave: what ends the program from here on leaves a name to look for.
  if (auto noted = rememberScript(job.shopFolder, {job.serverFolder, name}); !noted) return fail(noted.error());
  const std::string path = joinPath(job.onlineFolder, name);
  const FileForNow script(path);
  if (auto written = writePrivateBytes(path, passwordScript({*requests, *responses}, job.replaces)); !written) {
    ignore(forgetScript(job.shopFolder, name), "the next run finds that it isn't there");
    return fail(written.error());
  }
  return send(name);
}

}  // namespace kv
