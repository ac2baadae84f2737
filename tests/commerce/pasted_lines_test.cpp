// Texts with line ends and tabs, pasted into the fields of one line of the dialogs.

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "commerce/settings/makers.h"
#include "commerce/shipping/shipping_editor.h"
#include "commerce/variants/variant_editor.h"
#include "commerce_shop.h"

namespace kv::test {
namespace {

class PastedLines : public CommerceShop {};

TEST_F(PastedLines, AreStoredAsOneLineWithoutSpaceAtItsEnds) {
  ShippingEditor shipping{session, user, ','};
  VariantEditor variants{session, user, ','};
  const auto option = variants.options(2)[0].ID;
  MakerEditor makers = MakerEditor::load(session.catalogue).value();
  makers.add();
  const struct {
    const char* name;
    std::function<bool(const char*)> set;
    std::function<std::string()> stored;
  } fields[] = {
      {"shipping method", [&](const char* text) { return shipping.setMethodName(1, text); },
       [&] { return shipping.method(1).name; }},
      {"variant", [&](const char* text) { return variants.rename(2, text); },
       [&] { return field("SELECT nome FROM opzioni WHERE ID = 2"); }},
      {"code", [&](const char* text) { return variants.setOption(option, OptionCell::Codice, text); },
       [&] { return variants.options(2)[0].codice; }},
      {"text", [&](const char* text) { return variants.setOption(option, OptionCell::Testo, text); },
       [&] { return variants.options(2)[0].testo; }},
      {"maker",
       [&](const char* text) {
         makers.set(0, makerName, text);
         return true;
       },
       [&] { return makers.makers()[0].texts[makerName]; }},
  };
  const std::pair<const char*, const char*> texts[] = {
      {"Alba chiara\r\n", "Alba chiara"}, {"\tAlba\t\tchiara", "Alba chiara"}, {"Alba \n\n chiara", "Alba chiara"}};
  for (const auto& [name, set, stored] : fields) {
    for (const auto& [pasted, wanted] : texts) {
      EXPECT_TRUE(set("before")) << name;
      EXPECT_TRUE(set(pasted)) << name;
      EXPECT_EQ(stored(), wanted) << name;
    }
  }
}

}  // namespace
}  // namespace kv::test
