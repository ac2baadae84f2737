#include "commerce/settings/mail_text.h"

namespace kv {

std::string acceptedMailText(std::string_view typed) {
  std::string text(typed);
  std::erase_if(text,
                [](char character) { return std::string_view("\"|[]").find(character) != std::string_view::npos; });
  return text;
}

}  // namespace kv
