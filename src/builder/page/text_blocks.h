#pragma once
// The text blocks of PHP in a page: <<<'WORD', lines, and a line that begins with the word. A value of a tag between
// the two is data; a line of it that begins with the word would end the block. Source: the PHP manual, "Nowdoc".

#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// What the tags of a text become.
using TagExpansion = std::function<Result<std::string>(std::string_view text)>;

/// Whether values that were put into `text` hold the end word of one of its blocks; `expanded` is what it became.
bool holdsMoreEndWords(std::string_view text, std::string_view expanded);

/// The text with tags as it was, but for the end words of the blocks whose expanded lines would end them: such a word
/// is followed by "_1", or by the next number that the lines don't hold.
std::string withOwnEndWords(std::string_view text, const TagExpansion& expand);

}  // namespace kv
