<?php
// ***1.0.7***
// A customer's right to their data: a copy of all of it, and its deletion. Orders stay for the years of the tax office,
// without whoever placed them. Sources: Regulation (EU) 2016/679, articles 15, 17 (3) (b) and 20.
include_once "kvtables.php";

/** The states of orders that still need their address. */
const KV_STATI_APERTI = ['nuovo', 'da verificare', 'importo diverso', 'pagato'];
/** What takes the name of a deleted customer in their orders. */
const KV_SENZA_NOME = 'Cliente eliminato';

/**
 * The orders of a customer, a row of kv_clienti: those placed from the account and, where the mail address has proven to
 * be theirs, those placed with it before. An address that was only typed may be a stranger's.
 */
function kvOrdiniCliente(array $cliente): array
{
    $dove = 'cliente = ?';
    $valori = [(int) $cliente['id']];
    if ($cliente['provato'] ?? false) {
        $dove .= ' OR (cliente = 0 AND email = ?)';
        $valori[] = $cliente['email'];
    }
    return kvQuery("SELECT * FROM kv_ordini WHERE $dove ORDER BY id", $valori) ?? [];
}

/** All that the shop knows of a customer, for a file of JSON; without the password, of which it knows a print alone. */
function kvDatiPersonali(array $cliente): array
{
    $ordini = array_map(fn($ordine) => ['codice' => $ordine['codice'], 'creato' => $ordine['creato'],
        'nome' => $ordine['nome'], 'email' => $ordine['email'], 'totale' => $ordine['totale'],
        'valuta' => $ordine['valuta'], 'metodo' => $ordine['metodo'], 'stato' => $ordine['stato'],
        'pagamento' => $ordine['pagamento'], 'dati' => json_decode($ordine['dati'], true),
        'annotazioni' => kvQuery('SELECT quando, testo FROM kv_annotazioni WHERE ordine = ? ORDER BY id',
            [(int) $ordine['id']]) ?? []], kvOrdiniCliente($cliente));
    unset($cliente['pw']);
    return ['cliente' => $cliente, 'ordini' => $ordini,
        'richieste' => kvQuery('SELECT creato, scade, stato FROM kv_richieste WHERE email = ? ORDER BY id',
            [$cliente['email']]) ?? []];
}

/** How many orders of a customer still need their address. */
function kvOrdiniAperti(array $cliente): int
{
    return count(array_filter(kvOrdiniCliente($cliente), fn($ordine) => in_array($ordine['stato'], KV_STATI_APERTI, true)));
}

/** What stays of an order's column `dati`: lines and totals, the country, which the VAT depends on, the method. */
function kvDatiAnonimi(string $json): string
{
    $dati = json_decode($json, true);
    $dati = is_array($dati) ? $dati : [];
    $campi = is_array($dati['campi'] ?? null) ? $dati['campi'] : [];
    $dati['campi'] = array_intersect_key($campi, ['Paese' => 1, 'NomePagamento' => 1]);
    return (string) json_encode($dati, JSON_INVALID_UTF8_SUBSTITUTE);
}

/** Takes the person out of an order; false when the server refused. */
function kvAnonimizzaOrdine(array $ordine): bool
{
    return kvQuery("UPDATE kv_ordini SET cliente = 0, nome = ?, email = '', dati = ?, riepilogo = '' WHERE id = ?",
        [KV_SENZA_NOME, kvDatiAnonimi($ordine['dati']), (int) $ordine['id']]) !== null
        && kvQuery("DELETE FROM kv_annotazioni WHERE ordine = ? AND tipo <> 'stato'", [(int) $ordine['id']]) !== null;
}

/** Deletes a customer with their requests, and leaves their orders without them; all of it or nothing. */
function kvEliminaCliente(array $cliente): bool
{
    // The tables must stand before the transaction: making one would end it.
    kvTabellePronte();
    kvRiga('SELECT COUNT(*) FROM kv_annotazioni WHERE ordine = 0');
    mysqli_begin_transaction(kvConnessione());
    $fatto = true;
    foreach (kvOrdiniCliente($cliente) as $ordine) {
        $fatto = $fatto && kvAnonimizzaOrdine($ordine);
    }
    $fatto = $fatto && kvQuery('DELETE FROM kv_richieste WHERE email = ?', [$cliente['email']]) !== null
        && kvQuery('DELETE FROM kv_clienti WHERE id = ?', [(int) $cliente['id']]) !== null;
    if ($fatto && mysqli_commit(kvConnessione())) {
        return true;
    }
    mysqli_rollback(kvConnessione());
    return false;
}
