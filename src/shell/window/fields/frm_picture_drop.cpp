#include "shell/window/fields/frm_picture_drop.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "platform/files/files.h"
#include "platform/qt/frm_dialog.h"
#include "platform/transfer/http_client.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr int fetchSeconds = 20;
constexpr std::string_view fetching = "Scaricamento dell'immagine...";

bool isWebAddress(const QUrl& url) {
  return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https") ||
         url.scheme() == QLatin1String("data");
}

/// The address of the picture itself: the page that a browser drags along may be one that it links to.
QUrl pictureInHtml(const QString& html) {
  static const QRegularExpression source(QStringLiteral("<img\\b[^>]*\\bsrc\\s*=\\s*[\"']([^\"']+)[\"']"),
                                         QRegularExpression::CaseInsensitiveOption);
  QString address = source.match(html).captured(1);
  address.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
  const QUrl url(address);
  return isWebAddress(url) ? url : QUrl();
}

/// What was dragged, kept beyond the event: files of this machine, else an address, an image, or both.
struct DraggedPictures {
  std::vector<std::string> files;
  QUrl address;
  QImage image;
};

DraggedPictures draggedBy(const QMimeData& data) {
  DraggedPictures dragged;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) dragged.files.push_back(fromQt(url.toLocalFile()));
    if (isWebAddress(url) && dragged.address.isEmpty()) dragged.address = url;
  }
  if (const QUrl inPage = data.hasHtml() ? pictureInHtml(data.html()) : QUrl(); !inPage.isEmpty()) {
    dragged.address = inPage;
  }
  if (dragged.files.empty() && data.hasImage()) dragged.image = qvariant_cast<QImage>(data.imageData());
  return dragged;
}

QByteArray bytesAt(const QUrl& address, UserPort& user) {
  if (address.scheme() == QLatin1String("data")) {
    const QByteArray text = address.toEncoded();
    const qsizetype comma = text.indexOf(',');
    const QByteArray body = QByteArray::fromPercentEncoding(text.mid(comma + 1));
    return text.left(comma).endsWith(";base64") ? QByteArray::fromBase64(body) : body;
  }
  HttpRequest request{address.toEncoded().toStdString()};
  request.timeoutSeconds = fetchSeconds;
  user.progress({fetching, 0, 0});
  const auto answer = makeHttpClient()->send(request, [&user] { return user.yield(); });
  user.progress({});
  return answer && answer->status == http::ok ? QByteArray::fromStdString(answer->body) : QByteArray();
}

/// The file that an address was fetched into, named after it and the kind of its bytes; empty when there was no
/// picture.
std::string fetched(const QUrl& address, const QTemporaryDir& folder, UserPort& user) {
  const QByteArray bytes = bytesAt(address, user);
  const QMimeType kind = QMimeDatabase().mimeTypeForData(bytes);
  if (bytes.isEmpty() || !kind.name().startsWith(QLatin1String("image/"))) return {};
  const QString stem = address.scheme() == QLatin1String("data") ? QString() : QFileInfo(address.path()).baseName();
  const QString name =
      (stem.isEmpty() ? QStringLiteral("immagine") : stem.left(100)) + QLatin1Char('.') + kind.preferredSuffix();
  const std::string path = fromQt(folder.filePath(name));
  return writeBytes(path, bytes.toStdString()) ? path : std::string();
}

/// Files of all that was dragged; what is none yet is written into `folder`.
std::vector<std::string> filesOf(const DraggedPictures& dragged, const QTemporaryDir& folder, UserPort& user) {
  if (!dragged.files.empty()) return dragged.files;
  if (!dragged.address.isEmpty()) {
    if (const std::string path = fetched(dragged.address, folder, user); !path.empty()) return {path};
  }
  const QString path = folder.filePath(QStringLiteral("incollata.png"));
  if (!dragged.image.isNull() && dragged.image.save(path)) return {fromQt(path)};
  return {};
}

bool isDrag(const QEvent& event) {
  return event.type() == QEvent::DragEnter || event.type() == QEvent::DragMove || event.type() == QEvent::Drop;
}

}  // namespace

bool holdsPictures(const QMimeData& data) {
  if (data.hasImage()) return true;
  const QList<QUrl> urls = data.urls();
  const bool hasAddress = std::any_of(urls.begin(), urls.end(), [](const QUrl& url) {
    return isWebAddress(url) || (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile());
  });
  return hasAddress || (data.hasHtml() && !pictureInHtml(data.html()).isEmpty());
}

PictureDrops::PictureDrops(QWidget& widget, Workbench& workbench, Target target)
    : QObject(&widget), workbench_(workbench), target_(std::move(target)) {
  widget.setAcceptDrops(true);
  widget.installEventFilter(this);
}

void PictureDrops::pasteOn(QWidget& control) { control.installEventFilter(this); }

bool PictureDrops::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste)) {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (data == nullptr || !holdsPictures(*data)) return false;
    take(*data, {});
    return true;
  }
  if (watched != parent() || !isDrag(*event)) return false;
  auto& drag = static_cast<QDropEvent&>(*event);  // of which the other two are kinds
  if (!holdsPictures(*drag.mimeData())) return false;
  drag.setDropAction(Qt::CopyAction);
  drag.accept();
  if (event->type() == QEvent::Drop) take(*drag.mimeData(), drag.position().toPoint());
  return true;
}

// A message in the middle of a drop would hold up the program that the pictures come from.
void PictureDrops::take(const QMimeData& data, QPoint at) {
  QTimer::singleShot(0, this, [this, at, dragged = draggedBy(data)] {
    const auto target = target_(at);
    if (!target) return;
    const WaitCursor busy;
    const QTemporaryDir folder;
    const auto files = filesOf(dragged, folder, workbench_.env().user);
    if (files.empty()) {
      return workbench_.env().user.message("Ciò che è stato trascinato non è un'immagine", Icon::Exclamation);
    }
    takePictures(workbench_, *target, files);
  });
}

}  // namespace kv
