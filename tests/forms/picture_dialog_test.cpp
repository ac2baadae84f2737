// The choice of a picture in its window, by mouse and keyboard.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QSpinBox>
#include <QTabWidget>

#include "dialog_fixture.h"
#include "media/choice/frm_immagine.h"
#include "support/value_of.h"

namespace kv {
namespace {

using test::click;
using test::control;

class ThePictureDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    pictures = root / "foto";
    ASSERT_TRUE(createFolders(pictures + "/mare"));
    save(pictures + "/Larga.png", 400, 200);
    save(pictures + "/piccola.png", 20, 10);
    save(joinPath(shop, "work/usata_0001.png"), 30, 30);
    save(pictures + "/mare/onda.jpg", 50, 50);
    ASSERT_TRUE(writeBytes(pictures + "/rotta.jpg", "testo"));
    ASSERT_TRUE(writeBytes(pictures + "/nota.txt", "testo"));
    ASSERT_TRUE(settings.set("LoadImage", "Path", pictures));
    ASSERT_TRUE(settings.set("LoadImage", "MaxSize", "1"));
  }
  static void save(const std::string& path, int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(toQt(path)));
  }
  void makeDialog() {
    dialog.emplace(settings, user, shop + "/work", "usata_0001.png");
    show(*dialog);
  }
  QListWidget& files() { return *control<QListWidget>(*dialog, "lstFile"); }
  void choose(const char* name) {
    const auto found = files().findItems(toQt(name), Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << name;
    files().setCurrentItem(found.front());
  }
  std::string size() { return fromQt(control<QLabel>(*dialog, "lblDimensioni")->text()); }
  QLineEdit& field(const char* name) { return *control<QLineEdit>(*dialog, name); }
  void type(const char* name, const char* text) {
    field(name).setFocus();
    field(name).selectAll();
    QTest::keyClicks(&field(name), QString::fromUtf8(text));
    QTest::keyClick(&field(name), Qt::Key_Tab);
  }

  std::string pictures;
  std::optional<frmImmagine> dialog;
};

TEST_F(ThePictureDialog, ListsThePicturesOfTheFolderOpenedLast) {
  makeDialog();
  EXPECT_EQ(fromQt(field("txtCartella").text()), pictures);
  ASSERT_EQ(files().count(), 3) << "no text file";
  EXPECT_EQ(files().item(0)->text(), "Larga.png");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdOk")->isEnabled()) << "nothing is chosen";
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  choose("Larga.png");
  test::keepPicture(*dialog, "immagine");
}

TEST_F(ThePictureDialog, ShowsTheReducedSizeAndWritesIt) {
  makeDialog();
  choose("Larga.png");
  EXPECT_EQ(size(), "180 x 90");
  EXPECT_EQ(control<QLabel>(*dialog, "picAnteprima")->pixmap().size(), QSize(180, 90));
  EXPECT_EQ(fromQt(control<QLabel>(*dialog, "picAnteprima")->accessibleName()), "Anteprima: Larga.png 180 x 90");
  click(*dialog, "cmdOk");
  EXPECT_EQ(dialog->tag(), "larga_0001.jpg");
  EXPECT_EQ(QImage(toQt(joinPath(shop, "work/larga_0001.jpg"))).size(), QSize(180, 90));
}

TEST_F(ThePictureDialog, ThePreviewIsUpright) {
  QImage image(20, 20, QImage::Format_RGB32);
  image.fill(Qt::blue);
  for (int x = 0; x < 20; ++x) image.setPixelColor(x, 0, Qt::green);
  ASSERT_TRUE(image.save(toQt(pictures + "/sopra.png")));
  makeDialog();
  choose("sopra.png");
  const QImage seen = control<QLabel>(*dialog, "picAnteprima")->pixmap().toImage();
  EXPECT_EQ(seen.pixelColor(5, 0), QColor(Qt::green));
  EXPECT_EQ(seen.pixelColor(5, 19), QColor(Qt::blue));
}

TEST_F(ThePictureDialog, UntickingTheBoxDisablesItsFieldsAndReducesNothing) {
  makeDialog();
  choose("Larga.png");
  control<QCheckBox>(*dialog, "chkAdatta")->click();
  EXPECT_FALSE(field("txtLarghezza").isEnabled());
  EXPECT_FALSE(field("txtAltezza").isEnabled());
  EXPECT_EQ(size(), "400 x 200");
  click(*dialog, "cmdOk");
  EXPECT_EQ(dialog->tag(), "larga_0001.png");
}

TEST_F(ThePictureDialog, ALimitOutOfRangeGoesBackAndKeepsTheFocus) {
  makeDialog();
  choose("Larga.png");
  type("txtLarghezza", "271");
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Specificare un numero compreso fra 5 e 270"}));
  EXPECT_EQ(field("txtLarghezza").text(), "180");
  EXPECT_TRUE(field("txtLarghezza").hasFocus());
  type("txtLarghezza", "1a0-0");
  EXPECT_EQ(field("txtLarghezza").text(), "100") << "only digits pass";
  EXPECT_EQ(size(), "100 x 50") << "the preview follows";
  type("txtAltezza", "4");
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(field("txtAltezza").text(), "180");
}

TEST_F(ThePictureDialog, OneOfTheShopIsSelectedAndTakenByItsName) {
  makeDialog();
  auto* tabs = control<QTabWidget>(*dialog, "tabOrigine");
  tabs->setCurrentIndex(1);
  EXPECT_EQ(control<QListWidget>(*dialog, "lstNegozio")->currentItem()->text(), "usata_0001.png");
  EXPECT_EQ(size(), "30 x 30");
  click(*dialog, "cmdOk");
  EXPECT_EQ(dialog->tag(), "usata_0001.png");
  EXPECT_EQ(listFiles(shop + "/work", "*").size(), 1U);
}

TEST_F(ThePictureDialog, AnUnreadableFileHasNoPreviewAndNoTag) {
  makeDialog();
  choose("rotta.jpg");
  EXPECT_EQ(size(), "");
  EXPECT_TRUE(control<QLabel>(*dialog, "picAnteprima")->pixmap().isNull());
  click(*dialog, "cmdOk");
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->tag(), "");
}

TEST_F(ThePictureDialog, OneTooLargeToBeReadSaysSoInsteadOfThePreviewAndTheDialogStays) {
  ASSERT_TRUE(writeBytes(pictures + "/enorme.gif", "GIF89a\x60\xEA\x60\xEA" + std::string(3, '\0')));
  makeDialog();
  choose("enorme.gif");
  auto* preview = control<QLabel>(*dialog, "picAnteprima");
  const std::string said = fromQt(preview->text());
  EXPECT_TRUE(said.starts_with("L'immagine \"enorme.gif\" è di 60000 x 60000 punti, in tutto")) << said;
  EXPECT_EQ(fromQt(preview->accessibleDescription()), said);
  EXPECT_EQ(size(), "");
  test::keepPicture(*dialog, "immagine-enorme");
  click(*dialog, "cmdOk");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(user.texts(), std::vector<std::string>{said});
  choose("Larga.png");
  EXPECT_EQ(preview->text() + preview->accessibleDescription(), "");
}

TEST_F(ThePictureDialog, FoldersAreOpenedByEnterAndUpAgain) {
  makeDialog();
  auto* folders = control<QListWidget>(*dialog, "lstCartelle");
  ASSERT_EQ(folders->count(), 2);
  emit folders->itemActivated(folders->item(1));
  EXPECT_EQ(fromQt(field("txtCartella").text()), pictures + "/mare");
  EXPECT_EQ(files().count(), 1);
  emit folders->itemActivated(folders->item(0));
  EXPECT_EQ(fromQt(field("txtCartella").text()), pictures);
}

TEST_F(ThePictureDialog, TheDesktopIsAButtonAway) {
  const QByteArray before = qgetenv("XDG_CONFIG_HOME");
  const std::string desktop = root / "scrivania";
  ASSERT_TRUE(createFolder(desktop));
  ASSERT_TRUE(copyFile(pictures + "/Larga.png", desktop + "/sulla.png"));
  ASSERT_TRUE(writeBytes(root / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"" + desktop + "\"\n"));
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(root.path()));
  makeDialog();
  click(*dialog, "cmdDesktop");
  EXPECT_EQ(fromQt(field("txtCartella").text()), desktop);
  ASSERT_EQ(files().count(), 1);
  EXPECT_EQ(files().item(0)->text(), "sulla.png");
  qputenv("XDG_CONFIG_HOME", before);
}

TEST_F(ThePictureDialog, AFolderThatCantBeReadFallsBackToTheOneBefore) {
  makeDialog();
  type("txtCartella", "/niente/di/simile");
  EXPECT_EQ(fromQt(field("txtCartella").text()), pictures);
  EXPECT_EQ(files().count(), 3);
  user.folders = {pictures + "/mare"};
  click(*dialog, "cmdSfoglia");
  EXPECT_EQ(files().count(), 1);
}

TEST_F(ThePictureDialog, AQuarterTurnShowsAndWritesTheTurnedPicture) {
  makeDialog();
  choose("Larga.png");
  click(*dialog, "cmdRuotaDestra");
  EXPECT_EQ(size(), "90 x 180");
  click(*dialog, "cmdRuotaSinistra");
  EXPECT_EQ(size(), "180 x 90");
  click(*dialog, "cmdRuotaSinistra");
  click(*dialog, "cmdOk");
  EXPECT_EQ(dialog->tag(), "larga_0001.jpg");
  EXPECT_EQ(QImage(toQt(joinPath(shop, "work/larga_0001.jpg"))).size(), QSize(90, 180));
}

TEST_F(ThePictureDialog, APartIsTypedInFixedProportions) {
  makeDialog();
  choose("Larga.png");
  control<QCheckBox>(*dialog, "chkAdatta")->click();
  control<QCheckBox>(*dialog, "chkRitaglia")->click();
  EXPECT_EQ(size(), "400 x 200") << "it begins with all of it";
  control<QComboBox>(*dialog, "cboProporzioni")->setCurrentIndex(1);
  EXPECT_EQ(size(), "200 x 200");
  EXPECT_EQ(control<QSpinBox>(*dialog, "numSinistra")->value(), 100) << "in the middle";
  auto* wide = control<QSpinBox>(*dialog, "numLarga");
  wide->setFocus();
  wide->selectAll();
  QTest::keyClicks(wide, "120");
  QTest::keyClick(wide, Qt::Key_Tab);
  EXPECT_EQ(size(), "120 x 120") << "the height follows";
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "immagine-ritaglio");
  click(*dialog, "cmdOk");
  EXPECT_EQ(QImage(toQt(joinPath(shop, "work/larga_0001.jpg"))).size(), QSize(120, 120));
}

TEST_F(ThePictureDialog, APartIsDrawnWithTheMouse) {
  makeDialog();
  choose("Larga.png");
  control<QCheckBox>(*dialog, "chkAdatta")->click();
  control<QCheckBox>(*dialog, "chkRitaglia")->click();
  auto* frame = control<QLabel>(*dialog, "picAnteprima");
  // 400 by 200 are shown as 270 by 135 in the middle of the frame.
  const QPoint middle = frame->rect().center();
  QTest::mousePress(frame, Qt::LeftButton, {}, middle - QPoint(100, 50));
  QTest::mouseMove(frame, middle - QPoint(50, 25));
  QMouseEvent drag(QEvent::MouseMove, QPointF(middle), frame->mapToGlobal(QPointF(middle)), Qt::LeftButton,
                   Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(frame, &drag);
  QTest::mouseRelease(frame, Qt::LeftButton, {}, middle);
  EXPECT_NEAR(control<QSpinBox>(*dialog, "numSinistra")->value(), 52, 3);
  EXPECT_NEAR(control<QSpinBox>(*dialog, "numLarga")->value(), 148, 3);
  EXPECT_NEAR(control<QSpinBox>(*dialog, "numAlta")->value(), 74, 3);
}

TEST_F(ThePictureDialog, AnotherPictureBeginsWithoutTurnsAndCuts) {
  makeDialog();
  choose("Larga.png");
  click(*dialog, "cmdRuotaDestra");
  control<QCheckBox>(*dialog, "chkRitaglia")->click();
  choose("piccola.png");
  EXPECT_FALSE(control<QCheckBox>(*dialog, "chkRitaglia")->isChecked());
  EXPECT_EQ(size(), "20 x 10");
  choose("rotta.jpg");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdRuotaDestra")->isEnabled()) << "there is nothing to turn";
}

TEST_F(ThePictureDialog, APhotoThatTellsItsLocationOffersToLeaveItOut) {
  const std::string jpeg = test::valueOf(readBytes(pictures + "/mare/onda.jpg"));
  const std::string zero(1, '\0');
  const std::string note = "\xFF\xE1" + zero + "\x2B" + "http://ns.adobe.com/xap/1.0/" + zero + "GPSLatitude'";
  ASSERT_TRUE(writeBytes(pictures + "/casa.jpg", jpeg.substr(0, 2) + note + jpeg.substr(2)));
  makeDialog();
  auto* box = control<QCheckBox>(*dialog, "chkLuogo");
  choose("piccola.png");
  EXPECT_FALSE(box->isVisible());
  choose("casa.jpg");
  EXPECT_TRUE(box->isVisible());
  EXPECT_FALSE(box->isChecked());
  test::keepPicture(*dialog, "immagine-luogo");
  box->click();
  click(*dialog, "cmdOk");
  EXPECT_EQ(test::valueOf(readBytes(joinPath(shop, "work/casa_0001.jpg"))), jpeg);
}

TEST_F(ThePictureDialog, AFileWhoseNameIsNoTextIsTakenAsAnyOther) {
  ASSERT_TRUE(copyFile(pictures + "/piccola.png", pictures + "/\xFF\xE8.png"));
  ASSERT_TRUE(copyFile(pictures + "/piccola.png", joinPath(shop, "work/\xFFz.png")));
  makeDialog();
  files().setCurrentRow(files().count() - 1);
  EXPECT_EQ(size(), "20 x 10");
  control<QTabWidget>(*dialog, "tabOrigine")->setCurrentIndex(1);
  auto* own = control<QListWidget>(*dialog, "lstNegozio");
  own->setCurrentRow(own->count() - 1);
  EXPECT_EQ(size(), "20 x 10");
  click(*dialog, "cmdOk");
  EXPECT_EQ(dialog->tag(), "_z_0001.png") << "no row names a file that no page could";
}

TEST_F(ThePictureDialog, IsUsedByTheKeyboardAlone) {
  makeDialog();
  const auto tabTo = [&](const char* name) {
    for (int i = 0; i < 40 && dialog->focusWidget()->objectName() != name; ++i) {
      QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    }
    ASSERT_EQ(dialog->focusWidget()->objectName(), name);
  };
  tabTo("lstFile");
  QTest::keyClicks(&files(), QStringLiteral("la"));
  EXPECT_EQ(files().currentItem()->text(), "Larga.png");
  tabTo("txtLarghezza");
  QTest::keyClicks(dialog->focusWidget(), QStringLiteral("90"));
  tabTo("cmdRuotaDestra");
  EXPECT_EQ(size(), "90 x 45");
  QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
  EXPECT_EQ(size(), "90 x 180");
  QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
  EXPECT_EQ(dialog->tag(), "larga_0001.jpg");
  EXPECT_EQ(QImage(toQt(joinPath(shop, "work/larga_0001.jpg"))).size(), QSize(90, 180));
}

TEST_F(ThePictureDialog, EscapeReturnsNothingAndStoresNothing) {
  makeDialog();
  choose("Larga.png");
  type("txtLarghezza", "99");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(settings.get("LoadImage", "MaxWidth"), "");
  EXPECT_EQ(listFiles(shop + "/work", "*").size(), 1U);
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv
