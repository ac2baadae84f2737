<?php
// Sales of the last days as a small chart: bars drawn here, without a library, and the same numbers as a table.

/** Days of the chart. */
const BO_GIORNI = 30;
/** The chart's size, and that of the strip of a day, in units of its view. */
const BO_ALTEZZA = 120;
const BO_PASSO = 20;

/** Sum and number of the good orders of each of the last days, oldest first, in the currency of most of them. */
function boVenditeGiorni(): array
{
    $dove = 'creato >= CURDATE() - INTERVAL ' . (BO_GIORNI - 1) . " DAY AND stato NOT IN ('annullato', 'rifiutato')";
    $valuta = (string) (kvRiga("SELECT valuta FROM kv_ordini WHERE $dove GROUP BY valuta ORDER BY COUNT(*) DESC, valuta"
        . ' LIMIT 1')['valuta'] ?? '');
    $righe = kvQuery("SELECT DATE(creato) AS giorno, COUNT(*) AS n, SUM(totale) AS somma FROM kv_ordini WHERE $dove"
        . ' AND valuta = ? GROUP BY DATE(creato)', [$valuta]) ?? [];
    $vendite = array_column($righe, null, 'giorno');
    $oggi = new DateTimeImmutable((string) (kvRiga('SELECT CURDATE() AS oggi')['oggi'] ?? 'today'));
    $giorni = [];
    for ($n = BO_GIORNI - 1; $n >= 0; $n--) {
        $giorno = $oggi->modify("-$n days")->format('Y-m-d');
        $giorni[$giorno] = $vendite[$giorno] ?? ['giorno' => $giorno, 'n' => 0, 'somma' => 0];
    }
    return [$valuta, $giorni];
}

/** The bars; a day without sales has none. */
function boBarre(array $giorni, string $valuta, float $massimo): string
{
    $barre = '';
    foreach (array_values($giorni) as $n => $giorno) {
        $altezza = round(BO_ALTEZZA * (float) $giorno['somma'] / $massimo, 1);
        $barre .= $giorno['n'] == 0 ? '' : '<rect x="' . ($n * BO_PASSO + 3) . '" y="' . (BO_ALTEZZA - $altezza)
            . '" width="' . (BO_PASSO - 6) . '" height="' . max(1, $altezza) . '"><title>'
            . boData($giorno['giorno']) . ': ' . boImporto($giorno['somma'], $valuta) . '</title></rect>';
    }
    return $barre;
}

/** The chart as HTML, with its numbers in a table that opens; a sentence where nothing was sold. */
function boGraficoVendite(): string
{
    list($valuta, $giorni) = boVenditeGiorni();
    $venduti = array_filter($giorni, fn($giorno) => $giorno['n'] > 0);
    $titolo = '<h2 id="vendite">Vendite degli ultimi ' . BO_GIORNI . ' giorni</h2>';
    if ($venduti === []) {
        return $titolo . '<p>Nessuna vendita.</p>';
    }
    $somma = array_sum(array_column($venduti, 'somma'));
    $migliore = array_reduce($venduti, fn($una, $altra) => $una === null || $altra['somma'] > $una['somma'] ? $altra : $una);
    $quanti = array_sum(array_column($venduti, 'n'));
    $detto = $quanti . ($quanti === 1 ? ' ordine per ' : ' ordini per ') . boImporto($somma, $valuta)
        . ', il giorno migliore ' . boData($migliore['giorno']) . ' con ' . boImporto($migliore['somma'], $valuta);
    ob_start();
    boTabella(['Giorno', '#Ordini', '#Totale'], array_map(fn($giorno) => [boData($giorno['giorno']),
        (string) (int) $giorno['n'], boImporto($giorno['somma'], $valuta)], array_reverse($venduti)), 'Vendite per giorno');
    $tabella = (string) ob_get_clean();
    return $titolo . '<div class="grafico"><figure><svg viewBox="0 -4 ' . BO_GIORNI * BO_PASSO . ' ' . (BO_ALTEZZA + 8)
        . '" role="img" aria-labelledby="vendite vendite-dette">'
        . boBarre($giorni, $valuta, max(0.01, (float) $migliore['somma']))
        . '<path d="M0 ' . BO_ALTEZZA . 'H' . BO_GIORNI * BO_PASSO . '"/></svg><figcaption id="vendite-dette">' . $detto
        . '</figcaption></figure><details><summary>I numeri giorno per giorno</summary>' . $tabella . '</details></div>';
}
