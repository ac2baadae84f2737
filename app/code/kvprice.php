<?php
// ***1.0.7***
// Prices of an article for the visitor's listino. The chain is the one of the build: the offer price as it stands,
// else the list price by the department's factor (which holds the shop's discount); then VAT where prices include it.
// Amounts are decimals of four places; a product with a rate passes through single precision, as in the build, so that
// both arrive at the same cent.

if (!function_exists('kvProdotto')) {

/** An amount by a rate, rounded like the build's: single precision, then four decimals, halves to even. */
function kvProdotto(float $importo, float $tasso): float
{
    $singola = unpack('g', pack('g', $importo * $tasso))[1];
    return round($singola, 4, PHP_ROUND_HALF_EVEN);
}

/** An amount with VAT added where the shop shows it. */
function kvConIva(float $importo, float $aliquota, bool $compresa): float
{
    return $compresa ? $importo + kvProdotto($importo, $aliquota) : $importo;
}

/**
 * The prices of an article row. `aliquota` is a fraction, `fattore` the department's factor for the listino.
 * Result: listino (list price), prezzo (price asked), offerta (it is an offer), sconto (percent, 0 when none).
 */
function kvPrezzi(array $riga, int $listino, float $aliquota, float $fattore, bool $compresa): array
{
    $suffisso = $listino === 0 ? '' : (string) $listino;
    $pieno = (float) ($riga['implistino' . $suffisso] ?? 0);
    $chiesto = (float) ($riga['importo' . $suffisso] ?? 0);
    $offerta = $chiesto !== $pieno;
    if (!$offerta && $fattore !== 1.0) {
        $chiesto = kvProdotto($pieno, $fattore);
    }
    $prezzi = [
        'listino' => kvConIva($pieno, $aliquota, $compresa),
        'prezzo' => kvConIva($chiesto, $aliquota, $compresa),
        'offerta' => $offerta,
        'sconto' => 0.0,
    ];
    if ($prezzi['listino'] > $prezzi['prezzo'] && $prezzi['listino'] !== 0.0) {
        $prezzi['sconto'] = round((1 - $prezzi['prezzo'] / $prezzi['listino']) * 100, 2);
    }
    return $prezzi;
}

/** An amount in the shop's notation (0: 1.000,00; 1: 1,000.00), with two decimals or none. */
function kvFormato(float $importo, bool $decimali, int $notazione): string
{
    return $notazione === 1
        ? number_format($importo, $decimali ? 2 : 0, '.', ',')
        : number_format($importo, $decimali ? 2 : 0, ',', '.');
}

/** An amount for scripts: decimal point, no thousands separator, the decimals of the first currency. */
function kvNumeroScript(float $importo, bool $decimali): string
{
    return number_format($importo, $decimali ? 2 : 0, '.', '');
}

/** An amount with the label of the first currency. */
function kvTestoImporto(float $importo): string
{
    global $valuta, $visdec, $notazione;
    return $valuta[0] . kvFormato($importo, (bool) $visdec[0], (int) $notazione);
}

/** The same amount in the second currency, empty when the shop shows none. */
function kvTestoCambio(float $importo): string
{
    global $valuta, $visdec, $notazione, $cambio;
    if ($cambio <= 0) {
        return '';
    }
    return $valuta[1] . kvFormato($importo / $cambio, (bool) $visdec[1], (int) $notazione);
}

/** Loads a department: its factors and VAT, and which listini it is closed to. An unknown one is open and plain. */
function SetVariables(string $reparto): void
{
    global $inaccessibile, $scontorep, $ivarep;
    static $letti = [];
    if (!isset($letti[$reparto])) {
        $riga = kvRiga('SELECT * FROM categorie WHERE ID = ?', [$reparto]) ?? [];
        $fattori = [];
        $chiusi = [];
        for ($n = 0; $n < 10; $n++) {
            $suffisso = $n === 0 ? '' : (string) $n;
            $fattori[] = (float) ($riga['sconto' . $suffisso] ?? 1.0);
            $chiusi[] = (int) ($riga['inaccessibile' . $suffisso] ?? 0);
        }
        $letti[$reparto] = [$chiusi, $fattori, (float) ($riga['iva'] ?? 0)];
    }
    list($inaccessibile, $scontorep, $ivarep) = $letti[$reparto];
}

/** The prices of an article row for this visitor; SetVariables of its department has run. */
function kvPrezziVisitatore(array $riga): array
{
    global $listino, $ivacompresa, $scontorep, $ivarep;
    return kvPrezzi($riga, $listino, (float) $ivarep, (float) $scontorep[$listino], (bool) $ivacompresa);
}

/**
 * Whether the limits of registration hold for registered customers of the base listino too. The build tells it in the
 * order page alone, as a redirection to message 37.
 */
function kvLimiteListinoBase(): bool
{
    static $limite = null;
    if ($limite === null) {
        $limite = strpos((string) @file_get_contents("order.htm"), '&t=.37.') !== false;
    }
    return $limite;
}

/** Whether this visitor may not see prices. */
function kvPrezziNascosti(): bool
{
    global $cliente, $listino, $regpr;
    return $regpr && ($cliente === 0 || ($listino === 0 && kvLimiteListinoBase()));
}

/** One article by its number with all its columns, null when it isn't in the shop. Sets its department. */
function kvArticolo(int $id): ?array
{
    global $Lingua;
    static $letti = [];
    if (!array_key_exists($id, $letti)) {
        $tabella = 'articoli' . (preg_match('/^_l[2-4]$/', $Lingua) ? $Lingua : '');
        $letti[$id] = kvRiga("SELECT *, $tabella.pagina AS linkPage FROM $tabella INNER JOIN dettaglio USING (ID)"
            . " INNER JOIN ordinamento USING (ID) WHERE $tabella.ID = ?", [$id]);
    }
    if ($letti[$id] !== null) {
        SetVariables((string) $letti[$id]['catID']);
    }
    return $letti[$id];
}

/** The price text of an article of the showcase. */
function ArtPrice($id): string
{
    $riga = kvArticolo((int) $id);
    if ($riga === null) {
        return '';
    }
    return kvPrezziNascosti() ? kvHtml("<<4-prezzo_riservato>>") : kvTestoImporto(kvPrezziVisitatore($riga)['prezzo']);
}

/** The price of an article of the showcase in the second currency. */
function ArtCambio($id): string
{
    $riga = kvArticolo((int) $id);
    return $riga === null || kvPrezziNascosti() ? '' : kvTestoCambio(kvPrezziVisitatore($riga)['prezzo']);
}

}
