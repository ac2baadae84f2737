<?php
// What can be bought, and how many pieces: articles by their number, values of variants by article, variant and code.
// Without a row in kv_disponibilita a thing is there without limit. Orders lower the quantities meanwhile, so only what
// was changed on the page is stored, and only where the database still holds what the page had shown.
include "bo_base.php";
include_once "bo_scorte.php";
include_once "bo_voci.php";
boRiservata();

const BO_PER_PAGINA = 50;

/** What a request asks of the list: the parameters, the tables, the condition and its values. */
function boFiltroDisponibilita(array $richiesta): array
{
    $tipo = kvCampo($richiesta, 'tipo', 1) === 'V' ? 'V' : 'A';
    $vedi = kvCampo($richiesta, 'vedi', 10);
    $filtri = ['esauriti' => '(d.disponibile = 0 OR d.quantita <= 0)', 'limitati' => 'd.chiave IS NOT NULL',
        'scarsi' => boCondizioneScarsi()];
    $parametri = ['tipo' => $tipo, 'q' => kvLineField($richiesta, 'q', 100),
        'vedi' => isset($filtri[$vedi]) ? $vedi : ''];
    $tabelle = boTabelleVoci($tipo);
    $dove = $parametri['vedi'] === '' ? '1 = 1' : $filtri[$vedi];
    if ($parametri['q'] === '') {
        return [$parametri, $tabelle, $dove, []];
    }
    return [$parametri, $tabelle, $dove . ' AND INSTR(' . boFonti()[$tipo]['cerca'] . ', ?) > 0', [kvFromUtf8($parametri['q'])]];
}

/** Stores the rows of the form that were changed, and tells of those that couldn't be. */
function boSalvaVoci(string $tipo): void
{
    $campi = array_map(fn($nome) => is_array($_POST[$nome] ?? null) ? $_POST[$nome] : [], ['c' => 'c', 'p' => 'p',
        'd' => 'd', 'q' => 'q']);
    $salvate = 0;
    foreach (array_slice($campi['c'], 0, BO_PER_PAGINA, true) as $n => $chiave) {
        $chiave = kvFromUtf8(kvCampo($campi['c'] + ['_charset_' => 'utf-8'], (string) $n, 100));
        $prima = kvCampo($campi['p'], (string) $n, 12);
        $dopo = boVoce(isset($campi['d'][$n]), kvCampo($campi['q'], (string) $n, 12));
        if ($dopo === null) {
            boAvvisa("$chiave: la quantità dev'essere un numero intero, vuota per nessun limite.", true);
        } elseif ($chiave !== '' && $dopo !== $prima) {
            if (boSalvaVoce($tipo, $chiave, $prima, $dopo)) {
                $salvate++;
            } else {
                boAvvisa("$chiave: la disponibilità è cambiata nel frattempo; controllare e ripetere.", true);
            }
        }
    }
    if ($salvate > 0) {
        kvStockChanged();
        boAvvisa($salvate === 1 ? 'Disponibilità salvata.' : "$salvate disponibilità salvate.");
    }
}

/** A mark for what is sold out or runs short, as HTML. */
function boSegnoScorta(bool $disponibile, string $quantita): string
{
    if (!$disponibile || $quantita === '0') {
        return ' <span class="stato stato-rifiutato">esaurito</span>';
    }
    return $quantita !== '' && (int) $quantita <= boSoglia() ? ' <span class="stato stato-nuovo">in esaurimento</span>' : '';
}

/** The fields of one row, as cells. */
function boCelleVoce(int $n, array $riga): array
{
    $voce = boVoceTrovata($riga);
    $nome = trim($riga['codice'] . ' ' . strip_tags((string) $riga['nome']));
    $quantita = explode('|', $voce)[1];
    return [
        kvHtml($riga['codice']), kvHtml(boNomeVoce($riga)),
        '<input type="hidden" name="c[' . $n . ']" value="' . kvHtml($riga['chiave']) . '">'
            . '<input type="hidden" name="p[' . $n . ']" value="' . $voce . '">'
            . '<input type="checkbox" name="d[' . $n . ']" value="1" aria-label="Disponibile: ' . kvHtml($nome) . '"'
            . ($voce[0] === '1' ? ' checked' : '') . '>',
        '<input type="text" inputmode="numeric" pattern="[0-9]*" maxlength="7" size="11" name="q[' . $n . ']" value="'
            . $quantita . '" aria-label="Quantità: ' . kvHtml($nome) . '" placeholder="senza limite">'
            . boSegnoScorta($voce[0] === '1', $quantita),
    ];
}

list($boParametri, $boTabelle, $boDove, $boValori) = boFiltroDisponibilita($_GET);
if (boInvio()) {
    if (isset($_POST['controllate'])) {
        kvStoreValue('scorte_condivise', '');
    } elseif (isset($_POST['soglia'])) {
        boSalvaSoglia();
    } else {
        boSalvaVoci($boParametri['tipo']);
    }
    boVai(boIndirizzo('disponibilita.php', ['p' => boNumero($_GET, 'p', 1, 99999)] + $boParametri));
}
$boFonte = boFonti()[$boParametri['tipo']];
$boTrovate = boConta("SELECT COUNT(DISTINCT {$boFonte['gruppo']}) AS n FROM $boTabelle WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovate / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boVoci = boTrovaVoci($boParametri['tipo'], [$boDove, $boValori], ($boPagina - 1) * BO_PER_PAGINA, BO_PER_PAGINA)
    ?? [];
boInizio('Disponibilità', 'disponibilita.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="disponibilita.php" role="search">
<label>Elenco <select name="tipo"><?php echo boScelte(['A' => 'Articoli', 'V' => 'Valori delle opzioni'],
    $boParametri['tipo']); ?></select></label>
<?php echo boCampo('Codice o nome', 'q', $boParametri['q'], 'type="search" maxlength="100"'); ?>
<label>Mostra <select name="vedi"><?php echo boScelte(['' => 'Tutti', 'limitati' => 'Con un limite',
    'scarsi' => 'In esaurimento', 'esauriti' => 'Non disponibili'], $boParametri['vedi']); ?></select></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php boModuloSoglia(boIndirizzo('disponibilita.php', $boParametri)); ?>
<?php if ($boVoci === []) { ?>
<p>Nessuna voce trovata.</p>
<?php
} else {
    $boQuesta = boIndirizzo('disponibilita.php', ['p' => $boPagina] + $boParametri);
    echo '<form method="post" accept-charset="utf-8" action="', kvHtml($boQuesta), '">', boCampoGettone();
    boTabella(['Codice', $boParametri['tipo'] === 'A' ? 'Articolo' : 'Articolo e opzione', 'Disponibile', 'Quantità'],
        array_map('boCelleVoce', array_keys($boVoci), $boVoci), $boParametri['tipo'] === 'A' ? 'Articoli' : 'Valori');
    echo '<p class="salva"><button type="submit">Salva</button></p></form>';
    boPagine('disponibilita.php', $boParametri, $boPagina, $boQuantePagine);
}
boFine();
