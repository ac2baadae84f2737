<?php
// Withdrawals as their list and the page of an order share them.

/** The states of a withdrawal: as it came; what the merchant made of it. */
const BO_STATI_RECESSO = ['ricevuto', 'accolto', 'rimborsato', 'respinto'];

/** What is given back, as HTML. */
function boRigheRecesso(string $json): string
{
    $righe = json_decode($json, true);
    return implode('<br>', array_map(fn(array $riga): string => (int) $riga['quantita'] . ' &times; '
        . kvHtmlUtf8($riga['testo']) . ($riga['scelte'] === '' ? '' : '<small>' . kvHtmlUtf8($riga['scelte']) . '</small>'),
        is_array($righe) ? $righe : []));
}

/** The state of a withdrawal with the form that changes it, as HTML; `pagina` is where the form goes. */
function boStatoRecesso(array $recesso, string $pagina): string
{
    return '<form method="post" accept-charset="utf-8" action="' . kvHtml($pagina) . '">' . boCampoGettone()
        . '<input type="hidden" name="recesso" value="' . (int) $recesso['id'] . '"><select name="stato_recesso" aria-label="Stato di '
        . kvHtml($recesso['numero']) . '">' . boScelte(array_combine(BO_STATI_RECESSO, array_map('ucfirst', BO_STATI_RECESSO)),
            $recesso['stato']) . '</select> <button type="submit" class="piano" aria-label="Salva lo stato di '
        . kvHtml($recesso['numero']) . '">Salva</button></form>';
}

/** Withdrawals as a table; `pagina` is where their forms go. */
function boTabellaRecessi(array $recessi, string $pagina): void
{
    boTabella(['Numero', 'Ricevuto', 'Ordine', 'Articoli', 'Stato'], array_map(fn(array $riga): array => [
        kvHtml($riga['numero']), boData($riga['creato']) . ($riga['tardi'] ? '<small>Oltre 14 giorni dall\'ordine: verificare la'
            . ' consegna</small>' : ''),
        '<a href="' . kvHtml(boIndirizzo('ordine.php', ['codice' => $riga['codice']])) . '">' . kvHtml($riga['codice']) . '</a>'
            . '<small>' . kvHtmlUtf8($riga['nome']) . '</small>',
        boRigheRecesso($riga['righe']), boStatoRecesso($riga, $pagina)], $recessi), 'Recessi');
}

/** Takes the form of a state; goes back to the page. */
function boSalvaRecesso(string $pagina): void
{
    $stato = kvCampo($_POST, 'stato_recesso', 20);
    if (in_array($stato, BO_STATI_RECESSO, true)) {
        kvRequireTables();
        $numero = boNumero($_POST, 'recesso', 0, PHP_INT_MAX);
        kvQuery('UPDATE kv_recessi SET stato = ? WHERE id = ?', [$stato, $numero]);
        if (kvRigheToccate() === 1) {
            kvTouchOrder((int) (kvRiga('SELECT ordine FROM kv_recessi WHERE id = ?', [$numero])['ordine'] ?? 0));
            boAvvisa('Lo stato del recesso è ora: ' . $stato . '.');
        }
    }
    boVai($pagina);
}

/** The withdrawals of an order, with a heading; nothing without any. */
function boRecessiOrdine(array $ordine): void
{
    $recessi = kvQuery('SELECT id, numero, creato, tardi, stato, righe FROM kv_recessi WHERE ordine = ? ORDER BY id',
        [(int) $ordine['id']]) ?? [];
    if ($recessi !== []) {
        echo '<h2>Recessi</h2>';
        boTabellaRecessi(array_map(fn(array $riga): array => $riga + ['codice' => $ordine['codice'], 'nome' => ''], $recessi),
            'recessi.php');
    }
}
