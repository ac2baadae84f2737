<?php
// Warnings of the stock: what runs short, by a number of pieces that the merchant sets, and what a release with keys by
// article took over from one that counted a value for all articles together.

/** The number of pieces from which down a thing runs short. */
function boSoglia(): int
{
    static $soglia = null;
    return $soglia = $soglia ?? kvLowStockLimit();
}

/** The condition of what runs short, of a row named d: still there, but few. */
function boCondizioneScarsi(): string
{
    return '(d.disponibile = 1 AND d.quantita BETWEEN 1 AND ' . boSoglia() . ')';
}

/** How many articles (A) and values (V) run short. */
function boVociScarse(): array
{
    $righe = kvQuery('SELECT tipo, COUNT(*) AS n FROM kv_disponibilita d WHERE ' . boCondizioneScarsi() . ' GROUP BY tipo');
    return array_map('intval', array_column($righe ?? [], 'n', 'tipo')) + ['A' => 0, 'V' => 0];
}

/** Takes the number of the form; a notice says what came of it. */
function boSalvaSoglia(): void
{
    $soglia = kvCampo($_POST, 'soglia', 6);
    $giusta = preg_match('/^\d{1,5}$/D', $soglia) === 1;
    if ($giusta) {
        kvStoreValue('soglia_scorte', (string) (int) $soglia);
    }
    boAvvisa($giusta ? 'Soglia salvata.' : "La soglia dev'essere un numero intero.", !$giusta);
}

/** The form of that number, and the warning of shared counts until the merchant has seen to them. */
function boModuloSoglia(string $indirizzo): void
{
    $azione = '<form class="filtro" method="post" accept-charset="utf-8" action="' . kvHtml($indirizzo) . '">'
        . boCampoGettone();
    if (kvStoredValue('scorte_condivise') !== '') {
        echo '<p class="avviso errore">Quantità riprese da una versione che contava insieme le opzioni di più articoli: ',
            kvHtmlUtf8(kvStoredValue('scorte_condivise')), '. Ogni articolo ha ora la propria: controllarle.</p>', $azione,
            '<p><button type="submit" name="controllate" value="1">Ho controllato</button></p></form>';
    }
    echo $azione, boCampo('Avvisare da quanti pezzi in giù', 'soglia', (string) boSoglia(),
        'inputmode="numeric" pattern="[0-9]{1,5}" maxlength="5"'),
        '<p><button type="submit" class="piano">Imposta</button></p></form>';
}
