<?php
// ***1.0.7***
// Withdrawals from orders: which order, how many pieces of its lines can still be given back, the entry and its receipt.
// Nobody is refused for being late but when no buyer can be in time: the shop doesn't know when the goods arrived, the
// merchant does. Source: directive 2011/83/EU, articles 9 to 11a.
include_once "kvmail.php";
include_once "kvtables.php";

/** Days from the delivery, so from the order at the least, within which nobody is late. */
const KV_RECESSO_GIORNI = 14;
/** Months after which everybody is: a month to deliver, twelve more where the merchant didn't tell of the right, and the days. */
const KV_RECESSO_MESI = 14;

/** The columns of an order that a withdrawal needs. */
function kvColonneRecesso(): string
{
    return 'id, codice, email, stato, dati, creato < NOW() - INTERVAL ' . KV_RECESSO_GIORNI . ' DAY AS tardi,'
        . ' creato < NOW() - INTERVAL ' . KV_RECESSO_MESI . ' MONTH AS scaduto';
}

/** The order that has a code and was placed with an address; null when the two don't belong together. */
function kvOrdineRecesso(string $codice, string $email): ?array
{
    $ordine = kvRiga('SELECT ' . kvColonneRecesso() . ' FROM kv_ordini WHERE codice = ?', [$codice]);
    $email = strtolower($email);
    return $ordine !== null && $email !== '' && hash_equals(strtolower((string) $ordine['email']), $email) ? $ordine : null;
}

/** Why nothing of an order can be given back; empty when something can. */
function kvRecessoNegato(array $ordine): string
{
    if (in_array($ordine['stato'], ['annullato', 'rifiutato'], true)) {
        return "<<4-recesso_annullato>>";
    }
    if ($ordine['scaduto']) {
        return "<<4-recesso_scaduto>>";
    }
    return array_sum(array_column(kvRigheRecesso($ordine), 'resto')) === 0 ? "<<4-recesso_gia>>" : '';
}

/**
 * The lines of an order by their numbers: testo, scelte (UTF-8), quantita, resto (pieces not given back yet). An order of
 * which only the summary was kept has one line, itself.
 */
function kvRigheRecesso(array $ordine): array
{
    $righe = [];
    foreach (json_decode((string) $ordine['dati'], true)['righe'] ?? [] as $n => $riga) {
        if (isset($riga['testo'], $riga['quantita'])) {
            $pezzi = (int) $riga['quantita'];
            $righe[(int) $n] = ['testo' => (string) $riga['testo'], 'scelte' => (string) ($riga['scelte'] ?? ''),
                'quantita' => $pezzi, 'resto' => $pezzi];
        }
    }
    $righe = $righe === [] ? [['testo' => (string) $ordine['codice'], 'scelte' => '', 'quantita' => 1, 'resto' => 1]] : $righe;
    foreach (kvQuery("SELECT righe FROM kv_recessi WHERE ordine = ? AND stato <> 'respinto'", [(int) $ordine['id']]) ?? [] as $recesso) {
        foreach (json_decode((string) $recesso['righe'], true) ?? [] as $riga) {
            $n = (int) ($riga['n'] ?? -1);
            if (isset($righe[$n])) {
                $righe[$n]['resto'] = max(0, $righe[$n]['resto'] - (int) $riga['quantita']);
            }
        }
    }
    return $righe;
}

/** The lines of a choice (pieces by line number) with those pieces; null unless each can be given back. */
function kvRigheScelte(array $righe, array $scelta): ?array
{
    $scelte = [];
    foreach ($scelta as $n => $pezzi) {
        if (!isset($righe[$n]) || $pezzi < 1 || $pezzi > $righe[$n]['resto']) {
            return null;
        }
        $scelte[] = ['n' => $n, 'testo' => $righe[$n]['testo'], 'scelte' => $righe[$n]['scelte'], 'quantita' => $pezzi];
    }
    return $scelte === [] ? null : $scelte;
}

/** One line of a withdrawal as plain text in UTF-8. */
function kvTestoRigaRecesso(array $riga): string
{
    return $riga['quantita'] . ' x ' . $riga['testo'] . ($riga['scelte'] === '' ? '' : ' (' . $riga['scelte'] . ')');
}

/** The moment as the database's clock has it, which dates orders too, with its distance from world time. */
function kvOraRecesso(): string
{
    $ora = kvRiga("SELECT DATE_FORMAT(NOW(), '%d/%m/%Y %H:%i:%s') AS ora, TIMESTAMPDIFF(MINUTE, UTC_TIMESTAMP(), NOW()) AS scarto");
    $minuti = (int) ($ora['scarto'] ?? 0);
    return ($ora['ora'] ?? date('d/m/Y H:i:s')) . sprintf(' (UTC%s%d:%02d)', $minuti < 0 ? '-' : '+',
        intdiv(abs($minuti), 60), abs($minuti) % 60);
}

/** The receipt as plain text in UTF-8. */
function kvRicevutaRecesso(array $ordine, string $numero, array $righe): string
{
    return kvUtf8("<<4-recesso_ricevuta>>: ") . "$numero\r\n" . kvUtf8("<<4-recesso_ricevuto_il>>: ") . kvOraRecesso() . "\r\n"
        . kvUtf8("<<4-ordine_codice>>: ") . $ordine['codice'] . "\r\n\r\n" . kvUtf8("<<4-recesso_dichiarazione>>") . "\r\n- "
        . implode("\r\n- ", array_map('kvTestoRigaRecesso', $righe)) . "\r\n"
        . ($ordine['tardi'] ? "\r\n" . kvUtf8("<<4-recesso_tardi>>") . "\r\n" : '');
}

/**
 * Enters a withdrawal: its number and receipt. Null when the pieces can no longer be given back, because another
 * withdrawal took them or the order was cancelled meanwhile: of two at a time one waits for the other.
 */
function kvRegistraRecesso(int $id, array $scelta): ?array
{
    // The tables must stand before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_recessi WHERE id = 0');
    mysqli_begin_transaction(kvConnection());
    $ordine = kvRiga('SELECT ' . kvColonneRecesso() . ' FROM kv_ordini WHERE id = ? FOR UPDATE', [$id]);
    $righe = $ordine === null || kvRecessoNegato($ordine) !== '' ? null : kvRigheScelte(kvRigheRecesso($ordine), $scelta);
    if ($righe !== null) {
        $quanti = (int) kvRiga('SELECT COUNT(*) AS n FROM kv_recessi WHERE ordine = ?', [$id])['n'];
        $numero = $ordine['codice'] . '-R' . ($quanti + 1);
        $ricevuta = kvRicevutaRecesso($ordine, $numero, $righe);
        $esito = kvQuery('INSERT INTO kv_recessi (numero, ordine, creato, email, tardi, stato, lingua, righe, ricevuta)'
            . " VALUES (?, ?, NOW(), ?, ?, 'ricevuto', ?, ?, ?)", [$numero, $id, $ordine['email'], (int) $ordine['tardi'],
            "<<1-IDlingua>>", (string) json_encode($righe, JSON_INVALID_UTF8_SUBSTITUTE), $ricevuta]);
        if ($esito !== null && kvTouchOrder($id) && mysqli_commit(kvConnection())) {
            return ['numero' => $numero, 'ricevuta' => $ricevuta, 'email' => (string) $ordine['email']];
        }
    }
    mysqli_rollback(kvConnection());
    return null;
}

/** Sends the receipt to the buyer, at the address of the order, and to the merchant. */
function kvMailRecesso(array $recesso): void
{
    $negozio = kvMittente();
    $oggetto = $negozio['nome'] . ' - ' . kvUtf8("<<4-recesso_ricevuta>> ") . $recesso['numero'];
    kvMail($recesso['email'], $negozio['email'], $oggetto, $recesso['ricevuta'] . "\r\n" . $negozio['firma']);
    kvMail($negozio['email'], $negozio['email'], $oggetto, $recesso['ricevuta'], $recesso['email']);
}
