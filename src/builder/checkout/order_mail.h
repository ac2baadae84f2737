#pragma once
// The confirmation mail of an order, turned into program text of the scripts that send it.

#include <string>
#include <string_view>

namespace kv {

enum class MailForm { Php, Perl };

/// MakePerl: a text made safe within double quotes of Perl: "@" gets a backslash, a double quote becomes an apostrophe.
std::string MakePerl(std::string_view testo);

/// CreaMail (make mail): statements that append the text to `$info`, one per line (CR LF), the tags <<importo>>,
/// <<codice>> and <<riepilogo>> in any case replaced by what the script knows of the order. It starts with a line end
/// and each statement ends with one; empty for an empty text.
std::string CreaMail(std::string_view testo, MailForm form);

}  // namespace kv
