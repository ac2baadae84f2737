// Pictures dropped on a picture or a row: which of its pictures they become, as one step, and what is told.
#include "shell/workbench/picture_drop.h"

#include <sys/stat.h>

#include "media/choice/picture_box.h"
#include "platform/image/pixels.h"
#include "shell/workbench_fixture.h"
#include "support/failing_files.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

class DroppedPictures : public WorkbenchFixture {
 protected:
  std::string photo(const std::string& name, ImageSize size = {40, 20}) {
    const auto pixels = PixelBuffer::create(size);
    const std::string path = joinPath(home.path(), name);
    EXPECT_TRUE(pixels && writeBytes(path, valueOf(jpegOf(*pixels, 90))));
    return path;
  }
  /// A photo that notes a latitude.
  std::string located(const std::string& name) {
    const std::string path = photo(name), bytes = valueOf(readBytes(path)), zero(1, '\0');
    const std::string note = "\xFF\xE1" + zero + "\x2B" + "http://ns.adobe.com/xap/1.0/" + zero + "GPSLatitude'";
    EXPECT_TRUE(writeBytes(path, bytes.substr(0, 2) + note + bytes.substr(2)));
    return path;
  }
  void onArticle() {
    start();
    article(0);
  }
  std::string pictures() {
    return rows("SELECT immagine0, imgX0, imgY0, immagine1, immagine2, imgX2 FROM articoli WHERE codice = 'A1'");
  }
  std::vector<std::string> inWork() { return listFiles(joinPath(shop, "work"), "*0001*"); }
  void drop(int number, const std::vector<std::string>& files) {
    takePictures(*bench, {EditedSet::Articoli, number}, files);
  }

  TempFolder home;
};

TEST_F(DroppedPictures, SeveralFillTheFreeOnesInOrderAsOneStep) {
  onArticle();
  const std::string before = whole();
  drop(1, {photo("uno.jpg")});
  drop(freePictures, {photo("due.jpg"), photo("tre.jpg", {10, 10})});
  EXPECT_EQ(pictures(), "due_0001.jpg|40|20|uno_0001.jpg|tre_0001.jpg|10\n");
  EXPECT_TRUE(user.shown.empty());
  undo();
  EXPECT_EQ(undoName(), "Imposta immagine");
  undo();
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(inWork().size(), 3U) << "the files stay until the purge";
}

TEST_F(DroppedPictures, TheFirstReplacesThePictureItIsDroppedOn) {
  onArticle();
  drop(0, {photo("uno.jpg")});
  drop(0, {photo("due.jpg"), photo("tre.jpg")});
  EXPECT_THAT(pictures(), HasSubstr("due_0001.jpg|40|20|tre_0001.jpg|"));
}

TEST_F(DroppedPictures, ReplaceNoneOfARowThatCannotBeRead) {
  onArticle();
  drop(0, {photo("uno.jpg")});
  const std::string before = whole(), second = photo("due.jpg");
  {
    // What was written since makes the row be read again.
    ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET codice = codice"));
    FailingStore store(1);
    drop(freePictures, {second});
    EXPECT_TRUE(store.hasFailed());
  }
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(inWork().size(), 1U);
}

TEST_F(DroppedPictures, WhatThereIsNoPictureLeftForIsTold) {
  onArticle();
  drop(freePictures, {photo("a.jpg"), photo("b.jpg"), photo("c.jpg"), photo("d.jpg")});
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Non c'è più posto per:\nd.jpg"}));
  drop(freePictures, {photo("e.jpg")});
  EXPECT_EQ(user.texts().back(),
            "Tutte le immagini sono già impostate: trascinare il file sull'immagine da sostituire");
  EXPECT_EQ(inWork().size(), 3U);
}

TEST_F(DroppedPictures, AFileThatIsNoPictureIsToldAndTakesNoRoom) {
  onArticle();
  const std::string text = joinPath(home.path(), "nota.jpg");
  ASSERT_TRUE(writeBytes(text, "testo"));
  const std::string pipe = joinPath(home.path(), "tubo.jpg");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  drop(freePictures, {text, pipe, joinPath(home.path(), "niente.jpg"), home.path(), photo("a.jpg")});
  EXPECT_THAT(user.texts().at(0), HasSubstr("L'immagine non può essere letta:\nnota.jpg\ntubo.jpg\nniente.jpg\n"));
  EXPECT_THAT(pictures(), HasSubstr("a_0001.jpg|40|20|"));
}

TEST_F(DroppedPictures, OneWithASideTheCatalogueCannotHoldIsToldAndTheOthersAreTaken) {
  ASSERT_TRUE(settings.set(loadImageSection, "MaxSize", "0"));
  onArticle();
  drop(freePictures, {photo("a.jpg"), photo("striscia.jpg", {32768, 1}), photo("b.jpg"), photo("c.jpg")});
  EXPECT_EQ(user.texts(), std::vector<std::string>{
                              "L'immagine \"striscia.jpg\" è di 32768 x 1 punti, e nessun lato può superare 32767 "
                              "punti.\nRidurla prima di sceglierla, o farla adattare alle misure."});
  EXPECT_EQ(pictures(), "a_0001.jpg|40|20|b_0001.jpg|c_0001.jpg|40\n");
}

TEST_F(DroppedPictures, OneTooLargeToBeReadIsToldAndTheOthersAreTaken) {
  const std::string huge = joinPath(home.path(), "enorme.gif");
  ASSERT_TRUE(writeBytes(huge, "GIF89a\x60\xEA\x60\xEA" + std::string(3, '\0')));
  onArticle();
  drop(freePictures, {huge, photo("a.jpg")});
  EXPECT_EQ(user.texts(), std::vector<std::string>{
                              "L'immagine \"enorme.gif\" è di 60000 x 60000 punti, in tutto più dei 64 milioni che si "
                              "possono leggere.\nRidurla con un altro programma prima di sceglierla."});
  EXPECT_THAT(pictures(), HasSubstr("a_0001.jpg|40|20|null|"));
}

TEST_F(DroppedPictures, WhatComesAfterOneThatCannotBeWrittenIsToldByName) {
  onArticle();
  const std::vector<std::string> files = {photo("a.jpg"), photo("b.jpg"), photo("c.jpg"), photo("d.jpg")};
  {
    FailingFiles full(1, AfterFailure::FailsToo, ENOSPC);
    full.onlyFor("b_0001.jpg");
    drop(freePictures, files);
  }
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_THAT(user.texts()[0], HasSubstr("b.jpg: il disco è pieno."));
  EXPECT_EQ(user.texts()[1], "Non sono state prese:\nc.jpg\nd.jpg");
  EXPECT_EQ(pictures(), "a_0001.jpg|40|20|null|null|null\n");
}

TEST_F(DroppedPictures, ThePicturesAreReducedAsTheDialogWasLeftAndItsSettingsStay) {
  ASSERT_TRUE(settings.set(loadImageSection, "MaxSize", "1"));
  ASSERT_TRUE(settings.set(loadImageSection, "MaxWidth", "20"));
  onArticle();
  drop(2, {photo("Larga.JPG")});
  EXPECT_THAT(pictures(), HasSubstr("|larga_0001.jpg|20\n"));
  EXPECT_EQ(settings.get(loadImageSection, "Path"), "");
}

TEST_F(DroppedPictures, TheLocationThatPhotosTellIsAskedForOnce) {
  onArticle();
  const std::string first = located("uno.jpg"), second = located("due.jpg");
  drop(freePictures, {first, second});
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::Yes);
  EXPECT_THAT(user.shown[0].text, HasSubstr("Omettere il luogo dalla copia?"));
  const auto copied = readBytes(joinPath(shop, "work/due_0001.jpg"));
  ASSERT_TRUE(copied);
  EXPECT_EQ(copied->find("GPSLatitude"), std::string::npos);
}

TEST_F(DroppedPictures, WithANoThePhotoIsCopiedAsItIs) {
  onArticle();
  user.answers = {Answer::No};
  const std::string file = located("uno.jpg");
  drop(0, {file});
  EXPECT_EQ(readBytes(joinPath(shop, "work/uno_0001.jpg")).value_or(""), readBytes(file).value_or("?"));
}

TEST_F(DroppedPictures, OneOfTheImageFolderIsTakenWithoutACopy) {
  onArticle();
  const std::string file = joinPath(shop, "work/mia.jpg");
  ASSERT_TRUE(copyFile(photo("x.jpg"), file));
  drop(0, {file});
  EXPECT_THAT(pictures(), HasSubstr("mia.jpg|40|20|"));
  EXPECT_TRUE(inWork().empty());
}

TEST_F(DroppedPictures, ADepartmentHasTwo) {
  start();
  takePictures(*bench, {EditedSet::Categorie, freePictures}, {photo("a.jpg"), photo("b.jpg"), photo("c.jpg")});
  EXPECT_EQ(rows("SELECT immagine0, immagine1, imgX1 FROM categorie WHERE ID = 'cat001'"),
            "a_0001.jpg|b_0001.jpg|40\n");
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Non c'è più posto per:\nc.jpg"}));
}

TEST_F(DroppedPictures, ThePictureOfAButtonIsThatOfTheLanguageBeingEdited) {
  start();
  bench->CambiaLingua(2);
  takePictures(*bench, {EditedSet::Categorie, 1}, {photo("b.jpg", {30, 10})});
  EXPECT_EQ(rows("SELECT immagine1, immagine1_l2, imgX1_l2, imgY1_l2 FROM categorie WHERE ID = 'cat001'"),
            "null|b_0001.jpg|30|10\n");
}

TEST_F(DroppedPictures, OnNoRowNothingHappens) {
  start();
  go("###");
  takePictures(*bench, {EditedSet::Categorie, 0}, {photo("a.jpg")});
  EXPECT_TRUE(inWork().empty());
  EXPECT_FALSE(bench->history().canUndo());
}

}  // namespace
}  // namespace kv::test
