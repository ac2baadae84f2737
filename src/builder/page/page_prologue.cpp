#include "builder/page/page_prologue.h"

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr int prologueWidth = 100;  // percent

// Lines are joined by CR LF; each block of a prologue is opened by one.
constexpr std::string_view orderRegistration =
    "\r\n<?php\r\n"
    "if ($cliente==0 && $regobbl) {\r\n"
    "header(\"Location: login$Lingua.php?m=23\");\r\n"
    "}\r\n"
    "?>";
constexpr std::string_view orderFirstList =
    "\r\n<?php\r\n"
    "if ($cliente > 0 && $listino==0 && $regobbl) {\r\n"
    "header(\"Location: login$Lingua.php?m=37&t=.37.\");\r\n"
    "}\r\n"
    "?>";
constexpr std::string_view orderAvailability =
    "\r\n<?php\r\n"
    "$cartdisp = CheckDispCart();\r\n"
    "if (is_integer(strpos($cartdisp, \"0\"))) {\r\n"
    "header(\"Location: login$Lingua.php?m=53\");\r\n"
    "}\r\n"
    "$ordercliente = LoadDatiCliente();\r\n"
    "?>";
constexpr std::string_view cartBlock =
    "\r\n<?php\r\n"
    "$cartdisp = CheckDispCart();\r\n"
    "$ordercliente = \"\";\r\n"
    "?>";

bool isFile(std::string_view path, std::string_view name) { return equalsIgnoringCase(baseName(path), name); }

}  // namespace

std::string pagePrologue(std::string_view input, std::string_view lingua, const OrderRules& rules) {
  std::string out = "<?php\r\ninclude(\"funcs";
  out.append(lingua).append(".php\");\r\n$Lingua = \"").append(lingua).append("\";\r\n?>");
  if (isFile(input, "order.htm")) {
    out.append(orderRegistration);
    const bool limited = rules.registrationRequired || rules.pricesForRegisteredOnly;
    if (rules.limitsForFirstList && limited) out.append(orderFirstList);
    out.append(orderAvailability);
  } else if (isFile(input, "cart.htm")) {
    out.append(cartBlock);
  }
  return out;
}

std::string departmentPrologue(std::string_view lingua, std::string_view pageRoot, std::string_view phpVars) {
  std::string out = "<?php\r\ninclude(\"funcs";
  out.append(lingua).append(".php\");\r\n$sp = $HTTP_GET_VARS['n'];\r\n$Lingua = \"").append(lingua);
  out.append("\";\r\n$PageRoot = \"").append(pageRoot);
  out.append(
      "\";\r\n"
      "$sql = \"SELECT * FROM articoli$Lingua WHERE pagina='$PageRoot' ORDER BY sottopagina DESC\";\r\n"
      "$resultArt = mysql_query($sql);\r\n"
      "if (mysql_num_rows($resultArt) == 0) {\r\n"
      "$mp = 1;\r\n"
      "} else {\r\n"
      "$rowArt = mysql_fetch_array($resultArt);\r\n"
      "$mp = $rowArt['sottopagina'];\r\n"
      "}\r\n"
      "if ($sp < 1 || $sp > $mp) {$sp = 1;}\r\n"
      "mysql_free_result($resultArt);\r\n"
      "$sql = \"SELECT *, articoli$Lingua.pagina as 'linkPage' FROM articoli$Lingua INNER JOIN dettaglio USING (ID) "
      "INNER JOIN ordinamento USING (ID) WHERE articoli$Lingua.pagina='$PageRoot' AND articoli$Lingua.sottopagina=$sp "
      "ORDER BY contatore + 0 ASC\";\r\n"
      "$resultArt = mysql_query($sql);\r\n"
      "?>\r\n<?php\r\n");
  return out.append(phpVars).append("?>\r\n");
}

std::string loopHead(int columns) {
  std::string out =
      "<?php\r\n"
      "$Contatore = 0;\r\n"
      "$prod=$HTTP_GET_VARS['prod'];\r\n";
  if (columns > 1) out.append("if ($prod == 0 ) { echo\"<table border=0>\"; }\r\n");
  return out.append(
      "while ($rowArt = mysql_fetch_array($resultArt)) {\r\n"
      "$Contatore = $Contatore + 1;\r\n"
      "$artID = $rowArt['ID'];\r\n"
      "if ($prod == 0) {\r\n"
      "print ViewArt(\"beforecode\");\r\n"
      "}\r\n"
      "if ($prod == 0 || $prod == $Contatore) {\r\n"
      "?>\r\n");
}

std::string loopTail(int columns) {
  std::string out =
      "<?php\r\n"
      "}\r\n"
      "if ($prod == 0) {\r\n"
      "print ViewArt(\"aftercode\");\r\n"
      "}\r\n"
      "}\r\n";
  if (columns > 1) out.append("if ($prod == 0 ) { echo\"</table>\"; }\r\n");
  return out.append("?>");
}

std::string_view departmentEpilogue() {
  return "<?php\r\n"
         "mysql_free_result($resultArt);\r\n"
         "?>";
}

CellCode cellCode(int index, int columns, bool last) {
  if (columns <= 1) return {};
  const int width = prologueWidth / columns;
  const int column = index % columns;
  const bool closesRow = column == columns - 1;
  const int cellWidth = closesRow ? prologueWidth - width * (columns - 1) : width;  // so that a row adds up to 100
  CellCode code;
  if (column == 0) code.before = "<tr>";
  code.before += "<td valign=top width=" + std::to_string(cellWidth) + "%>";
  code.before += "<table border=0 width=100%><tr><td valign=top>";
  code.after = "</td></tr></table></td>";
  if (closesRow || last) code.after += "</tr>";
  return code;
}

}  // namespace kv
