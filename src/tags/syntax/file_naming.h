#pragma once
// The two file name rules that both the tags and the builder go by.

#include <string>
#include <string_view>

namespace kv {

/// FileLingua: the language suffix put before the last "."; a name without "." stays as it is.
std::string FileLingua(std::string_view file, std::string_view lingua);

/// PutExt: a page name with the page extension of the run: "cart.htm" becomes "cart.php". Names that don't end in
/// ".htm", and results*.htm, stay; so do all names when the extension is empty or ".htm".
std::string PutExt(std::string_view file, std::string_view pageExtension);

}  // namespace kv
