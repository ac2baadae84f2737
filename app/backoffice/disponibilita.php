<?php
// What can be bought, and how many pieces: articles by their number, values of variants by article, variant and code.
// Without a row in kv_disponibilita a thing is there without limit. Orders lower the quantities meanwhile, so only what
// was changed on the page is stored, and only where the database still holds what the page had shown.
include "bo_base.php";
boRiservata();

const BO_PER_PAGINA = 50;

/**
 * The list of articles (A) or values of variants (V): its tables, its key in the character set and order of
 * kv_disponibilita, what is grouped by, what is shown, what a search looks into, the order. All of it is SQL of our own.
 */
function boFonti(): array
{
    $valore = "CONVERT(LEFT(CONCAT(g.ID, '.', a.OpID, '.', a.codice), 100) USING latin1) COLLATE latin1_bin";
    return [
        'A' => ['tabelle' => 'articoli a LEFT JOIN dettaglio g ON g.ID = a.ID',
            'chiave' => 'CONVERT(CAST(a.ID AS CHAR) USING latin1) COLLATE latin1_bin', 'gruppo' => 'a.ID',
            'campi' => 'MAX(a.ID) AS chiave, MAX(g.codice) AS codice, MAX(a.plain_titolo) AS nome',
            'cerca' => "CONCAT_WS(' ', g.codice, a.plain_titolo)", 'ordine' => 'MAX(g.codice), MAX(a.plain_titolo), a.ID'],
        'V' => ['tabelle' => 'opcodici a INNER JOIN dettaglio g ON a.OpID IN (' . kvColonneVarianti('g')
                . ') INNER JOIN articoli t ON t.ID = g.ID LEFT JOIN opzioni p ON p.ID = a.OpID',
            'chiave' => $valore, 'gruppo' => $valore,
            'campi' => "MAX($valore) AS chiave, MAX(a.codice) AS codice,"
                . " MAX(CONCAT_WS(' ', g.codice, t.plain_titolo, '-', p.nomeopzione)) AS nome",
            'cerca' => "CONCAT_WS(' ', a.codice, g.codice, t.plain_titolo, p.nomeopzione)",
            'ordine' => 'MAX(g.codice), MAX(t.plain_titolo), MAX(p.nomeopzione), MAX(a.codice), MAX(BINARY a.codice)'],
    ];
}

/** What a request asks of the list: the parameters, the tables, the condition and its values. */
function boFiltroDisponibilita(array $richiesta): array
{
    $tipo = kvCampo($richiesta, 'tipo', 1) === 'V' ? 'V' : 'A';
    $vedi = kvCampo($richiesta, 'vedi', 10);
    $filtri = ['esauriti' => '(d.disponibile = 0 OR d.quantita <= 0)', 'limitati' => 'd.chiave IS NOT NULL'];
    $parametri = ['tipo' => $tipo, 'q' => kvRigaCampo($richiesta, 'q', 100),
        'vedi' => isset($filtri[$vedi]) ? $vedi : ''];
    $fonte = boFonti()[$tipo];
    $tabelle = $fonte['tabelle']
        . " LEFT JOIN kv_disponibilita d ON d.tipo = '$tipo' AND d.chiave = " . $fonte['chiave'];
    $dove = $parametri['vedi'] === '' ? '1 = 1' : $filtri[$vedi];
    if ($parametri['q'] === '') {
        return [$parametri, $tabelle, $dove, []];
    }
    return [$parametri, $tabelle, $dove . ' AND INSTR(' . $fonte['cerca'] . ', ?) > 0', [kvDaUtf8($parametri['q'])]];
}

/** What the fields of a row say: "1|12", "1|" without a limit, "0|..." for none; null when the quantity is none. */
function boVoce(bool $disponibile, string $quantita): ?string
{
    return preg_match('/^\d{0,7}$/D', $quantita) ? ($disponibile ? '1' : '0') . '|' . ltrim($quantita, '0')
        . (preg_match('/^0+$/D', $quantita) ? '0' : '') : null;
}

/** The same of a row of kv_disponibilita, null for a missing one. */
function boVoceRiga(?array $riga): string
{
    return $riga === null ? '1|' : ($riga['disponibile'] ? '1' : '0') . '|' . ($riga['quantita'] === null ? ''
        : max(0, (int) $riga['quantita']));
}

/** Stores one row whose fields went from `prima` to `dopo`; false when the database no longer holds `prima`. */
function boSalvaVoce(string $tipo, string $chiave, string $prima, string $dopo): bool
{
    mysqli_begin_transaction(kvConnessione());
    $riga = kvRiga('SELECT disponibile, quantita FROM kv_disponibilita WHERE tipo = ? AND chiave = ? FOR UPDATE',
        [$tipo, $chiave]);
    if (boVoceRiga($riga) !== $prima) {
        mysqli_rollback(kvConnessione());
        return false;
    }
    list($disponibile, $quantita) = explode('|', $dopo);
    if ($dopo === '1|') {
        kvQuery('DELETE FROM kv_disponibilita WHERE tipo = ? AND chiave = ?', [$tipo, $chiave]);
    } else {
        kvQuery('REPLACE INTO kv_disponibilita (tipo, chiave, disponibile, quantita) VALUES (?, ?, ?, ?)',
            [$tipo, $chiave, (int) $disponibile, $quantita === '' ? null : (int) $quantita]);
    }
    return mysqli_commit(kvConnessione());
}

/** Stores the rows of the form that were changed, and tells of those that couldn't be. */
function boSalvaVoci(string $tipo): void
{
    $campi = array_map(fn($nome) => is_array($_POST[$nome] ?? null) ? $_POST[$nome] : [], ['c' => 'c', 'p' => 'p',
        'd' => 'd', 'q' => 'q']);
    $salvate = 0;
    // The table must stand before a transaction: making it would end one.
    kvRiga("SELECT COUNT(*) FROM kv_disponibilita WHERE tipo = '-'");
    foreach (array_slice($campi['c'], 0, BO_PER_PAGINA, true) as $n => $chiave) {
        $chiave = kvDaUtf8(kvCampo($campi['c'] + ['_charset_' => 'utf-8'], (string) $n, 100));
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
        kvScorteCambiate();
        boAvvisa($salvate === 1 ? 'Disponibilità salvata.' : "$salvate disponibilità salvate.");
    }
}

/** The fields of one row, as cells. */
function boCelleVoce(int $n, array $riga): array
{
    $voce = boVoceRiga($riga['d'] === null ? null : $riga);
    $nome = trim($riga['codice'] . ' ' . strip_tags((string) $riga['nome']));
    $quantita = explode('|', $voce)[1];
    return [
        kvHtml($riga['codice']), kvHtml(html_entity_decode(strip_tags((string) $riga['nome']), ENT_QUOTES, 'cp1252')),
        '<input type="hidden" name="c[' . $n . ']" value="' . kvHtml($riga['chiave']) . '">'
            . '<input type="hidden" name="p[' . $n . ']" value="' . $voce . '">'
            . '<input type="checkbox" name="d[' . $n . ']" value="1" aria-label="Disponibile: ' . kvHtml($nome) . '"'
            . ($voce[0] === '1' ? ' checked' : '') . '>',
        '<input type="text" inputmode="numeric" pattern="[0-9]*" maxlength="7" size="11" name="q[' . $n . ']" value="'
            . $quantita . '" aria-label="Quantità: ' . kvHtml($nome) . '" placeholder="senza limite">'
            . ($voce[0] === '0' || $quantita === '0' ? ' <span class="stato stato-rifiutato">esaurito</span>' : ''),
    ];
}

list($boParametri, $boTabelle, $boDove, $boValori) = boFiltroDisponibilita($_GET);
if (boInvio()) {
    boSalvaVoci($boParametri['tipo']);
    boVai(boIndirizzo('disponibilita.php', ['p' => boNumero($_GET, 'p', 1, 99999)] + $boParametri));
}
$boFonte = boFonti()[$boParametri['tipo']];
$boTrovate = boConta("SELECT COUNT(DISTINCT {$boFonte['gruppo']}) AS n FROM $boTabelle WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovate / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boVoci = kvQuery("SELECT {$boFonte['campi']}, MAX(d.chiave) AS d, MAX(d.disponibile) AS disponibile,"
    . " MAX(d.quantita) AS quantita FROM $boTabelle WHERE $boDove GROUP BY {$boFonte['gruppo']} ORDER BY "
    . "{$boFonte['ordine']} LIMIT " . BO_PER_PAGINA . ' OFFSET ' . ($boPagina - 1) * BO_PER_PAGINA, $boValori) ?? [];
boInizio('Disponibilità', 'disponibilita.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="disponibilita.php" role="search">
<label>Elenco <select name="tipo"><?php echo boScelte(['A' => 'Articoli', 'V' => 'Valori delle opzioni'],
    $boParametri['tipo']); ?></select></label>
<?php echo boCampo('Codice o nome', 'q', $boParametri['q'], 'type="search" maxlength="100"'); ?>
<label>Mostra <select name="vedi"><?php echo boScelte(['' => 'Tutti', 'limitati' => 'Con un limite',
    'esauriti' => 'Non disponibili'], $boParametri['vedi']); ?></select></label>
<p><button type="submit">Cerca</button></p>
</form>
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
