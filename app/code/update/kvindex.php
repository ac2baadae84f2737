<?php
// ***1.0.7***
// The index of words that the search asks: for each language kv_parole, which article has which word and where;
// kv_vocaboli, each word once, in which a part of a word is looked for; kv_voci, department and title of each article,
// by which results are chosen and ordered without a look at the wide rows of the catalogue, with a mark of the texts that
// the words came from and the group word by which related articles are found. A load reads the words of the articles whose texts it changes and of no others.
include_once "kvutf8.php";

/** Where a word is: in the title, in the code, in the texts. A lower number comes first among results. */
const KV_RANGHI = ['plain_titolo' => 0, 'codice' => 1, 'plain_sottotitolo' => 2, 'descrizione' => 2, 'note' => 2];
/** Articles whose words are read at a time, and steps of reading whose words are written at once, in their order. */
const KV_ARTICOLI_INSIEME = 500;
const KV_PASSI_INSIEME = 20;
/** Most bytes of a statement that writes rows of the index. */
const KV_RIGHE_INDICE = 500000;
/**
 * What the words of an article are read from, as bytes that tell one state from another; the number changes with the
 * rules of this file.
 */
const KV_SEGNO = "UNHEX(MD5(CONCAT('1', '\n', IFNULL(catID, ''), '\n', IFNULL(codice, ''), '\n', IFNULL(plain_titolo, ''),"
    . " '\n', IFNULL(plain_sottotitolo, ''), '\n', IFNULL(descrizione, ''), '\n', IFNULL(note, ''), '\n', IFNULL(correlazione, ''))))";

/** The words of an UTF-8 text, folded: its runs of characters and digits, of forty characters at most. */
function kvParoleTesto(string $testo): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold($testo), $trovate);
    return array_map(fn($parola) => kvCut($parola, 40), $trovate[0]);
}

/** The words of an article row with their rank, the best one of each. */
function kvParoleArticolo(array $riga): array
{
    $parole = [];
    foreach (KV_RANGHI as $campo => $rango) {
        $testo = (string) ($riga[$campo] ?? '');
        $testo = strpbrk($testo, '<&') === false ? $testo
            : html_entity_decode(preg_replace('/<[^>]*>/', ' ', $testo), ENT_QUOTES, 'cp1252');
        foreach (kvParoleTesto(kvUtf8($testo)) as $parola) {
            $parole += [$parola => $rango];
        }
    }
    return $parole;
}

/** Makes the tables of a language anew, to be filled before they take the position of the former ones. The failure. */
function kvTabelleIndice(string $lingua): string
{
    $parola = 'parola VARCHAR(40) CHARACTER SET utf8mb4 COLLATE utf8mb4_bin NOT NULL';
    $guasto = '';
    foreach (["kv_parole$lingua" => "$parola, articolo INT NOT NULL, rango TINYINT NOT NULL, PRIMARY KEY (parola, articolo)",
              "kv_vocaboli$lingua" => "$parola PRIMARY KEY",
              "kv_voci$lingua" => 'articolo INT NOT NULL PRIMARY KEY, reparto VARCHAR(20) CHARACTER SET utf8mb4 NOT NULL,'
              . ' titolo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, segno BINARY(16) NOT NULL,'
              . ' gruppo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, KEY gruppo (gruppo)'] as $nome => $colonne) {
        $guasto = $guasto === '' ? kvEseguiSql('DROP TABLE IF EXISTS ' . KV_NUOVA . $nome) : $guasto;
        $guasto = $guasto === '' ? kvEseguiSql('CREATE TABLE ' . KV_NUOVA . "$nome ($colonne) ENGINE=InnoDB") : $guasto;
    }
    return $guasto;
}

/** Adds the words of some article rows to those that wait: each word with "article,rank;", each article with its row. */
function kvRaccogliParole(array $righe, array &$parole, array &$articoli): void
{
    $testo = fn(string $valore): string => "'" . mysqli_real_escape_string(kvConnection(), $valore) . "'";
    kvSetCharset('utf8mb4');
    foreach ($righe as $riga) {
        $titolo = kvCut(kvFold(kvUtf8((string) $riga['plain_titolo'])), 60);
        $articoli[] = '(' . (int) $riga['ID'] . ',' . $testo(kvUtf8((string) $riga['catID'])) . ',' . $testo($titolo) . ',0x'
            . bin2hex($riga['segno']) . ',' . $testo(kvIndexGroup((string) $riga['correlazione'])) . ')';
        foreach (kvParoleArticolo($riga) as $parola => $rango) {
            $parole[$parola] = ($parole[$parola] ?? '') . (int) $riga['ID'] . ",$rango;";
        }
    }
}

/** Inserts rows, each "(...)", in statements of a size that the server takes; `come` is INSERT and its table. The failure. */
function kvInserisciRighe(string $come, iterable $righe): string
{
    $massimo = min(KV_RIGHE_INDICE, kvLimiteLotto() - 1000);
    $lotto = '';
    foreach ($righe as $riga) {
        $lotto .= ($lotto === '' ? '' : ',') . $riga;
        if (strlen($lotto) > $massimo) {
            if (mysqli_query(kvConnection(), "$come VALUES $lotto") === false) {
                return kvGuastoSql($come);
            }
            kvSegnoDiVita();
            $lotto = '';
        }
    }
    return $lotto === '' || mysqli_query(kvConnection(), "$come VALUES $lotto") !== false ? '' : kvGuastoSql($come);
}

/** Rows of kv_parole in the order of their key, which the server adds to the end of its pages. */
function kvRigheParole(array $parole): Generator
{
    ksort($parole, SORT_STRING);
    foreach ($parole as $parola => $voci) {
        foreach (explode(';', rtrim($voci, ';')) as $voce) {
            yield "('$parola',$voce)";
        }
    }
}

/** Writes the words that wait; `forma` makes the name of a table. The failure. */
function kvScriviParole(array $parole, array $articoli, callable $forma): string
{
    kvSetCharset('utf8mb4');
    $vocaboli = array_map(fn($parola) => "('$parola')", array_keys($parole));
    // Without IGNORE, which a word of before alone needs, some servers sort the rows of an empty table by themselves.
    $guasto = kvInserisciRighe('INSERT INTO ' . $forma('kv_parole'), kvRigheParole($parole));
    $guasto = $guasto === '' ? kvInserisciRighe('INSERT IGNORE INTO ' . $forma('kv_vocaboli'), $vocaboli) : $guasto;
    return $guasto === '' ? kvInserisciRighe('INSERT INTO ' . $forma('kv_voci'), $articoli) : $guasto;
}

/** Reads articles in steps and writes their words; `dove` chooses among them, `forma` makes names of tables. The failure. */
function kvLeggiParole(array $tabelle, string $dove, callable $forma): string
{
    list($articoli, $dettaglio) = $tabelle;
    $ultimo = -2147483648;
    $parole = $voci = [];
    for ($passo = 1; true; $passo++) {
        kvSetCharset('latin1');
        $esito = mysqli_query(kvConnection(), 'SELECT a.ID, catID, codice, plain_titolo, plain_sottotitolo, descrizione, note,'
            . ' correlazione, ' . KV_SEGNO . " AS segno FROM $articoli a LEFT JOIN $dettaglio d ON d.ID = a.ID WHERE a.ID > $ultimo AND $dove"
            . ' ORDER BY a.ID LIMIT ' . KV_ARTICOLI_INSIEME);
        if ($esito === false) {
            return kvGuastoSql("SELECT FROM $articoli");
        }
        $righe = mysqli_fetch_all($esito, MYSQLI_ASSOC);
        kvRaccogliParole($righe, $parole, $voci);
        $finito = count($righe) < KV_ARTICOLI_INSIEME;
        if ($finito || $passo % KV_PASSI_INSIEME === 0) {
            $guasto = kvScriviParole($parole, $voci, $forma);
            if ($finito || $guasto !== '') {
                return $guasto;
            }
            $parole = $voci = [];
        }
        $ultimo = (int) end($righe)['ID'];
        kvSegnoDiVita();
    }
}

/** Whether the index of a language is there as this release makes it. */
function kvIndiceNuovo(string $lingua): bool
{
    return kvEsiste("kv_parole$lingua") && kvRiga('SELECT COLUMN_NAME FROM information_schema.COLUMNS WHERE TABLE_SCHEMA ='
        . " DATABASE() AND TABLE_NAME = ? AND COLUMN_NAME = 'gruppo'", ["kv_voci$lingua"]) !== null;
}

/**
 * The numbers of the articles whose words the index doesn't have as they are in the tables, those gone included; null
 * when there is no index, or when so many of them differ that making it anew is less work.
 */
function kvArticoliDiversi(array $tabelle, string $lingua): ?array
{
    list($articoli, $dettaglio) = $tabelle;
    if (!kvIndiceNuovo($lingua)) {
        return null;
    }
    kvSetCharset('latin1');
    $esito = mysqli_query(kvConnection(), "SELECT a.ID FROM $articoli a LEFT JOIN $dettaglio d ON d.ID = a.ID LEFT JOIN"
        . " kv_voci$lingua v ON v.articolo = a.ID WHERE v.articolo IS NULL OR v.segno <> " . KV_SEGNO);
    $quanti = mysqli_query(kvConnection(), "SELECT COUNT(*), (SELECT COUNT(*) FROM kv_voci$lingua) FROM $articoli");
    if (!$esito instanceof mysqli_result || !$quanti instanceof mysqli_result) {
        return null;
    }
    $numeri = array_column(mysqli_fetch_all($esito), 0);
    list($righe, $voci) = mysqli_fetch_row($quanti);
    if ($numeri !== [] || $righe !== $voci) {
        $esito = mysqli_query(kvConnection(), "SELECT articolo FROM kv_voci$lingua LEFT JOIN $articoli a ON a.ID = articolo"
            . ' WHERE a.ID IS NULL');
        if (!$esito instanceof mysqli_result) {
            return null;
        }
        $numeri = array_values(array_unique(array_merge($numeri, array_column(mysqli_fetch_all($esito), 0))));
    }
    return count($numeri) * 4 > (int) $righe ? null : $numeri;
}

/** Of some articles those whose words the index doesn't have as they are in the tables, those gone included. */
function kvDiversiTra(array $numeri, array $tabelle, string $lingua): array
{
    list($articoli, $dettaglio) = $tabelle;
    kvSetCharset('latin1');
    $diversi = [];
    foreach (array_chunk($numeri, KV_ARTICOLI_INSIEME) as $alcuni) {
        $elenco = implode(',', array_map('intval', $alcuni));
        $esito = mysqli_query(kvConnection(), "SELECT a.ID FROM $articoli a LEFT JOIN $dettaglio d ON d.ID = a.ID LEFT JOIN"
            . " kv_voci$lingua v ON v.articolo = a.ID WHERE a.ID IN ($elenco) AND (v.articolo IS NULL OR v.segno <> " . KV_SEGNO
            . ") UNION SELECT articolo FROM kv_voci$lingua LEFT JOIN $articoli a ON a.ID = articolo WHERE articolo IN ($elenco)"
            . ' AND a.ID IS NULL');
        $diversi[] = $esito instanceof mysqli_result ? array_column(mysqli_fetch_all($esito), 0) : $alcuni;
    }
    return $diversi === [] ? [] : array_merge(...$diversi);
}

/** Makes the index of a language anew beside the former one. The failure. */
function kvIndiceDaCapo(KvCarico $carico, array $tabelle): string
{
    $guasto = kvTabelleIndice($carico->lingua);
    foreach (['kv_parole', 'kv_vocaboli', 'kv_voci'] as $nome) {
        $carico->nuove[] = $nome . $carico->lingua;
    }
    $guasto = $guasto === ''
        ? kvLeggiParole($tabelle, '1 = 1', fn(string $nome): string => KV_NUOVA . $nome . $carico->lingua) : $guasto;
    // A key that is made of rows which are there is sorted at once.
    return $guasto === ''
        ? kvEseguiSql('ALTER TABLE ' . KV_NUOVA . "kv_parole{$carico->lingua} ADD KEY articolo (articolo)") : $guasto;
}

/** Brings the index up to what a load brings: anew where there is none, else for the articles that differ. The failure. */
function kvIndicizza(KvCarico $carico): string
{
    $articoli = 'articoli' . $carico->lingua;
    $nuova = fn(string $tabella): string => (in_array($tabella, $carico->nuove, true) ? KV_NUOVA : '') . $tabella;
    if (!in_array($articoli, $carico->nuove, true)) {
        return $carico->articoli === [] ? '' : kvIndicizzaCambiati($carico);
    }
    if (!in_array('dettaglio', $carico->nuove, true) && !kvEsiste('dettaglio')) {
        return '';
    }
    $tabelle = [$nuova($articoli), $nuova('dettaglio')];
    $diversi = kvArticoliDiversi($tabelle, $carico->lingua);
    return $diversi === null ? kvIndiceDaCapo($carico, $tabelle) : kvRileggiArticoli($diversi, $tabelle, $carico->lingua);
}

/** Reads the words of some articles again, in the transaction of the load. The failure. */
function kvRileggiArticoli(array $numeri, array $tabelle, string $lingua): string
{
    foreach (array_chunk($numeri, KV_ARTICOLI_INSIEME) as $alcuni) {
        $elenco = implode(',', array_map('intval', $alcuni));
        $guasto = kvEseguiSql("DELETE FROM kv_parole$lingua WHERE articolo IN ($elenco)");
        $guasto = $guasto === '' ? kvEseguiSql("DELETE FROM kv_voci$lingua WHERE articolo IN ($elenco)") : $guasto;
        $guasto = $guasto === ''
            ? kvLeggiParole($tabelle, "a.ID IN ($elenco)", fn(string $nome): string => $nome . $lingua) : $guasto;
        if ($guasto !== '') {
            return $guasto;
        }
    }
    return '';
}

/**
 * The words of the changed articles. Their codes are in one table for all languages, which the first one brings: what it
 * brings for others shows in its own marks as well. Most changes are of prices, which have no words.
 */
function kvIndicizzaCambiati(KvCarico $carico): string
{
    $numeri = array_keys($carico->articoli);
    foreach ($carico->lingua === '' ? ['', '_l2', '_l3', '_l4'] : [$carico->lingua] as $lingua) {
        if (!kvIndiceNuovo($lingua)) {
            continue;
        }
        $tabelle = ["articoli$lingua", 'dettaglio'];
        $diversi = kvDiversiTra($numeri, $tabelle, $lingua);
        $guasto = kvRileggiArticoli($diversi, $tabelle, $lingua);
        if ($guasto !== '') {
            return $guasto;
        }
        $numeri = $lingua === '' ? $diversi : $numeri;
    }
    return '';
}
