#pragma once
// The confirmation mail of an order, turned into program text of the scripts that send it. What the merchant typed ends
// up inside double quotes of PHP or Perl, so that nothing of it may close them.

#include <string>
#include <string_view>

namespace kv {

/// The language of the script that sends the mail.
enum class MailForm { Php, Perl };

/// MakePerl: a text made safe within double quotes of Perl: "@" gets a backslash, a double quote becomes an apostrophe.
std::string MakePerl(std::string_view testo);

/// CreaMail (make mail): statements that append the text to `$info`, one per line (CR LF), the tags <<importo>>,
/// <<codice>> and <<riepilogo>> in any case replaced by what the script knows of the order. It starts with a line end
/// and each statement ends with one; empty for an empty text.
std::string CreaMail(std::string_view testo, MailForm form);

}  // namespace kv
