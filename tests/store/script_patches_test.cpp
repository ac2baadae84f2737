// The patches of scripts that a merchant may have changed: which apply, what they leave, and that a second run of them
// changes nothing.
#include <gmock/gmock.h>

#include <random>

#include "store/shop_fixture.h"
#include "store/upgrade/patch_table.h"
#include "store/upgrade/script_patches.h"
#include "store/upgrade/script_search.h"
#include "support/failing_files.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class PatchingScripts : public ShopFixture {
 protected:
  PatchingScripts() : folder(root / "pool") { EXPECT_TRUE(createFolder(folder)); }

  /// What PatchPhp makes of a file of this name.
  std::string php(const std::string& name, std::string_view text) {
    write(folder + "/" + name, text);
    PatchPhp(folder + "/" + name, facts);
    return readBytes(folder + "/" + name).value_or("(none)");
  }
  std::string js(std::string_view text) {
    write(folder + "/js2.js", text);
    PatchJs(folder + "/js2.js", facts);
    return readBytes(folder + "/js2.js").value_or("(none)");
  }
  void set(const char* key, const char* value) { ASSERT_TRUE(settings.set("AppIni", key, value)); }

  std::string folder;
  PatchFacts facts{settings, true, true};
};

TEST_F(PatchingScripts, AllowsAPasswordOfAHundredCharactersInAnyFile) {
  EXPECT_EQ(php("qualunque.php", "<input  type=\"password\"\r\nname=\"pw\" maxlength=\"12\">x"),
            "        <input type=\"password\" name=\"pw\" maxlength=\"100\">x");
}

TEST_F(PatchingScripts, GivesTheLoginTheHomePageOfItsLanguage) {
  EXPECT_EQ(php("lognew.php", "$home=\"index.php\";"), "$home = \"index<<1-IDlingua>>.php\";");
  EXPECT_EQ(php("funcs.php", "$home=\"index.php\";"), "$home=\"index.php\";");
}

TEST_F(PatchingScripts, ReadsAFileWithoutKeepingIt) {
  EXPECT_EQ(php("a.php", "{\n$Out = implode('', file($name));\n}"),
            "{\n\t$Out = @readfile($name);\r\n\t$Out = \"\";\n}");
}

TEST_F(PatchingScripts, SetsTheLanguageWhereverItIsEmptyOnceItsKeyIsThere) {
  EXPECT_EQ(php("funcs.php", "if (! isset($Lingua)) {\n$Lingua = \"\";}\nelse $x=1; $Lingua=\"\";"),
            "if (! isset($Lingua)) {\n\t$Lingua = \"<<1-IDlingua>>\";}\nelse $x=1; \t$Lingua = \"<<1-IDlingua>>\";");
  EXPECT_EQ(php("funcs.php", "$Lingua = \"\";"), "$Lingua = \"\";");
}

TEST_F(PatchingScripts, LinksSearchResultsToTheSingleArticle) {
  const std::string old =
      "$fpagina[$artFound]=$rowArt[\"pagina\"].\".php?n=\".$rowArt[\"sottopagina\"].\"#\".$rowArt[\"contatore\"];\n"
      "$fpagina[$artFound]=$rowArt[\"linkPage\"].\".php?n=\".$rowArt[\"sottopagina\"].\"#\".$rowArt[\"contatore\"];";
  const std::string single =
      "\t$fpagina[$artFound]=$rowArt[\"pagina\"].\".php?n=\".$rowArt[\"sottopagina\"].\"&prod=\"."
      "$rowArt[\"contatore\"];\n"
      "\t$fpagina[$artFound]=$rowArt[\"linkPage\"].\".php?n=\".$rowArt[\"sottopagina\"].\"&prod=\"."
      "$rowArt[\"contatore\"];";
  EXPECT_EQ(php("kvsearch.php", old), single);
  facts.singleItemSearch = false;
  EXPECT_EQ(php("kvsearch.php", old), old);
}

TEST_F(PatchingScripts, HasOneSwitchForBothSearchPatches) {
  set("NoScUpKorPhp4", "x");
  const std::string old =
      "$fpagina[$artFound]=$rowArt[\"linkPage\"].\".php?n=\".$rowArt[\"sottopagina\"].\"#\".$rowArt[\"contatore\"];";
  EXPECT_EQ(php("kvsearch.php", old), old);
}

TEST_F(PatchingScripts, LimitsPricesAndOrdersOnlyWhereTheShopDoes) {
  const std::string functions = "if ($cliente == 0 && $regpr) {\nglobal $subtitleincart;";
  EXPECT_EQ(php("funcs.php", functions),
            "\tif ($GLOBALS['listino'] == 0 && $regpr) {\n\tglobal $subtitleincart;\r\n"
            "\tif ($cliente > 0 && $listino==0 && $regobbl) {\r\n"
            "\t\t$Out = \"javascript:self.location='login$Lingua.php?m=37&t=.37.';\";\r\n"
            "\t\t$Out .= \"\\\" onMouseOver=\\\"window.status=''; return true\";\r\n"
            "\t\treturn $Out;\r\n\t}");
  EXPECT_EQ(php("output.php", "$testo = urldecode($testo);"),
            "\t$testo = urldecode($testo);\r\n\tif ($testo==\".37.\") { $testo=\"<<4-listino_obbligatorio>>\"; }");
  facts.limitedToCustomers = false;
  EXPECT_EQ(php("funcs.php", functions), functions);
  EXPECT_EQ(php("output.php", "$testo = urldecode($testo);"), "$testo = urldecode($testo);");
}

TEST_F(PatchingScripts, RefusesAnOrderWithoutContent) {
  EXPECT_EQ(php("kvorder.php", "  $alldisp = \"\";"),
            "  $alldisp = \"\";\r\nif ($HTTP_POST_VARS[\"Dettaglio\"] == \"\") { die(\"Ordine non valido\"); }");
}

TEST_F(PatchingScripts, ReadsAnAddressWithAHyphenAtTheEndOfItsClass) {
  const std::string start =
      "$email = Array(\"name\"=>\"<<4-ordine_email>>\",\"required\"=>\"1\",\"maxlength\"=>\"\","
      "\"minlength\"=>\"\",\"maxvalue\"=>\"\",\"minvalue\"=>\"\",\"regexp\"=>'^([a-zA-Z0-9_";
  const std::string end =
      "]+)@((\\[[0-9]{1,3}\\.[0-9]{1,3}\\.[0-9]{1,3}\\.)|(([a-zA-Z0-9\\-]+\\.)+))"
      "([a-zA-Z]{2,4}|[0-9]{1,3})(\\]?)$');";
  EXPECT_EQ(php("x.php", start + "\\-\\." + end), "\t" + start + "\\.-" + end);
}

TEST_F(PatchingScripts, NamesTheCodeOfAnArticleInTheCart) {
  EXPECT_EQ(js("DettagliOrd=DettagliOrd+\"Articolo: \"+theitem+\"   \";"),
            "\t\tDettagliOrd=DettagliOrd+\"Articolo: \" + thecode + \" \" + theitem + \"   \";");
  EXPECT_EQ(js("RiepilogoCliente = RiepilogoCliente+\"<<4-carrello_articolo>>: \" + theitem + \"   \";"),
            "\t\tRiepilogoCliente=RiepilogoCliente+\"<<4-carrello_articolo>>: \" + thecode + \" \" + theitem + "
            "\"   \";");
}

TEST_F(PatchingScripts, LeavesAScriptWithTheNewLineBesideTheOldOne) {
  const std::string both =
      "DettagliOrd=DettagliOrd+\"Articolo: \"+thecode+\" \"+theitem+\"   \";"
      "DettagliOrd=DettagliOrd+\"Articolo: \"+theitem+\"   \";";
  EXPECT_EQ(js(both), both);
}

TEST_F(PatchingScripts, LeavesTheFieldOfTheTaxOnShippingByItself) {
  const auto line = [](const std::string& field) {
    return "document.writeln('<tr BGCOLOR=\"'+sfondocarrello+'\"><td colspan=4><FONT COLOR=\"<<1-colore0>>\" "
           "FACE=\"Arial,Helvetica\" SIZE=-1>' + \"<<4-carrello_iva_spedizione>>\" + '</FONT></td><td align=right "
           "nowrap><INPUT type=\"text\" name=\"TXivaspese\" SIZE=\"'+lungtesto+'\" value=\"'+valuta+testocasella+'\" "
           "onFocus=\"document.Ordine." +
           field + ".blur()\" class=\"txtplain\"></td></tr>');";
  };
  EXPECT_EQ(js(line("TXspese")), "\t\t\t" + line("TXivaspese"));
  const std::string patched = line("TXspese") + "document.Ordine.TXivaspese.blur();";
  EXPECT_EQ(js(patched), patched);
}

TEST_F(PatchingScripts, AsksForTheAgeOnlyWhereItIsRequired) {
  EXPECT_EQ(js("if (document.Ordine.Maggiorenne.checked == false && obbl_magg == 1) {"),
            "\t\tif (obbl_magg == 1 && document.Ordine.Maggiorenne.checked == false) {");
}

TEST_F(PatchingScripts, ShowsNoTaxOnlyWhenItsSettingIsOne) {
  const std::string old = "document.Ordine.Riepilogo.value = RiepilogoCliente;";
  EXPECT_EQ(js(old), old);
  set("Js2NoIva", "0");
  EXPECT_EQ(js(old), old);
  set("Js2NoIva", "1");
  const std::string patched = js(old);
  EXPECT_EQ(patched,
            "\t\t\tif (ivadapagare != totiva && totiva == 0)  RiepilogoCliente = RiepilogoCliente.replace(new RegExp("
            "\"<<4-carrello_iva>>:(\\\\s)*\" + valuta + \"[0-9]+(\\\\.|,)?[0-9]*(\\\\s)*(\\\\n)\",\"g\"),"
            "\"<<4-carrello_iva>>:   \" + valuta + alterError(0)+\"\\n\");\r\n"
            "\t\t\tif (ivadapagare != totiva && totiva == 0)  RiepilogoCliente = RiepilogoCliente.replace(new RegExp("
            "\"<<4-sconto>> \\\\(<<4-carrello_iva>>\\\\):(\\\\s)*-(\\\\s)*\" + valuta + "
            "\"[0-9]+(\\\\.|,)?[0-9]*(\\\\s)*(\\\\n)\",\"g\"),\"\");\r\n"
            "\t\t\tdocument.Ordine.Riepilogo.value=RiepilogoCliente;");
  EXPECT_EQ(js(patched), patched);
}

TEST_F(PatchingScripts, LeavesAMarkedScriptUntouched) {
  const std::string text = "// ***1.0.7***\n$home = \"index.php\";";
  EXPECT_EQ(php("lognew.php", text), text);
  EXPECT_EQ(php("lognew.php", "$home = \"index.php\"; // x***1.0.7***x"), "$home = \"index.php\"; // x***1.0.7***x");
}

TEST_F(PatchingScripts, TurnsEachPatchOffByItsSetting) {
  for (const auto& [patches, isPhp] : {std::pair{phpPatches(), true}, std::pair{jsPatches(), false}}) {
    for (const ScriptPatch& patch : patches) {
      if (patch.onlyWhenOn) continue;
      const std::string name = patch.file.empty() ? "x.php" : std::string(patch.file);
      const std::string text = std::string(patch.key) + std::string(patch.search);
      EXPECT_NE(isPhp ? php(name, text) : js(text), text) << patch.setting;
      set(std::string(patch.setting).c_str(), "0");
      EXPECT_EQ(isPhp ? php(name, text) : js(text), text) << patch.setting;
      set(std::string(patch.setting).c_str(), "");
    }
  }
}

TEST_F(PatchingScripts, PatchesTheSevenScriptsOfAFolder) {
  const std::string line = "<input type=\"password\" name=\"pw\" maxlength=\"12\">";
  for (const char* name :
       {"lognew.php", "FUNCS.php", "kvsearch.php", "output.php", "kvorder.php", "logcheck.php", "altro.php"}) {
    write(folder + "/" + name, line);
  }
  write(folder + "/js2.js", "if (document.Ordine.Maggiorenne.checked == false && obbl_magg == 1) {");
  PatchScript(folder + "/", facts);
  for (const char* name : {"lognew.php", "FUNCS.php", "kvsearch.php", "output.php", "kvorder.php", "logcheck.php"}) {
    EXPECT_THAT(readBytes(folder + "/" + name).value(), testing::HasSubstr("\"100\"")) << name;
  }
  EXPECT_EQ(readBytes(folder + "/altro.php"), line);
  EXPECT_THAT(readBytes(folder + "/js2.js").value(), testing::StartsWith("\t\tif (obbl_magg"));
}

TEST_F(PatchingScripts, DoesNothingWhenTheSettingOfAllHasAValue) {
  set("NoScUpKor", "0");
  write(folder + "/lognew.php", "$home = \"index.php\";");
  PatchScript(folder, facts);
  EXPECT_EQ(readBytes(folder + "/lognew.php"), "$home = \"index.php\";");
}

TEST_F(PatchingScripts, LeavesALockedScriptAndGoesOn) {
  write(folder + "/kvorder.php", "$alldisp = \"\";");
  write(folder + "/logcheck.php", "$Out = implode('', file($name));");
  {
    FailingFiles failing(1, AfterFailure::FailsToo, EACCES);
    failing.onlyFor("kvorder.php");
    PatchScript(folder, facts);
  }
  EXPECT_EQ(readBytes(folder + "/kvorder.php"), "$alldisp = \"\";");
  EXPECT_THAT(readBytes(folder + "/logcheck.php").value(), testing::HasSubstr("@readfile"));
}

TEST_F(PatchingScripts, LeavesNoUnfinishedCopyAfterAnyFailedWrite) {
  const std::string old = "$alldisp = \"\";";
  for (int call = 1; call < 12; ++call) {
    write(folder + "/kvorder.php", old);
    write(folder + "/kvorder.php.tmpupd", "di prima");
    {
      FailingFiles failing(call, AfterFailure::Works, ENOSPC);
      PatchPhp(folder + "/kvorder.php", facts);
    }
    EXPECT_THAT(readBytes(folder + "/kvorder.php").value_or(""), testing::StartsWith(old)) << call;
    const auto left = listFiles(folder, "*.tmpupd");
    EXPECT_TRUE(left.empty() || readBytes(folder + "/kvorder.php.tmpupd") == "di prima") << call;
  }
}

TEST_F(PatchingScripts, ASecondRunChangesNothing) {
  set("Js2NoIva", "1");
  std::mt19937 chance(seed());
  for (int round = 0; round < operationsOf(120); ++round) {
    for (const auto& [patches, isPhp] : {std::pair{phpPatches(), true}, std::pair{jsPatches(), false}}) {
      std::string name = "js2.js";
      std::string text;
      for (const ScriptPatch& patch : patches) {
        if (isPhp && !patch.file.empty() && chance() % 3 == 0) name = patch.file;
        if (chance() % 2 == 0) continue;
        text += std::string(patch.key) + "\n" + std::string(patch.search) + "/*\xE8*/";
      }
      const std::string once = isPhp ? php(name, text) : js(text);
      EXPECT_EQ(isPhp ? php(name, once) : js(once), once);
    }
  }
}

TEST_F(PatchingScripts, EveryOtherByteSurvives) {
  std::string bytes;
  for (int code = 0; code < 256; ++code) bytes += static_cast<char>(code);
  EXPECT_EQ(php("kvorder.php", bytes + "$Out=implode('',file($name));" + bytes),
            bytes + "\t$Out = @readfile($name);\r\n\t$Out = \"\";" + bytes);
}

TEST_F(PatchingScripts, ReadTheSettingsOfTheShop) {
  const std::string shop = makeShop("negozio");
  auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared).value();
  const auto read = [&](const char* sql) {
    EXPECT_TRUE(catalogue.execute(std::string("UPDATE generale SET singleitem_search = 0, regobbl = NULL, "
                                              "regprices = 0, reglist = 0; UPDATE generale SET ") +
                                  sql));
    const PatchFacts found = readPatchFacts(catalogue, settings);
    return std::string(found.singleItemSearch ? "single " : "") + (found.limitedToCustomers ? "limited" : "");
  };
  EXPECT_EQ(read("singleitem_search = 1"), "single ");
  EXPECT_EQ(read("regobbl = 1"), "limited");
  EXPECT_EQ(read("regprices = 1"), "limited");
  EXPECT_EQ(read("reglist = 1"), "limited");
  EXPECT_EQ(read("reglist = 0"), "");
}

TEST_F(PatchingScripts, TheShippedScriptsAreMarkedButTheSearch) {
  for (const char* name : {"js2.js", "lognew.php", "funcs.php", "output.php", "kvorder.php", "logcheck.php"}) {
    const auto text = readBytes(std::string(KORVANE_APP_DATA) + "/code/" + name);
    ASSERT_TRUE(text) << name;
    EXPECT_NE(text->find(patchedMark), std::string::npos) << name;
  }
}

TEST_F(PatchingScripts, TheShippedSearchLeadsToTheSingleArticleWhereTheShopSaysSo) {
  const auto shipped = readBytes(std::string(KORVANE_APP_DATA) + "/code/kvsearch.php");
  ASSERT_TRUE(shipped);
  facts.singleItemSearch = false;
  EXPECT_EQ(php("kvsearch.php", *shipped), *shipped);
  facts.singleItemSearch = true;
  EXPECT_THAT(php("kvsearch.php", *shipped), testing::HasSubstr(R"("&prod=".$rowArt["contatore"];)"));
}

}  // namespace
}  // namespace kv::test
