// The workbench with its window over shops of 1,000, 10,000 and 100,000 articles in 100, 500 and 5,000 departments, the
// largest department holding 500, 2,000 and 5,000 of them: opening as the program does it, with every order number to
// be rewritten and a dated copy to be kept, and then what a merchant does all day. The screen is one in memory, and
// every figure holds the painting. Beside the opening, its floor in the same run: a copy of the file, the same
// order numbers written by one bare statement, and the rows that are shown read once.
//
// Arguments: --quick (1,000 and 10,000 articles); --once ARTICLES opens one shop once, for a profiler.

#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "measure.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "shell/dialogs/article_search.h"
#include "shell/program/frm_program.h"
#include "shell/window/frm_main.h"
#include "shell/workbench/commands/command_rows.h"
#include "store/shop/session_start.h"
#include "workbench_shop.h"

namespace {

using kv::bench::FreshFolder;
using kv::bench::verdict;
using Shop = kv::bench::WorkbenchShop;
using Size = kv::bench::WorkbenchSize;
namespace fs = std::filesystem;

constexpr int openings = 5;
constexpr int times = 7;
constexpr double milli = 1e3;
const std::string largest = kv::bench::largestDepartment;
const std::string small = "cat050";

constexpr std::array sizes{Size{1000, 100, 500}, Size{10000, 500, 2000}, Size{100000, 5000, 5000}};

/// Seconds of one piece of work, on the clock and of the processor.
struct Span {
  double wall = 0, cpu = 0;
};

enum Figure {
  Open,
  Department,
  Article,
  Key,
  Leave,
  Insert,
  Crowded,
  Drag,
  Undo,
  Paste,
  Language,
  Filter,
  Sort,
  Search,
  Floor,
  FigureCount
};
constexpr std::array<const char*, FigureCount> names{"open",
                                                     "to the largest department",
                                                     "to the next article",
                                                     "a character into a title",
                                                     "leave a title",
                                                     "insert an article",
                                                     "insert, no number free",
                                                     "drag a department",
                                                     "undo the drag",
                                                     "paste the largest department",
                                                     "change the language",
                                                     "a character into the filter",
                                                     "sort the list by price",
                                                     "search all articles",
                                                     "floor of the opening"};
using Figures = std::array<Span, FigureCount>;

double cpuSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

Span spanOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  const double cpu = cpuSeconds();
  work();
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), cpuSeconds() - cpu};
}

void keepFaster(Span& best, const Span& one) {
  if (best.wall <= 0 || one.wall < best.wall) best = one;
}

/// Counts what is painted: a figure without painting would be none.
class PaintCount final : public QObject {
 public:
  PaintCount() { qApp->installEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints_;
    return QObject::eventFilter(watched, event);
  }
  int take() { return std::exchange(paints_, 0); }

 private:
  int paints_ = 0;
};

/// The program's window over a shop, from its start.
class OpenWorkbench {
 public:
  explicit OpenWorkbench(const std::string& folder)
      : env_{user_, settings_, kv::systemClock(), kv::systemRandom(), folder + "/app", {}},
        window_(session_, env_, ports()) {
    kv::Workbench& bench = window_.workbench();
    kv::wireSession(window_, session_, env_);
    if (kv::startSession(session_, env_) != kv::LoadResult::Opened) std::abort();
    bench.showShop();
    window_.restoreLayout();
    window_.show();
    while (!window_.windowHandle()->isExposed()) QCoreApplication::processEvents();
    paint();
  }
  ~OpenWorkbench() { kv::closeSession(session_, env_); }
  OpenWorkbench(const OpenWorkbench&) = delete;
  OpenWorkbench& operator=(const OpenWorkbench&) = delete;

  static void paint() {
    // What is due to be painted is painted by the second round at the latest.
    for (int i = 0; i < 2; ++i) {
      QCoreApplication::sendPostedEvents();
      QCoreApplication::processEvents();
    }
  }
  void goTo(const std::string& department) {
    window_.tree().setCurrentIndex(window_.tree().departments().indexOf(department));
    paint();
  }

  void measure(Figures& figures) {
    window_.workbench().selectTab(kv::Tab::Articles);
    window_.activateWindow();
    paint();
    walk(figures);
    arrange(figures);
    search(figures);
    edit(figures);
    drag(figures);
    paste(figures);
    keepFaster(figures[Language], spanOf([this] {
                 window_.workbench().CambiaLingua(2);
                 paint();
               }));
  }

 private:
  static kv::WorkbenchPorts ports() {
    kv::WorkbenchPorts ports;
    ports.commands = kv::allCommands();
    return ports;
  }
  void runCommand(std::string_view name) {
    const kv::WorkbenchCommands& commands = window_.workbench().commands();
    commands.choose(*commands.table().named(name));
  }
  void walk(Figures& figures) {
    for (int i = 0; i < times; ++i) {
      goTo(small);
      keepFaster(figures[Department], spanOf([this] { goTo(largest); }));
    }
    constexpr int steps = 20;
    window_.articles().setFocus();
    for (int i = 0; i < times; ++i) {
      paints_.take();
      const Span all = spanOf([this] {
        for (int step = 0; step < steps; ++step) {
          QTest::keyClick(&window_.articles(), Qt::Key_Down);
          paint();
        }
      });
      if (paints_.take() < steps) std::abort();
      keepFaster(figures[Article], {all.wall / steps, all.cpu / steps});
    }
  }

  void arrange(Figures& figures) {
    auto* filter = window_.findChild<QLineEdit*>(QStringLiteral("txtFiltro"));
    const auto show = [this](const kv::ArticleArrangement& arrangement) {
      window_.articles().arrange(arrangement);
      paint();
    };
    for (int i = 0; i < times; ++i) {
      filter->clear();
      keepFaster(figures[Filter], spanOf([filter] {
                   filter->setText(QStringLiteral("1"));
                   paint();
                 }));
      filter->clear();
      keepFaster(figures[Sort], spanOf([&show] { show({kv::ArticleArrangement::By::Price, true, "", false}); }));
      show({});
    }
  }

  void search(Figures& figures) {
    for (int i = 0; i < times; ++i) {
      keepFaster(figures[Search], spanOf([this] {
                   if (!kv::findArticles(session_, "titolo", "99", true)) std::abort();
                 }));
    }
  }

  void edit(Figures& figures) {
    auto* title =
        qobject_cast<QLineEdit*>(window_.page(kv::Tab::Articles).binding(kv::EditedSet::Articoli, "titolo")->field());
    constexpr int letters = 12;
    for (int i = 0; i < times; ++i) {
      title->setFocus();
      const Span all = spanOf([title] {
        for (int letter = 0; letter < letters; ++letter) {
          QTest::keyClick(title, 'a');
          paint();
        }
      });
      keepFaster(figures[Key], {all.wall / letters, all.cpu / letters});
      keepFaster(figures[Leave], spanOf([title] {
                   QTest::keyClick(title, Qt::Key_Tab);
                   paint();
                 }));
    }
    const auto insert = [this] {
      runCommand("article.insertAfter");
      paint();
    };
    const auto toMiddle = [this](std::size_t place) {
      window_.workbench().goToArticleAt(place);
      paint();
    };
    for (std::size_t i = 0; i < times; ++i) {
      toMiddle(10 + 2 * i);
      keepFaster(figures[Insert], spanOf(insert));
      // The number after the current one is taken now: all that follow move up.
      toMiddle(10 + 2 * i);
      keepFaster(figures[Crowded], spanOf(insert));
    }
  }

  void paste(Figures& figures) {
    goTo(largest);
    runCommand("department.copy");
    goTo(small);
    keepFaster(figures[Paste], spanOf([this] {
                 runCommand("department.paste");
                 paint();
               }));
  }

  void drag(Figures& figures) {
    for (int i = 0; i < 3; ++i) {
      keepFaster(figures[Drag], spanOf([this] {
                   window_.workbench().SpostaNodo(small, largest);
                   paint();
                 }));
      keepFaster(figures[Undo], spanOf([this] {
                   runCommand("undo");
                   paint();
                 }));
    }
  }

  kv::bench::SilentUser user_{kv::Answer::Yes};
  kv::MemorySettings settings_;
  kv::Session session_;
  kv::Environment env_;
  kv::frmMain window_;
  PaintCount paints_;
};

/// Runs work that fills figures in a process of its own: a program that has just been started.
bool inChild(Figures& figures, const std::function<void(Figures&)>& work) {
  int channel[2];
  if (pipe(channel) != 0) return false;
  const pid_t child = fork();
  if (child == 0) {
    Figures own{};
    work(own);
    const bool sent = write(channel[1], own.data(), sizeof own) == sizeof own;
    _exit(sent ? 0 : 1);
  }
  close(channel[1]);
  Figures own{};
  const bool got = read(channel[0], own.data(), sizeof own) == sizeof own;
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  for (std::size_t i = 0; i < own.size(); ++i) {
    if (own[i].wall > 0) keepFaster(figures[i], own[i]);
  }
  return got && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void openOnce(const Shop& shop, Figures& figures, bool alone) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  int count = 1;
  std::array<char, 16> name{"workbench_bench"};
  std::array<char*, 2> values{name.data(), nullptr};
  std::unique_ptr<OpenWorkbench> bench;
  std::unique_ptr<QApplication> application;
  figures[Open] = spanOf([&] {
    application = std::make_unique<QApplication>(count, values.data());
    bench = std::make_unique<OpenWorkbench>(shop.folder());
  });
  if (!alone) bench->measure(figures);
  bench.reset();
}

bool measure(const Shop& shop, Figures& figures) {
  for (int i = 0; i < openings; ++i) {
    shop.spoil();
    if (!inChild(figures, [&](Figures& own) { openOnce(shop, own, false); })) return false;
    if (!inChild(figures, [&](Figures& own) { own[Floor] = spanOf([&] { shop.floor(); }); })) return false;
  }
  return true;
}

void print(const Size& size, const Figures& figures) {
  std::printf(
      "%d articles in %d departments, %d in the largest\n                                       ms   ms of cpu\n",
      size.articles, size.departments, size.inLargest);
  for (std::size_t i = 0; i < figures.size(); ++i) {
    std::printf("  %-30s %10.2f %10.2f\n", names[i], figures[i].wall * milli, figures[i].cpu * milli);
  }
  std::fflush(stdout);
}

void judge(const Size& size, const Figures& figures) {
  struct Bar {
    Figure figure;
    double seconds;
  };
  std::printf("  bars at %d articles\n", size.articles);
  for (const Bar& bar : {Bar{Open, 2}, Bar{Department, 0.15}, Bar{Article, 0.016}, Bar{Key, 0.016}, Bar{Leave, 0.05},
                         Bar{Insert, 0.15}, Bar{Crowded, 0.5}, Bar{Drag, 0.5}, Bar{Undo, 0.5}, Bar{Paste, 1},
                         Bar{Filter, 0.1}, Bar{Sort, 0.1}, Bar{Search, 0.5}}) {
    const double ratio = figures[bar.figure].wall / bar.seconds;
    std::printf("    %s: %.2f of %.0f ms %s\n", names[bar.figure], ratio, bar.seconds * milli, verdict(ratio < 1));
  }
  std::printf("    open / its floor: %.2f\n", figures[Open].wall / figures[Floor].wall);
  rusage children{};
  getrusage(RUSAGE_CHILDREN, &children);
  std::printf("    most memory of a run: %ld MB\n", children.ru_maxrss / 1024);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const bool quick = std::ranges::find(arguments, "--quick") != arguments.end();
  const FreshFolder folder;
  int status = 0;
  for (const Size& size : sizes) {
    const bool once = argc == 3 && arguments[0] == "--once";
    if (once ? size.articles != std::atoi(argv[2]) : quick && size.articles > 10000) continue;
    const Shop shop(folder.path() + "/" + std::to_string(size.articles), size);
    Figures figures{};
    bool done = true;
    if (once) {
      shop.spoil();
      openOnce(shop, figures, false);
    } else {
      done = measure(shop, figures);
    }
    if (!done) {
      std::printf("%d articles: the workbench did not open\n", size.articles);
      status = 1;
      break;
    }
    print(size, figures);
    judge(size, figures);
    fs::remove_all(shop.folder());
  }
  return status;
}
