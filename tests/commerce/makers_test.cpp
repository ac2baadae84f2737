// The makers of the shop: read, edited and stored with what refers to them.
#include "commerce/settings/makers.h"

#include "commerce/commerce_shop.h"
#include "store/catalogue/side_fields.h"

namespace kv::test {
namespace {

class Makers : public CommerceShop {
 protected:
  MakerEditor load() { return MakerEditor::load(session.catalogue).value(); }
  /// Stores two makers, "Vetreria" and "Forno".
  void store() {
    MakerEditor editor = load();
    for (const char* name : {"Vetreria", "Forno"}) {
      editor.add();
      editor.set(editor.makers().size() - 1, makerName, name);
      editor.set(editor.makers().size() - 1, 1, " Via Po 1 ");
    }
    ASSERT_TRUE(editor.save(session.catalogue));
  }
};

TEST_F(Makers, AShopWithoutAnyHasNoTableUntilOneIsStored) {
  MakerEditor editor = load();
  EXPECT_TRUE(editor.makers().empty());
  EXPECT_FALSE(editor.isChanged());
  ASSERT_TRUE(editor.save(session.catalogue));
  EXPECT_FALSE(hasSideTable(session.catalogue, "produttori"));
}

TEST_F(Makers, StoredMakersComeBackInTheOrderOfTheirNames) {
  store();
  const MakerEditor editor = load();
  ASSERT_EQ(editor.makers().size(), 2U);
  EXPECT_EQ(editor.line(0), "Forno");
  EXPECT_EQ(editor.makers()[0].texts[1], "Via Po 1");
  EXPECT_EQ(editor.makers()[1].ID, 1);
  EXPECT_EQ(field("SELECT responsabile FROM produttori"), "");
}

TEST_F(Makers, AChangedMakerKeepsItsNumber) {
  store();
  MakerEditor editor = load();
  editor.set(0, makerName, "Panificio");
  EXPECT_TRUE(editor.isChanged());
  ASSERT_TRUE(editor.save(session.catalogue));
  EXPECT_EQ(field("SELECT nome FROM produttori WHERE ID = 2"), "Panificio");
  EXPECT_EQ(field("SELECT COUNT(*) FROM produttori"), "2");
}

TEST_F(Makers, ARemovedMakerIsTakenFromArticlesAndDepartments) {
  store();
  for (const char* key : {"1", "cat001"}) {
    ASSERT_TRUE(writeSideField(session.catalogue, SideField::Maker, key, Value("Forno")));
  }
  ASSERT_TRUE(writeSideField(session.catalogue, SideField::Maker, "2", Value("Vetreria")));
  MakerEditor editor = load();
  editor.remove(0);
  ASSERT_TRUE(editor.save(session.catalogue));
  EXPECT_EQ(field("SELECT COUNT(*) FROM produttori"), "1");
  EXPECT_EQ(field("SELECT GROUP_CONCAT(chiave) FROM sicurezza"), "2");
}

TEST_F(Makers, AMakerNeedsANameOfItsOwn) {
  store();
  MakerEditor editor = load();
  EXPECT_FALSE(editor.fault());
  editor.add();
  EXPECT_EQ(editor.line(2), "(senza nome)");
  ASSERT_TRUE(editor.fault());
  EXPECT_EQ(editor.fault()->maker, 2U);
  EXPECT_EQ(editor.fault()->message, "Indicare il nome del produttore.");
  editor.set(2, makerName, "FORNO");
  ASSERT_TRUE(editor.fault());
  EXPECT_EQ(editor.fault()->message, "C'è già un produttore con questo nome.");
  editor.set(2, makerName, "Cartiera");
  EXPECT_FALSE(editor.fault());
}

}  // namespace
}  // namespace kv::test
