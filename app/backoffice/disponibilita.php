<?php
// What can be bought, and how many pieces: articles by their number, values of variants by article, variant and code.
// Without a row in kv_disponibilita a thing is there without limit. Orders lower the quantities meanwhile, so only what
// was changed on the page is stored, and only where the database still holds what the page had shown.
include "bo_base.php";
include_once "bo_scorte.php";
include_once "bo_voci.php";
boRequireAccess();

const BO_PER_PAGE = 50;

/** What a request asks of the list: the parameters, the tables, the condition and its values. */
function boStockFilter(array $request): array
{
    $kind = kvCampo($request, 'tipo', 1) === 'V' ? 'V' : 'A';
    $view = kvCampo($request, 'vedi', 10);
    $filters = ['esauriti' => '(d.disponibile = 0 OR d.quantita <= 0)', 'limitati' => 'd.chiave IS NOT NULL',
        'scarsi' => boLowStockCondition()];
    $parameters = ['tipo' => $kind, 'q' => kvLineField($request, 'q', 100),
        'vedi' => isset($filters[$view]) ? $view : ''];
    $tables = boStockTables($kind);
    $where = $parameters['vedi'] === '' ? '1 = 1' : $filters[$view];
    if ($parameters['q'] === '') {
        return [$parameters, $tables, $where, []];
    }
    return [$parameters, $tables, $where . ' AND INSTR(' . boStockSources()[$kind]['search'] . ', ?) > 0', [kvFromUtf8($parameters['q'])]];
}

/** Stores the rows of the form that were changed, and tells of those that couldn't be. */
function boSaveEntries(string $kind): void
{
    $fields = array_map(fn($name) => is_array($_POST[$name] ?? null) ? $_POST[$name] : [], ['c' => 'c', 'p' => 'p',
        'd' => 'd', 'q' => 'q']);
    $saved = 0;
    foreach (array_slice($fields['c'], 0, BO_PER_PAGE, true) as $n => $key) {
        $key = kvFromUtf8(kvCampo($fields['c'] + ['_charset_' => 'utf-8'], (string) $n, 100));
        $before = kvCampo($fields['p'], (string) $n, 12);
        $after = boStockEntry(isset($fields['d'][$n]), kvCampo($fields['q'], (string) $n, 12));
        if ($after === null) {
            boNotify("$key: la quantità dev'essere un numero intero, vuota per nessun limite.", true);
        } elseif ($key !== '' && $after !== $before) {
            if (boSaveEntry($kind, $key, $before, $after)) {
                $saved++;
            } else {
                boNotify("$key: la disponibilità è cambiata nel frattempo; controllare e ripetere.", true);
            }
        }
    }
    if ($saved > 0) {
        kvStockChanged();
        boNotify($saved === 1 ? 'Disponibilità salvata.' : "$saved disponibilità salvate.");
    }
}

/** A mark for what is sold out or runs short, as HTML. */
function boStockMark(bool $available, string $quantity): string
{
    if (!$available || $quantity === '0') {
        return ' <span class="stato stato-rifiutato">esaurito</span>';
    }
    return $quantity !== '' && (int) $quantity <= boLowStockLimit() ? ' <span class="stato stato-nuovo">in esaurimento</span>' : '';
}

/** The fields of one row, as cells. */
function boEntryCells(int $n, array $row): array
{
    $entry = boFoundEntry($row);
    $name = trim($row['codice'] . ' ' . strip_tags((string) $row['nome']));
    $quantity = explode('|', $entry)[1];
    return [
        kvHtml($row['codice']), kvHtml(boStockRowName($row)),
        '<input type="hidden" name="c[' . $n . ']" value="' . kvHtml($row['chiave']) . '">'
            . '<input type="hidden" name="p[' . $n . ']" value="' . $entry . '">'
            . '<input type="checkbox" name="d[' . $n . ']" value="1" aria-label="Disponibile: ' . kvHtml($name) . '"'
            . ($entry[0] === '1' ? ' checked' : '') . '>',
        '<input type="text" inputmode="numeric" pattern="[0-9]*" maxlength="7" size="11" name="q[' . $n . ']" value="'
            . $quantity . '" aria-label="Quantità: ' . kvHtml($name) . '" placeholder="senza limite">'
            . boStockMark($entry[0] === '1', $quantity),
    ];
}

list($boParameters, $boTables, $boWhere, $boValues) = boStockFilter($_GET);
if (boIsSubmitted()) {
    if (isset($_POST['controllate'])) {
        kvStoreValue('scorte_condivise', '');
    } elseif (isset($_POST['soglia'])) {
        boSaveLowStockLimit();
    } else {
        boSaveEntries($boParameters['tipo']);
    }
    boGoTo(boAddress('disponibilita.php', ['p' => boNumberWithin($_GET, 'p', 1, 99999)] + $boParameters));
}
$boSource = boStockSources()[$boParameters['tipo']];
$boFound = boCountRows("SELECT COUNT(DISTINCT {$boSource['group']}) AS n FROM $boTables WHERE $boWhere", $boValues);
$boPageCount = max(1, (int) ceil($boFound / BO_PER_PAGE));
$boPage = boNumberWithin($_GET, 'p', 1, $boPageCount);
$boEntries = boFindStockRows($boParameters['tipo'], [$boWhere, $boValues], ($boPage - 1) * BO_PER_PAGE, BO_PER_PAGE)
    ?? [];
boPageStart('Disponibilità', 'disponibilita.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="disponibilita.php" role="search">
<label>Elenco <select name="tipo"><?php echo boOptions(['A' => 'Articoli', 'V' => 'Valori delle opzioni'],
    $boParameters['tipo']); ?></select></label>
<?php echo boField('Codice o nome', 'q', $boParameters['q'], 'type="search" maxlength="100"'); ?>
<label>Mostra <select name="vedi"><?php echo boOptions(['' => 'Tutti', 'limitati' => 'Con un limite',
    'scarsi' => 'In esaurimento', 'esauriti' => 'Non disponibili'], $boParameters['vedi']); ?></select></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php boLowStockForm(boAddress('disponibilita.php', $boParameters)); ?>
<?php if ($boEntries === []) { ?>
<p>Nessuna voce trovata.</p>
<?php
} else {
    $boCurrent = boAddress('disponibilita.php', ['p' => $boPage] + $boParameters);
    echo '<form method="post" accept-charset="utf-8" action="', kvHtml($boCurrent), '">', boTokenField();
    boTable(['Codice', $boParameters['tipo'] === 'A' ? 'Articolo' : 'Articolo e opzione', 'Disponibile', 'Quantità'],
        array_map('boEntryCells', array_keys($boEntries), $boEntries), $boParameters['tipo'] === 'A' ? 'Articoli' : 'Valori');
    echo '<p class="salva"><button type="submit">Salva</button></p></form>';
    boPageLinks('disponibilita.php', $boParameters, $boPage, $boPageCount);
}
boPageEnd();
