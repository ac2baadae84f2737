#include "builder/checkout/server_settings.h"

#include <array>

#include "builder/checkout/order_mail.h"
#include "builder/values/html_text.h"
#include "builder/values/line_end.h"
#include "builder/values/link_naming.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"
#include "tags/engine/tag_engine.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

std::string includeBlock(std::string_view script, std::string_view lingua) {
  std::string out = "<?php\r\ninclude \"";
  return out.append(script).append(lingua).append(".php\";\r\n?>");
}

std::string digit(bool set) { return set ? "1" : "0"; }

std::string inQuotes(const std::string& text) { return "\"" + text + "\""; }

// A picture's tag as PHP text in double quotes.
std::string markText(const std::string& templateFolder, std::string_view picture) {
  return inQuotes(replaceAll(CreaTagImg(templateFolder, picture), "\"", "\\\""));
}

// The discount by order amount of each listino; the shop's own discount is in the factor already.
struct OrderDiscounts {
  std::string factors, amounts;
};
OrderDiscounts orderDiscounts(const FieldRow& generale, float factor) {
  OrderDiscounts discounts;
  for (const std::string_view suffix : listinoSuffixes) {
    const std::string_view comma = discounts.factors.empty() ? "" : ",";
    const std::string n(suffix);
    const auto percent = toNumber(generale.text("scimp" + n));
    // The percent counts by its text, like the shop's own discount.
    const float own = percent ? static_cast<float>((100.0 - *percent) / 100.0 * static_cast<double>(factor)) : factor;
    discounts.factors.append(comma).append(trimmedNumber(own));
    discounts.amounts.append(comma).append(trimmedNumber(generale.money("importo" + n)));
  }
  return discounts;
}

void fillAccounts(PageTagRow& row, const FieldRow& generale) {
  for (const std::string_view column : {"email", "email_ordini", "username", "password", "merchantid", "db_security"}) {
    row.set(column, generale.text(column));
  }
  for (const std::string_view column :
       {"db_hostname", "db_username", "db_password", "db_dbname", "bo_username", "bo_password"}) {
    row.set(column, EscapePHP(generale.text(column)));
  }
  row.set("compact_privacy_policy", EscapePHP(generale.text("p3p")));
}

void fillAddresses(PageTagRow& row, const ServerTags& tags) {
  const std::string shop = URLNegozio(tags.generale);
  const auto page = [&tags, &shop](std::string_view name) {
    return PutExt(FileLingua(shop + std::string(name), tags.lingua), tags.pageExtension);
  };
  row.set("urlback", page("/payerr.htm"));
  row.set("urldone", page("/payok.htm"));
  row.set("perl_shopURL", shop);
  row.set("perl_cgiURL", URLCgi(tags.generale));
  for (const std::string_view column : {"CGIsearch", "CGIordine"}) {
    row.set(column, FileLingua(tags.generale.text(column), tags.lingua));
  }
  row.set("foldercgi", std::string(trim(tags.generale.text("folderCGI"))));
  row.set("perl_path", tags.generale.text("perl"));
}

void fillMail(PageTagRow& row, const FieldRow& generale) {
  row.set("perl_shopname", MakePerl(generale.text("titolo")));
  row.set("perl_email", MakePerl(generale.text("email_ordini")));
  row.set("perl_mailend", MakePerl(generale.text("firma_email")));
  row.set("firma", generale.text("firma_email"));
  row.set("testo_email", CreaMail(generale.text("testo_email"), MailForm::Php));
  row.set("perl_testo_email", CreaMail(generale.text("testo_email"), MailForm::Perl));
}

}  // namespace

std::string phpGlobals(const FieldRow& generale, const CurrencyForm& form, float factor,
                       const std::string& templateFolder) {
  std::string out;
  const auto line = [&out](std::string_view name, const std::string& value) {
    out.append("$").append(name).append(" = ").append(value).append(";").append(lineEnd);
  };
  line("ivacompresa", digit(generale.flag("ivacompresa")));
  line("visdec", "array(" + digit(form.decimals) + "," + digit(form.decimals2) + ", 2)");
  line("vissconto", digit(generale.flag("vis_sconto")));
  line("valuta", "array(" + inQuotes(form.label) + "," + inQuotes(form.label2) + ")");
  line("cambio", generale.flag("usa_cambio") ? plainNumber(generale.single("cambio")) : "0");
  line("notazione", std::to_string(generale.integer("notazione")));
  line("regobbl", digit(generale.flag("regobbl")));
  if (generale.flag("regprices")) line("regpr", "1");
  if (generale.flag("subtitleincart")) line("subtitleincart", "1");
  line("visofferta", generale.flag("vis_offerta") ? markText(templateFolder, "kvan_offerta.gif") : inQuotes(""));
  line("visnovita", markText(templateFolder, "kvan_novita.gif"));
  const OrderDiscounts discounts = orderDiscounts(generale, factor);
  line("scontoperc", "array(" + discounts.factors + ")");
  line("scontoimp", "array(" + discounts.amounts + ")");
  return out;
}

std::string phpVars(std::string_view department) {
  std::string out = "SetVariables(\"";
  out.append(department).append("\");").append(lineEnd);
  out.append("if ($inaccessibile[$listino]) { header(\"Location: login$Lingua.php?m=11\"); }");
  return out.append(lineEnd);
}

void fillServerTags(PageTagRow& row, const ServerTags& tags) {
  fillAccounts(row, tags.generale);
  fillAddresses(row, tags);
  fillMail(row, tags.generale);
  row.set("php_globals", tags.phpGlobals);
  row.set("output", includeBlock("output", tags.lingua));
  row.set("login", includeBlock("lognew", tags.lingua));
  row.set("negozio", NoVirgolette(tags.generale.text("titolo")));
  row.set("valuta", tags.currencyLabel);
  static constexpr std::array<std::string_view, 5> results{"ric_pagina", "ric_codice", "ric_titolo", "ric_sottotitolo",
                                                           "ric_foto"};
  for (std::size_t i = 0; i < results.size(); ++i) row.set(results[i], "$arg" + std::to_string(i + 1));
}

}  // namespace kv
