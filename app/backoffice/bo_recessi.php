<?php
// Withdrawals as their list and the page of an order share them.

/** The states of a withdrawal: as it came; what the merchant made of it. */
const BO_WITHDRAWAL_STATES = ['ricevuto', 'accolto', 'rimborsato', 'respinto'];

/** What is given back, as HTML. */
function boWithdrawnLines(string $json): string
{
    $lines = json_decode($json, true);
    return implode('<br>', array_map(fn(array $line): string => (int) $line['quantita'] . ' &times; '
        . kvHtmlUtf8($line['testo']) . ($line['scelte'] === '' ? '' : '<small>' . kvHtmlUtf8($line['scelte']) . '</small>'),
        is_array($lines) ? $lines : []));
}

/** The state of a withdrawal with the form that changes it, as HTML; `page` is where the form goes. */
function boWithdrawalState(array $withdrawal, string $page): string
{
    return '<form method="post" accept-charset="utf-8" action="' . kvHtml($page) . '">' . boTokenField()
        . '<input type="hidden" name="recesso" value="' . (int) $withdrawal['id'] . '"><select name="stato_recesso" aria-label="Stato di '
        . kvHtml($withdrawal['numero']) . '">' . boOptions(array_combine(BO_WITHDRAWAL_STATES, array_map('ucfirst', BO_WITHDRAWAL_STATES)),
            $withdrawal['stato']) . '</select> <button type="submit" class="piano" aria-label="Salva lo stato di '
        . kvHtml($withdrawal['numero']) . '">Salva</button></form>';
}

/** Withdrawals as a table; `page` is where their forms go. */
function boWithdrawalTable(array $withdrawals, string $page): void
{
    boTable(['Numero', 'Ricevuto', 'Ordine', 'Articoli', 'Stato'], array_map(fn(array $line): array => [
        kvHtml($line['numero']), boDateText($line['creato']) . ($line['tardi'] ? '<small>Oltre 14 giorni dall\'ordine: verificare la'
            . ' consegna</small>' : ''),
        '<a href="' . kvHtml(boAddress('ordine.php', ['codice' => $line['codice']])) . '">' . kvHtml($line['codice']) . '</a>'
            . '<small>' . kvHtmlUtf8($line['nome']) . '</small>',
        boWithdrawnLines($line['righe']), boWithdrawalState($line, $page)], $withdrawals), 'Recessi');
}

/** Takes the form of a state; goes back to the page. */
function boSaveWithdrawal(string $page): void
{
    $state = kvCampo($_POST, 'stato_recesso', 20);
    if (in_array($state, BO_WITHDRAWAL_STATES, true)) {
        kvRequireTables();
        $number = boNumberWithin($_POST, 'recesso', 0, PHP_INT_MAX);
        kvQuery('UPDATE kv_recessi SET stato = ? WHERE id = ?', [$state, $number]);
        if (kvRigheToccate() === 1) {
            kvTouchOrder((int) (kvRiga('SELECT ordine FROM kv_recessi WHERE id = ?', [$number])['ordine'] ?? 0));
            boNotify('Lo stato del recesso è ora: ' . $state . '.');
        }
    }
    boGoTo($page);
}

/** The withdrawals of an order, with a heading; nothing without any. */
function boOrderWithdrawals(array $order): void
{
    $withdrawals = kvQuery('SELECT id, numero, creato, tardi, stato, righe FROM kv_recessi WHERE ordine = ? ORDER BY id',
        [(int) $order['id']]) ?? [];
    if ($withdrawals !== []) {
        echo '<h2>Recessi</h2>';
        boWithdrawalTable(array_map(fn(array $line): array => $line + ['codice' => $order['codice'], 'nome' => ''], $withdrawals),
            'recessi.php');
    }
}
