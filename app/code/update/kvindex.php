<?php
// ***1.0.7***
// The index of words that the search asks: for each language kv_parole, which article has which word and where;
// kv_vocaboli, each word once, in which a part of a word is looked for; kv_voci, department and title of each article,
// by which results are chosen and ordered without a look at the wide rows of the catalogue. A load reads the words of the articles that it
// brings and of no others.
include_once "kvutf8.php";

/** Where a word is: in the title, in the code, in the texts. A lower number comes first among results. */
const KV_RANGHI = ['plain_titolo' => 0, 'codice' => 1, 'plain_sottotitolo' => 2, 'descrizione' => 2, 'note' => 2];
/** Articles whose words are read at a time. */
const KV_ARTICOLI_INSIEME = 500;

/** The words of an UTF-8 text, folded: its runs of characters and digits, of forty characters at most. */
function kvParoleTesto(string $testo): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvPiega($testo), $trovate);
    return array_map(fn($parola) => kvTaglia($parola, 40), $trovate[0]);
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

/** Makes the tables of a language under names that begin with `prefisso`. The failure. */
function kvTabelleIndice(string $prefisso, string $lingua, bool $nuove): string
{
    $parola = 'parola VARCHAR(40) CHARACTER SET utf8mb4 COLLATE utf8mb4_bin NOT NULL';
    $guasto = '';
    foreach (["kv_parole$lingua" => "$parola, articolo INT NOT NULL, rango TINYINT NOT NULL, PRIMARY KEY (parola, articolo),"
              . ' KEY articolo (articolo)', "kv_vocaboli$lingua" => "$parola PRIMARY KEY",
              "kv_voci$lingua" => 'articolo INT NOT NULL PRIMARY KEY, reparto VARCHAR(20) CHARACTER SET utf8mb4 NOT NULL,'
              . ' titolo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL'] as $nome => $colonne) {
        $guasto = $guasto === '' && $nuove ? kvEseguiSql("DROP TABLE IF EXISTS $prefisso$nome") : $guasto;
        $guasto = $guasto === '' ? kvEseguiSql("CREATE TABLE IF NOT EXISTS $prefisso$nome ($colonne) ENGINE=InnoDB") : $guasto;
    }
    return $guasto;
}

/** Writes the words of some article rows; `forma` makes the name of a table. The failure. */
function kvScriviParole(array $righe, callable $forma): string
{
    kvCaratteri('utf8mb4');
    $voci = [];
    $nuove = [];
    $articoli = [];
    foreach ($righe as $riga) {
        $titolo = kvTaglia(kvPiega(kvUtf8((string) $riga['plain_titolo'])), 60);
        $articoli[] = '(' . (int) $riga['ID'] . ",'" . mysqli_real_escape_string(kvConnessione(), kvUtf8((string) $riga['catID']))
            . "','" . mysqli_real_escape_string(kvConnessione(), $titolo) . "')";
        foreach (kvParoleArticolo($riga) as $parola => $rango) {
            $voci[] = "('$parola'," . (int) $riga['ID'] . ",$rango)";
            $nuove[$parola] = "('$parola')";
        }
    }
    sort($voci, SORT_STRING);
    foreach (['kv_parole' => $voci, 'kv_vocaboli' => $nuove, 'kv_voci' => $articoli] as $nome => $valori) {
        $tabella = $forma($nome);
        foreach (array_chunk($valori, 5000) as $lotto) {
            if (mysqli_query(kvConnessione(), "INSERT IGNORE INTO $tabella VALUES " . implode(',', $lotto)) === false) {
                return kvGuastoSql("INSERT INTO $tabella");
            }
        }
    }
    return '';
}

/** Reads articles in steps and writes their words; `dove` chooses among them. The failure. */
function kvLeggiParole(array $tabelle, string $dove, string $prefisso, string $lingua): string
{
    list($articoli, $dettaglio) = $tabelle;
    $ultimo = -2147483648;
    do {
        kvCaratteri('latin1');
        $esito = mysqli_query(kvConnessione(), "SELECT a.ID, catID, codice, plain_titolo, plain_sottotitolo, descrizione, note FROM"
            . " $articoli a LEFT JOIN $dettaglio d ON d.ID = a.ID WHERE a.ID > $ultimo AND $dove ORDER BY a.ID LIMIT "
            . KV_ARTICOLI_INSIEME);
        if ($esito === false) {
            return kvGuastoSql("SELECT FROM $articoli");
        }
        $righe = mysqli_fetch_all($esito, MYSQLI_ASSOC);
        $guasto = kvScriviParole($righe, fn(string $nome): string => $prefisso . $nome . $lingua);
        if ($guasto !== '') {
            return $guasto;
        }
        $ultimo = (int) (end($righe)['ID'] ?? 0);
        kvSegnoDiVita();
    } while (count($righe) === KV_ARTICOLI_INSIEME);
    return '';
}

/** Brings the index up to what a load brings: made anew with the articles, or for the changed articles alone. */
function kvIndicizza(KvCarico $carico): string
{
    $articoli = 'articoli' . $carico->lingua;
    $nuova = fn(string $tabella): string => (in_array($tabella, $carico->nuove, true) ? KV_NUOVA : '') . $tabella;
    if (in_array($articoli, $carico->nuove, true)) {
        if (!in_array('dettaglio', $carico->nuove, true) && !kvEsiste('dettaglio')) {
            return '';
        }
        $guasto = kvTabelleIndice(KV_NUOVA, $carico->lingua, true);
        foreach (['kv_parole', 'kv_vocaboli', 'kv_voci'] as $nome) {
            $carico->nuove[] = $nome . $carico->lingua;
        }
        return $guasto === ''
            ? kvLeggiParole([$nuova($articoli), $nuova('dettaglio')], '1 = 1', KV_NUOVA, $carico->lingua) : $guasto;
    }
    return $carico->articoli === [] ? '' : kvIndicizzaCambiati($carico);
}

/** The words of the changed articles. Their codes are in one table for all languages, which the first one brings. */
function kvIndicizzaCambiati(KvCarico $carico): string
{
    foreach ($carico->lingua === '' ? ['', '_l2', '_l3', '_l4'] : [$carico->lingua] as $lingua) {
        if (!kvEsiste("kv_parole$lingua")) {
            continue;
        }
        foreach (array_chunk(array_keys($carico->articoli), KV_ARTICOLI_INSIEME) as $numeri) {
            $elenco = implode(',', array_map('intval', $numeri));
            $guasto = kvEseguiSql("DELETE FROM kv_parole$lingua WHERE articolo IN ($elenco)");
            $guasto = $guasto === '' ? kvEseguiSql("DELETE FROM kv_voci$lingua WHERE articolo IN ($elenco)") : $guasto;
            $guasto = $guasto === '' ? kvLeggiParole(["articoli$lingua", 'dettaglio'], "a.ID IN ($elenco)", '', $lingua) : $guasto;
            if ($guasto !== '') {
                return $guasto;
            }
        }
    }
    return '';
}
