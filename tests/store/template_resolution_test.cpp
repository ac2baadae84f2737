// The template of a shop at loading: the installed one, a missing one, none, and the choice that follows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/load_shop.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const templateNeeded = "Per costruire il negozio sarà necessario scegliere un template";

class TemplateResolution : public test::ShopFixture {
 protected:
  void SetUp() override {
    shop = makeShop("uno");
    env.hooks.frmTemplate = [this](const std::string& current) {
      openedOn.push_back(current);
      return choice;
    };
  }
  void load(const LoadOptions& options = {}) {
    session.ShopFolder = shop;
    EXPECT_EQ(CaricaNegozio(session, env, options), LoadResult::Opened);
  }
  std::string stored() { return asText(test::valueOf(session.catalogue.scalar("SELECT template FROM generale"))); }

  std::string shop;
  std::string choice;
  std::vector<std::string> openedOn;
};

TEST_F(TemplateResolution, ListsTheModelsOfTheInstalledTemplateWithoutAsking) {
  write(application + "/template/base/MODELLO3.HTM", "");
  write(application + "/template/base/index.htm", "");
  write(application + "/template/base/modello4.php", "");
  load();
  EXPECT_THAT(session.models, ElementsAre("modello1", "modello2", "MODELLO3"));
  EXPECT_THAT(openedOn, IsEmpty());
}

TEST_F(TemplateResolution, OpensTheChoiceOnAMissingTemplate) {
  run(shop, "UPDATE generale SET template = 'perduto'");
  choice = "base";
  load();
  EXPECT_THAT(openedOn, ElementsAre("perduto"));
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_THAT(session.models, ElementsAre("modello1", "modello2"));
  EXPECT_EQ(stored(), "base");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TemplateResolution, SaysThatATemplateIsNeededWhenNoneIsChosenForAMissingOne) {
  run(shop, "UPDATE generale SET template = 'perduto'");
  load();
  EXPECT_EQ(session.templatePath, "template/perduto");
  EXPECT_THAT(session.models, ElementsAre("modello1"));
  EXPECT_EQ(stored(), "perduto");
  EXPECT_THAT(user.shown, ElementsAre(said(templateNeeded, Icon::Exclamation)));
}

TEST_F(TemplateResolution, SaysTheSameInAProgramWithoutTheChoice) {
  env.hooks.frmTemplate = nullptr;
  run(shop, "UPDATE generale SET template = 'perduto'");
  load();
  EXPECT_THAT(user.texts(), ElementsAre(templateNeeded));
}

TEST_F(TemplateResolution, AsksForATemplateWhenNoneIsSet) {
  run(shop, "UPDATE generale SET template = NULL");
  choice = "base";
  load();
  EXPECT_THAT(openedOn, ElementsAre(""));
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_EQ(stored(), "base");
}

TEST_F(TemplateResolution, FallsBackToTheFirstModelWithoutAWordWhenNoneIsSetOrChosen) {
  run(shop, "UPDATE generale SET template = ''");
  load();
  EXPECT_EQ(session.templatePath, "");
  EXPECT_THAT(session.models, ElementsAre("modello1"));
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TemplateResolution, AsksNothingDuringASilentReload) {
  for (const char* name : {"perduto", ""}) {
    run(shop, std::string("UPDATE generale SET template = '") + name + "'");
    load({.silent = true});
    EXPECT_THAT(session.models, ElementsAre("modello1"));
    session.catalogue.close();
  }
  EXPECT_THAT(openedOn, IsEmpty());
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TemplateResolution, CutsAChoiceToFiftyCharacters) {
  const std::string name(60, 'x');
  write(application + "/template/" + name.substr(0, 50) + "/modello1.htm", "");
  run(shop, "UPDATE generale SET template = NULL");
  choice = name;
  load();
  EXPECT_EQ(stored(), name.substr(0, 50));
  EXPECT_THAT(session.models, ElementsAre("modello1"));
}

TEST_F(TemplateResolution, OfAnUnknownTemplateIsAnEmptyList) {
  EXPECT_THAT(templateModels(application, "non c'è"), IsEmpty());
}

}  // namespace
}  // namespace kv
