<?php
// ***1.0.7***
// Withdrawals from orders: which order, how many pieces of its lines can still be given back, the entry and its receipt.
// Nobody is refused for being late but when no buyer can be in time: the shop doesn't know when the goods arrived, the
// merchant does. Source: directive 2011/83/EU, articles 9 to 11a.
include_once "kvmail.php";
include_once "kvtables.php";

/** Days from the delivery, so from the order at the least, within which nobody is late. */
const KV_WITHDRAWAL_DAYS = 14;
/** Months after which everybody is: a month to deliver, twelve more where the merchant didn't tell of the right, and the days. */
const KV_WITHDRAWAL_MONTHS = 14;

/** The columns of an order that a withdrawal needs. */
function kvWithdrawalColumns(): string
{
    return 'id, codice, email, stato, dati, creato < NOW() - INTERVAL ' . KV_WITHDRAWAL_DAYS . ' DAY AS tardi,'
        . ' creato < NOW() - INTERVAL ' . KV_WITHDRAWAL_MONTHS . ' MONTH AS scaduto';
}

/** The order that has a code and was placed with an address; null when the two don't belong together. */
function kvWithdrawalOrder(string $code, string $email): ?array
{
    $order = kvRiga('SELECT ' . kvWithdrawalColumns() . ' FROM kv_ordini WHERE codice = ?', [$code]);
    $email = strtolower($email);
    return $order !== null && $email !== '' && hash_equals(strtolower((string) $order['email']), $email) ? $order : null;
}

/** Why nothing of an order can be given back; empty when something can. */
function kvWithdrawalDenial(array $order): string
{
    if (in_array($order['stato'], ['annullato', 'rifiutato'], true)) {
        return "<<4-recesso_annullato>>";
    }
    if ($order['scaduto']) {
        return "<<4-recesso_scaduto>>";
    }
    return array_sum(array_column(kvWithdrawalLines($order), 'rest')) === 0 ? "<<4-recesso_gia>>" : '';
}

/**
 * The lines of an order by their numbers: testo, scelte (UTF-8), quantita, rest (pieces not given back yet). An order of
 * which only the summary was kept has one line, itself.
 */
function kvWithdrawalLines(array $order): array
{
    $lines = [];
    foreach (json_decode((string) $order['dati'], true)['righe'] ?? [] as $n => $line) {
        if (isset($line['testo'], $line['quantita'])) {
            $pieces = (int) $line['quantita'];
            $lines[(int) $n] = ['testo' => (string) $line['testo'], 'scelte' => (string) ($line['scelte'] ?? ''),
                'quantita' => $pieces, 'rest' => $pieces];
        }
    }
    $lines = $lines === [] ? [['testo' => (string) $order['codice'], 'scelte' => '', 'quantita' => 1, 'rest' => 1]] : $lines;
    foreach (kvQuery("SELECT righe FROM kv_recessi WHERE ordine = ? AND stato <> 'respinto'", [(int) $order['id']]) ?? [] as $withdrawal) {
        foreach (json_decode((string) $withdrawal['righe'], true) ?? [] as $line) {
            $n = (int) ($line['n'] ?? -1);
            if (isset($lines[$n])) {
                $lines[$n]['rest'] = max(0, $lines[$n]['rest'] - (int) $line['quantita']);
            }
        }
    }
    return $lines;
}

/** The lines of a choice (pieces by line number) with those pieces; null unless each can be given back. */
function kvChosenLines(array $lines, array $choice): ?array
{
    $choices = [];
    foreach ($choice as $n => $pieces) {
        if (!isset($lines[$n]) || $pieces < 1 || $pieces > $lines[$n]['rest']) {
            return null;
        }
        $choices[] = ['n' => $n, 'testo' => $lines[$n]['testo'], 'scelte' => $lines[$n]['scelte'], 'quantita' => $pieces];
    }
    return $choices === [] ? null : $choices;
}

/** One line of a withdrawal as plain text in UTF-8. */
function kvWithdrawalLineText(array $line): string
{
    return $line['quantita'] . ' x ' . $line['testo'] . ($line['scelte'] === '' ? '' : ' (' . $line['scelte'] . ')');
}

/** The moment as the database's clock has it, which dates orders too, with its distance from world time. */
function kvWithdrawalTime(): string
{
    $now = kvRiga("SELECT DATE_FORMAT(NOW(), '%d/%m/%Y %H:%i:%s') AS ora, TIMESTAMPDIFF(MINUTE, UTC_TIMESTAMP(), NOW()) AS scarto");
    $minutes = (int) ($now['scarto'] ?? 0);
    return ($now['ora'] ?? date('d/m/Y H:i:s')) . sprintf(' (UTC%s%d:%02d)', $minutes < 0 ? '-' : '+',
        intdiv(abs($minutes), 60), abs($minutes) % 60);
}

/** The receipt as plain text in UTF-8. */
function kvWithdrawalReceipt(array $order, string $number, array $lines): string
{
    return kvUtf8("<<4-recesso_ricevuta>>: ") . "$number\r\n" . kvUtf8("<<4-recesso_ricevuto_il>>: ") . kvWithdrawalTime() . "\r\n"
        . kvUtf8("<<4-ordine_codice>>: ") . $order['codice'] . "\r\n\r\n" . kvUtf8("<<4-recesso_dichiarazione>>") . "\r\n- "
        . implode("\r\n- ", array_map('kvWithdrawalLineText', $lines)) . "\r\n"
        . ($order['tardi'] ? "\r\n" . kvUtf8("<<4-recesso_tardi>>") . "\r\n" : '');
}

/**
 * Enters a withdrawal: its number and receipt. Null when the pieces can no longer be given back, because another
 * withdrawal took them or the order was cancelled meanwhile: of two at a time one waits for the other.
 */
function kvEnterWithdrawal(int $id, array $choice): ?array
{
    // The tables must be there before the transaction: making one would end it.
    kvRequireTables();
    kvRiga('SELECT COUNT(*) FROM kv_recessi WHERE id = 0');
    mysqli_begin_transaction(kvConnection());
    $order = kvRiga('SELECT ' . kvWithdrawalColumns() . ' FROM kv_ordini WHERE id = ? FOR UPDATE', [$id]);
    $lines = $order === null || kvWithdrawalDenial($order) !== '' ? null : kvChosenLines(kvWithdrawalLines($order), $choice);
    if ($lines !== null) {
        $count = (int) kvRiga('SELECT COUNT(*) AS n FROM kv_recessi WHERE ordine = ?', [$id])['n'];
        $number = $order['codice'] . '-R' . ($count + 1);
        $receipt = kvWithdrawalReceipt($order, $number, $lines);
        $result = kvQuery('INSERT INTO kv_recessi (numero, ordine, creato, email, tardi, stato, lingua, righe, ricevuta)'
            . " VALUES (?, ?, NOW(), ?, ?, 'ricevuto', ?, ?, ?)", [$number, $id, $order['email'], (int) $order['tardi'],
            "<<1-IDlingua>>", (string) json_encode($lines, JSON_INVALID_UTF8_SUBSTITUTE), $receipt]);
        if ($result !== null && kvTouchOrder($id) && mysqli_commit(kvConnection())) {
            return ['numero' => $number, 'ricevuta' => $receipt, 'email' => (string) $order['email']];
        }
    }
    mysqli_rollback(kvConnection());
    return null;
}

/** Sends the receipt to the buyer, at the address of the order, and to the merchant. */
function kvMailWithdrawal(array $withdrawal): void
{
    $shop = kvSender();
    $subject = $shop['nome'] . ' - ' . kvUtf8("<<4-recesso_ricevuta>> ") . $withdrawal['numero'];
    kvMail($withdrawal['email'], $shop['email'], $subject, $withdrawal['ricevuta'] . "\r\n" . $shop['firma']);
    kvMail($shop['email'], $shop['email'], $subject, $withdrawal['ricevuta'], $withdrawal['email']);
}
