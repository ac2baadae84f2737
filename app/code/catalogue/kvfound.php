<?php
// ***1.0.7***
// Results of searches that found much, kept until the next load: counting and ordering thousands of articles takes longer
// than all the rest of a search. What is kept are numbers of articles in their order, never their words or prices.
include_once "kvtables.php";

/** Most numbers kept of a search; further pages of results are read as before. */
const KV_TENUTI = 500;
/**
 * Searches that found fewer aren't kept: they are quick, and there is no end of them. Those that found nothing are, for
 * they looked through all words of the shop; of too many they go first.
 */
const KV_DA_TENERE = 100;
/** Most searches kept. */
const KV_RICERCHE = 2000;

/**
 * A search as it is looked for among those kept: `chiave` is made of all that its result depends on within a load. With
 * it `carico` (the mark of the load), `indice` (that of its index of words), `quanti` and `numeri`, null where nothing is
 * kept.
 */
function kvRicercaTenuta(array $richiesta): array
{
    $lingua = $GLOBALS['Lingua'];
    $chiave = md5(serialize([$lingua, $GLOBALS['listino'], $richiesta]));
    // By one question without bound values, which take two more trips to the server.
    $sql = "SELECT s.valore AS carico, i.valore AS indice, l.valore AS laterali, r.quanti, r.numeri FROM kv_stato s LEFT JOIN"
        . " kv_stato i ON i.nome = 'indice$lingua' LEFT JOIN kv_stato l ON l.nome = 'laterali' LEFT JOIN kv_ricerche r ON"
        . " r.chiave = '$chiave' AND r.carico = s.valore WHERE s.nome = 'carico'";
    $esito = mysqli_query(kvConnection(), $sql);
    $riga = $esito instanceof mysqli_result ? mysqli_fetch_assoc($esito) : kvRiga($sql);
    if ($riga === null) {
        return ['chiave' => $chiave, 'carico' => '', 'indice' => kvStoredValue('indice' . $lingua), 'quanti' => null, 'numeri' => null];
    }
    kvRememberStates(array_filter(['carico' => $riga['carico'], "indice$lingua" => $riga['indice'], 'laterali' => $riga['laterali']],
        'is_string'));
    return ['chiave' => $chiave, 'indice' => (string) $riga['indice']] + $riga;
}

/** The numbers kept of a search; null where none are. */
function kvNumeriTenuti(array $tenuta): ?array
{
    return $tenuta['quanti'] === null ? null : ($tenuta['numeri'] === '' ? [] : array_map('intval', explode(',', $tenuta['numeri'])));
}

/** Keeps a search under the load that it was made on; now and then sweeps those of former loads. */
function kvTieniRicerca(array $tenuta, int $quanti, array $numeri): void
{
    list('chiave' => $chiave, 'carico' => $carico) = $tenuta;
    if ($carico === '') {
        return;
    }
    kvQuery('REPLACE INTO kv_ricerche (chiave, carico, quanti, numeri) VALUES (?, ?, ?, ?)',
        [$chiave, $carico, $quanti, implode(',', $numeri)]);
    if (random_int(1, 20) === 1) {
        $tante = (int) (kvRiga('SELECT COUNT(*) AS n FROM kv_ricerche')['n'] ?? 0) > KV_RICERCHE;
        kvQuery('DELETE FROM kv_ricerche WHERE carico <> ?' . ($tante ? ' OR quanti = 0' : ''), [$carico]);
        if ($tante && kvRigheToccate() === 0) {
            kvQuery('DELETE FROM kv_ricerche');
        }
    }
}

/**
 * How many articles a search finds and the numbers of one page of them, in their order. `domanda` gives what stands behind
 * the columns of the SELECT, its bound values, and whether the result is kept however little was found; it is asked only
 * for what isn't kept. `pagina` becomes that of the page that there is. The tables are read in the order they are named:
 * the words choose the articles, for the server can't know how few they leave, and would rather look into the texts of all.
 */
function kvNumeriTrovati(array $tenuta, callable $domanda, int $perPagina, int &$pagina): array
{
    $risposto = true;
    $leggi = function (int $quanti, int $dopo) use ($domanda, &$risposto): array {
        list($da, $valori) = $domanda();
        // To choose the first ones the server meets all of them: counted along, it needn't do so twice.
        $righe = kvQuery('SELECT STRAIGHT_JOIN ' . ($dopo === 0 ? 'SQL_CALC_FOUND_ROWS ' : '')
            . "p.articolo $da ORDER BY punti, v.titolo, p.articolo LIMIT ? OFFSET ?", array_merge($valori, [$quanti, $dopo]));
        $risposto = $righe !== null;
        return array_map('intval', array_column($righe ?? [], 'articolo'));
    };
    $numeri = kvNumeriTenuti($tenuta);
    $quanti = (int) $tenuta['quanti'];
    if ($numeri === null) {
        $numeri = $leggi(KV_TENUTI, 0);
        $contati = kvRigheDirette('SELECT FOUND_ROWS() AS n');
        $quanti = count($numeri) < KV_TENUTI ? count($numeri) : (int) ($contati[0]['n'] ?? 0);
        $tieni = $domanda()[2];
        if ($risposto && ($tieni || $quanti === 0 || $quanti >= KV_DA_TENERE)) {
            kvTieniRicerca($tenuta, $quanti, $numeri);
        }
    }
    $pagina = max(1, min($pagina, (int) ceil($quanti / $perPagina)));
    $dopo = ($pagina - 1) * $perPagina;
    $qui = $dopo + $perPagina <= count($numeri) || count($numeri) === $quanti;
    return [$quanti, $qui ? array_slice($numeri, $dopo, $perPagina) : $leggi($perPagina, $dopo)];
}
