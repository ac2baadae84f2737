// ***1.0.7***
// The shop's data as the build knows them: currencies, discounts, shipping, required fields. First each as a shop
// without any has it, then as the build wrote it. The functions that read them are in js1.js (every page) and js2.js
// (cart and order).
/* exported totiva, spediva, idnegozio, lingua, aliquotaspese, minimo, qminima, tipopeso, ivacompresa, SpOk, IvaOk, zonainiziale */
var idnegozio = parseInt("<<1-IDnegozio>>", 10) || 0;
var lingua = "<<1-IDlingua>>";
var valuta = "", valuta2 = "", exch = 1, SecVal = 0, sepmigl = ".", sepdec = ",", PutDec = 1, PutDec2 = 1;
var scimp = new Array(0, 0, 0, 0, 0, 0, 0, 0, 0, 0), scperc = new Array(1, 1, 1, 1, 1, 1, 1, 1, 1, 1);
<<1-java_valuta>>
// Pages of the first language write amounts as the merchant chose, the others as their readers do.
if (lingua !== "" && ["en", "fr", "it", "de"].indexOf("<<4-codice_lingua>>") >= 0) {
  sepmigl = { en: ",", fr: "\u00a0" }["<<4-codice_lingua>>"] || ".";
  sepdec = "<<4-codice_lingua>>" === "en" ? "." : ",";
}
var impord1, impspese1, impord2, impspese2, impspese3;
var imppeso1, imppeso2, imppeso3, imppeso4, imppeso5, imppeso6, imppeso7, imppeso8, imppeso9;
var impspp1, impspp2, impspp3, impspp4, impspp5, impspp6, impspp7, impspp8, impspp9, impspp10;
<<1-java_importi>>
<<1-java_importi_peso>>
var SpOk = "", IvaOk = "";
<<1-java_permessi>>
var zonainiziale = Number("<<1-java_zona>>") || 1;
var tipopeso = "<<1-java_tipopeso>>";
var ivacompresa = "<<1-java_ivacompresa>>";
var aliquotaspese = Number("<<1-java_aliquotaspese>>") || 0;
var qminima = Number("<<1-java_qminima>>") || 0;
var minimo = Number("<<1-java_minimo>>") || 0;
// A shop whose first zone pays no VAT says so by a 0 here.
var totiva = 1, spediva = 1;
<<1-java_iva>>
<<1-java_iva_spese>>
var obbl_rsoc = 0, obbl_piva = 0, obbl_tel = 0, obbl_magg = 1;
<<1-java_campi>>
var autoredirect = 0, checkcookies = 0;
<<1-java_redirect>>
