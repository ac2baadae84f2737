#include "store/upgrade/patch_table.h"

#include <array>

namespace kv {
namespace {

using enum PatchNeeds;

// Lines as the earlier releases shipped them, and as they are since. Line ends inside a replacement are CR LF.
constexpr std::array<ScriptPatch, 11> php{
    {{.setting = "NoScUpKorPhp1",
      .search = R"kv(<input type="password" name="pw" maxlength="12">)kv",
      .replacement = R"kv(        <input type="password" name="pw" maxlength="100">)kv"},
     {.setting = "NoScUpKorPhp10",
      .file = "lognew.php",
      .search = R"kv($home = "index.php";)kv",
      .replacement = R"kv($home = "index<<1-IDlingua>>.php";)kv"},
     {.setting = "NoScUpKorPhp2",
      .search = R"kv($Out = implode ('', file ($name));)kv",
      .replacement = "\t$Out = @readfile($name);\r\n\t$Out = \"\";"},
     {.setting = "NoScUpKorPhp3",
      .file = "funcs.php",
      .search = R"kv($Lingua = "";)kv",
      .replacement = "\t$Lingua = \"<<1-IDlingua>>\";",
      .key = "if(!isset($Lingua)){"},
     {.setting = "NoScUpKorPhp4",
      .file = "kvsearch.php",
      .needs = SingleItemSearch,
      .search =
          R"kv($fpagina[$artFound]=$rowArt["pagina"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];)kv",
      .replacement =
          "\t"
          R"kv($fpagina[$artFound]=$rowArt["pagina"].".php?n=".$rowArt["sottopagina"]."&prod=".$rowArt["contatore"];)kv"},
     {.setting = "NoScUpKorPhp4",
      .file = "kvsearch.php",
      .needs = SingleItemSearch,
      .search =
          R"kv($fpagina[$artFound]=$rowArt["linkPage"].".php?n=".$rowArt["sottopagina"]."#".$rowArt["contatore"];)kv",
      .replacement =
          "\t"
          R"kv($fpagina[$artFound]=$rowArt["linkPage"].".php?n=".$rowArt["sottopagina"]."&prod=".$rowArt["contatore"];)kv"},
     {.setting = "NoScUpKorPhp5",
      .file = "funcs.php",
      .needs = LimitsToCustomers,
      .search = "if ($cliente == 0 && $regpr) {",
      .replacement = "\tif ($GLOBALS['listino'] == 0 && $regpr) {"},
     {.setting = "NoScUpKorPhp6",
      .file = "funcs.php",
      .needs = LimitsToCustomers,
      .search = "global $subtitleincart;",
      .replacement = "\tglobal $subtitleincart;\r\n"
                     "\tif ($cliente > 0 && $listino==0 && $regobbl) {\r\n"
                     "\t\t$Out = \"javascript:self.location='login$Lingua.php?m=37&t=.37.';\";\r\n"
                     "\t\t$Out .= \"\\\" onMouseOver=\\\"window.status=''; return true\";\r\n"
                     "\t\treturn $Out;\r\n"
                     "\t}"},
     {.setting = "NoScUpKorPhp7",
      .file = "output.php",
      .needs = LimitsToCustomers,
      .search = "$testo = urldecode($testo);",
      .replacement = "\t$testo = urldecode($testo);\r\n"
                     "\tif ($testo==\".37.\") { $testo=\"<<4-listino_obbligatorio>>\"; }"},
     {.setting = "NoScUpKorPhp8",
      .file = "kvorder.php",
      .search = R"kv($alldisp = "";)kv",
      .replacement = "$alldisp = \"\";\r\n"
                     R"kv(if ($HTTP_POST_VARS["Dettaglio"] == "") { die("Ordine non valido"); })kv"},
     {.setting = "NoScUpKorPhp9",
      .search = R"kv($email = Array("name"=>"<<4-ordine_email>>","required"=>"1","maxlength"=>"","minlength"=>"",)kv"
                R"kv("maxvalue"=>"","minvalue"=>"","regexp"=>'^([a-zA-Z0-9_\-\.]+)@((\[[0-9]{1,3}\.[0-9]{1,3}\.)kv"
                R"kv([0-9]{1,3}\.)|(([a-zA-Z0-9\-]+\.)+))([a-zA-Z]{2,4}|[0-9]{1,3})(\]?)$');)kv",
      .replacement =
          "\t"
          R"kv($email = Array("name"=>"<<4-ordine_email>>","required"=>"1","maxlength"=>"","minlength"=>"",)kv"
          R"kv("maxvalue"=>"","minvalue"=>"","regexp"=>'^([a-zA-Z0-9_\.-]+)@((\[[0-9]{1,3}\.[0-9]{1,3}\.)kv"
          R"kv([0-9]{1,3}\.)|(([a-zA-Z0-9\-]+\.)+))([a-zA-Z]{2,4}|[0-9]{1,3})(\]?)$');)kv"}}};

constexpr std::array<ScriptPatch, 5> js{
    {{.setting = "NoScUpKorJs1",
      .search = R"kv(DettagliOrd=DettagliOrd+"Articolo: " + theitem + "   ";)kv",
      .replacement = "\t\t"
                     R"kv(DettagliOrd=DettagliOrd+"Articolo: " + thecode + " " + theitem + "   ";)kv",
      .newForm = R"kv(DettagliOrd=DettagliOrd+"Articolo:"+thecode+""+theitem+"";)kv"},
     {.setting = "NoScUpKorJs2",
      .search = R"kv(RiepilogoCliente=RiepilogoCliente+"<<4-carrello_articolo>>: " + theitem + "   ";)kv",
      .replacement = "\t\t"
                     R"kv(RiepilogoCliente=RiepilogoCliente+"<<4-carrello_articolo>>: " + thecode + " " + theitem + )kv"
                     R"kv("   ";)kv",
      .newForm = R"kv(RiepilogoCliente=RiepilogoCliente+"<<4-carrello_articolo>>:"+thecode+""+theitem+"";)kv"},
     {.setting = "NoScUpKorJs3",
      .search =
          R"kv(document.writeln('<tr BGCOLOR="'+sfondocarrello+'"><td colspan=4><FONT COLOR="<<1-colore0>>" )kv"
          R"kv(FACE="Arial,Helvetica" SIZE=-1>' + "<<4-carrello_iva_spedizione>>" + '</FONT></td><td align=right )kv"
          R"kv(nowrap><INPUT type="text" name="TXivaspese" SIZE="'+lungtesto+'" value="'+valuta+testocasella+'" )kv"
          R"kv(onFocus="document.Ordine.TXspese.blur()" class="txtplain"></td></tr>');)kv",
      .replacement =
          "\t\t\t"
          R"kv(document.writeln('<tr BGCOLOR="'+sfondocarrello+'"><td colspan=4><FONT COLOR="<<1-colore0>>" )kv"
          R"kv(FACE="Arial,Helvetica" SIZE=-1>' + "<<4-carrello_iva_spedizione>>" + '</FONT></td><td align=right )kv"
          R"kv(nowrap><INPUT type="text" name="TXivaspese" SIZE="'+lungtesto+'" value="'+valuta+testocasella+'" )kv"
          R"kv(onFocus="document.Ordine.TXivaspese.blur()" class="txtplain"></td></tr>');)kv",
      .newForm = "document.Ordine.TXivaspese.blur()"},
     {.setting = "NoScUpKorJs4",
      .search = "if (document.Ordine.Maggiorenne.checked == false && obbl_magg == 1) {",
      .replacement = "\t\tif (obbl_magg == 1 && document.Ordine.Maggiorenne.checked == false) {"},
     {.setting = "Js2NoIva",
      .search = "document.Ordine.Riepilogo.value=RiepilogoCliente;",
      .replacement =
          "\t\t\t"
          R"kv(if (ivadapagare != totiva && totiva == 0)  RiepilogoCliente = RiepilogoCliente.replace(new RegExp()kv"
          R"kv("<<4-carrello_iva>>:(\\s)*" + valuta + "[0-9]+(\\.|,)?[0-9]*(\\s)*(\\n)","g"),)kv"
          R"kv("<<4-carrello_iva>>:   " + valuta + alterError(0)+"\n");)kv"
          "\r\n\t\t\t"
          R"kv(if (ivadapagare != totiva && totiva == 0)  RiepilogoCliente = RiepilogoCliente.replace(new RegExp()kv"
          R"kv("<<4-sconto>> \\(<<4-carrello_iva>>\\):(\\s)*-(\\s)*" + valuta + )kv"
          R"kv("[0-9]+(\\.|,)?[0-9]*(\\s)*(\\n)","g"),"");)kv"
          "\r\n\t\t\t"
          "document.Ordine.Riepilogo.value=RiepilogoCliente;",
      .newForm = R"kv(RiepilogoCliente.replace(new RegExp("<<4-carrello_iva>>:(\\s)*" + valuta + )kv"
                 R"kv("[0-9]+(\\.|,)?[0-9]*(\\s)*(\\n)","g"),""))kv",
      .onlyWhenOn = true}}};

}  // namespace

std::span<const ScriptPatch> phpPatches() { return php; }
std::span<const ScriptPatch> jsPatches() { return js; }

}  // namespace kv
