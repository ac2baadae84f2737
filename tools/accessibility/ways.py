"""The way to every window of the program, as a merchant goes it, and what classes of windows the sources have.

A way starts at a menu entry, or at a control of a page, and goes on from the window in front. A window that no way leads
to is found by comparing the ways with the sources: `missing(root)`.
"""
import re
from dataclasses import dataclass

BOX = ""  # a box that tells or asks
CHOOSER = "chooser"  # the choice of a file or a folder, which is the toolkit's own
# Windows that go by themselves or have a message over them at once: they are walked where a way makes them last, or
# when their message has gone.
PASSING = {"frmElabora", "frmFTP", "frmPulisciImmagini"}


@dataclass(frozen=True)
class Press:
    """Presses the control whose name starts with `name` in the window in front. `opens`: the class of the window that comes
    then; None when none does."""
    name: str
    opens: str = None


@dataclass(frozen=True)
class Each:
    """Opens a window of the class `opens` by each button whose name holds `mark`, and leaves it again."""
    mark: str
    opens: str


@dataclass(frozen=True)
class Type:
    """Types a text and Enter; "~" is the folder of the files that were made ready. `opens` as for Press."""
    text: str
    opens: str = None


@dataclass(frozen=True)
class Key:
    """Presses a key, named as xdotool does."""
    name: str


@dataclass(frozen=True)
class Click:
    """Clicks into the first table cell of the window in front."""


@dataclass(frozen=True)
class Await:
    """Waits for a window that comes by itself; `opens` as for Press."""
    opens: str


@dataclass(frozen=True)
class Walk:
    """Walks a window of the class `name` that was under another one, and is in front now."""
    name: str


@dataclass(frozen=True)
class Fill:
    """Enters a text into the editor whose name starts with `name`, "~" as above."""
    name: str
    text: str


@dataclass(frozen=True)
class Way:
    """`start`: the caption of a menu entry, or what the name of a control of a page starts with when `page` is given.
    `opens`: the class of its window. Windows that stay open are left by Escape; `yes`: the question then wants a yes.
    `isLong`: gone only when all is looked at. `isSilent`: the file server never greets, so that the window that waits for
    it lasts and is walked."""
    start: str
    opens: str
    steps: tuple = ()
    page: str = ""
    yes: bool = False
    isLong: bool = False
    isSilent: bool = False


ACCOUNTING = (Fill("Percorso dei dati", "~/orsa"), Press("OK", "{}"), Press("OK", "frmImportaOGMAProg"))


# The fourth of the six variants, by the keyboard.
OTHER_VARIANT = (Key("alt+v"), Key("End"), Key("Up"), Key("Up"))


def accounting(options):
    return tuple(Press(step.name, step.opens.format(options)) if isinstance(step, Press) else step for step in ACCOUNTING)


WAYS = (
    Way("Benvenuto...", "frmWelcome"),
    Way("Esporta negozio per Korvane Banco", CHOOSER, (Type("~/esportato", "frmEsporta"),), isLong=True),
    Way("Importa negozio Primo...", BOX, (Press("OK", "frmImportaPrimo"),)),
    Way("Ripristina una copia...", "frmBackup"),
    Way("Cambia le cartelle di lavoro...", "frmBrowse"),
    Way("Pulisci le cartelle di lavoro...", BOX),
    Way("Rimuovi immagini inutilizzate...", BOX, (Press("OK", "frmPulisciImmagini"), Await(BOX), Press("OK"),
                                                        Walk("frmPulisciImmagini"))),
    Way("Configura lingue...", "frmLingue"),
    Way("Replica lingue...", "frmReplica"),
    Way("Replica listino...", "frmReplicaListini"),
    Way("Tag personalizzati...", "frmTags"),
    Way("Requisiti di legge...", "frmRequisiti"),
    Way("Scegli il template...", "frmTemplate"),
    Way("Impostazioni costruzione...", "frmImpostazioni"),
    Way("Costruisci il negozio", "frmElabora", (Await(BOX),), isLong=True),
    Way("Aggiorna il sito...", "frmAvviso", (Press("Sì", "frmImpostaFTP"), Press("OK", "frmFTP")), yes=True, isLong=True,
        isSilent=True),
    Way("Aggiorna il sito...", "frmAvviso", (Press("Sì", "frmImpostaFTP"), Press("OK", "frmFTP"), Press("", "frmUpdate")),
        yes=True, isLong=True),
    Way("Importa da Orsa Gestionale...", "frmOGChoose", accounting("frmImportaOG"), isLong=True),
    Way("Importa da Orsa Gestionale...", "frmOGChoose", (*OTHER_VARIANT, *accounting("frmImportaOG3")), isLong=True),
    Way("Importa da un foglio...", "frmImportaFoglio"),
    Way("Importa da un foglio...", "frmImportaFoglio",
        (Press("Sfoglia...", CHOOSER), Type("~/foglio.csv"), Walk("frmImportaFoglio"), Press("Avanti"),
         Walk("frmImportaFoglio"), Press("Avanti"), Walk("frmImportaFoglio")), isLong=True),
    Way("Esporta in un foglio...", "frmEsportaFoglio"),
    Way("Cronologia...", "frmCronologia"),
    Way("Modifica prezzi...", "frmVariaPrezzi"),
    Way("Foglio articoli...", "frmFoglio", (Press("Trova e sostituisci", "frmSostituisci"),)),
    Way("Foglio articoli...", "frmFoglio", (Click(), Key("ctrl+a"), Press("Prezzi selezionati", "frmPassoPrezzi"))),
    Way("Ricerca...", "frmSearch"),
    Way("1", "frmOpzioni"),
    Way("Imposta immagine", "frmImmagine", page="Articoli"),
    Way("Ingrandisci ", "frmTesto", page="Articoli"),
    Way("Spese di spedizione...", "frmSpedizione"),
    Way("Sistemi di pagamento...", "frmConfiguraPG",
        (Press("Banca Sella", "frmPG"), Press("Informazioni sulla lingua...", "frmInfoLingua"))),
    Way("Sistemi di pagamento...", "frmConfiguraPG", (Each(": ", "frmPG"),), isLong=True),
    Way("Sistemi di pagamento...", "frmConfiguraPG",
        (Press("Banca Sella", "frmPG"), Press("Lista delle password...", "frmOTP"), Press("Cerca...", CHOOSER),
         Type('"~/a.ric" "~/a.ris"'), Press("Aggiorna", "frmFTPOTP")), isLong=True),
    Way("Testo e-mail di conferma...", "frmEmail"),
    Way("Impostazioni vetrina...", "frmVetrina"),
    Way("Campi obbligatori...", "frmObbligatori"),
    Way("Produttori...", "frmProduttori"),
    Way("Compact Privacy Policy", "frmP3P", page="Sito"),
    Way("Cartella FTP del negozio...", "frmFolderFTP", isLong=True),
    Way("Cartella FTP script CGI...", "frmFolderFTP", isLong=True),
    Way("Impostazioni avanzate...", "frmFirewall"),
    Way("Ordini...", "frmOrdini", (Press("Esporta...", "frmEsportaOrdini"),)),
    Way("Ordini...", "frmOrdini", (Press("Vendite...", "frmVendite"),)),
    Way("Ordini...", "frmOrdini", (Click(), Press("Stampa...", "frmOrderPrint"))),
    Way("Controlla il negozio...", "frmControlla"),
    Way("Introduzione...", "frmIntro"),
    Way("Informazioni su...", "frmAbout"),
)
# What opens a page in a browser, another program, or the choice of a folder alone, or is hidden since the windows that it
# leads to have an entry that is on.
OUTSIDE = {"Sommario...", "Domande frequenti...", "Guida ai template...", "Aggiornamenti online...", "BackOffice...",
           "Aggiorna giacenze da Orsa Gestionale...", "Scarica ordini...", "Importa da Orsa Gestionale con gwimp...",
           "Nuovo negozio..", "Apri negozio...", "Cerca i dati di Orsa Gestionale..."}
# Windows that the check opens by itself, since no entry does.
BY_THEMSELVES = {"frmRescue"}
BASES = {"FormDialog", "TransferWindow", "AccountingForm"}


def classes_on(way):
    return [name for name in [way.opens, *(step.opens for step in way.steps if hasattr(step, "opens"))]
            if name and name != CHOOSER]


def window_classes(root):
    """The classes of the dialogs in the sources."""
    found = re.compile(r"^class (\w+) final : public (\w+)", re.M)
    return {name for header in (root / "src").rglob("frm_*.h") for name, base in found.findall(header.read_text())
            if base in BASES}


def command_windows(root):
    """The classes that the port of the commands' dialogs names."""
    port = (root / "src/shell/workbench/workbench_dialogs.h").read_text()
    return set(re.findall(r"/// ?<? ?(frm\w+):", port))


def missing(root):
    """The windows to which no way leads, and the ways to windows that there are not."""
    known = {name for way in WAYS for name in classes_on(way)} | BY_THEMSELVES
    there = window_classes(root) | command_windows(root)
    return sorted(there - known), sorted(known - there)
