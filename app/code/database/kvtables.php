<?php
// ***1.0.7***
// The tables that live on the server alone: customers, orders with what was noted of them, availability, requested
// passwords, failed attempts, words of mails. No publishing ever touches them. Shop and back office both read their definitions from this file.
include_once "kvlimits.php";

/** What the tables have become; a lower number in kv_stato asks for the steps of kvAggiornaTabelle. */
const KV_TABELLE = 4;
/** When an order or what belongs to it last changed; the server sees to it. In world time, so that no hour comes twice. */
const KV_MODIFICATO = 'TIMESTAMP(6) NOT NULL DEFAULT CURRENT_TIMESTAMP(6) ON UPDATE CURRENT_TIMESTAMP(6)';

/**
 * Name and columns of each table; InnoDB, since an order and its stock change together. Texts of visitors are UTF-8; the
 * keys of availability and attempts are those of the catalogue and of hashes, in its own character set.
 */
function kvDefinizioni(): array
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
            . " modificato " . KV_MODIFICATO . ", KEY creato (creato), KEY cliente (cliente), KEY modificato (modificato, id)",
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

/** The columns of `dettaglio` that name an article's variants, for all price lists; `come` is the table's alias. */
function kvColonneVarianti(string $come): string
{
    $colonne = [];
    foreach (['', '_1', '_2', '_3', '_4', '_5', '_6', '_7', '_8', '_9'] as $listino) {
        foreach ([1, 2, 3, 4] as $posto) {
            $colonne[] = "$come.opzione$posto$listino";
        }
    }
    return implode(', ', $colonne);
}

/** Makes the tables that aren't there yet, and brings those of an earlier shop up to date. */
function kvTabelle(): void
{
    foreach (kvDefinizioni() as $nome => $colonne) {
        $insieme = preg_match(KV_TABELLE_UTF8, $nome) ? 'utf8mb4' : 'latin1';
        kvQuery("CREATE TABLE IF NOT EXISTS $nome ($colonne) ENGINE=InnoDB DEFAULT CHARSET=$insieme");
    }
    include_once "kvupgrade.php";
    kvAggiornaTabelle();
}

/** Sees to it that the tables are those of this release. To be called before visitors' words are written. */
function kvTabellePronte(): void
{
    static $pronte = false;
    if (!$pronte && (int) kvStato('tabelle') < KV_TABELLE) {
        kvTabelle();
    }
    $pronte = true;
}

/** Marks that what belongs to an order has changed: notes, withdrawals. The tables must be those of this release. */
function kvToccaOrdine(int $ordine): bool
{
    return kvQuery('UPDATE kv_ordini SET modificato = CURRENT_TIMESTAMP(6) WHERE id = ?', [$ordine]) !== null;
}

/** A group word of related articles as kv_voci has it; where two have the same beginning, the word itself decides. */
function kvGruppoIndice(string $parola): string
{
    return kvCut(strtolower(trim(kvUtf8($parola))), 60);
}

/** A value that the shop keeps of itself; empty when there is none. */
function kvStato(string $nome): string
{
    return (string) (kvRiga('SELECT valore FROM kv_stato WHERE nome = ?', [$nome])['valore'] ?? '');
}

/** The number of pieces from which down a thing runs short: the merchant's own, else three. */
function kvSogliaScorte(): int
{
    $soglia = kvStato('soglia_scorte');
    return preg_match('/^\d{1,5}$/D', $soglia) ? (int) $soglia : 3;
}

/** Marks that the stock is another one, for pages that browsers keep. */
function kvScorteCambiate(): void
{
    kvMettiStato('scorte', bin2hex(random_bytes(8)));
}

function kvMettiStato(string $nome, string $valore): bool
{
    return kvQuery('REPLACE INTO kv_stato (nome, valore) VALUES (?, ?)', [$nome, $valore]) !== null;
}
