<?php
// ***1.0.7***
// Prices of an article for the visitor's listino, in whole numbers throughout.
//
// An amount of the database is a count of ten-thousandths. Its way to the price asked is the one of the build: the
// offer price as it stands, else the list price by the department's factor (which holds the shop's discount); then VAT
// where prices include it. A product with a rate passes through single precision, as in the build.
// What is shown and charged is a count of the smallest unit shown, hundredths or whole units by the shop's decimals,
// rounded once, half away from zero. From there on (cart, order, mails) everything counts in that unit: see
// kvtotals.php.

/** An amount of the database, as "12.5000", in ten-thousandths. */
function kvDecimillesimi($importo): int
{
    return (int) round((float) $importo * 10000);
}

/** Ten-thousandths by a rate, like the build's: double, then single precision, then ties to the even number. */
function kvProdotto(int $importo, float $tasso): int
{
    $singola = unpack('g', pack('g', $importo / 10000 * $tasso))[1];
    // Exact: 24 bits of a single times 14 of the factor.
    $esatto = $singola * 10000.0;
    $intero = (int) floor($esatto);
    $resto = $esatto - floor($esatto);
    return $resto > 0.5 || ($resto === 0.5 && $intero % 2 !== 0) ? $intero + 1 : $intero;
}

/** Ten-thousandths with VAT added where the shop shows it. */
function kvConIva(int $importo, float $aliquota, bool $compresa): int
{
    return $compresa ? $importo + kvProdotto($importo, $aliquota) : $importo;
}

/** How many smallest units make one: 100 with decimals shown, else 1. */
function kvScala(): int
{
    return $GLOBALS['visdec'][0] ? 100 : 1;
}

/** Ten-thousandths in smallest units, a half away from zero. */
function kvMinimi(int $importo, int $scala): int
{
    $unita = intdiv(10000, $scala);
    $valore = intdiv(abs($importo) * 2 + $unita, $unita * 2);
    return $importo < 0 ? -$valore : $valore;
}

/**
 * The prices of an article row. `aliquota` is a fraction, `fattore` the department's factor for the listino. An offer is
 * another price than the list price, or the same one where bit n of `offerte` says so of listino n.
 * Result: listino (list price) and prezzo (price asked), both in ten-thousandths, offerta (it is an offer), ridotto
 * (another price than the list price is asked), sconto (percent, 0 when none).
 */
function kvPrezzi(array $riga, int $listino, float $aliquota, float $fattore, bool $compresa): array
{
    $suffisso = $listino === 0 ? '' : (string) $listino;
    $pieno = kvDecimillesimi($riga['implistino' . $suffisso] ?? 0);
    $chiesto = kvDecimillesimi($riga['importo' . $suffisso] ?? 0);
    $pari = ((int) ($riga['offerte'] ?? 0) >> $listino & 1) === 1;
    $prezzi = ['listino' => kvConIva($pieno, $aliquota, $compresa), 'offerta' => $chiesto !== $pieno || $pari, 'sconto' => 0.0];
    if ($prezzi['offerta']) {
        $prezzi['prezzo'] = kvConIva($chiesto, $aliquota, $compresa);
        if ($prezzi['listino'] > $prezzi['prezzo'] && $prezzi['listino'] !== 0) {
            $prezzi['sconto'] = round((1 - $prezzi['prezzo'] / $prezzi['listino']) * 100, 2);
        }
    } elseif ($fattore !== 1.0) {
        $prezzi['prezzo'] = kvConIva(kvProdotto($pieno, $fattore), $aliquota, $compresa);
        $prezzi['sconto'] = max(0.0, round(100 - 100 * $fattore, 2));
    } else {
        $prezzi['prezzo'] = $prezzi['listino'];
    }
    $prezzi['ridotto'] = $prezzi['offerta'] || $fattore !== 1.0;
    return $prezzi;
}

/** The notation of this page: the merchant's in the first language, in others that of their readers where it is known. */
function kvNotazione(int $propria): int
{
    return "<<1-IDlingua>>" === '' ? $propria : (['it' => 0, 'de' => 0, 'en' => 1, 'fr' => 2]["<<4-codice_lingua>>"] ?? $propria);
}

/** Smallest units in a notation (0: 1.000,00; 1: 1,000.00; 2: 1 000,00, with a space that keeps the line together). */
function kvFormato(int $minimi, int $scala, int $notazione): string
{
    list($decimale, $migliaia) = [[',', '.'], ['.', ','], [',', "\xA0"]][$notazione] ?? [',', '.'];
    return number_format($minimi / $scala, $scala === 100 ? 2 : 0, $decimale, $migliaia);
}

/** Smallest units for scripts: decimal point, no thousands separator. */
function kvNumeroScript(int $minimi, int $scala): string
{
    return number_format($minimi / $scala, $scala === 100 ? 2 : 0, '.', '');
}

/** Smallest units with the label of the first currency. */
function kvTestoMinimi(int $minimi): string
{
    return $GLOBALS['valuta'][0] . kvFormato($minimi, kvScala(), (int) $GLOBALS['notazione']);
}

/** Ten-thousandths as they are shown. */
function kvTestoImporto(int $importo): string
{
    return kvTestoMinimi(kvMinimi($importo, kvScala()));
}

/** An amount (in units) in the second currency, empty when the shop shows none. Fifteen digits of it count. */
function kvTestoCambio(float $importo): string
{
    global $valuta, $visdec, $notazione, $cambio;
    if ($cambio <= 0) {
        return '';
    }
    $scala = $visdec[1] ? 100 : 1;
    $valore = (float) sprintf('%.14e', $importo / $cambio * $scala);
    $minimi = (int) floor(abs($valore) + 0.5);
    return $valuta[1] . kvFormato($valore < 0 ? -$minimi : $minimi, $scala, (int) $notazione);
}

/** What is read of a department. A FLOAT comes with six digits unless it is made a DOUBLE; the factor needs all of its own. */
const KV_COLONNE_REPARTI = 'ID, iva + 0e0 AS iva, sconto + 0e0 AS sconto, inaccessibile'
    . ', sconto1 + 0e0 AS sconto1, inaccessibile1, sconto2 + 0e0 AS sconto2, inaccessibile2'
    . ', sconto3 + 0e0 AS sconto3, inaccessibile3, sconto4 + 0e0 AS sconto4, inaccessibile4'
    . ', sconto5 + 0e0 AS sconto5, inaccessibile5, sconto6 + 0e0 AS sconto6, inaccessibile6'
    . ', sconto7 + 0e0 AS sconto7, inaccessibile7, sconto8 + 0e0 AS sconto8, inaccessibile8'
    . ', sconto9 + 0e0 AS sconto9, inaccessibile9';

/**
 * Departments as SetVariables keeps them, by their keys: [closed by listino, factor by listino, VAT]. One query at most;
 * an unknown department is open and plain.
 */
function kvLeggiReparti(array $codici): array
{
    static $letti = [];
    $mancanti = array_diff($codici, array_keys($letti));
    if ($mancanti === []) {
        return $letti;
    }
    $righe = array_fill_keys($mancanti, []);
    // That of the page itself has come along with the state of the load.
    $proprio = $GLOBALS['kvPageDepartment'] ?? [];
    if ($mancanti === [$proprio['ID'] ?? null]) {
        $righe = [$proprio['ID'] => $proprio];
    } else {
        $elenco = implode("','", array_map('mysql_real_escape_string', $mancanti));
        $esito = mysql_query('SELECT ' . KV_COLONNE_REPARTI . " FROM categorie WHERE ID IN ('$elenco')");
        while ($riga = mysql_fetch_assoc($esito)) {
            $righe[$riga['ID']] = $riga;
        }
    }
    foreach ($righe as $codice => $riga) {
        $fattori = [];
        $chiusi = [];
        foreach (['', 1, 2, 3, 4, 5, 6, 7, 8, 9] as $suffisso) {
            $fattori[] = (float) ($riga["sconto$suffisso"] ?? 1.0);
            $chiusi[] = (int) ($riga["inaccessibile$suffisso"] ?? 0);
        }
        $letti[$codice] = [$chiusi, $fattori, (float) ($riga['iva'] ?? 0)];
    }
    return $letti;
}

/** Loads a department: its factors and VAT, and which listini it is closed to. */
function SetVariables($reparto): void
{
    global $inaccessibile, $scontorep, $ivarep;
    $reparto = (string) $reparto;
    list($inaccessibile, $scontorep, $ivarep) = kvLeggiReparti([$reparto])[$reparto];
}

/** The prices of an article row for this visitor; SetVariables of its department has run. Kept for the last row. */
function kvPrezziVisitatore(array $riga): array
{
    static $ultima = null;
    static $regole = [];
    static $prezzi = [];
    global $listino, $ivacompresa, $scontorep, $ivarep;
    $attuali = [$listino, (float) $ivarep, (float) $scontorep[$listino], (bool) $ivacompresa];
    if ($riga !== $ultima || $attuali !== $regole) {
        $prezzi = kvPrezzi($riga, ...$attuali);
        $ultima = $riga;
        $regole = $attuali;
    }
    return $prezzi;
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

/** Whether this visitor may not order: not registered where that is asked for, or of the base listino. */
function kvAcquistoNegato(): bool
{
    global $cliente, $listino, $regobbl;
    return kvPrezziNascosti() || ($cliente > 0 && $listino === 0 && $regobbl && kvLimiteListinoBase());
}

/**
 * The one article that the address asks for of a page (`prod`). Before it are those that the loop of the page counts and
 * doesn't show: of these the number alone. Null where none is asked for, and where there is none.
 */
function kvArticoloPagina(string $sql, string $tabella): ?KvRows
{
    $posto = (int) ($_GET['prod'] ?? 0);
    $forma = "/^SELECT \\*, $tabella\\.pagina as 'linkPage' FROM $tabella INNER JOIN dettaglio USING \\(ID\\) INNER JOIN ordinamento"
        . " USING \\(ID\\) WHERE ($tabella\\.pagina='\\w+' AND $tabella\\.sottopagina=\\d+)$/D";
    if ($posto === 0 || !preg_match($forma, $sql, $parti)) {
        return null;
    }
    // The build numbers the articles of a page from 1 on: their numbers are their positions.
    $righe = kvRigheDirette("SELECT STRAIGHT_JOIN $tabella.*, dettaglio.*, ordinamento.*, offerte, s.disponibile, s.quantita,"
        . " $tabella.pagina AS linkPage FROM $tabella INNER JOIN ordinamento ON ordinamento.ID = $tabella.ID INNER JOIN dettaglio ON"
        . " dettaglio.ID = $tabella.ID LEFT JOIN kv_offerte ON kv_offerte.ID = $tabella.ID LEFT JOIN kv_disponibilita s ON s.tipo ="
        . " 'A' AND s.chiave = CAST($tabella.ID AS CHAR CHARACTER SET latin1) WHERE $parti[1] AND contatore = '$posto'");
    $esauriti = count($righe) === 1 ? kvEsauritiArticolo($righe[0]) : null;
    return $esauriti === null ? null
        : new KvRows(array_merge(array_fill(0, $posto - 1, ['ID' => '0']), [$righe[0] + $esauriti]));
}

/** The rows of a statement without bound values; none when the server refused it. */
function kvRigheDirette(string $sql): array
{
    $esito = mysqli_query(kvConnection(), $sql);
    return $esito instanceof mysqli_result ? mysqli_fetch_all($esito, MYSQLI_ASSOC) : [];
}

/**
 * The keys of the sold out values of an article as kvPageArticles adds them to its row, asked for where it has variants;
 * null when their table isn't there.
 */
function kvEsauritiArticolo(array $riga): ?array
{
    if (kvVariantiRiga($riga, (int) $GLOBALS['listino']) === []) {
        return ['esauriti' => null];
    }
    $id = (int) $riga['ID'];
    $esito = mysqli_query(kvConnection(), "SELECT chiave FROM kv_disponibilita WHERE tipo = 'V' AND chiave LIKE '$id.%'"
        . ' AND (disponibile = 0 OR quantita <= 0)');
    return $esito instanceof mysqli_result
        ? ['esauriti' => implode("\n", array_column(mysqli_fetch_all($esito), 0)) ?: null] : null;
}

/** Articles by their numbers, with all their columns; those that aren't in the shop are missing. One query at most. */
function kvArticoli(array $numeri): array
{
    static $letti = [];
    $mancanti = array_values(array_diff(array_map('intval', $numeri), array_keys($letti)));
    if ($mancanti !== []) {
        $tabella = kvLanguageTable('articoli');
        $letti += array_fill_keys($mancanti, null);
        $sql = "SELECT STRAIGHT_JOIN *, $tabella.pagina AS linkPage FROM $tabella INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento"
            . " USING (ID) LEFT JOIN kv_offerte USING (ID) WHERE $tabella.ID IN (" . implode(',', $mancanti) . ')';
        // Numbers alone need no binding, which takes two more trips to the server.
        kvSetCharset('latin1');
        $esito = mysqli_query(kvConnection(), $sql);
        $righe = $esito instanceof mysqli_result ? mysqli_fetch_all($esito, MYSQLI_ASSOC) : kvQuery($sql);
        foreach ($righe ?? [] as $riga) {
            $letti[(int) $riga['ID']] = $riga;
        }
    }
    return array_filter(array_intersect_key($letti, array_flip(array_map('intval', $numeri))));
}

/** The numbers of the articles that this page's showcase asks for one by one, so that they are read at once. */
function kvNumeriVetrina(): array
{
    static $numeri = null;
    if ($numeri === null) {
        preg_match_all('/\b(?:ArtPrice|ArtCambio|VetOfferta)\((\d+)\)/',
            (string) @file_get_contents((string) ($_SERVER['SCRIPT_FILENAME'] ?? '')), $trovati);
        $numeri = array_map('intval', array_unique($trovati[1]));
    }
    return $numeri;
}

/** One article by its number, null when it isn't in the shop. Sets its department. */
function kvArticolo(int $id): ?array
{
    $articoli = kvArticoli(array_merge([$id], kvNumeriVetrina()));
    kvLeggiReparti(array_map('strval', array_column($articoli, 'catID')));
    $riga = $articoli[$id] ?? null;
    if ($riga !== null) {
        SetVariables($riga['catID']);
    }
    return $riga;
}

/** The price text of an article of the showcase. */
function ArtPrice($id): string
{
    $riga = kvArticolo((int) $id);
    if ($riga === null) {
        return '';
    }
    // A showcase whose cells call VetOfferta has the lowest price in its mark.
    return kvPrezziNascosti() ? kvHtml("<<4-prezzo_riservato>>")
        : kvTestoImporto(kvPrezziVisitatore($riga)['prezzo']) . kvNotePrezzo($riga, !function_exists('VetOfferta'));
}

/** The price of an article of the showcase in the second currency. */
function ArtCambio($id): string
{
    $riga = kvArticolo((int) $id);
    return $riga === null || kvPrezziNascosti() ? '' : kvTestoCambio(kvPrezziVisitatore($riga)['prezzo'] / 10000);
}
