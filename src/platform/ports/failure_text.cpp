#include "platform/ports/failure_text.h"

namespace kv {
namespace {

/// One row per kind of error: what has happened, and what was kept and can be done.
struct KindText {
  ErrorKind kind;
  const char* happened;
  const char* advice;
};

constexpr KindText texts[] = {
    {ErrorKind::InUse, "il file è utilizzato da un altro programma o da un'altra finestra.",
     "Nulla è stato modificato: chiudere l'altro programma e riprovare."},
    {ErrorKind::ReadOnly, "il file o la sua cartella è in sola lettura.",
     "Nulla è stato modificato: controllare i permessi della cartella del negozio e riprovare."},
    {ErrorKind::Corrupt, "il file è danneggiato.",
     "Il comando \"Ripristina una copia...\" del menu \"File\" riporta a una copia precedente del catalogo."},
    {ErrorKind::Missing, "un file, una cartella o una riga non esiste più.",
     "Nulla è stato modificato: controllare che la cartella del negozio sia ancora al suo posto."},
    {ErrorKind::Exists, "esiste già un elemento con questo nome.",
     "Nulla è stato modificato: scegliere un altro nome."},
    {ErrorKind::TextInNumber, "il valore non è un numero.", "È rimasto il valore precedente."},
    {ErrorKind::Full, "il disco è pieno.", "Nulla è stato modificato: liberare spazio sul disco e riprovare."},
    {ErrorKind::Malformed, "il valore non è ammesso.", "È rimasto il valore precedente."},
    {ErrorKind::Cancelled, "operazione annullata.", "Nulla è stato modificato."},
    {ErrorKind::Other, "si è verificato un errore imprevisto.",
     "Nulla è stato modificato: riprovare o riavviare il programma."},
};

const KindText& textOf(ErrorKind kind) {
  for (const KindText& text : texts) {
    if (text.kind == kind) return text;
  }
  return texts[std::size(texts) - 1];
}

/// The first character as a capital; the texts of the table begin with ASCII letters.
std::string asSentence(std::string text) {
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') text.front() = static_cast<char>(text.front() - 32);
  return text;
}

std::string detailOf(const Error& error) {
  if (error.where.empty() || error.what.empty()) return error.where + error.what;
  return error.where + ": " + error.what;
}

}  // namespace

std::string failureText(const Error& error, std::string_view subject) {
  const KindText& row = textOf(error.kind);
  std::string text = subject.empty() ? asSentence(row.happened) : std::string(subject) + ": " + row.happened;
  text += "\n";
  text += row.advice;
  if (const std::string detail = detailOf(error); !detail.empty()) text += "\n\nDettaglio: " + detail;
  return text;
}

}  // namespace kv
