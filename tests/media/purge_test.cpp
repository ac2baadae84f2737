// Pictures that nothing refers to: the search, its messages, and the deletion of those that are ticked.
#include <gtest/gtest.h>

#include "media/purge/unused_pictures.h"
#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;

class PurgingPictures : public ::testing::Test {
 protected:
  void present(const Names& names) {
    for (const std::string& name : names) ASSERT_TRUE(writeBytes(folder / name, "xyz"));
  }
  PicturePurge purge(Names used) {
    return {{folder.path(),
             [this, used = std::move(used)](const TextReader& read) -> Result<> {
               ++reads;
               for (const std::string& name : used) read(name);
               return {};
             },
             texts,
             {}},
            user};
  }
  static Names namesOf(const PicturePurge& purge) {
    Names names;
    for (const UnusedPicture& one : purge.unused()) names.push_back(one.name);
    return names;
  }
  test::Shown said(const std::string& text) const { return {text, Icon::Information}; }

  test::TempFolder folder;
  test::ScriptedUser user;
  int reads = 0;
  std::function<Result<>(const TextReader&)> texts;
};

TEST_F(PurgingPictures, ListsWhatNothingRefersTo) {
  present({"a.jpg", "b.gif", "c.png"});
  PicturePurge one = purge({"b.gif", "altra.jpg"});
  EXPECT_TRUE(one.search());
  EXPECT_EQ(namesOf(one), (Names{"a.jpg", "c.png"}));
  EXPECT_EQ(one.unused()[0].size, 3U);
  EXPECT_EQ(user.shown, (std::vector{said("Ricerca terminata: sono state trovate 2 immagini inutilizzate")}));
  EXPECT_EQ(reads, 1) << "the names in use are read once, whatever the number of files";
}

TEST_F(PurgingPictures, NamesMatchWithoutRegardToCaseBeyondAsciiToo) {
  present({"A.JPG", "ÈÀ.PNG"});
  PicturePurge one = purge({"a.jpg", "èà.png"});
  EXPECT_TRUE(one.search());
  EXPECT_FALSE(one.hasUnused());
  EXPECT_EQ(user.texts(), (Names{"Ricerca terminata: non sono state trovate immagini inutilizzate"}));
}

TEST_F(PurgingPictures, FilesThatDifferInCaseAloneAreAllInUse) {
  present({"A.JPG", "a.jpg", "b.jpg"});
  for (const char* name : {"a.jpg", "A.jpg"}) {
    PicturePurge one = purge({name});
    EXPECT_TRUE(one.search());
    EXPECT_EQ(namesOf(one), (Names{"b.jpg"})) << name;
  }
}

TEST_F(PurgingPictures, AnEmptyFolderIsToldAndTheBarIsFull) {
  PicturePurge one = purge({});
  EXPECT_TRUE(one.search());
  EXPECT_EQ(user.texts(), (Names{"Ricerca terminata: non sono state trovate immagini"}));
  ASSERT_EQ(user.progressShown.size(), 1U);
  EXPECT_EQ(user.progressShown[0].position, user.progressShown[0].maximum);
}

TEST_F(PurgingPictures, TheBarGoesFromOneToTheFileCount) {
  present({"a.jpg", "b.gif", "c.png"});
  EXPECT_TRUE(purge({"a.jpg"}).search());
  ASSERT_EQ(user.progressShown.size(), 3U);
  EXPECT_EQ(user.progressShown.front().position, 1);
  EXPECT_EQ(user.progressShown.back().position, 3);
  EXPECT_EQ(user.progressShown.back().maximum, 3);
}

TEST_F(PurgingPictures, AnErrorIsShownWithItsNumber) {
  present({"a.jpg"});
  PicturePurge one({folder.path(),
                    [](const TextReader&) -> Result<> { return fail(ErrorKind::Corrupt, "articoli", "rotto", 11); },
                    {},
                    {}},
                   user);
  EXPECT_FALSE(one.search());
  EXPECT_EQ(user.shown, (std::vector{test::Shown{"Si è verificato un errore:\n11 rotto", Icon::Critical}}));
}

TEST_F(PurgingPictures, DeletesWhatIsTickedAfterAQuestionThatDefaultsToNo) {
  present({"a.jpg", "b.gif", "c.png"});
  PicturePurge one = purge({});
  EXPECT_TRUE(one.search());
  user.shown.clear();
  EXPECT_FALSE(one.deleteTicked()) << "nothing is ticked";
  EXPECT_TRUE(user.shown.empty());
  one.tickAll(true);
  one.tick(1, false);
  EXPECT_FALSE(one.deleteTicked()) << "the default is No";
  EXPECT_EQ(user.shown.back(), (test::Shown{"Saranno cancellati 2 file. Procedere?", Icon::Question, Buttons::YesNo,
                                            Answer::No, Answer::No}));
  EXPECT_TRUE(fileExists(folder / "a.jpg"));
  user.answers = {Answer::Yes};
  EXPECT_TRUE(one.deleteTicked());
  EXPECT_EQ(user.shown.back(), said("2 file cancellati"));
  EXPECT_EQ(listFiles(folder.path(), "*"), (Names{"b.gif"}));
}

TEST_F(PurgingPictures, PicturesThatNumbersJoinToOneInUseAreInUse) {
  present({"vaso_g.jpg", "Vaso-2.JPG", "vaso-3.jpg", "vaso-5.jpg", "piatto-2.jpg", "vaso-2.gif"});
  PicturePurge one = purge({"vaso_g.jpg", "piatto.jpg"});
  EXPECT_TRUE(one.search());
  EXPECT_EQ(namesOf(one), (Names{"piatto-2.jpg", "vaso-2.gif", "vaso-5.jpg"}));
}

TEST_F(PurgingPictures, NamesOfTwoLinesOrOfNoTextAreListedAndDeletedToo) {
  present({"a\nb.gif", "\xFF\xE8.jpg", "in uso\n.gif"});
  PicturePurge one = purge({"IN USO\n.gif"});
  EXPECT_TRUE(one.search());
  EXPECT_EQ(namesOf(one), (Names{"a\nb.gif", "\xFF\xE8.jpg"}));
  one.tickAll(true);
  user.answers = {Answer::Yes};
  EXPECT_TRUE(one.deleteTicked());
  EXPECT_EQ(listFiles(folder.path(), "*"), (Names{"in uso\n.gif"}));
}

TEST_F(PurgingPictures, TickingNoneLeavesNothingToDelete) {
  present({"a.jpg"});
  PicturePurge one = purge({});
  EXPECT_TRUE(one.search());
  one.tickAll(true);
  one.tickAll(false);
  EXPECT_EQ(one.tickedCount(), 0U);
}

TEST_F(PurgingPictures, TheNumberToldIsOfFilesReallyGone) {
  present({"a.jpg", "b.gif"});
  PicturePurge one = purge({});
  EXPECT_TRUE(one.search());
  one.tickAll(true);
  user.shown.clear();
  user.answers = {Answer::Yes};
  test::FailingFiles gate(1);
  gate.onlyAt({FileStep::Remove});
  gate.onlyFor("a.jpg");
  EXPECT_TRUE(one.deleteTicked());
  EXPECT_EQ(user.texts(), (Names{"Saranno cancellati 2 file. Procedere?", "1 file cancellati",
                                 "Non è stato possibile cancellare:\na.jpg"}));
}

TEST_F(PurgingPictures, ATrashTakesTheFilesWhereThereIsOne) {
  present({"a.jpg"});
  Names trashed;
  PicturePurge one({folder.path(),
                    [](const TextReader&) -> Result<> { return {}; },
                    {},
                    [&](const std::string& path) -> Result<> {
                      trashed.push_back(path);
                      return {};
                    }},
                   user);
  EXPECT_TRUE(one.search());
  one.tickAll(true);
  user.answers = {Answer::Yes};
  EXPECT_TRUE(one.deleteTicked());
  EXPECT_EQ(trashed, (Names{folder / "a.jpg"}));
}

TEST_F(PurgingPictures, OneThatATextNamesIsListedAndMarked) {
  present({"a.jpg", "b.gif"});
  texts = [](const TextReader& read) -> Result<> {
    read("<img src=A.jpg>");
    return fail(ErrorKind::Other, "catalogue", "broken");  // what was read by then counts
  };
  PicturePurge one = purge({});
  EXPECT_TRUE(one.search());
  ASSERT_EQ(namesOf(one), (Names{"a.jpg", "b.gif"}));
  EXPECT_TRUE(one.unused()[0].isMentioned);
  EXPECT_FALSE(one.unused()[1].isMentioned);
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(asText(user.shown[0]),
            "[Exclamation, Ok, Ok -> Ok] Alcuni testi del negozio o del template non si possono leggere: le immagini "
            "citate soltanto "
            "lì non sono segnalate nell'elenco");
}

TEST_F(PurgingPictures, AFolderThatCantBeListedIsNotOneWithoutPictures) {
  present({"a.jpg"});
  PicturePurge one = purge({});
  test::FailingFiles gate(1);
  gate.onlyAt({FileStep::List});
  EXPECT_FALSE(one.search());
  EXPECT_TRUE(one.unused().empty());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]), "[Critical, Ok, Ok -> Ok] Si è verificato un errore:\n5 Input/output error");
}

}  // namespace
}  // namespace kv
