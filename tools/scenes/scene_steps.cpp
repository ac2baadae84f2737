#include <QDialog>
#include <vector>

#include "scenes.h"

namespace kv::scenes {

void goToArticle(Stage& stage) {
  constexpr const char* fullest = "SELECT catID FROM articoli GROUP BY catID ORDER BY COUNT(*) DESC, catID";
  const auto department = stage.session().catalogue.scalar(fullest);
  stage.show(Tab::Articles);
  stage.window().workbench().goToDepartment(department ? asText(*department) : std::string());
  stage.window().workbench().goToArticleAt(0);
  Stage::processEvents();
}

void takeEntry(Stage& stage, std::string_view command, const QString& name) {
  stage.during([&] { stage.choose(command); }, [&](QWidget&) { stage.take(name); });
}

void takeShown(Stage& stage, QDialog& dialog, const QString& name, const std::function<void(QWidget&)>& arrange) {
  stage.during([&] { dialog.exec(); },
               [&](QWidget& shown) {
                 if (arrange) arrange(shown);
                 Stage::processEvents();
                 stage.take(name);
               });
}

std::span<const Scene> sceneTable() {
  static const std::vector<Scene> scenes = [] {
    std::vector<Scene> all(windowScenes().begin(), windowScenes().end());
    all.insert(all.end(), tradeScenes().begin(), tradeScenes().end());
    all.insert(all.end(), exchangeScenes().begin(), exchangeScenes().end());
    all.insert(all.end(), publishScenes().begin(), publishScenes().end());
    all.insert(all.end(), salesScenes().begin(), salesScenes().end());
    all.insert(all.end(), startScenes().begin(), startScenes().end());
    return all;
  }();
  return scenes;
}

}  // namespace kv::scenes
