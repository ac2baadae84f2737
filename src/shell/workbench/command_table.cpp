#include "shell/workbench/command_table.h"

#include <algorithm>
#include <array>

namespace kv {
namespace {

using enum CommandAction;
using enum CommandSubject;

constexpr std::array commands{
    Command{0, "articolo su", "Muovi su", Move, Article, -1, "Sposta articolo", "su"},
    Command{1, "articolo giu", "", Move, Article, +1, "Sposta articolo", "giu"},
    Command{2, "+ articolo prima", "Aggiungi articolo prima", InsertBefore, Article, 0, "Aggiungi articolo", "prima"},
    Command{3, "+ articolo dopo", "Aggiungi articolo dopo", InsertAfter, Article, 0, "Aggiungi articolo", "dopo"},
    Command{4, "- articolo", "Elimina articolo", Delete, Article, 0, "Elimina articolo", "elimina"},
    Command{5, "copia articolo", "Copia articolo", Copy, Article, 0, "", "copia"},
    Command{6, "incolla articolo", "Incolla articolo", Paste, Article, 0, "Incolla articoli", "incolla"},
    Command{7, "espansione", "Espandi tutto", ExpandAll, Nothing, 0, "", "espandi"},
    Command{8, "espansione", "", CollapseAll, Nothing, 0, "", "comprimi"},
    Command{9, "+ immagine0", "Imposta immagine", ChooseImage, Article, 0, "Imposta immagine", "immagine"},
    Command{10, "- immagine0", "", ClearImage, Article, 0, "Elimina immagine", "immagine-no"},
    Command{11, "incolla categoria", "Incolla reparto", Paste, Department, 0, "Incolla reparto", "incolla"},
    Command{12, "copia categoria", "Copia reparto", Copy, Department, 0, "", "copia"},
    Command{13, "- categoria", "Elimina reparto", Delete, Department, 0, "Elimina reparto", "elimina"},
    Command{14, "+ categoria dopo", "Aggiungi reparto dopo", InsertAfter, Department, 0, "Aggiungi reparto", "dopo"},
    Command{15, "+ categoria prima", "Aggiungi reparto prima", InsertBefore, Department, 0, "Aggiungi reparto",
            "prima"},
    Command{16, "categoria giu", "", Move, Department, +1, "Sposta reparto", "giu"},
    Command{17, "categoria su", "Muovi su", Move, Department, -1, "Sposta reparto", "su"},
    Command{18, "- immagine cat0", "Elimina immagine", ClearImage, Department, 0, "Elimina immagine", "immagine-no"},
    Command{19, "+ immagine cat0", "Imposta immagine", ChooseImage, Department, 0, "Imposta immagine", "immagine"},
    Command{20, "", "Aggiungi sottoreparto", InsertBelow, Department, 0, "Aggiungi sottoreparto", "sotto"},
    Command{21, "", "Cerca articolo", Search, Nothing, 0, "", "cerca"},
    Command{22, "- immagine1", "", ClearImage, Article, 1, "Elimina immagine", "immagine-no"},
    Command{23, "+ immagine1", "", ChooseImage, Article, 1, "Imposta immagine", "immagine"},
    Command{24, "- immagine cat1", "Elimina pulsante", ClearImage, Department, 1, "Elimina pulsante", "immagine-no"},
    Command{25, "+ immagine cat1", "Imposta pulsante", ChooseImage, Department, 1, "Imposta pulsante", "immagine"},
    Command{26, "+ immagine2", "", ChooseImage, Article, 2, "Imposta immagine piccola", "immagine"},
    Command{27, "- immagine2", "", ClearImage, Article, 2, "Elimina immagine piccola", "immagine-no"},
    Command{28, "- immagine neg0", "", ClearImage, Shop, 0, "Elimina logo", "immagine-no"},
    Command{29, "", "", ChooseImage, Shop, 0, "Imposta logo", "immagine"},
    Command{30, "", "Definisci variante 1", DefineVariant, Article, 1, "Definisci variante", "variante"},
    Command{31, "", "Definisci variante 2", DefineVariant, Article, 2, "Definisci variante", "variante"},
    Command{32, "", "", ChooseImage, Shop, 1, "Imposta logo piccolo", "immagine"},
    Command{33, "- immagine neg1", "", ClearImage, Shop, 1, "Elimina logo piccolo", "immagine-no"},
    Command{34, "", "Definisci variante 3", DefineVariant, Article, 3, "Definisci variante", "variante"},
    Command{35, "", "Definisci variante 4", DefineVariant, Article, 4, "Definisci variante", "variante"},
    Command{50, "", "Costruisci il negozio", Build, Nothing, 0, "", "costruisci"},
    Command{51, "", "Aggiorna il sito", Publish, Nothing, 0, "", "pubblica"},
    Command{52, "", "Entra nel BackOffice", OpenBackOffice, Nothing, 0, "", "backoffice"}};

constexpr std::array<std::string_view, 8> onArticle{"articolo su", "articolo giu", "- articolo",  "copia articolo",
                                                    "+ immagine0", "+ immagine1",  "+ immagine2", articleMask};
constexpr std::array<std::string_view, 11> onDepartment{
    "+ categoria prima", "+ categoria dopo", "categoria su",    "categoria giu",   "- categoria", "copia categoria",
    "+ articolo prima",  "+ articolo dopo",  "+ immagine cat0", "+ immagine cat1", departmentMask};
constexpr std::array imageStates{
    ImageKey{"- immagine0", Article, "immagine0"},        ImageKey{"- immagine1", Article, "immagine1"},
    ImageKey{"- immagine2", Article, "immagine2"},        ImageKey{"- immagine cat0", Department, "immagine0"},
    ImageKey{"- immagine cat1", Department, "immagine1"}, ImageKey{"- immagine neg0", Shop, "immagine0"},
    ImageKey{"- immagine neg1", Shop, "immagine1"}};

}  // namespace

std::span<const Command> commandTable() { return commands; }

const Command* commandOf(int number) {
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [number](const Command& command) { return command.number == number; });
  return found == commands.end() ? nullptr : &*found;
}

std::string variantSlot(int slot, int listino) {
  return std::to_string(slot) + (listino > 0 ? "_" + std::to_string(listino) : "");
}

std::span<const std::string_view> articleKeys() { return onArticle; }
std::span<const std::string_view> departmentKeys() { return onDepartment; }
std::span<const ImageKey> imageKeys() { return imageStates; }

}  // namespace kv
