// The departments of one language: their articles, their sub-pages and the second pass over their pages.

#include "builder/checkout/server_settings.h"
#include "builder/run/build_run.h"
#include "builder/values/link_naming.h"
#include "platform/files/files.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::int64_t defaultPageSize = 200;
constexpr int mostColumns = 6;
constexpr std::string_view listPlaceholder = "<<1-elenco>>";
constexpr std::string_view fallbackModel = "modello1.htm";

/// What the sub-pages of one department share.
struct DepartmentRun {
  DepartmentRun(const Department& opened, std::string modelName) : department(opened), model(std::move(modelName)) {}

  const Department& department;
  std::string model;  // file of the page model
  int columns = 1;
  std::int64_t pageSize = defaultPageSize;
  std::string titlePath, subdepartments;
  Navigation navigation;
  ArticleContext article;
  std::string list;
  std::string firstPage;  // output path of the sub-page that has a file
};

std::string modelFile(const Department& department) {
  const std::string file = department.model + ".htm";
  return matchesLike(file, "modello*.htm") ? file : std::string(fallbackModel);
}

int gridColumns(const BuildRun& run, const Department& department) {
  double columns = run.now.generale.number("affiancati");
  if (const auto own = toNumber(department.affiancati)) columns = *own;
  const double whole = roundHalfEven(columns, 0);
  return whole >= 1 && whole <= mostColumns ? static_cast<int>(whole) : 1;
}

DepartmentRun openDepartment(BuildRun& run, const Department& department) {
  DepartmentRun open(department, modelFile(department));
  open.columns = gridColumns(run, department);
  open.pageSize = department.maxarticoli < 1 ? defaultPageSize : department.maxarticoli;
  if (run.now.generale.flag("vis_percrep")) {
    open.titlePath = run.now.navigation.MakePercorsoTitolo(department.ID);
    open.subdepartments = run.now.navigation.MakeSottoreparti(department.ID);
  }
  run.checkCancel();
  open.navigation = run.now.navigation.CatEsplora(department.ID);
  open.article.vatRate = department.vatRate;
  open.article.factor = department.sconto ? discountFactor(*department.sconto, run.factor) : run.factor;
  open.article.singleArticle = open.pageSize == 1;
  return open;
}

// The columns of the page tag row that belong to the department and the sub-page.
void fillPageTags(BuildRun& run, const DepartmentRun& open, const std::string& pageFile) {
  PageTagRow& row = run.now.row;
  const Department& department = open.department;
  row = run.now.shopRow;
  row.set("sottopagine", pager(department.pagina + run.now.lingua));
  row.set("titolo", open.titlePath + run.html.TestoHTML(department.titolo) + open.subdepartments);
  row.set("note", run.html.TestoHTML(department.note));
  row.set("descrizione", run.html.TestoHTML(department.descrizione));
  run.setLanguageLinks(pageFile);
  row.set("immagine", pictureTag(department.immagine, department.imageWidth, department.imageHeight));
  row.set("reparti", open.navigation.tree);
  row.set("repartimenu", open.navigation.menu);
  row.set("elenco", std::string(listPlaceholder));
  row.set("meta_keywords", run.now.generale.text("keywords") + ", korvane");
  row.set("php_vars", phpVars(department.ID));
}

// One article: its derived row, its entry in the lists, its cell in the showcase.
void renderArticle(BuildRun& run, DepartmentRun& open, const Statement& article, const ArticleColumns& source) {
  ++open.article.contatore;
  if (run.rows.size() <= run.rowCount) run.rows.emplace_back();
  must(fillDerivedRow({article, source}, open.article, run.now.rules, run.columns, run.rows[run.rowCount]));
  ++run.rowCount;
  const std::string target = articleTarget(open.article);
  const ArticleView view{article, source};
  const std::string entry = listEntry(run.showcase, run.html, view, target);
  open.list += entry;
  if (article.flag(source.inelenco)) {
    run.now.siteList += entry;
    run.now.showcaseCells.push_back(showcaseCell(run.showcase, run.html, view, target, run.now.cellTemplate));
  }
}

/// A query over the articles of a department, one row ahead of what was rendered.
struct ArticleReader {
  Statement query;
  ArticleColumns columns;
  bool hasRow = false;
};

void makeSubPage(BuildRun& run, DepartmentRun& open, ArticleReader& reader, int n) {
  run.checkCancel();
  const std::string pageFile = PageFile(open.department.pagina, n, run.now.lingua);
  fillPageTags(run, open, pageFile);
  open.article.pagina = pageFile;
  open.article.contatore = 0;
  run.rowCount = 0;
  while (reader.hasRow && open.article.contatore < open.pageSize) {
    run.checkCancel();
    renderArticle(run, open, reader.query, reader.columns);
    reader.hasRow = must(reader.query.step());
    run.meter.position += run.meter.step;
    ++run.meter.articlesDone;
    run.AggiornaProg();
  }
  PageJob job;
  job.input = joinPath(run.now.pools.templatePool, open.model);
  job.output = run.online(pageFile);
  job.reparto = true;
  job.affiancati = open.columns;
  job.keepForNextPass = true;
  if (n == 1) open.firstPage = job.output;
  const bool made = run.wrapper.CreaPagina(job, run.rows, run.rowCount);
  if (!made) throw PageRefused();
  run.files.add(NoASPQuery(job.output));
}

void makeDepartment(BuildRun& run, const Department& department, ArticleReader& reader) {
  run.checkCancel();
  DepartmentRun open = openDepartment(run, department);
  reader.query.reset();
  reader.query.bind(1, std::string_view(department.ID));
  reader.hasRow = must(reader.query.step());
  int n = 0;
  do {
    makeSubPage(run, open, reader, ++n);
  } while (reader.hasRow);

  // Only now is the list known that the pages of the department show; it takes a second pass over the first page,
  // the one that has a file.
  run.now.row.set("elenco", run.showcase.showsList() ? open.list : std::string());
  PageJob job;
  job.input = job.output = open.firstPage;
  run.makePage(job);
  run.meter.position += run.meter.step;
  ++run.meter.departmentsDone;
  run.AggiornaProg();
}

}  // namespace

void makeDepartments(BuildRun& run) {
  ArticleReader reader;
  reader.query = must(run.session.catalogue.prepare(
      SelezionaLingua("articoli", run.now.number, "WHERE fuoricatalogo IS NOT TRUE AND catID=? ORDER BY ordinamento")));
  reader.columns = must(ArticleColumns::of(reader.query));
  for (const Department& department : run.now.departments) makeDepartment(run, department, reader);
}

}  // namespace kv
