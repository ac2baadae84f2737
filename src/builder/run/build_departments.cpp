// The departments of one language: their articles, their sub-pages and the second pass over their pages.

#include <utility>

#include "builder/checkout/server_settings.h"
#include "builder/run/build_phases.h"
#include "builder/values/link_naming.h"
#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::int64_t defaultPageSize = 200;
constexpr int mostColumns = 6;
constexpr std::string_view listPlaceholder = "<<1-elenco>>";
constexpr std::string_view fallbackModel = "modello1.htm";

std::string modelPath(const std::string& pool, const Department& department) {
  std::string file = department.model + ".htm";
  if (!matchesLike(file, "modello*.htm")) file = fallbackModel;
  return entryPath(pool, file);
}

int gridColumns(const FieldRow& generale, const Department& department) {
  double columns = generale.number("affiancati");
  if (const auto own = toNumber(department.affiancati)) columns = *own;
  const double whole = roundHalfEven(columns, 0);
  return whole >= 1 && whole <= mostColumns ? static_cast<int>(whole) : 1;
}

/// What the sub-pages of one department share.
struct DepartmentPages {
  const Department& department;
  std::string model;  // path of the page model
  int columns = 1;
  std::int64_t pageSize = defaultPageSize;
  std::string titlePath, subdepartments;
  Navigation navigation;
};

Result<DepartmentPages> readDepartment(const PageFacts& facts, const Department& department,
                                       const BuildProgress& progress) {
  const LanguageFacts& language = facts.language;
  DepartmentPages pages{department,
                        modelPath(language.source.pools.templatePool, department),
                        gridColumns(language.generale, department),
                        defaultPageSize,
                        {},
                        {},
                        {}};
  if (department.maxarticoli >= 1) pages.pageSize = department.maxarticoli;
  if (language.generale.flag("vis_percrep")) {
    pages.titlePath = language.navigation.MakePercorsoTitolo(department.ID);
    pages.subdepartments = language.navigation.MakeSottoreparti(department.ID);
  }
  if (auto go = progress.checkCancel(); !go) return fail(go.error());
  pages.navigation = language.navigation.CatEsplora(department.ID);
  return pages;
}

ArticleContext articleContext(const ShopFacts& shop, const DepartmentPages& pages) {
  const Department& department = pages.department;
  ArticleContext context;
  context.vatRate = department.vatRate;
  context.factor = department.sconto ? discountFactor(*department.sconto, shop.factor) : shop.factor;
  context.singleArticle = pages.pageSize == 1;
  return context;
}

// The columns of the page tag row that belong to the department and the sub-page.
void fillPageTags(PageTagRow& row, const PageFacts& facts, const DepartmentPages& pages, const std::string& pageFile) {
  const Department& department = pages.department;
  const HtmlText& html = facts.shop.html;
  const LanguageSource& source = facts.language.source;
  row = facts.sharedTags;
  row.set("sottopagine", pager(department.pagina + source.lingua));
  row.set("titolo", pages.titlePath + html.TestoHTML(department.titolo) + pages.subdepartments);
  row.set("note", html.TestoHTML(department.note));
  row.set("descrizione", html.TestoHTML(department.descrizione));
  setLanguageLinks(row, facts.shop.languages, source.number, pageFile);
  row.set("immagine", pictureTag(department.immagine, department.imageWidth, department.imageHeight));
  row.set("reparti", pages.navigation.tree);
  row.set("repartimenu", pages.navigation.menu);
  row.set("elenco", std::string(listPlaceholder));
  row.set("meta_keywords", facts.language.generale.text("keywords") + ", korvane");
  row.set("php_vars", phpVars(department.ID));
}

/// The articles of a department, one row further than what was made of them.
class ArticleReader {
 public:
  static Result<ArticleReader> open(Database& catalogue, int language) {
    ArticleReader reader;
    auto query = catalogue.prepare(
        SelezionaLingua("articoli", language, "WHERE fuoricatalogo IS NOT TRUE AND catID=? ORDER BY ordinamento"));
    if (!query) return fail(query.error());
    auto columns = ArticleColumns::of(*query);
    if (!columns) return fail(columns.error());
    reader.query_ = std::move(*query);
    reader.columns_ = *columns;
    return reader;
  }

  /// Goes to the first article of a department; the identifier outlives the walk.
  Result<> start(std::string_view department) {
    query_.reset();
    query_.bind(1, department);
    return next();
  }
  Result<> next() {
    const auto found = query_.step();
    if (!found) return fail(found.error());
    hasArticle_ = *found;
    return {};
  }
  bool hasArticle() const { return hasArticle_; }
  ArticleView article() const { return {query_, columns_}; }

 private:
  Statement query_;
  ArticleColumns columns_{};
  bool hasArticle_ = false;
};

/// Makes the departments of one language, one after the other.
class DepartmentMaker {
 public:
  DepartmentMaker(const PageFacts& facts, BuildOutput& output, BuildProgress& progress)
      : facts_(facts), output_(output), progress_(progress) {}

  Result<> make(const Department& department, ArticleReader& articles);
  ArticleLists& lists() { return lists_; }

 private:
  Result<> makeSubPage(const DepartmentPages& pages, ArticleReader& articles, int n);
  Result<> makeArticles(const DepartmentPages& pages, const std::string& pageFile, ArticleReader& articles);
  Result<> makeArticle(const ArticleView& article, const ArticleContext& context);

  const PageFacts& facts_;
  BuildOutput& output_;
  BuildProgress& progress_;
  ArticleLists lists_;          // of the site
  std::string departmentList_;  // of the department at hand
};

// One article: its derived row, its entry in the lists, its cell in the showcase.
Result<> DepartmentMaker::makeArticle(const ArticleView& article, const ArticleContext& context) {
  DerivedRows& rows = output_.page().articles;
  if (auto filled = fillDerivedRow(article, context, facts_.language.rules, output_.columns(), rows.next()); !filled) {
    return filled;
  }
  rows.keepNext();
  const ShopFacts& shop = facts_.shop;
  const std::string target = articleTarget(context);
  const std::string entry = listEntry(shop.showcase, shop.html, article, target);
  departmentList_ += entry;
  if (article.row.flag(article.columns.inelenco)) {
    lists_.siteList += entry;
    lists_.showcaseCells.push_back(
        showcaseCell(shop.showcase, shop.html, article, target, facts_.language.source.cellTemplate));
  }
  return {};
}

Result<> DepartmentMaker::makeArticles(const DepartmentPages& pages, const std::string& pageFile,
                                       ArticleReader& articles) {
  ArticleContext context = articleContext(facts_.shop, pages);
  context.pagina = pageFile;
  output_.page().articles.clear();
  while (articles.hasArticle() && context.contatore < pages.pageSize) {
    if (auto go = progress_.checkCancel(); !go) return go;
    ++context.contatore;
    if (auto made = makeArticle(articles.article(), context); !made) return made;
    if (auto stepped = articles.next(); !stepped) return stepped;
    progress_.articleDone();
  }
  return {};
}

Result<> DepartmentMaker::makeSubPage(const DepartmentPages& pages, ArticleReader& articles, int n) {
  if (auto go = progress_.checkCancel(); !go) return go;
  const std::string pageFile = PageFile(pages.department.pagina, n, facts_.language.source.lingua);
  fillPageTags(output_.page().row, facts_, pages, pageFile);
  if (auto made = makeArticles(pages, pageFile, articles); !made) return made;
  PageJob job;
  job.input = pages.model;
  job.output = facts_.shop.folders.onlineFile(pageFile);
  job.reparto = true;
  job.affiancati = pages.columns;
  job.keepForNextPass = true;
  if (auto made = output_.makePage(job, facts_.sources); !made) return made;
  output_.list(NoASPQuery(job.output));
  return {};
}

Result<> DepartmentMaker::make(const Department& department, ArticleReader& articles) {
  if (auto go = progress_.checkCancel(); !go) return go;
  const auto pages = readDepartment(facts_, department, progress_);
  if (!pages) return fail(pages.error());
  if (auto started = articles.start(department.ID); !started) return started;
  departmentList_.clear();
  int n = 0;
  do {
    if (auto made = makeSubPage(*pages, articles, ++n); !made) return made;
  } while (articles.hasArticle());

  // Only now is the list known that the pages of the department show; it takes a second pass over the first page,
  // the one that has a file.
  output_.page().row.set("elenco", facts_.shop.showcase.showsList() ? departmentList_ : std::string());
  PageJob job;
  job.input = job.output =
      facts_.shop.folders.onlineFile(PageFile(department.pagina, 1, facts_.language.source.lingua));
  if (auto made = output_.makePage(job, facts_.sources); !made) return made;
  progress_.departmentDone();
  return {};
}

}  // namespace

Result<ArticleLists> makeDepartments(const PageFacts& facts, Database& catalogue, BuildOutput& output,
                                     BuildProgress& progress) {
  auto articles = ArticleReader::open(catalogue, facts.language.source.number);
  if (!articles) return fail(articles.error());
  DepartmentMaker maker(facts, output, progress);
  for (const Department& department : facts.language.departments) {
    if (auto made = maker.make(department, *articles); !made) return fail(made.error());
  }
  return std::move(maker.lists());
}

}  // namespace kv
