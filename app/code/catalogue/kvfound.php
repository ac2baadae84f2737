<?php
// ***1.0.7***
// Results of searches that found much, kept until the next load: counting and ordering thousands of articles takes longer
// than all the rest of a search. What is kept are numbers of articles in their order, never their words or prices.
include_once "kvtables.php";

/** Most numbers kept of a search; further pages of results are read as before. */
const KV_TENUTI = 500;
/** Searches that found fewer aren't kept: they are quick, and there is no end of them. */
const KV_DA_TENERE = 100;
/** Most searches kept. */
const KV_RICERCHE = 2000;

/** What is kept of a search: `carico` (the mark of the load), `quanti` and `numeri`, null where nothing is. */
function kvRicercaTenuta(string $chiave): array
{
    $riga = kvRiga("SELECT s.valore AS carico, r.quanti, r.numeri FROM kv_stato s LEFT JOIN kv_ricerche r"
        . " ON r.chiave = ? AND r.carico = s.valore WHERE s.nome = 'carico'", [$chiave]);
    return $riga ?? ['carico' => '', 'quanti' => null, 'numeri' => null];
}

/** Keeps a search under the load that it was made on; now and then sweeps those of former loads. */
function kvTieniRicerca(string $chiave, string $carico, int $quanti, array $numeri): void
{
    kvQuery('REPLACE INTO kv_ricerche (chiave, carico, quanti, numeri) VALUES (?, ?, ?, ?)',
        [$chiave, $carico, $quanti, implode(',', $numeri)]);
    if (random_int(1, 20) === 1) {
        $tante = (int) (kvRiga('SELECT COUNT(*) AS n FROM kv_ricerche')['n'] ?? 0) > KV_RICERCHE;
        kvQuery('DELETE FROM kv_ricerche' . ($tante ? '' : ' WHERE carico <> ?'), $tante ? [] : [$carico]);
    }
}

/**
 * How many articles a search finds and the numbers of one page of them, in their order. `da`: what stands behind the
 * columns of the SELECT, with `valori` bound; `pagina` becomes that of the page that there is. With `tieni` the result is
 * kept however little was found. The tables are read in the order of `da`: the words choose the articles, for the server
 * can't know how few they leave, and would rather look into the texts of all.
 */
function kvNumeriTrovati(string $da, array $valori, int $perPagina, int &$pagina, bool $tieni): array
{
    $chiave = md5(json_encode([$GLOBALS['Lingua'], $da, $valori], JSON_INVALID_UTF8_SUBSTITUTE));
    $leggi = fn(int $quanti, int $dopo): array => array_map('intval', array_column(kvQuery(
        "SELECT STRAIGHT_JOIN p.articolo $da ORDER BY punti, v.titolo, p.articolo LIMIT ? OFFSET ?",
        array_merge($valori, [$quanti, $dopo])) ?? [], 'articolo'));
    $tenuta = kvRicercaTenuta($chiave);
    if ($tenuta['quanti'] === null) {
        $numeri = $leggi(KV_TENUTI, 0);
        $quanti = count($numeri) < KV_TENUTI ? count($numeri)
            : (int) (kvRiga('SELECT STRAIGHT_JOIN COUNT(*) AS n' . $da, $valori)['n'] ?? 0);
        if (($tieni || $quanti >= KV_DA_TENERE) && $tenuta['carico'] !== '') {
            kvTieniRicerca($chiave, $tenuta['carico'], $quanti, $numeri);
        }
    } else {
        $quanti = (int) $tenuta['quanti'];
        $numeri = $tenuta['numeri'] === '' ? [] : array_map('intval', explode(',', $tenuta['numeri']));
    }
    $pagina = max(1, min($pagina, (int) ceil($quanti / $perPagina)));
    $dopo = ($pagina - 1) * $perPagina;
    $qui = $dopo + $perPagina <= count($numeri) || count($numeri) === $quanti;
    return [$quanti, $qui ? array_slice($numeri, $dopo, $perPagina) : $leggi($perPagina, $dopo)];
}
