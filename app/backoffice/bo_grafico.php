<?php
// Sales of the last days as a small chart: bars drawn here, without a library, and the same numbers as a table.

/** Days of the chart. */
const BO_DAYS = 30;
/** The chart's size, and that of the strip of a day, in units of its view. */
const BO_HEIGHT = 120;
const BO_STEP = 20;

/** Sum and number of the good orders of each of the last days, oldest first, in the currency of most of them. */
function boDailySales(): array
{
    $where = 'creato >= CURDATE() - INTERVAL ' . (BO_DAYS - 1) . " DAY AND stato NOT IN ('annullato', 'rifiutato')";
    $valuta = (string) (kvRiga("SELECT valuta FROM kv_ordini WHERE $where GROUP BY valuta ORDER BY COUNT(*) DESC, valuta"
        . ' LIMIT 1')['valuta'] ?? '');
    $rows = kvQuery("SELECT DATE(creato) AS giorno, COUNT(*) AS n, SUM(totale) AS somma FROM kv_ordini WHERE $where"
        . ' AND valuta = ? GROUP BY DATE(creato)', [$valuta]) ?? [];
    $sales = array_column($rows, null, 'giorno');
    $today = new DateTimeImmutable((string) (kvRiga('SELECT CURDATE() AS oggi')['oggi'] ?? 'today'));
    $days = [];
    for ($n = BO_DAYS - 1; $n >= 0; $n--) {
        $day = $today->modify("-$n days")->format('Y-m-d');
        $days[$day] = $sales[$day] ?? ['giorno' => $day, 'n' => 0, 'somma' => 0];
    }
    return [$valuta, $days];
}

/** The bars; a day without sales has none. */
function boBars(array $days, string $valuta, float $most): string
{
    $bars = '';
    foreach (array_values($days) as $n => $day) {
        $height = round(BO_HEIGHT * (float) $day['somma'] / $most, 1);
        $bars .= $day['n'] == 0 ? '' : '<rect x="' . ($n * BO_STEP + 3) . '" y="' . (BO_HEIGHT - $height)
            . '" width="' . (BO_STEP - 6) . '" height="' . max(1, $height) . '"><title>'
            . boDateText($day['giorno']) . ': ' . boAmountText($day['somma'], $valuta) . '</title></rect>';
    }
    return $bars;
}

/** The chart as HTML, with its numbers in a table that opens; a sentence where nothing was sold. */
function boSalesChart(): string
{
    list($valuta, $days) = boDailySales();
    $sold = array_filter($days, fn($day) => $day['n'] > 0);
    $title = '<h2 id="vendite">Vendite degli ultimi ' . BO_DAYS . ' giorni</h2>';
    if ($sold === []) {
        return $title . '<p>Nessuna vendita.</p>';
    }
    $sum = array_sum(array_column($sold, 'somma'));
    $best = array_reduce($sold, fn($one, $other) => $one === null || $other['somma'] > $one['somma'] ? $other : $one);
    $count = array_sum(array_column($sold, 'n'));
    $summary = $count . ($count === 1 ? ' ordine per ' : ' ordini per ') . boAmountText($sum, $valuta)
        . ', il giorno migliore ' . boDateText($best['giorno']) . ' con ' . boAmountText($best['somma'], $valuta);
    ob_start();
    boTable(['Giorno', '#Ordini', '#Totale'], array_map(fn($day) => [boDateText($day['giorno']),
        (string) (int) $day['n'], boAmountText($day['somma'], $valuta)], array_reverse($sold)), 'Vendite per giorno');
    $table = (string) ob_get_clean();
    return $title . '<div class="grafico"><figure><svg viewBox="0 -4 ' . BO_DAYS * BO_STEP . ' ' . (BO_HEIGHT + 8)
        . '" role="img" aria-labelledby="vendite vendite-dette">'
        . boBars($days, $valuta, max(0.01, (float) $best['somma']))
        . '<path d="M0 ' . BO_HEIGHT . 'H' . BO_DAYS * BO_STEP . '"/></svg><figcaption id="vendite-dette">' . $summary
        . '</figcaption></figure><details><summary>I numeri giorno per giorno</summary>' . $table . '</details></div>';
}
