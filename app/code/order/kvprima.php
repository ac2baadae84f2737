<?php
// ***1.0.7***
// An order in the shop's first language, which the merchant reads whatever the customer's is, with what the back office
// has to know of the payment method. Kept with the order: the catalogue may be another one tomorrow.
include_once "kvpaesi.php";

/** Names and chosen values of an order's lines in the first language, UTF-8; empty lists where that is the visitor's. */
function kvFirstLanguageLines(array $lines): array
{
    if ("<<1-IDlingua>>" === '') {
        return [];
    }
    $numbers = implode(',', array_map('intval', array_column($lines, 'id')));
    $found = kvQuery('SELECT ID, plain_titolo, plain_sottotitolo FROM articoli WHERE ID IN (' . $numbers . ')') ?? [];
    $titles = array_column($found, null, 'ID');
    $first = [];
    foreach ($lines as $n => $line) {
        $title = $titles[$line['id']] ?? null;
        $name = $title === null ? $line['testo'] : kvArticleName($title + ['codice' => $line['codice']]);
        $first[$n] = ['testo_prima' => kvUtf8($name), 'scelte_prima' => kvUtf8(kvFirstLanguageChoices($line))];
    }
    return $first;
}

/** The chosen values of a line in the first language. */
function kvFirstLanguageChoices(array $line): string
{
    $article = kvArticles([$line['id']])[$line['id']] ?? null;
    $choices = $article === null ? null : kvChoices($article, $line['chiavi'], (int) $GLOBALS['listino']);
    return implode(', ', array_map(fn($value) => kvPlainText($value['first']), $choices ?? []));
}

/** The number of the payment method that the form chose, counted from 1. */
function kvMethodNumber(): int
{
    return (int) kvCampo($_POST, kvCampo($_POST, 'Metodo', 2) === '' ? 'Pagamento' : 'Metodo', 2);
}

/** The name of the chosen payment method in the first language, UTF-8; `translated` where that is not known. */
function kvFirstLanguageMethod(string $translated): string
{
    // Put together, for the build gives names of pages in a text the suffix of the language.
    $methods = kvSelectOptions((string) include 'kvmetodi' . '.php');
    $name = $methods[kvMethodNumber() - 1]['name'] ?? null;
    return $name === null ? $translated : kvUtf8($name);
}

/**
 * Whether a payment method tells the shop by itself that money came: its page leads to a module's own script, or names
 * the address of a notice. All others prove nothing: the merchant compares by hand.
 */
function kvDoesMethodConfirm(int $method): bool
{
    $page = (string) @file_get_contents('thankyou' . $method . '<<1-IDlingua>>.php');
    return preg_match('/kvFormModulo\(|\[\'notifica\'\]/', $page) === 1;
}

/** What is kept of an order for the back office: `righe` for each of its lines, `ordine` for the whole. */
function kvFirstLanguage(array $lines): array
{
    return ['righe' => kvFirstLanguageLines($lines), 'ordine' => ['lingua' => "<<4-codice_lingua>>",
        'prova' => kvDoesMethodConfirm(kvMethodNumber())]];
}
