<?php
// ***1.0.7***
// The tables that live on the server alone: customers, orders with what was noted of them, availability, requested
// passwords, failed attempts, words of mails. No publishing ever touches them. Shop and back office both read their definitions from this file.
include_once "kvlimits.php";

/** What the tables have become; a lower number in kv_stato asks for the steps of kvUpgradeTables. */
const KV_TABLES = 4;
/** When an order or what belongs to it last changed; the server sees to it. In world time, so that no hour comes twice. */
const KV_MODIFIED = 'TIMESTAMP(6) NOT NULL DEFAULT CURRENT_TIMESTAMP(6) ON UPDATE CURRENT_TIMESTAMP(6)';

/**
 * Name and columns of each table; InnoDB, since an order and its stock change together. Texts of visitors are UTF-8; the
 * keys of availability and attempts are those of the catalogue and of hashes, in its own character set.
 */
function kvDefinitions(): array
{
    return [
        'kv_clienti' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, email VARCHAR(190) NOT NULL UNIQUE,"
            . " pw VARCHAR(255) NOT NULL, nome VARCHAR(100) NOT NULL DEFAULT '',"
            . " cognome VARCHAR(100) NOT NULL DEFAULT '', rsoc VARCHAR(200) NOT NULL DEFAULT '',"
            . " piva VARCHAR(40) NOT NULL DEFAULT '', indirizzo VARCHAR(200) NOT NULL DEFAULT '',"
            . " cap VARCHAR(20) NOT NULL DEFAULT '', citta VARCHAR(100) NOT NULL DEFAULT '',"
            . " provincia VARCHAR(60) NOT NULL DEFAULT '', paese VARCHAR(60) NOT NULL DEFAULT '',"
            . " telefono VARCHAR(60) NOT NULL DEFAULT '', listino TINYINT NOT NULL DEFAULT 0,"
            . " sconto DECIMAL(5,2) NOT NULL DEFAULT 0, approvato TINYINT NOT NULL DEFAULT 1,"
            . " provato TINYINT NOT NULL DEFAULT 0, lingua VARCHAR(5) NOT NULL DEFAULT '', creato DATETIME NOT NULL",
        'kv_ordini' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, codice VARCHAR(20) NOT NULL UNIQUE,"
            . " creato DATETIME NOT NULL, cliente INT NOT NULL DEFAULT 0, nome VARCHAR(255) NOT NULL,"
            . " email VARCHAR(190) NOT NULL, totale DECIMAL(12,2) NOT NULL, valuta VARCHAR(60) NOT NULL,"
            . " metodo VARCHAR(200) NOT NULL, stato VARCHAR(20) NOT NULL, lingua VARCHAR(5) NOT NULL,"
            . " pagamento VARCHAR(190) NOT NULL DEFAULT '', dati LONGTEXT NOT NULL, riepilogo MEDIUMTEXT NOT NULL,"
            . " modificato " . KV_MODIFIED . ", KEY creato (creato), KEY cliente (cliente), KEY modificato (modificato, id)",
        // Numbers of signed requests, none of which is taken twice; quando: seconds since 1970.
        'kv_numeri' => "numero CHAR(32) NOT NULL PRIMARY KEY, quando BIGINT NOT NULL, KEY quando (quando)",
        // tipo A: an article by its number; V: article, variant and code of a value. No row: available without limit.
        'kv_disponibilita' => "tipo CHAR(1) NOT NULL, chiave VARCHAR(100) COLLATE latin1_bin NOT NULL,"
            . " disponibile TINYINT NOT NULL DEFAULT 1, quantita INT NULL, PRIMARY KEY (tipo, chiave)",
        // Of the catalogue: an article with an offer at its list price, bit n of the number for listino n.
        'kv_offerte' => "ID INT NULL, offerte INT NULL, KEY ix_kv_offerte_ID (ID)",
        'kv_richieste' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, email VARCHAR(190) NOT NULL,"
            . " creato DATETIME NOT NULL, gettone CHAR(64) NOT NULL UNIQUE, scade DATETIME NOT NULL,"
            . " stato VARCHAR(20) NOT NULL, dati TEXT NULL, KEY email (email)",
        // What the merchant and the back office have to say of an order. tipo: nota, stato, messaggio.
        'kv_annotazioni' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, ordine INT NOT NULL, quando DATETIME NOT NULL,"
            . " tipo VARCHAR(10) NOT NULL, testo TEXT NOT NULL, KEY ordine (ordine)",
        // The merchant's own words of a mail; nome is a state and a language: "spedito.it".
        'kv_testi' => "nome VARCHAR(40) NOT NULL PRIMARY KEY, oggetto VARCHAR(200) NOT NULL, testo TEXT NOT NULL",
        // Results of searches that found much, of the load whose mark they have.
        'kv_ricerche' => "chiave CHAR(32) NOT NULL PRIMARY KEY, carico VARCHAR(190) NOT NULL, quanti INT NOT NULL,"
            . " numeri TEXT NOT NULL",
        // ordine: the id of the order; righe: its lines and pieces as JSON; ricevuta: what the buyer was told.
        'kv_recessi' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, numero VARCHAR(24) NOT NULL UNIQUE,"
            . " ordine INT NOT NULL, creato DATETIME NOT NULL, email VARCHAR(190) NOT NULL, tardi TINYINT NOT NULL DEFAULT 0,"
            . " stato VARCHAR(20) NOT NULL, lingua VARCHAR(5) NOT NULL, righe TEXT NOT NULL, ricevuta TEXT NOT NULL,"
            . " KEY ordine (ordine)",
        // Orders that were deleted, for whoever keeps a copy of them: number and code, and nothing of the customer.
        'kv_tolti' => "id INT NOT NULL AUTO_INCREMENT PRIMARY KEY, ordine INT NOT NULL, codice VARCHAR(20) NOT NULL",
        'kv_stato' => "nome VARCHAR(40) NOT NULL PRIMARY KEY, valore VARCHAR(190) NOT NULL",
        'kv_tentativi' => "chiave CHAR(64) NOT NULL, quando DATETIME NOT NULL, KEY chiave (chiave, quando)",
    ];
}

/** The columns of `dettaglio` that name an article's variants, for all price lists; `alias` is the table's alias. */
function kvVariantColumns(string $alias): string
{
    $columns = [];
    foreach (['', '_1', '_2', '_3', '_4', '_5', '_6', '_7', '_8', '_9'] as $listino) {
        foreach ([1, 2, 3, 4] as $slot) {
            $columns[] = "$alias.opzione$slot$listino";
        }
    }
    return implode(', ', $columns);
}

/** Makes the tables that aren't there yet, and brings those of an earlier shop up to date. */
function kvUpdateTables(): void
{
    foreach (kvDefinitions() as $name => $columns) {
        $set = preg_match(KV_UTF8_TABLES, $name) ? 'utf8mb4' : 'latin1';
        kvQuery("CREATE TABLE IF NOT EXISTS $name ($columns) ENGINE=InnoDB DEFAULT CHARSET=$set");
    }
    include_once "kvupgrade.php";
    kvUpgradeTables();
}

/** Sees to it that the tables are those of this release. To be called before visitors' words are written. */
function kvRequireTables(): void
{
    static $ready = false;
    if (!$ready && (int) kvStoredValue('tabelle') < KV_TABLES) {
        kvUpdateTables();
    }
    $ready = true;
}

/** Marks that what belongs to an order has changed: notes, withdrawals. The tables must be those of this release. */
function kvTouchOrder(int $order): bool
{
    return kvQuery('UPDATE kv_ordini SET modificato = CURRENT_TIMESTAMP(6) WHERE id = ?', [$order]) !== null;
}

/** What kv_stato says of an index of words (`indice` and the language): it knows groups, has sets of articles, and of sequences. */
const KV_INDEX_OF_GROUPS = 2;
const KV_INDEX_OF_SETS = 3;
const KV_INDEX_OF_SEQUENCES = 4;

/** A group word of related articles as kv_voci has it; where two have the same beginning, the word itself decides. */
function kvIndexGroup(string $word): string
{
    return kvCut(strtolower(trim(kvUtf8($word))), 60);
}

/** A value that the shop keeps of itself; empty when there is none. */
function kvStoredValue(string $name): string
{
    return (string) (kvRiga('SELECT valore FROM kv_stato WHERE nome = ?', [$name])['valore'] ?? '');
}

/** The number of pieces from which down a thing runs short: the merchant's own, else three. */
function kvLowStockLimit(): int
{
    $threshold = kvStoredValue('soglia_scorte');
    return preg_match('/^\d{1,5}$/D', $threshold) ? (int) $threshold : 3;
}

/** Marks that the stock is another one, for pages that browsers keep. */
function kvStockChanged(): void
{
    kvStoreValue('scorte', bin2hex(random_bytes(8)));
}

function kvStoreValue(string $name, string $value): bool
{
    return kvQuery('REPLACE INTO kv_stato (nome, valore) VALUES (?, ?)', [$name, $value]) !== null;
}
