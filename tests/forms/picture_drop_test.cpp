// Pictures dropped on tree, list, sheet and picture of the main window, and pasted on a picture.
#include <QClipboard>
#include <QDropEvent>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QUrl>

#include "forms/driven_window.h"
#include "platform/image/pixels.h"
#include "shell/window/fields/frm_picture.h"
#include "support/scripted_http_server.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class PicturesDropped : public WindowFixture {
 protected:
  std::string photo(const char* name) {
    const auto pixels = PixelBuffer::create({40, 20});
    const std::string path = joinPath(home.path(), name);
    EXPECT_TRUE(pixels && writeBytes(path, valueOf(jpegOf(*pixels, 90))));
    return path;
  }
  static QUrl file(const std::string& path) { return QUrl::fromLocalFile(toQt(path)); }
  /// As a file manager or a browser does: over the widget, then let go of. False when the drop wasn't taken.
  bool drop(QWidget& on, const QMimeData& data, QPoint at) {
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&on, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent let(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&on, &let);
    processEvents();
    return let.isAccepted();
  }
  bool dropFiles(QWidget& on, const QList<QUrl>& files, QPoint at = {5, 5}) {
    QMimeData data;
    data.setUrls(files);
    return drop(on, data, at);
  }
  PictureField& picture(EditedSet set, std::string_view column) { return field<PictureField>(set, column); }
  std::string pictures(const char* code) {
    return scalar(
        "SELECT COALESCE(immagine0, '') || ' ' || COALESCE(immagine1, '') || ' ' || COALESCE(immagine2, '')"
        " FROM articoli WHERE codice = '" +
        std::string(code) + "'");
  }

  TempFolder home;
};

TEST_F(PicturesDropped, OnARowOfTheListBelongToItsArticle) {
  open();
  goArticles();
  const QRect row = window->articles().visualRect(window->articles().model()->index(1, 0));
  EXPECT_TRUE(
      dropFiles(*window->articles().viewport(), {file(photo("uno.jpg")), file(photo("due.jpg"))}, row.center()));
  EXPECT_EQ(pictures("B1"), "uno_0001.jpg due_0001.jpg ");
  EXPECT_EQ(window->articles().articles().currentRow(), 1);
  processEvents();  // the file is read when the window has nothing else to do
  EXPECT_EQ(fromQt(picture(EditedSet::Articoli, "immagine0").findChild<QLabel*>()->accessibleName()),
            "Immagine 1: uno_0001.jpg, 40 x 20")
      << "file and size are said";
}

TEST_F(PicturesDropped, OnADepartmentOfTheTreeAreItsOwn) {
  open();
  const QModelIndex node = window->tree().departments().indexOf("cat003");
  EXPECT_TRUE(
      dropFiles(*window->tree().viewport(), {file(photo("uno.jpg"))}, window->tree().visualRect(node).center()));
  EXPECT_EQ(scalar("SELECT immagine0 FROM categorie WHERE ID = 'cat003'"), "uno_0001.jpg");
  EXPECT_EQ(window->workbench().sets().department(), "cat003");
}

TEST_F(PicturesDropped, OnTheSheetBelongToTheRowItShows) {
  open();
  goArticles();
  EXPECT_TRUE(dropFiles(*window->page(Tab::Articles).viewport(), {file(photo("uno.jpg"))}));
  EXPECT_EQ(pictures("A1"), "uno_0001.jpg  ");
}

TEST_F(PicturesDropped, OnAPictureReplaceIt) {
  open();
  goArticles();
  PictureField& second = picture(EditedSet::Articoli, "immagine1");
  EXPECT_TRUE(dropFiles(second, {file(photo("uno.jpg"))}));
  EXPECT_TRUE(dropFiles(second, {file(photo("due.jpg"))}));
  EXPECT_EQ(pictures("A1"), " due_0001.jpg ");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(pictures("A1"), " uno_0001.jpg ") << "each is one step";
}

TEST_F(PicturesDropped, OfABrowserAreFetched) {
  const std::string body = valueOf(readBytes(photo("x.jpg")));
  ScriptedHttpServer server(
      {"HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body});
  open();
  goArticles();
  QMimeData data;
  data.setUrls({QUrl(QStringLiteral("https://example.invalid/pagina"))});
  data.setHtml(toQt("<a href='x'><img alt='' src=\"" + server.url("/foto/Vaso%20blu.php?n=1&amp;m=2") + "\"></a>"));
  EXPECT_TRUE(drop(picture(EditedSet::Articoli, "immagine0"), data, {5, 5}));
  EXPECT_EQ(pictures("A1"), "vaso_blu_0001.jpg  ");
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_TRUE(server.requests()[0].starts_with("GET /foto/Vaso%20blu.php?n=1&m=2 "));
}

TEST_F(PicturesDropped, OfABrowserMayBeAnImageOrAWholeAddress) {
  open();
  goArticles();
  QImage image(8, 4, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QMimeData pixels;
  pixels.setImageData(image);
  EXPECT_TRUE(drop(picture(EditedSet::Articoli, "immagine0"), pixels, {5, 5}));
  QMimeData address;
  const QByteArray bytes = QByteArray::fromStdString(valueOf(readBytes(photo("x.jpg")))).toBase64();
  address.setHtml(QStringLiteral("<img src=\"data:image/jpeg;base64,") + QString::fromLatin1(bytes) +
                  QStringLiteral("\">"));
  EXPECT_TRUE(drop(picture(EditedSet::Articoli, "immagine1"), address, {5, 5}));
  EXPECT_EQ(pictures("A1"), "incollata_0001.png immagine_0001.jpg ");
}

TEST_F(PicturesDropped, PlainTextIsNotTakenAndATextFileIsTold) {
  open();
  goArticles();
  QMimeData text;
  text.setText(QStringLiteral("un testo"));
  EXPECT_FALSE(drop(picture(EditedSet::Articoli, "immagine0"), text, {5, 5}));
  QMimeData page;
  page.setHtml(QStringLiteral("<img src=\"data:text/plain,ciao\">"));
  EXPECT_TRUE(drop(picture(EditedSet::Articoli, "immagine0"), page, {5, 5}));
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Ciò che è stato trascinato non è un'immagine"}));
}

TEST_F(PicturesDropped, APictureIsPastedOnTheOneThatHasTheFocus) {
  open();
  goArticles();
  QLabel* third = picture(EditedSet::Articoli, "immagine2").findChild<QLabel*>();
  QImage image(8, 4, QImage::Format_RGB32);
  image.fill(Qt::red);
  QApplication::clipboard()->setImage(image);
  third->setFocus();
  processEvents();
  key(Qt::Key_V, Qt::ControlModifier);
  processEvents();
  EXPECT_EQ(pictures("A1"), "  incollata_0001.png");
  auto* copied = new QMimeData;
  copied->setUrls({file(photo("uno.jpg"))});
  QApplication::clipboard()->setMimeData(copied);
  key(Qt::Key_V, Qt::ControlModifier);
  processEvents();
  EXPECT_EQ(pictures("A1"), "  uno_0001.jpg");
  QApplication::clipboard()->clear();
}

}  // namespace
}  // namespace kv::test
