<?php
// ***1.0.7***
// An order in the shop's first language, which the merchant reads whatever the customer's is, with what the back office
// has to know of the payment method. Kept with the order: the catalogue may be another one tomorrow.
include_once "kvpaesi.php";

/** Names and chosen values of an order's lines in the first language, UTF-8; empty lists where that is the visitor's. */
function kvRighePrima(array $righe): array
{
    if ("<<1-IDlingua>>" === '') {
        return [];
    }
    $numeri = implode(',', array_map('intval', array_column($righe, 'id')));
    $trovati = kvQuery('SELECT ID, plain_titolo, plain_sottotitolo FROM articoli WHERE ID IN (' . $numeri . ')') ?? [];
    $titoli = array_column($trovati, null, 'ID');
    $prime = [];
    foreach ($righe as $n => $riga) {
        $titolo = $titoli[$riga['id']] ?? null;
        $nome = $titolo === null ? $riga['testo'] : kvArticleName($titolo + ['codice' => $riga['codice']]);
        $prime[$n] = ['testo_prima' => kvUtf8($nome), 'scelte_prima' => kvUtf8(kvSceltePrima($riga))];
    }
    return $prime;
}

/** The chosen values of a line in the first language. */
function kvSceltePrima(array $riga): string
{
    $articolo = kvArticoli([$riga['id']])[$riga['id']] ?? null;
    $scelte = $articolo === null ? null : kvChoices($articolo, $riga['chiavi'], (int) $GLOBALS['listino']);
    return implode(', ', array_map(fn($valore) => kvPlainText($valore['prima']), $scelte ?? []));
}

/** The number of the payment method that the form chose, counted from 1. */
function kvNumeroMetodo(): int
{
    return (int) kvCampo($_POST, kvCampo($_POST, 'Metodo', 2) === '' ? 'Pagamento' : 'Metodo', 2);
}

/** The name of the chosen payment method in the first language, UTF-8; `tradotto` where that is not known. */
function kvMetodoPrima(string $tradotto): string
{
    // Put together, for the build gives names of pages in a text the suffix of the language.
    $metodi = kvVociSelect((string) include 'kvmetodi' . '.php');
    $nome = $metodi[kvNumeroMetodo() - 1]['nome'] ?? null;
    return $nome === null ? $tradotto : kvUtf8($nome);
}

/**
 * Whether a payment method tells the shop by itself that money came: its page leads to a module's own script, or names
 * the address of a notice. All others prove nothing: the merchant compares by hand.
 */
function kvMetodoProva(int $metodo): bool
{
    $pagina = (string) @file_get_contents('thankyou' . $metodo . '<<1-IDlingua>>.php');
    return preg_match('/kvFormModulo\(|\[\'notifica\'\]/', $pagina) === 1;
}

/** What is kept of an order for the back office: `righe` for each of its lines, `ordine` for the whole. */
function kvPrimaLingua(array $righe): array
{
    return ['righe' => kvRighePrima($righe), 'ordine' => ['lingua' => "<<4-codice_lingua>>",
        'prova' => kvMetodoProva(kvNumeroMetodo())]];
}
