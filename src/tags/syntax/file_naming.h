#pragma once
// The two rules for file names that the tags and the builder share.

#include <string>
#include <string_view>

namespace kv {

/// FileLingua (file of a language): the name with the language suffix inserted before the last "."; a name without "."
/// stays unchanged.
std::string FileLingua(std::string_view file, std::string_view lingua);

/// PutExt (put the extension): a page name with the page extension of the run: "cart.htm" becomes "cart.php". Names
/// that don't end in
/// ".htm", and results*.htm, stay; so do all names when the extension is empty or ".htm".
std::string PutExt(std::string_view file, std::string_view pageExtension);

}  // namespace kv
