<?php
// ***1.0.7***
// The index of words that the search asks: for each language kv_parole, which article has which word and where;
// kv_vocaboli, each word once, in which a part of a word is looked for; kv_voci, department and title of each article,
// by which results are chosen and ordered without a look at the wide rows of the catalogue, with a mark of the texts that
// the words came from and the group word by which related articles are found. A load reads the words of the articles whose texts it changes and of no others.
include_once "kvutf8.php";

/** Where a word is: in the title, in the code, in the texts. A lower number comes first among results. */
const KV_RANKS = ['plain_titolo' => 0, 'codice' => 1, 'plain_sottotitolo' => 2, 'descrizione' => 2, 'note' => 2];
/** Articles whose words are read at a time, and steps of reading whose words are written at once, in their order. */
const KV_ARTICLES_TOGETHER = 500;
const KV_STEPS_TOGETHER = 20;
/** Most bytes of a statement that writes rows of the index. */
const KV_INDEX_ROWS = 500000;
/**
 * What the words of an article are read from, as bytes that tell one state from another; the number changes with the
 * rules of this file.
 */
const KV_DIGEST = "UNHEX(MD5(CONCAT('1', '\n', IFNULL(catID, ''), '\n', IFNULL(codice, ''), '\n', IFNULL(plain_titolo, ''),"
    . " '\n', IFNULL(plain_sottotitolo, ''), '\n', IFNULL(descrizione, ''), '\n', IFNULL(note, ''), '\n', IFNULL(correlazione, ''))))";

/** The words of an UTF-8 text, folded: its runs of characters and digits, of forty characters at most. */
function kvTextWords(string $text): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', kvFold($text), $found);
    return array_map(fn($word) => kvCut($word, 40), $found[0]);
}

/** The words of an article row with their rank, the best one of each. */
function kvArticleWords(array $row): array
{
    $words = [];
    foreach (KV_RANKS as $field => $rank) {
        $text = (string) ($row[$field] ?? '');
        $text = strpbrk($text, '<&') === false ? $text
            : html_entity_decode(preg_replace('/<[^>]*>/', ' ', $text), ENT_QUOTES, 'cp1252');
        foreach (kvTextWords(kvUtf8($text)) as $word) {
            $words += [$word => $rank];
        }
    }
    return $words;
}

/** Makes the tables of a language anew, to be filled before they take the position of the former ones. The failure. */
function kvIndexTables(string $language): string
{
    $word = 'parola VARCHAR(40) CHARACTER SET utf8mb4 COLLATE utf8mb4_bin NOT NULL';
    $failure = '';
    foreach (["kv_parole$language" => "$word, articolo INT NOT NULL, rango TINYINT NOT NULL, PRIMARY KEY (parola, articolo)",
              "kv_vocaboli$language" => "$word PRIMARY KEY",
              "kv_voci$language" => 'articolo INT NOT NULL PRIMARY KEY, reparto VARCHAR(20) CHARACTER SET utf8mb4 NOT NULL,'
              . ' titolo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, segno BINARY(16) NOT NULL,'
              . ' gruppo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, KEY gruppo (gruppo)'] as $name => $columns) {
        $failure = $failure === '' ? kvRunSql('DROP TABLE IF EXISTS ' . KV_NEW . $name) : $failure;
        $failure = $failure === '' ? kvRunSql('CREATE TABLE ' . KV_NEW . "$name ($columns) ENGINE=InnoDB") : $failure;
    }
    return $failure;
}

/** Adds the words of some article rows to those that wait: each word with "article,rank;", each article with its row. */
function kvCollectWords(array $rows, array &$words, array &$articles): void
{
    $text = fn(string $value): string => "'" . mysqli_real_escape_string(kvConnection(), $value) . "'";
    kvSetCharset('utf8mb4');
    foreach ($rows as $row) {
        $title = kvCut(kvFold(kvUtf8((string) $row['plain_titolo'])), 60);
        $articles[] = '(' . (int) $row['ID'] . ',' . $text(kvUtf8((string) $row['catID'])) . ',' . $text($title) . ',0x'
            . bin2hex($row['segno']) . ',' . $text(kvIndexGroup((string) $row['correlazione'])) . ')';
        foreach (kvArticleWords($row) as $word => $rank) {
            $words[$word] = ($words[$word] ?? '') . (int) $row['ID'] . ",$rank;";
        }
    }
}

/** Inserts rows, each "(...)", in statements of a size that the server takes; `insert` is INSERT and its table. The failure. */
function kvInsertRows(string $insert, iterable $rows): string
{
    $most = min(KV_INDEX_ROWS, kvBatchLimit() - 1000);
    $batch = '';
    foreach ($rows as $row) {
        $batch .= ($batch === '' ? '' : ',') . $row;
        if (strlen($batch) > $most) {
            if (mysqli_query(kvConnection(), "$insert VALUES $batch") === false) {
                return kvSqlFailure($insert);
            }
            kvSignOfLife();
            $batch = '';
        }
    }
    return $batch === '' || mysqli_query(kvConnection(), "$insert VALUES $batch") !== false ? '' : kvSqlFailure($insert);
}

/** Rows of kv_parole in the order of their key, which the server adds to the end of its pages. */
function kvWordRows(array $words): Generator
{
    ksort($words, SORT_STRING);
    foreach ($words as $word => $entries) {
        foreach (explode(';', rtrim($entries, ';')) as $entry) {
            yield "('$word',$entry)";
        }
    }
}

/** Writes the words that wait; `pattern` makes the name of a table. The failure. */
function kvWriteWords(array $words, array $articles, callable $pattern): string
{
    kvSetCharset('utf8mb4');
    $shopWords = array_map(fn($word) => "('$word')", array_keys($words));
    // Without IGNORE, which a word of before alone needs, some servers sort the rows of an empty table by themselves.
    $failure = kvInsertRows('INSERT INTO ' . $pattern('kv_parole'), kvWordRows($words));
    $failure = $failure === '' ? kvInsertRows('INSERT IGNORE INTO ' . $pattern('kv_vocaboli'), $shopWords) : $failure;
    return $failure === '' ? kvInsertRows('INSERT INTO ' . $pattern('kv_voci'), $articles) : $failure;
}

/** Reads articles in steps and writes their words; `where` chooses among them, `pattern` makes names of tables. The failure. */
function kvReadWords(array $tables, string $where, callable $pattern): string
{
    list($articles, $cartText) = $tables;
    $last = -2147483648;
    $words = $entries = [];
    for ($step = 1; true; $step++) {
        kvSetCharset('latin1');
        $result = mysqli_query(kvConnection(), 'SELECT a.ID, catID, codice, plain_titolo, plain_sottotitolo, descrizione, note,'
            . ' correlazione, ' . KV_DIGEST . " AS segno FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID WHERE a.ID > $last AND $where"
            . ' ORDER BY a.ID LIMIT ' . KV_ARTICLES_TOGETHER);
        if ($result === false) {
            return kvSqlFailure("SELECT FROM $articles");
        }
        $rows = mysqli_fetch_all($result, MYSQLI_ASSOC);
        kvCollectWords($rows, $words, $entries);
        $finished = count($rows) < KV_ARTICLES_TOGETHER;
        if ($finished || $step % KV_STEPS_TOGETHER === 0) {
            $failure = kvWriteWords($words, $entries, $pattern);
            if ($finished || $failure !== '') {
                return $failure;
            }
            $words = $entries = [];
        }
        $last = (int) end($rows)['ID'];
        kvSignOfLife();
    }
}

/** Whether the index of a language is there as this release makes it. */
function kvIsIndexCurrent(string $language): bool
{
    return kvTableExists("kv_parole$language") && kvRiga('SELECT COLUMN_NAME FROM information_schema.COLUMNS WHERE TABLE_SCHEMA ='
        . " DATABASE() AND TABLE_NAME = ? AND COLUMN_NAME = 'gruppo'", ["kv_voci$language"]) !== null;
}

/**
 * The numbers of the articles whose words the index doesn't have as they are in the tables, those gone included; null
 * when there is no index, or when so many of them differ that making it anew is less work.
 */
function kvDifferingArticles(array $tables, string $language): ?array
{
    list($articles, $cartText) = $tables;
    if (!kvIsIndexCurrent($language)) {
        return null;
    }
    kvSetCharset('latin1');
    $result = mysqli_query(kvConnection(), "SELECT a.ID FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID LEFT JOIN"
        . " kv_voci$language v ON v.articolo = a.ID WHERE v.articolo IS NULL OR v.segno <> " . KV_DIGEST);
    $count = mysqli_query(kvConnection(), "SELECT COUNT(*), (SELECT COUNT(*) FROM kv_voci$language) FROM $articles");
    if (!$result instanceof mysqli_result || !$count instanceof mysqli_result) {
        return null;
    }
    $numbers = array_column(mysqli_fetch_all($result), 0);
    list($rows, $entries) = mysqli_fetch_row($count);
    if ($numbers !== [] || $rows !== $entries) {
        $result = mysqli_query(kvConnection(), "SELECT articolo FROM kv_voci$language LEFT JOIN $articles a ON a.ID = articolo"
            . ' WHERE a.ID IS NULL');
        if (!$result instanceof mysqli_result) {
            return null;
        }
        $numbers = array_values(array_unique(array_merge($numbers, array_column(mysqli_fetch_all($result), 0))));
    }
    return count($numbers) * 4 > (int) $rows ? null : $numbers;
}

/** Of some articles those whose words the index doesn't have as they are in the tables, those gone included. */
function kvDifferingAmong(array $numbers, array $tables, string $language): array
{
    list($articles, $cartText) = $tables;
    kvSetCharset('latin1');
    $differing = [];
    foreach (array_chunk($numbers, KV_ARTICLES_TOGETHER) as $some) {
        $list = implode(',', array_map('intval', $some));
        $result = mysqli_query(kvConnection(), "SELECT a.ID FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID LEFT JOIN"
            . " kv_voci$language v ON v.articolo = a.ID WHERE a.ID IN ($list) AND (v.articolo IS NULL OR v.segno <> " . KV_DIGEST
            . ") UNION SELECT articolo FROM kv_voci$language LEFT JOIN $articles a ON a.ID = articolo WHERE articolo IN ($list)"
            . ' AND a.ID IS NULL');
        $differing[] = $result instanceof mysqli_result ? array_column(mysqli_fetch_all($result), 0) : $some;
    }
    return $differing === [] ? [] : array_merge(...$differing);
}

/** Makes the index of a language anew beside the former one. The failure. */
function kvRebuildIndex(KvLoad $load, array $tables): string
{
    $failure = kvIndexTables($load->language);
    foreach (['kv_parole', 'kv_vocaboli', 'kv_voci'] as $name) {
        $load->made[] = $name . $load->language;
    }
    $failure = $failure === ''
        ? kvReadWords($tables, '1 = 1', fn(string $name): string => KV_NEW . $name . $load->language) : $failure;
    // A key that is made of rows which are there is sorted at once.
    return $failure === ''
        ? kvRunSql('ALTER TABLE ' . KV_NEW . "kv_parole{$load->language} ADD KEY articolo (articolo)") : $failure;
}

/** Brings the index up to what a load brings: anew where there is none, else for the articles that differ. The failure. */
function kvUpdateIndex(KvLoad $load): string
{
    $articles = 'articoli' . $load->language;
    $filled = fn(string $table): string => (in_array($table, $load->made, true) ? KV_NEW : '') . $table;
    if (!in_array($articles, $load->made, true)) {
        return $load->articles === [] ? '' : kvIndexChanged($load);
    }
    if (!in_array('dettaglio', $load->made, true) && !kvTableExists('dettaglio')) {
        return '';
    }
    $tables = [$filled($articles), $filled('dettaglio')];
    $differing = kvDifferingArticles($tables, $load->language);
    return $differing === null ? kvRebuildIndex($load, $tables) : kvRereadArticles($differing, $tables, $load->language);
}

/** Reads the words of some articles again, in the transaction of the load. The failure. */
function kvRereadArticles(array $numbers, array $tables, string $language): string
{
    foreach (array_chunk($numbers, KV_ARTICLES_TOGETHER) as $some) {
        $list = implode(',', array_map('intval', $some));
        $failure = kvRunSql("DELETE FROM kv_parole$language WHERE articolo IN ($list)");
        $failure = $failure === '' ? kvRunSql("DELETE FROM kv_voci$language WHERE articolo IN ($list)") : $failure;
        $failure = $failure === ''
            ? kvReadWords($tables, "a.ID IN ($list)", fn(string $name): string => $name . $language) : $failure;
        if ($failure !== '') {
            return $failure;
        }
    }
    return '';
}

/**
 * The words of the changed articles. Their codes are in one table for all languages, which the first one brings: what it
 * brings for others shows in its own marks as well. Most changes are of prices, which have no words.
 */
function kvIndexChanged(KvLoad $load): string
{
    $numbers = array_keys($load->articles);
    foreach ($load->language === '' ? ['', '_l2', '_l3', '_l4'] : [$load->language] as $language) {
        if (!kvIsIndexCurrent($language)) {
            continue;
        }
        $tables = ["articoli$language", 'dettaglio'];
        $differing = kvDifferingAmong($numbers, $tables, $language);
        $failure = kvRereadArticles($differing, $tables, $language);
        if ($failure !== '') {
            return $failure;
        }
        $numbers = $language === '' ? $differing : $numbers;
    }
    return '';
}
