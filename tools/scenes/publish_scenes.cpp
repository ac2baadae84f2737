#include <QAbstractButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <array>
#include <utility>

#include "platform/files/files.h"
#include "publish/orders/desk/frm_ordini.h"
#include "publish/run/frm_ftp.h"
#include "scenes.h"

namespace kv::scenes {
namespace {

constexpr int pagesInThePicture = 48;
constexpr int pageOfThePicture = 30;  // while which one is sent the picture is taken
constexpr std::size_t pageSize = 41'500;
constexpr int shownMilliseconds = 200;  // a run shows itself a few times in a second

/// A server that agrees to everything. In the middle of one page it has the picture taken; then the run is cancelled.
class ServerInThePicture final : public Transfer {
 public:
  explicit ServerInThePicture(std::function<void()> take) : take_(std::move(take)) {}

  void listen(TransferEvents events) override { events_ = std::move(events); }
  TransferCompletion connect(const ConnectionSettings& /*settings*/) override {
    return said("220 FTP server ready", {});
  }
  TransferCompletion logIn() override { return said("USER bottega", "230 User bottega logged in"); }
  TransferCompletion currentFolder() override { return {transferDone, "/", {}}; }
  TransferCompletion changeFolder(const std::string& folder) override {
    return said("CWD " + folder, "250 CWD command successful");
  }
  TransferCompletion parentFolder() override { return {}; }
  TransferCompletion makeFolder(const std::string& /*folder*/) override { return {}; }
  TransferCompletion deleteFile(const std::string& name) override {
    return said("DELE " + name, "250 DELE command successful");
  }
  TransferCompletion renameFile(const std::string& /*from*/, const std::string& /*to*/) override { return {}; }
  TransferCompletion upload(const std::string& /*path*/, const std::string& name, TransferMode /*mode*/) override {
    ignore(said("EPSV", "229 Entering Extended Passive Mode (|||50211|)"), "the next line tells");
    ignore(said("STOR " + name, "150 Opening BINARY mode data connection for " + name), "the next line tells");
    if (++uploads_ < pageOfThePicture) return said({}, "226 Transfer complete");
    events_.sent(pageSize * 2 / 5);
    ignore(waitFor(shownMilliseconds, events_.yield), "the picture is taken as the window is then");
    take_();
    ignore(events_.yield(), "the run learns that it is cancelled");
    return {transferCancelled, {}, {}};
  }
  TransferCompletion append(const std::string& path, const std::string& name, TransferMode mode) override {
    return upload(path, name, mode);
  }
  TransferCompletion rawCommand(const std::string& command) override { return said(command, "200 OK"); }
  TransferCompletion list() override { return {}; }
  TransferCompletion quit() override { return {}; }
  void abort() override {}
  bool isConnected() const override { return uploads_ < pageOfThePicture; }

 private:
  TransferCompletion said(const std::string& command, const std::string& reply) {
    for (const std::string& line : {command, reply}) {
      if (!line.empty()) events_.line(line);
    }
    return events_.yield() ? TransferCompletion() : TransferCompletion{transferCancelled, {}, {}};
  }

  std::function<void()> take_;
  TransferEvents events_;
  int uploads_ = 0;
};

/// Goes on by itself, so that the picture always shows the same speed.
class ClockInThePicture final : public Clock {
 public:
  double now() override { return now_ += 0.1; }

 private:
  double now_ = 1'790'000'000;
};

void makePages(const std::string& folder) {
  for (int i = 1; i <= pagesInThePicture; ++i) {
    const std::string number = std::to_string(i);
    const std::string name = "cat" + std::string(3 - number.size(), '0') + number + ".php";
    ignore(writeBytes(joinPath(folder, name), std::string(pageSize, ' ')), "the picture shows fewer files");
  }
}

void takeRunningPublish(Stage& stage, const QString& name) {
  const QTemporaryDir folder;
  PublishJob job;
  job.shopFolder = fromQt(folder.path());
  job.onlineFolder = joinPath(job.shopFolder, "online");
  job.scriptFolder = joinPath(job.shopFolder, "scripts");
  job.login = {"ftp.bottega.example", "bottega", "segreta"};
  job.folderFTP = "/www/negozio";
  job.folderCGI = "/www/cgi-bin";
  for (const std::string& made : {job.onlineFolder, job.scriptFolder}) {
    ignore(createFolders(made), "the picture shows what the run says then");
  }
  makePages(job.onlineFolder);
  PublishSettings settings;
  settings.onlyShopFiles = false;
  frmFTP* shown = nullptr;
  ServerInThePicture server([&] {
    Stage::processEvents();
    stage.take(name);
    // A run that fails by itself says so in a message, which nobody would close.
    shown->reject();
  });
  ClockInThePicture clock;
  frmFTP window(job, uploadOptions(job, settings, {}), {server, stage.user(), clock}, &stage.window());
  shown = &window;
  window.exec();
}

/// A back office that answers the next request with a text.
class OfficeInThePicture final : public HttpClient {
 public:
  OrderAccess access{"https://www.bottega.example/bo/remoto.php", std::string(64, 'a')};
  std::string answer;

  Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& /*yield*/) override {
    constexpr std::string_view field = "&numero=";
    constexpr std::size_t digits = 32;
    const std::string number = request.body.substr(request.body.find(field) + field.size(), digits);
    return HttpResponse{200, answerSignature(access.key, number, answer) + "\n" + answer};
  }
};

std::string orderInThePicture(int id, const char* name, const char* state, const char* total) {
  const std::string day = (id < 10 ? "0" : "") + std::to_string(id);
  return R"({"id":)" + std::to_string(id) + R"(,"codice":"KV26-10)" + day + R"(","creato":"2026-09-)" + day +
         R"( 10:24:00","nome":")" + name + R"(","email":"cliente@posta.example","totale":")" + total +
         R"(","valuta":"EUR","metodo":"Bonifico bancario","stato":")" + state +
         R"(","campi":{"Indirizzo":"Via Garibaldi 7","CAP":"47121","Citta":"Forlì","Telefono":"0543 123456"},)"
         R"("righe":[{"id":3,"codice":"TZ-12","testo":"Tazza di maiolica","scelte":"blu","prima":"Tazza di maiolica",)"
         R"("scelte_prima":"blu","quantita":2,"importo":"18.50"}],"totali":{"merce":"37.00","spese":"7.90"},)"
         R"("note":[{"quando":"2026-09-12 16:05:00","tipo":"nota","testo":"Confezione regalo"}]})";
}

std::string ordersInThePicture() {
  return R"({"ordini":[)" + orderInThePicture(9, "Ugo Bassi", "spedito", "128.00") + "," +
         orderInThePicture(11, "Élise d'Aubigné", "pagato", "61.40") + "," +
         orderInThePicture(12, "Anna Neri", "da verificare", "44.90") + "," +
         orderInThePicture(14, "Bottega Verdi s.n.c.", "nuovo", "1250.00") + R"(],"dopo":"c","altri":false})";
}

/// The window of orders once they have come, and what is done in it.
void takeOrders(Stage& stage, const std::function<void(QWidget&, OfficeInThePicture&)>& act) {
  const QTemporaryDir folder;
  ClockInThePicture clock;
  OfficeInThePicture office;
  OrderStore store(fromQt(folder.path()));
  OrderDesk desk(
      store,
      {[&office] { return Result<OrderAccess>(office.access); }, {office, clock, systemRandom(), {}}, stage.user()});
  OrderTools tools;
  for (OrderTool* tool : {&tools.print, &tools.exportFile, &tools.sales}) tool->run = [](const auto&, QWidget*) {};
  frmOrdini window(desk, stage.user(), tools, {}, &stage.window());
  stage.during([&] { window.exec(); },
               [&](QWidget& dialog) {
                 office.answer = ordersInThePicture();
                 dialog.findChild<QAbstractButton*>(QStringLiteral("cmdAggiorna"))->click();
                 act(dialog, office);
               });
}

void takeOrderList(Stage& stage, const QString& name) {
  takeOrders(stage, [&](QWidget&, OfficeInThePicture&) { stage.take(name); });
}

void takeOrderStock(Stage& stage, const QString& name) {
  takeOrders(stage, [&](QWidget& dialog, OfficeInThePicture& office) {
    dialog.findChild<QTabWidget*>(QStringLiteral("tabPagine"))->setCurrentIndex(1);
    office.answer = R"({"voci":[{"chiave":"3","codice":"TZ-12","nome":"Tazza di maiolica","voce":"1|12"},)"
                    R"({"chiave":"4","codice":"VS-03","nome":"Vaso grande","voce":"1|"},)"
                    R"({"chiave":"5","codice":"PT-07","nome":"Piatto da portata","voce":"0|0"}],"altri":true})";
    dialog.findChild<QAbstractButton*>(QStringLiteral("cmdCercaScorte"))->click();
    stage.take(name);
  });
}

}  // namespace

std::span<const Scene> publishScenes() {
  static constexpr std::array scenes{Scene{"pubblicazione-in-corso", takeRunningPublish},
                                     Scene{"ordini", takeOrderList}, Scene{"ordini-scorte", takeOrderStock}};
  return scenes;
}

}  // namespace kv::scenes
