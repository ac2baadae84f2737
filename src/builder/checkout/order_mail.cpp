#include "builder/checkout/order_mail.h"

#include <array>

#include "builder/values/line_end.h"
#include "platform/text/text.h"
#include "tags/engine/tag_engine.h"

namespace kv {

namespace {

struct MailTag {
  std::string_view tag, php, perl;
};
// Each closes the text around it, joins a value, and opens the text again.
constexpr std::array<MailTag, 3> mailTags{
    {{"<<importo>>", "\" . $mail_valuta . $totale_lordo . \"", "\".$mail_valuta.$FORM{'Totale_Ordine'}.\""},
     {"<<codice>>", "\" . $codice . \"", "\".$FORM{'Codice_Ordine'}.\""},
     {"<<riepilogo>>", "\" . $riepilogo . \"", "\".$FORM{'Riepilogo'}.\""}}};

std::string withValues(std::string line, MailForm form) {
  for (const MailTag& tag : mailTags) {
    const std::string_view value = form == MailForm::Php ? tag.php : tag.perl;
    for (auto at = findIgnoringCase(line, tag.tag); at != std::string::npos; at = findIgnoringCase(line, tag.tag, at)) {
      line.replace(at, tag.tag.size(), value);
      at += value.size();
    }
  }
  return line;
}

}  // namespace

std::string MakePerl(std::string_view testo) { return NoVirgolette(replaceAll(testo, "@", "\\@")); }

std::string CreaMail(std::string_view testo, MailForm form) {
  if (testo.empty()) return {};
  const std::string text = replaceAll(form == MailForm::Perl ? MakePerl(testo) : std::string(testo), "\"", "\\\"");
  std::string out(lineEnd);
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(lineEnd, start), text.size());
    out.append("$info .= \"").append(withValues(text.substr(start, end - start), form));
    out.append(form == MailForm::Php ? "\\r\\n\";" : "\\n\";").append(lineEnd);
    start = end + lineEnd.size();
  }
  return out;
}

}  // namespace kv
