#pragma once
// Which of many file names occur in texts: each text is read once, whatever the number of names.

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Names are found without regard to case, as a whole: "oto.gif" isn't in "foto.gif".
class PictureMentions {
 public:
  /// A name to look for, before the first text.
  void lookFor(const std::string& name);
  /// Reads a text, in UTF-8 or in the code page of templates; a name beyond ASCII is found in the former alone.
  void read(std::string_view text);
  bool isMentioned(const std::string& name) const;

 private:
  std::set<std::string, std::less<>> names_;  ///< folded; of characters that words of a text are made of
  std::vector<std::string> oddNames_;         ///< folded; with spaces or characters beyond ASCII
  std::set<std::string, std::less<>> found_;  ///< folded
};

}  // namespace kv
