// korvane-pack: brings one static folder of the sources into the data tree of the installation.
//   korvane-pack FROM TO LIST
// LIST names the files, one a line, relative to FROM. Text files become Windows-1252 with CR LF, parts/*.part are put
// into the pages beside and below them, the nearest of a name first, colours.txt of a template ("0 22303C text")
// becomes kvan_col_0.gif and so on, any other file is copied. Files that an earlier run made from a longer list are
// deleted; TO may hold other files too.
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "packed_text.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace {

using kv::Result;

bool isText(std::string_view name) {
  static constexpr std::array kinds{".htm", ".html", ".php", ".js",  ".css", ".ini", ".txt", ".lng", ".kpg",
                                    ".new", ".pl",   ".tag", ".dat", ".xml", ".asp", ".csv", ".inc"};
  for (const char* kind : kinds)
    if (kv::endsWithIgnoringCase(name, kind)) return true;
  return false;
}

/// An error of a text routine, with the file it happened in.
tl::unexpected<kv::Error> inFile(const std::string& path, kv::Error error) {
  error.where = error.where.empty() ? path : path + ":" + error.where;
  return kv::fail(std::move(error));
}

class Packer {
 public:
  Packer(std::string from, std::string to) : from_(std::move(from)), to_(std::move(to)) {}

  Result<> pack(const std::string& name) {
    if (name.ends_with(".part")) return {};
    const std::string source = kv::joinPath(from_, name);
    const Result<std::string> bytes = kv::readBytes(source);
    if (!bytes) return kv::fail(bytes.error());
    if (kv::baseName(name) == "colours.txt") return packColours(name, *bytes);
    if (!isText(name)) return put(name, *bytes);
    const std::vector<std::string> parts = partsOf(name);
    const Result<std::string> whole =
        parts.empty() ? *bytes : kv::withParts(*bytes, [&](std::string_view part) { return partIn(parts, part); });
    if (!whole) return inFile(source, whole.error());
    const Result<std::string> text = kv::shopTextOf(*whole);
    if (!text) return inFile(source, text.error());
    return put(name, *text);
  }

  /// Names of the files written, relative to the target folder.
  const std::set<std::string>& written() const { return written_; }

 private:
  /// The folders of parts that a file may use: the one beside it, then those of the folders above. None: "{{" then
  /// means nothing.
  std::vector<std::string> partsOf(const std::string& file) const {
    std::vector<std::string> folders;
    std::string folder = file;
    do {
      folder = std::string(kv::folderOf(folder));
      std::string parts = kv::joinPath(folder.empty() ? from_ : kv::joinPath(from_, folder), "parts");
      if (kv::folderExists(parts)) folders.push_back(std::move(parts));
    } while (!folder.empty());
    return folders;
  }

  static std::optional<std::string> partIn(const std::vector<std::string>& folders, std::string_view part) {
    for (const std::string& folder : folders)
      if (Result<std::string> text = kv::readBytes(kv::joinPath(folder, std::string(part) + ".part"))) return *text;
    return std::nullopt;
  }

  Result<> packColours(const std::string& name, std::string_view text) {
    for (const std::string_view line : kv::splitLines(text)) {
      if (line.empty() || line.front() == '#') continue;
      constexpr std::size_t colourAt = 2;
      constexpr std::size_t colourLength = 6;
      const Result<std::string> gif = kv::colourGif(line.substr(std::min(colourAt, line.size()), colourLength));
      if (!gif) return inFile(kv::joinPath(from_, name), gif.error());
      const std::string file = "kvan_col_" + std::string(1, line.front()) + ".gif";
      if (Result<> done = put(kv::joinPath(kv::folderOf(name), file), *gif); !done) return done;
    }
    return {};
  }

  Result<> put(const std::string& name, std::string_view bytes) {
    const std::string target = kv::joinPath(to_, name);
    if (Result<> done = kv::createFolders(std::string(kv::folderOf(target))); !done) return done;
    written_.insert(name);
    return kv::writeBytes(target, bytes);
  }

  std::string from_;
  std::string to_;
  std::set<std::string> written_;
};

/// Deletes what the run before wrote and this one did not, and notes what this one wrote.
Result<> forgetTheRest(const std::string& to, const std::string& memory, const std::set<std::string>& written) {
  if (const Result<std::string> before = kv::readBytes(memory))
    for (const std::string_view name : kv::splitLines(*before))
      if (!written.contains(std::string(name))) (void)kv::deleteFile(kv::joinPath(to, name));
  std::string names;
  for (const std::string& name : written) names += name + "\n";
  return kv::writeBytes(memory, names);
}

Result<> packFolder(const std::string& from, const std::string& to, const std::string& list) {
  const Result<std::string> names = kv::readBytes(list);
  if (!names) return kv::fail(names.error());
  Packer packer(from, to);
  for (const std::string_view name : kv::splitLines(*names))
    if (Result<> done = packer.pack(std::string(name)); !done) return done;
  return forgetTheRest(to, list + ".written", packer.written());
}

}  // namespace

int main(int count, char** words) {
  if (count != 4) {
    std::fputs("usage: korvane-pack FROM TO LIST\n", stderr);
    return 2;
  }
  const Result<> packed = packFolder(words[1], words[2], words[3]);
  if (packed) return 0;
  std::fprintf(stderr, "%s: %s\n", packed.error().where.c_str(), packed.error().what.c_str());
  return 1;
}
