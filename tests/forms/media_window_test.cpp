// Pictures, purge, export and import from the menus of the main window, with the program's own dialogs.
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>

#include "forms/wired_window.h"
#include "media/choice/frm_immagine.h"
#include "platform/image/pixels.h"

namespace kv::test {
namespace {

const QString pictureTitleShown = QStringLiteral("Korvane - Scelta dell'immagine");

class MediaWindow : public WiredWindow {
 protected:
  MediaWindow() {
    fill(
        "DELETE FROM articoli; UPDATE generale SET immagine0 = 'logo.gif', immagine1 = '';"
        "UPDATE categorie SET immagine0 = '', immagine1 = '', immagine1_l2 = '', immagine1_l3 = '', immagine1_l4 = ''");
    fill(
        "INSERT INTO articoli (ID, catID, ordinamento, titolo) VALUES (7, (SELECT min(ID) FROM categorie), 100, "
        "'Vaso')");
    EXPECT_TRUE(emptyFolder(shop + "/work"));
    EXPECT_TRUE(createFolder(root / "foto"));
    EXPECT_TRUE(settings.set("LoadImage", "Path", root / "foto"));
  }
  void openOnArticle() {
    openWindow();
    goTab(Tab::Articles);
    ASSERT_TRUE(*window->workbench().sets().MostraArticolo(7));
    processEvents();
  }
  /// Selects a file of the dialog's list and presses Enter.
  void choosePicture(const char* list, const char* name) {
    whenShown(pictureTitleShown, [list, name](QWidget& dialog) {
      if (std::string_view(list) == "lstNegozio") control<QTabWidget>(dialog, "tabOrigine")->setCurrentIndex(1);
      auto* files = control<QListWidget>(dialog, list);
      const auto found = files->findItems(QString::fromUtf8(name), Qt::MatchExactly);
      EXPECT_EQ(found.size(), 1);
      if (!found.isEmpty()) files->setCurrentItem(found.front());
      QTest::keyClick(&dialog, Qt::Key_F1);
      QTest::keyClick(&dialog, Qt::Key_Return);
      if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_TRUE(choose("article.picture0.set"));
    processEvents();
    expectHelp("immagini.htm");
  }
  /// F1 of the dialog has opened this page.
  void expectHelp(const std::string& page) const {
    EXPECT_EQ(opened, std::vector<std::string>{application + "/help/pagine/" + page});
  }
  std::string picture() {
    return stored("immagine0 || ' ' || COALESCE(imgX0, '') || 'x' || COALESCE(imgY0, '')", "articoli WHERE ID = 7");
  }
  /// A photo of 40 by 20 that the camera says to turn by a quarter.
  void saveTurned(const std::string& path) {
    const auto pixels = PixelBuffer::create({40, 20});
    ASSERT_TRUE(pixels);
    const std::string note(
        "\xFF\xE1\x00\x22"
        "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
        36);
    const std::string jpeg = jpegOf(*pixels, 90).value_or("");
    ASSERT_TRUE(writeBytes(path, jpeg.substr(0, 2) + note + jpeg.substr(2)));
  }
};

TEST_F(MediaWindow, APictureFromTheDiskIsOneStepAndItsFileStaysAfterUndo) {
  QImage image(400, 200, QImage::Format_RGB32);
  image.fill(Qt::red);
  ASSERT_TRUE(image.save(toQt(root / "foto/Vaso.png")));
  ASSERT_TRUE(settings.set("LoadImage", "MaxSize", "1"));
  openOnArticle();
  choosePicture("lstFile", "Vaso.png");
  EXPECT_EQ(picture(), "vaso_0001.jpg 180x90");
  EXPECT_TRUE(choose("undo"));
  EXPECT_NE(picture(), "vaso_0001.jpg 180x90");
  EXPECT_TRUE(fileExists(joinPath(shop, "work/vaso_0001.jpg")));
}

TEST_F(MediaWindow, ACopiedPhotoHasTheSizesAsABrowserShowsIt) {
  saveTurned(root / "foto/dritta.jpg");
  openOnArticle();
  choosePicture("lstFile", "dritta.jpg");
  EXPECT_EQ(picture(), "dritta_0001.jpg 20x40");
}

TEST_F(MediaWindow, APictureOfTheShopIsTakenWithoutACopy) {
  saveTurned(joinPath(shop, "work/altra_0003.jpg"));
  openOnArticle();
  choosePicture("lstNegozio", "altra_0003.jpg");
  EXPECT_EQ(picture(), "altra_0003.jpg 20x40");
  EXPECT_EQ(listFiles(shop + "/work", "*").size(), 1U);
}

TEST_F(MediaWindow, ThePurgeBeginsWithANoticeOfTheFolder) {
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/LOGO.GIF"), "x"));
  openWindow();
  whenShown(QStringLiteral("Korvane - Rimuovi immagini inutilizzate"), [](QWidget& dialog) {
    QTest::keyClick(&dialog, Qt::Key_F1);
    QTimer::singleShot(50, &dialog, [&dialog] { dialog.close(); });
  });
  EXPECT_TRUE(choose("shop.purgePictures"));
  expectHelp("immagini.htm");
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_TRUE(user.shown[0].text.starts_with("Nella cartella delle immagini interne (" + shop + "/work)"));
  EXPECT_EQ(user.shown[1].text, "Ricerca terminata: non sono state trovate immagini inutilizzate");
}

TEST_F(MediaWindow, TheRowBeingEditedIsSavedBeforeThePurgeSearches) {
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile.gif"), "x"));
  openOnArticle();
  auto* title = qobject_cast<QLineEdit*>(window->page(Tab::Articles).binding(EditedSet::Articoli, "titolo")->field());
  ASSERT_NE(title, nullptr);
  QString shown;
  whenShown(QStringLiteral("Korvane - Rimuovi immagini inutilizzate"), [&](QWidget& dialog) {
    const auto* files = control<QListWidget>(dialog, "lstFiles");
    EXPECT_TRUE(QTest::qWaitFor([files] { return files->count() == 1; }));
    if (files->count() == 1) shown = files->item(0)->text();
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  title->setFocus();
  title->selectAll();
  QTest::keyClicks(title, QStringLiteral("Vaso inutile.gif"));
  EXPECT_EQ(stored("titolo", "articoli WHERE ID = 7"), "Vaso");
  EXPECT_TRUE(choose("shop.purgePictures"));
  EXPECT_EQ(stored("titolo", "articoli WHERE ID = 7"), "Vaso inutile.gif");
  EXPECT_TRUE(shown.endsWith(QStringLiteral("citata in un testo"))) << fromQt(shown);
}

TEST_F(MediaWindow, WhatIsPurgedGoesToTheTrashOfTheDesktop) {
  // The toolkit takes the trash of the home for files on the same disk alone.
  const QByteArray home = qgetenv("HOME"), data = qgetenv("XDG_DATA_HOME");
  qputenv("HOME", QByteArray::fromStdString(root / ""));
  qputenv("XDG_DATA_HOME", QByteArray::fromStdString(root / "dati"));
  ASSERT_TRUE(createFolder(root / "dati"));
  ASSERT_TRUE(writeBytes(joinPath(shop, "work/inutile.gif"), "x"));
  openWindow();
  user.answers = {Answer::Yes};
  whenShown(QStringLiteral("Korvane - Rimuovi immagini inutilizzate"), [](QWidget& dialog) {
    auto* all = control<QPushButton>(dialog, "cmdTutti");
    EXPECT_TRUE(QTest::qWaitFor([all] { return all->isEnabled(); }));
    click(dialog, "cmdTutti");
    click(dialog, "cmdElimina");
  });
  EXPECT_TRUE(choose("shop.purgePictures"));
  EXPECT_EQ(user.texts().back(), "1 file cancellati");
  EXPECT_FALSE(fileExists(joinPath(shop, "work/inutile.gif")));
  EXPECT_TRUE(fileExists(root / "dati/Trash/files/inutile.gif"));
  qputenv("HOME", home);
  qputenv("XDG_DATA_HOME", data);
}

TEST_F(MediaWindow, AnExportLeavesTheWindowOnTheShop) {
  ASSERT_TRUE(createFolder(root / "copia"));
  openWindow();
  user.folders = {root / "copia"};
  whenShown(QStringLiteral("Korvane - Impostazioni esportazione"), [](QWidget& dialog) {
    QTest::keyClick(&dialog, Qt::Key_F1);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  EXPECT_TRUE(choose("shop.export"));
  processEvents();
  expectHelp("trasferire.htm");
  EXPECT_TRUE(window->isVisible());
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_TRUE(fileExists(root / "copia/catalog.mdb"));
  ASSERT_FALSE(user.shown.empty());
  EXPECT_TRUE(user.shown.back().text.starts_with("Nella cartella \"" + root / "copia"));
}

TEST_F(MediaWindow, AnImportReplacesTheRowsAndShowsThem) {
  const std::string source = root / "primo";
  ASSERT_TRUE(createFolder(source));
  ASSERT_TRUE(copyFile(shop + "/catalog.mdb", source + "/catalog.mdb"));
  {
    auto catalogue = Database::open(source + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue && catalogue->execute("UPDATE generale SET versione = 250; DELETE FROM articoli"));
  }
  openWindow();
  user.folders = {source};
  whenShown(QStringLiteral("Korvane - Importazione da negozi Primo"), [](QWidget& dialog) {
    click(dialog, "cmdSfoglia");
    QTest::keyClick(&dialog, Qt::Key_F1);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  whenShown(QStringLiteral("Korvane - Scelta del template"),
            [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
  EXPECT_TRUE(choose("shop.import"));
  processEvents();
  expectHelp("trasferire.htm");
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(session.articleCount, 0);
  EXPECT_TRUE(fileExists(shop + "/catalog.000"));
  EXPECT_EQ(user.texts().back(), "Importazione terminata correttamente");
}

TEST_F(MediaWindow, AnImportThatFailsOnTheWayEndsTheProgram) {
  const std::string source = root / "primo";
  ASSERT_TRUE(createFolder(source));
  ASSERT_TRUE(copyFile(shop + "/catalog.mdb", source + "/catalog.mdb"));
  {
    auto catalogue = Database::open(source + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue && catalogue->execute("UPDATE generale SET versione = 250; DROP TABLE paesi"));
  }
  openWindow();
  user.folders = {source};
  whenShown(QStringLiteral("Korvane - Importazione da negozi Primo"), [](QWidget& dialog) {
    click(dialog, "cmdSfoglia");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  EXPECT_TRUE(choose("shop.import"));
  processEvents();
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(user.texts().back(),
            "L'importazione è avvenuta con errori: ripristinare il backup e riavviare il programma");
}

}  // namespace
}  // namespace kv::test
