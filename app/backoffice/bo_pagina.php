<?php
// How pages of the back office look: frame, notices, tables that become cards on a phone, the pager, the forms of
// dates and amounts. Texts of customers pass through kvHtmlUtf8, all others through kvHtml.

/** The pages of the menu. */
const BO_MENU = ['pannello.php' => 'Riepilogo', 'ordini.php' => 'Ordini', 'recessi.php' => 'Recessi', 'clienti.php' => 'Clienti',
    'disponibilita.php' => 'Disponibilità', 'testi.php' => 'Messaggi', 'richieste.php' => 'Password'];

/** The states of an order. */
const BO_STATES = ['nuovo', 'da verificare', 'importo diverso', 'pagato', 'rifiutato', 'spedito', 'annullato'];

/** The head of a page. */
function boPageHead(string $title): string
{
    return '<!DOCTYPE html><html lang="it"><head>'
        . '<meta name="viewport" content="width=device-width, initial-scale=1"><meta name="robots" content="noindex">'
        . '<title>' . kvHtml($title . ' - ' . boSettings()['negozio']) . '</title>'
        . '<link rel="icon" href="bo.svg" type="image/svg+xml"><link rel="stylesheet" href="bo.css">'
        . '<link rel="stylesheet" href="bo_contenuto.css"><script src="bo.js" defer></script></head><body>';
}

/** A page with a notice alone. */
function boClosedPage(string $text): string
{
    return boPageHead('BackOffice') . '<main class="stretta"><h1>BackOffice</h1><p class="avviso errore" role="alert">'
        . kvHtml($text) . '</p><p><a href="index.php">Torna al BackOffice</a></p></main></body></html>';
}

/** The top of a page, with the menu and the notices that wait; `entry` is the page of the menu it belongs to. */
function boPageStart(string $title, string $entry = ''): void
{
    echo boPageHead($title), '<a class="salto" href="#contenuto">Vai al contenuto</a><header class="testata">',
        '<p class="negozio"><strong>', kvHtml(boSettings()['negozio']), '</strong> <span>BackOffice</span></p>';
    if ($entry !== '') {
        echo '<nav aria-label="Menu"><ul>';
        foreach (BO_MENU as $page => $name) {
            $current = $page === $entry ? ' aria-current="page"' : '';
            echo '<li><a href="', $page, '"', $current, '>', $name, '</a></li>';
        }
        echo '</ul></nav><form class="uscita" method="post" accept-charset="utf-8" action="esci.php">', boTokenField(),
            '<button type="submit" class="piano">Esci</button></form>';
    }
    echo '</header><main id="contenuto"', $entry === '' ? ' class="stretta"' : '', '><h1>', kvHtml($title), '</h1>';
    foreach ($_SESSION['avvisi'] ?? [] as list($text, $error)) {
        echo '<p class="avviso', $error ? ' errore" role="alert">' : '" role="status">', kvHtml($text), '</p>';
    }
    unset($_SESSION['avvisi']);
}

function boPageEnd(): void
{
    echo '</main></body></html>';
}

/** The hidden field of the session's token. */
function boTokenField(): string
{
    return '<input type="hidden" name="_charset_"><input type="hidden" name="gettone" value="' . boToken() . '">';
}

/**
 * A table. Each row is a list of cells as HTML, in the order of the headings; a heading that starts with "#" is one of
 * numbers. On a phone each row is a card, with the heading in front of each cell; bo.js says the roles once more, which a
 * changed display takes from the elements in some browsers.
 */
function boTable(array $titles, array $rows, string $name): void
{
    echo '<table><caption>', kvHtml($name), '</caption><thead><tr>';
    foreach ($titles as $title) {
        echo '<th scope="col"', $title[0] === '#' ? ' class="numero">' : '>',
            kvHtml(ltrim($title, '#')), '</th>';
    }
    echo '</tr></thead><tbody>';
    foreach ($rows as $row) {
        echo '<tr>';
        foreach (array_values($row) as $n => $cell) {
            echo '<td data-nome="', kvHtml(ltrim($titles[$n], '#')), '"',
                $titles[$n][0] === '#' ? ' class="numero">' : '>', $cell, '</td>';
        }
        echo '</tr>';
    }
    echo '</tbody></table>';
}

/** The address of a page with the parameters that aren't empty. */
function boAddress(string $page, array $parameters): string
{
    $filled = array_filter($parameters, fn($value) => (string) $value !== '');
    return $filled === [] ? $page : $page . '?' . http_build_query($filled);
}

/** The links to the pages of a list, none for a single page. */
function boPageLinks(string $address, array $parameters, int $page, int $pages): void
{
    if ($pages < 2) {
        return;
    }
    $link = fn(int $n, string $text, string $other = ''): string => '<a href="'
        . kvHtml(boAddress($address, ['p' => $n > 1 ? $n : ''] + $parameters)) . '"' . $other . '>' . $text
        . '</a>';
    echo '<nav class="pagine" aria-label="Pagine">';
    echo $page > 1 ? $link($page - 1, 'Precedente', ' rel="prev"') : '';
    for ($n = 1; $n <= $pages; $n++) {
        if ($n === 1 || $n === $pages || abs($n - $page) < 3) {
            echo $link($n, (string) $n, $n === $page ? ' aria-current="page"' : '');
        } elseif (abs($n - $page) === 3) {
            echo '<span>...</span>';
        }
    }
    echo $page < $pages ? $link($page + 1, 'Successiva', ' rel="next"') : '', '</nav>';
}

/** A date of the database as Italians write it, with the time of day unless left out. */
function boDateText(string $date, bool $now = true): string
{
    return preg_match('/^(\d{4})-(\d\d)-(\d\d)(?: (\d\d:\d\d))?/', $date, $p)
        ? "$p[3]/$p[2]/$p[1]" . ($now && isset($p[4]) ? ' ' . $p[4] : '') : $date;
}

/** A number of the database with a decimal comma. */
function boDecimalText($number, int $digits = 2): string
{
    return number_format((float) $number, $digits, ',', '.');
}

/** An amount with its currency (UTF-8), as HTML. */
function boAmountText($number, string $valuta): string
{
    return kvHtmlUtf8(trim($valuta)) . '&nbsp;' . boDecimalText($number);
}

/** The state of an order, as HTML. */
function boStateText(string $state): string
{
    return '<span class="stato stato-' . kvHtml(str_replace(' ', '-', $state)) . '">' . kvHtml($state) . '</span>';
}

/** The options of a select: value => text. */
function boOptions(array $choices, string $choice): string
{
    $html = '';
    foreach ($choices as $value => $text) {
        $html .= '<option value="' . kvHtml((string) $value) . '"' . ((string) $value === $choice ? ' selected' : '')
            . '>' . kvHtml($text) . '</option>';
    }
    return $html;
}

/** A labelled field; its value is UTF-8, `attributes` is HTML. */
function boField(string $label, string $name, string $value, string $attributes = ''): string
{
    return '<label>' . kvHtml($label) . ' <input name="' . $name . '" value="' . kvHtmlUtf8($value) . '" ' . $attributes
        . '></label>';
}
