// The rules of the shipping dialog: what it stores at once, what it refuses, and what OK asks for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "commerce/shipping/country_names.h"
#include "commerce/shipping/shipping_editor.h"
#include "commerce_shop.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view otherMethodText =
    "Selezionare un diverso metodo di pagamento/spedizione nel campo 'Preselezione'";

class TheShipping : public CommerceShop {
 protected:
  std::string offered() {
    std::string text;
    const OfferedMethods methods = editor.PopolaMetodi();
    for (std::size_t i = 0; i < methods.items.size(); ++i) {
      const bool isSelected = static_cast<int>(i) == methods.selected;
      text += std::to_string(methods.items[i].number) + " " + methods.items[i].name + (isSelected ? " *\n" : "\n");
    }
    return text;
  }
  std::string said() const {
    std::string text;
    for (const Shown& one : user.shown) text += asText(one) + "\n";
    return text;
  }

  ShippingEditor editor{session, user, ','};
};

TEST_F(TheShipping, ListsTheDescriptorsOfTheCodeFolderWithoutTheirExtension) {
  ASSERT_TRUE(createFolders(session.ShopFolder + "/code/Paypal"));
  for (const char* name : {"Paypal.kpg", "Banca Sella.KPG", "ve.dat"}) {
    ASSERT_TRUE(writeBytes(session.ShopFolder + "/code/" + name, ""));
  }
  EXPECT_THAT(editor.modules(), ElementsAre("Banca Sella", "Paypal"));
}

TEST_F(TheShipping, TheListOfPreselectionHoldsTheActiveMethodsWithTheirNumbers) {
  EXPECT_EQ(offered(), "1 Contrassegno\n2 Bonifico anticipato *\n");
  EXPECT_TRUE(editor.switchMethod(4, true));
  EXPECT_EQ(offered(), "1 Contrassegno\n2 Bonifico anticipato *\n4 PayPal\n");
  EXPECT_TRUE(editor.preselectMethod(4));
  EXPECT_EQ(offered(), "1 Contrassegno\n2 Bonifico anticipato\n4 PayPal *\n");
}

TEST_F(TheShipping, MethodsAreNamedInTheLanguageBeingEdited) {
  session.currentLanguage = 2;
  EXPECT_EQ(editor.method(1).name, "Cash on delivery");
  EXPECT_TRUE(editor.setMethodName(1, "Cash"));
  EXPECT_EQ(field("SELECT nome1_l2 FROM pagamento"), "Cash");
  EXPECT_EQ(field("SELECT nome1 FROM pagamento"), "Contrassegno");
}

TEST_F(TheShipping, AMethodWithoutANameTakesThatOfItsModule) {
  EXPECT_TRUE(editor.setMethodName(3, "  "));
  EXPECT_EQ(editor.method(3).name, "Banca Sella");
  sql("UPDATE pagamento SET nome4 = NULL");
  EXPECT_TRUE(editor.setModule(4, "Omnipay"));
  EXPECT_EQ(field("SELECT metodo4 || '/' || nome4 FROM pagamento"), "Omnipay/Omnipay");
  EXPECT_TRUE(editor.setModule(4, "Shopla"));
  EXPECT_EQ(editor.method(4).name, "Omnipay");
}

TEST_F(TheShipping, ThePreselectedMethodStaysOn) {
  EXPECT_FALSE(editor.switchMethod(2, false));
  EXPECT_TRUE(editor.method(2).active);
  EXPECT_EQ(said(),
            "[Exclamation, Ok, Ok -> Ok] Questo metodo di pagamento è preselezionato e non può essere eliminato\n");
}

TEST_F(TheShipping, TheLastMethodStaysOnThoughAnInactiveOneIsPreselected) {
  sql("UPDATE pagamento SET attivo2 = 0");
  EXPECT_FALSE(editor.switchMethod(1, false));
  EXPECT_TRUE(editor.method(1).active);
  EXPECT_EQ(said(), "[Exclamation, Ok, Ok -> Ok] Almeno un metodo di pagamento deve essere selezionato\n");
}

TEST_F(TheShipping, TheLastMethodStaysOnWithoutAPreselection) {
  sql("UPDATE pagamento SET attivo2 = 0, selezionato = NULL");
  EXPECT_FALSE(editor.switchMethod(1, false));
  EXPECT_EQ(said(), "[Exclamation, Ok, Ok -> Ok] Almeno un metodo di pagamento deve essere selezionato\n");
}

TEST_F(TheShipping, AMethodThatIsNeitherPreselectedNorTheLastGoesOff) {
  EXPECT_TRUE(editor.switchMethod(1, false));
  EXPECT_EQ(offered(), "2 Bonifico anticipato *\n");
  EXPECT_EQ(said(), "");
}

TEST_F(TheShipping, ANewCountryHasZoneOneAndItsNumberAsText) {
  const std::size_t before = editor.countries().size();
  const auto ID = editor.addCountry("San Pietroburgo");
  ASSERT_TRUE(ID);
  ASSERT_EQ(editor.countries().size(), before + 1);
  const ShippingCountry added = editor.countries().back();
  EXPECT_EQ(added.strID, std::to_string(*ID));
  EXPECT_EQ(added.paese, "San Pietroburgo");
  EXPECT_EQ(added.zona, 1);
}

TEST_F(TheShipping, ACountryIsCutToFiftyCharacters) {
  std::string sixty;
  for (int i = 0; i < 60; ++i) sixty += "à";
  ASSERT_TRUE(editor.addCountry(sixty));
  EXPECT_EQ(editor.countries().back().paese, sixty.substr(0, 100));
}

TEST_F(TheShipping, AnEmptyNameAddsNoCountry) {
  EXPECT_FALSE(editor.addCountry(""));
  EXPECT_EQ(said(), "");
}

TEST_F(TheShipping, ThePreselectedCountryStays) {
  EXPECT_FALSE(editor.deleteCountry(1));
  EXPECT_EQ(editor.countries().front().paese, "Italia");
  EXPECT_EQ(said(), "[Exclamation, Ok, Ok -> Ok] Questo Paese è preselezionato e non può essere eliminato\n");
}

TEST_F(TheShipping, TheLastCountryStays) {
  sql("DELETE FROM paesi WHERE ID <> 2");
  EXPECT_FALSE(editor.deleteCountry(2));
  EXPECT_EQ(editor.countries().size(), 1U);
  EXPECT_EQ(said(), "[Exclamation, Ok, Ok -> Ok] Almeno un paese deve essere definito\n");
}

TEST_F(TheShipping, AfterADeletionTheNextRowShowsOrTheLast) {
  sql("DELETE FROM paesi WHERE ID > 4");
  EXPECT_EQ(editor.deleteCountry(2), std::optional<std::size_t>(1));
  EXPECT_EQ(editor.deleteCountry(4), std::optional<std::size_t>(1));
  EXPECT_THAT(editor.countries(),
              ElementsAre(::testing::Field(&ShippingCountry::ID, 1), ::testing::Field(&ShippingCountry::ID, 3)));
}

TEST_F(TheShipping, AZoneOfACountryIsStoredAtOnce) {
  EXPECT_TRUE(editor.setCountryZone(2, 7));
  EXPECT_EQ(field("SELECT zona FROM paesi WHERE ID = 2"), "7");
}

TEST_F(TheShipping, AboutNinetyCountriesAreOffered) {
  EXPECT_GE(countryNames().size(), 85U);
  EXPECT_TRUE(std::ranges::is_sorted(countryNames()));
}

TEST_F(TheShipping, AnAmountIsStoredAtOnceAndShownInItsNormalFormat) {
  EXPECT_EQ(editor.number(2, "m2imp1"), "80");
  EXPECT_EQ(editor.leaveNumber(2, "m2imp1", " 0075,50 "), "75,5");
  EXPECT_EQ(field("SELECT m2imp1 FROM zona2"), "75.5");
  EXPECT_EQ(editor.leaveNumber(8, "m4spp10", ",25"), "0,25");
  EXPECT_EQ(field("SELECT m4spp10 FROM zona8"), ".25");
}

TEST_F(TheShipping, ATextThatIsNoNumberGoesBackToWhatWasThere) {
  for (const char* typed : {"", " ", "1,2,3", "abc", "999999999999999999999"}) {
    EXPECT_EQ(editor.leaveNumber(1, "m1sp1", typed), "9,9") << typed;
  }
  EXPECT_EQ(field("SELECT m1sp1 FROM zona1"), "9.9");
  sql("UPDATE zona5 SET m1sp1 = NULL");
  EXPECT_EQ(editor.leaveNumber(5, "m1sp1", "x"), "");
  EXPECT_EQ(field("SELECT m1sp1 FROM zona5"), "(null)");
  EXPECT_EQ(editor.leaveNumber(1, "m1peso1", "1E+60"), "1");
}

TEST_F(TheShipping, AWeightTableInDisorderIsAccepted) {
  EXPECT_EQ(editor.leaveNumber(1, "m1peso1", "50"), "50");
  EXPECT_EQ(editor.leaveNumber(1, "m1peso2", "0,1"), "0,1");
  EXPECT_TRUE(editor.accept().closed);
  EXPECT_EQ(field("SELECT m1peso1 FROM zona1"), "50");
  EXPECT_EQ(field("SELECT m1peso2 FROM zona1"), ".1");
}

TEST_F(TheShipping, TheSwitchesAreStoredAtOnce) {
  EXPECT_TRUE(editor.setByWeight(true));
  EXPECT_TRUE(editor.setAlphabetic(false));
  EXPECT_TRUE(editor.setPaysVat(8, true));
  EXPECT_TRUE(editor.allow(6, 3, true));
  EXPECT_EQ(editor.leaveVatRate("4,5"), "4,5");
  EXPECT_EQ(field("SELECT imppeso || alfabetico || ivaok8 FROM pagamento"), "101");
  EXPECT_EQ(field("SELECT pag3 FROM zona6"), "1");
  EXPECT_EQ(field("SELECT ivaspese FROM pagamento"), "4.5");
  EXPECT_TRUE(editor.isByWeight() && !editor.isAlphabetic() && editor.paysVat(8) && editor.isAllowed(6, 3));
}

TEST_F(TheShipping, OkAloneStoresTheZoneOfThePreselectedCountry) {
  EXPECT_TRUE(editor.preselectCountry("2"));
  EXPECT_EQ(field("SELECT paesesel || ' ' || zonasel FROM pagamento"), "2 1");
  EXPECT_EQ(field("SELECT typeof(paesesel) FROM pagamento"), "integer");
  EXPECT_TRUE(editor.accept().closed);
  EXPECT_EQ(field("SELECT zonasel FROM pagamento"), "2");
  EXPECT_EQ(said(), "");
}

TEST_F(TheShipping, OkAsksForAnotherCountryWhenThePreselectedOneIsGone) {
  for (const char* missing : {"NULL", "4711"}) {
    sql(std::string("UPDATE pagamento SET paesesel = ") + missing);
    user.shown.clear();
    const ShippingAnswer answer = editor.accept();
    EXPECT_FALSE(answer.closed);
    EXPECT_EQ(answer.zone, 0);
    EXPECT_EQ(said(), "[Exclamation, Ok, Ok -> Ok] Selezionare un Paese differente nel campo 'Preselezione'\n");
  }
}

TEST_F(TheShipping, OkAsksForTheCountryBeforeTheMethod) {
  sql("UPDATE pagamento SET paesesel = 4711, attivo2 = 0");
  EXPECT_FALSE(editor.accept().closed);
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Selezionare un Paese differente nel campo 'Preselezione'"});
}

TEST_F(TheShipping, OkStaysOnTheTabOfAZoneThatLacksThePreselectedMethod) {
  sql("UPDATE pagamento SET paesesel = 2, selezionato = 1");
  const ShippingAnswer answer = editor.accept();
  EXPECT_FALSE(answer.closed);
  EXPECT_EQ(answer.zone, 2);
  EXPECT_EQ(user.texts(), std::vector<std::string>{std::string(otherMethodText)});
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_EQ(field("SELECT zonasel FROM pagamento"), "1");
}

TEST_F(TheShipping, OkStaysWhenThePreselectedMethodIsOff) {
  sql("UPDATE pagamento SET attivo2 = 0");
  const ShippingAnswer answer = editor.accept();
  EXPECT_FALSE(answer.closed);
  EXPECT_EQ(answer.zone, 1);
  EXPECT_EQ(user.texts(), std::vector<std::string>{std::string(otherMethodText)});
}

TEST_F(TheShipping, OkStaysOnThePresentTabWhenTheCountryHasNoZone) {
  for (const char* zone : {"NULL", "0", "9"}) {
    sql(std::string("UPDATE paesi SET zona = ") + zone + " WHERE ID = 1");
    user.shown.clear();
    const ShippingAnswer answer = editor.accept();
    EXPECT_FALSE(answer.closed);
    EXPECT_EQ(answer.zone, 0);
    EXPECT_EQ(user.texts(), std::vector<std::string>{std::string(otherMethodText)});
  }
}

TEST_F(TheShipping, AFailedWriteIsToldAndTheRowStays) {
  FailingStore store(1);
  store.onlyFor("UPDATE");
  EXPECT_EQ(editor.leaveNumber(1, "m1sp1", "5"), "9,9");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
}

TEST_F(TheShipping, TheZonesHaveTheNamesOfTheirTable) {
  EXPECT_EQ(editor.zoneNames()[1], "2 - Unione Europea");
  sql("DROP TABLE zone");
  EXPECT_EQ(editor.zoneNames()[1], "Zona 2");
}

}  // namespace
}  // namespace kv::test
