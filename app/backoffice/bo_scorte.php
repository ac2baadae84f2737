<?php
// Warnings of the stock: what runs short, by a number of pieces that the merchant sets, and what a release with keys by
// article took over from one that counted a value for all articles together.

/** The number of pieces from which down a thing runs short. */
function boLowStockLimit(): int
{
    static $threshold = null;
    return $threshold = $threshold ?? kvLowStockLimit();
}

/** The condition of what runs short, of a row named d: still there, but few. */
function boLowStockCondition(): string
{
    return '(d.disponibile = 1 AND d.quantita BETWEEN 1 AND ' . boLowStockLimit() . ')';
}

/** How many articles (A) and values (V) run short. */
function boCountLowStock(): array
{
    $rows = kvQuery('SELECT tipo, COUNT(*) AS n FROM kv_disponibilita d WHERE ' . boLowStockCondition() . ' GROUP BY tipo');
    return array_map('intval', array_column($rows ?? [], 'n', 'tipo')) + ['A' => 0, 'V' => 0];
}

/** Takes the number of the form; a notice says what came of it. */
function boSaveLowStockLimit(): void
{
    $threshold = kvCampo($_POST, 'soglia', 6);
    $isRight = preg_match('/^\d{1,5}$/D', $threshold) === 1;
    if ($isRight) {
        kvStoreValue('soglia_scorte', (string) (int) $threshold);
    }
    boNotify($isRight ? 'Soglia salvata.' : "La soglia dev'essere un numero intero.", !$isRight);
}

/** The form of that number, and the warning of shared counts until the merchant has seen to them. */
function boLowStockForm(string $address): void
{
    $action = '<form class="filtro" method="post" accept-charset="utf-8" action="' . kvHtml($address) . '">'
        . boTokenField();
    if (kvStoredValue('scorte_condivise') !== '') {
        echo '<p class="avviso errore">Quantità riprese da una versione che contava insieme le opzioni di più articoli: ',
            kvHtmlUtf8(kvStoredValue('scorte_condivise')), '. Ogni articolo ha ora la propria: controllarle.</p>', $action,
            '<p><button type="submit" name="controllate" value="1">Ho controllato</button></p></form>';
    }
    echo $action, boField('Avvisare da quanti pezzi in giù', 'soglia', (string) boLowStockLimit(),
        'inputmode="numeric" pattern="[0-9]{1,5}" maxlength="5"'),
        '<p><button type="submit" class="piano">Imposta</button></p></form>';
}
