<?php
// How pages of the back office look: frame, notices, tables that become cards on a phone, the pager, the forms of
// dates and amounts. Texts of customers pass through kvHtmlUtf8, all others through kvHtml.

/** The pages of the menu. */
const BO_MENU = ['pannello.php' => 'Riepilogo', 'ordini.php' => 'Ordini', 'recessi.php' => 'Recessi', 'clienti.php' => 'Clienti',
    'disponibilita.php' => 'Disponibilità', 'testi.php' => 'Messaggi', 'richieste.php' => 'Password'];

/** The states of an order. */
const BO_STATI = ['nuovo', 'da verificare', 'importo diverso', 'pagato', 'rifiutato', 'spedito', 'annullato'];

/** The head of a page. */
function boTesta(string $titolo): string
{
    return '<!DOCTYPE html><html lang="it"><head>'
        . '<meta name="viewport" content="width=device-width, initial-scale=1"><meta name="robots" content="noindex">'
        . '<title>' . kvHtml($titolo . ' - ' . boImpostazioni()['negozio']) . '</title>'
        . '<link rel="icon" href="bo.svg" type="image/svg+xml"><link rel="stylesheet" href="bo.css">'
        . '<link rel="stylesheet" href="bo_contenuto.css"><script src="bo.js" defer></script></head><body>';
}

/** A page with a notice alone. */
function boPaginaChiusa(string $testo): string
{
    return boTesta('BackOffice') . '<main class="stretta"><h1>BackOffice</h1><p class="avviso errore" role="alert">'
        . kvHtml($testo) . '</p><p><a href="index.php">Torna al BackOffice</a></p></main></body></html>';
}

/** The top of a page, with the menu and the notices that wait; `voce` is the page of the menu it belongs to. */
function boInizio(string $titolo, string $voce = ''): void
{
    echo boTesta($titolo), '<a class="salto" href="#contenuto">Vai al contenuto</a><header class="testata">',
        '<p class="negozio"><strong>', kvHtml(boImpostazioni()['negozio']), '</strong> <span>BackOffice</span></p>';
    if ($voce !== '') {
        echo '<nav aria-label="Menu"><ul>';
        foreach (BO_MENU as $pagina => $nome) {
            $questa = $pagina === $voce ? ' aria-current="page"' : '';
            echo '<li><a href="', $pagina, '"', $questa, '>', $nome, '</a></li>';
        }
        echo '</ul></nav><form class="uscita" method="post" accept-charset="utf-8" action="esci.php">', boCampoGettone(),
            '<button type="submit" class="piano">Esci</button></form>';
    }
    echo '</header><main id="contenuto"', $voce === '' ? ' class="stretta"' : '', '><h1>', kvHtml($titolo), '</h1>';
    foreach ($_SESSION['avvisi'] ?? [] as list($testo, $errore)) {
        echo '<p class="avviso', $errore ? ' errore" role="alert">' : '" role="status">', kvHtml($testo), '</p>';
    }
    unset($_SESSION['avvisi']);
}

function boFine(): void
{
    echo '</main></body></html>';
}

/** The hidden field of the session's token. */
function boCampoGettone(): string
{
    return '<input type="hidden" name="_charset_"><input type="hidden" name="gettone" value="' . boGettone() . '">';
}

/**
 * A table. Each row is a list of cells as HTML, in the order of the headings; a heading that starts with "#" is one of
 * numbers. On a phone each row is a card, with the heading in front of each cell; bo.js says the roles once more, which a
 * changed display takes from the elements in some browsers.
 */
function boTabella(array $titoli, array $righe, string $nome): void
{
    echo '<table><caption>', kvHtml($nome), '</caption><thead><tr>';
    foreach ($titoli as $titolo) {
        echo '<th scope="col"', $titolo[0] === '#' ? ' class="numero">' : '>',
            kvHtml(ltrim($titolo, '#')), '</th>';
    }
    echo '</tr></thead><tbody>';
    foreach ($righe as $riga) {
        echo '<tr>';
        foreach (array_values($riga) as $n => $cella) {
            echo '<td data-nome="', kvHtml(ltrim($titoli[$n], '#')), '"',
                $titoli[$n][0] === '#' ? ' class="numero">' : '>', $cella, '</td>';
        }
        echo '</tr>';
    }
    echo '</tbody></table>';
}

/** The address of a page with the parameters that aren't empty. */
function boIndirizzo(string $pagina, array $parametri): string
{
    $pieni = array_filter($parametri, fn($valore) => (string) $valore !== '');
    return $pieni === [] ? $pagina : $pagina . '?' . http_build_query($pieni);
}

/** The links to the pages of a list, none for a single page. */
function boPagine(string $indirizzo, array $parametri, int $pagina, int $pagine): void
{
    if ($pagine < 2) {
        return;
    }
    $legame = fn(int $n, string $testo, string $altro = ''): string => '<a href="'
        . kvHtml(boIndirizzo($indirizzo, ['p' => $n > 1 ? $n : ''] + $parametri)) . '"' . $altro . '>' . $testo
        . '</a>';
    echo '<nav class="pagine" aria-label="Pagine">';
    echo $pagina > 1 ? $legame($pagina - 1, 'Precedente', ' rel="prev"') : '';
    for ($n = 1; $n <= $pagine; $n++) {
        if ($n === 1 || $n === $pagine || abs($n - $pagina) < 3) {
            echo $legame($n, (string) $n, $n === $pagina ? ' aria-current="page"' : '');
        } elseif (abs($n - $pagina) === 3) {
            echo '<span>...</span>';
        }
    }
    echo $pagina < $pagine ? $legame($pagina + 1, 'Successiva', ' rel="next"') : '', '</nav>';
}

/** A date of the database as Italians write it, with the time of day unless left out. */
function boData(string $data, bool $ora = true): string
{
    return preg_match('/^(\d{4})-(\d\d)-(\d\d)(?: (\d\d:\d\d))?/', $data, $p)
        ? "$p[3]/$p[2]/$p[1]" . ($ora && isset($p[4]) ? ' ' . $p[4] : '') : $data;
}

/** A number of the database with a decimal comma. */
function boDecimale($numero, int $cifre = 2): string
{
    return number_format((float) $numero, $cifre, ',', '.');
}

/** An amount with its currency (UTF-8), as HTML. */
function boImporto($numero, string $valuta): string
{
    return kvHtmlUtf8(trim($valuta)) . '&nbsp;' . boDecimale($numero);
}

/** The state of an order, as HTML. */
function boStato(string $stato): string
{
    return '<span class="stato stato-' . kvHtml(str_replace(' ', '-', $stato)) . '">' . kvHtml($stato) . '</span>';
}

/** The options of a select: value => text. */
function boScelte(array $scelte, string $scelta): string
{
    $html = '';
    foreach ($scelte as $valore => $testo) {
        $html .= '<option value="' . kvHtml((string) $valore) . '"' . ((string) $valore === $scelta ? ' selected' : '')
            . '>' . kvHtml($testo) . '</option>';
    }
    return $html;
}

/** A labelled field; its value is UTF-8, `attributi` is HTML. */
function boCampo(string $etichetta, string $nome, string $valore, string $attributi = ''): string
{
    return '<label>' . kvHtml($etichetta) . ' <input name="' . $nome . '" value="' . kvHtmlUtf8($valore) . '" ' . $attributi
        . '></label>';
}
