<?php
// ***1.0.7***
// The index of words that the search asks: for each language kv_insiemi, which articles have a word, by where they have it
// (kvset.php); kv_vocaboli, each word once, in which a part of a word is looked for; kv_sequenze, the same of words with marks
// between them (kvsequence.php); kv_voci, department, title and position of each article, with a mark of the texts that the
// words came from and the group word by which related articles are found; kv_parole, the words of each article, by which
// those that it no longer has are known. A load reads the words of the articles whose texts it changes and of no others.
include_once "kvutf8.php";
include_once "kvset.php";
include_once "kvsequence.php";
include_once "kvreindex.php";

/** Where a word is: in the title, in the code, in the texts. A lower number comes first among results. */
const KV_RANKS = ['plain_titolo' => 0, 'codice' => 1, 'plain_sottotitolo' => 2, 'descrizione' => 2, 'note' => 2];
/** Articles whose words are read at a time, and steps of reading whose words are written at once, in their order. */
const KV_ARTICLES_TOGETHER = 500;
const KV_STEPS_TOGETHER = 20;
/** Sets of so many words are put in order at a time. */
const KV_SETS_TOGETHER = 40;
/** Most bytes of a statement that writes rows of the index. */
const KV_INDEX_ROWS = 500000;
/**
 * What the words of an article are read from, as bytes that tell one state from another; the number changes with the
 * rules of this file.
 */
const KV_DIGEST = "UNHEX(MD5(CONCAT('2', '\n', IFNULL(catID, ''), '\n', IFNULL(codice, ''), '\n', IFNULL(plain_titolo, ''),"
    . " '\n', IFNULL(plain_sottotitolo, ''), '\n', IFNULL(descrizione, ''), '\n', IFNULL(note, ''), '\n', IFNULL(correlazione, ''))))";

/** The words of a folded UTF-8 text: its runs of characters and digits, of forty characters at most. */
function kvTextWords(string $text): array
{
    preg_match_all('/[\p{L}\p{N}\p{M}]+/u', $text, $found);
    return array_map(fn($word) => kvCut($word, 40), $found[0]);
}

/** A text of an article as it is searched: folded UTF-8 without elements. */
function kvSearchedText(string $text): string
{
    return kvFold(kvUtf8(strpbrk($text, '<&') === false ? $text
        : html_entity_decode(preg_replace('/<[^>]*>/', ' ', $text), ENT_QUOTES, 'cp1252')));
}

/** The words of some texts of an article, searched ones by their field, with their rank, the best one of each. */
function kvArticleWords(array $texts): array
{
    $words = [];
    foreach ($texts as $field => $text) {
        foreach (kvTextWords($text) as $word) {
            $words += [$word => KV_RANKS[$field]];
        }
    }
    return $words;
}

/** Makes new tables of a language, to be filled before they take the position of the former ones. The failure. */
function kvIndexTables(string $language): string
{
    $word = 'parola VARCHAR(40) CHARACTER SET utf8mb4 COLLATE utf8mb4_bin NOT NULL';
    $sequence = str_replace('40', '50', $word);
    $failure = '';
    foreach (["kv_parole$language" => 'articolo INT NOT NULL PRIMARY KEY, parole MEDIUMTEXT CHARACTER SET utf8mb4 NOT NULL',
              "kv_vocaboli$language" => "$word PRIMARY KEY",
              "kv_sequenze$language" => "$sequence PRIMARY KEY",
              "kv_insiemi$language" => "$sequence, rango TINYINT NOT NULL, quanti INT NOT NULL, insieme MEDIUMBLOB NOT NULL,"
              . ' PRIMARY KEY (parola, rango)',
              "kv_voci$language" => 'articolo INT NOT NULL PRIMARY KEY, reparto VARCHAR(20) CHARACTER SET utf8mb4 NOT NULL,'
              . ' titolo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, segno BINARY(16) NOT NULL,'
              . ' gruppo VARCHAR(60) CHARACTER SET utf8mb4 NOT NULL, posizione INT NOT NULL, KEY gruppo (gruppo)'] as $name => $columns) {
        $failure = $failure === '' ? kvRunSql('DROP TABLE IF EXISTS ' . KV_NEW . $name) : $failure;
        $failure = $failure === '' ? kvRunSql('CREATE TABLE ' . KV_NEW . "$name ($columns) ENGINE=InnoDB") : $failure;
    }
    return $failure;
}

/** Rows of the index that wait to be written: of kv_voci and kv_parole as values of an INSERT, and what the sets get. */
final class KvIndexRows
{
    /** @var string[] */
    public $entries = [];
    /** @var string[] */
    public $words = [];
    /** @var array By the name of a set, rank and word in one: numbers of articles, four bytes each, or positions. */
    public $sets = [];
}

/** The names of the sets that an article is in: rank and word or sequence in one, its department among them. */
function kvSetNames(array $row): array
{
    $texts = array_map(fn(string $field): string => kvSearchedText((string) ($row[$field] ?? '')), array_keys(KV_RANKS));
    // No sequence goes from one text to the next.
    $names = array_values(array_unique(kvSequences(implode("\n", $texts))));
    foreach (kvArticleWords(array_combine(array_keys(KV_RANKS), $texts)) as $word => $rank) {
        $names[] = $rank . $word;
    }
    $names[] = '0' . kvDepartmentWord((string) $row['catID']);
    return $names;
}

/** The row of an article in kv_voci, and that in kv_parole. */
function kvIndexRows(array $row, array $names, int $position): array
{
    kvSetCharset('utf8mb4');
    $id = (int) $row['ID'];
    return ["($id," . kvSqlText(kvUtf8((string) $row['catID'])) . ',' . kvSqlText(kvIndexTitle($row)) . ',0x' . bin2hex($row['segno'])
        . ',' . kvSqlText(kvIndexGroup((string) $row['correlazione'])) . ",$position)", "($id," . kvSqlText(implode(' ', $names)) . ')'];
}

/** A text as a value of a statement; the connection must speak its character set. */
function kvSqlText(string $value): string
{
    return "'" . mysqli_real_escape_string(kvConnection(), $value) . "'";
}

/** The title of an article as results are ordered by it. */
function kvIndexTitle(array $row): string
{
    return kvCut(kvFold(kvUtf8((string) $row['plain_titolo'])), 60);
}

/** Adds the words of some article rows to those that wait. */
function kvCollectWords(array $rows, KvIndexRows $waiting): void
{
    foreach ($rows as $row) {
        $names = kvSetNames($row);
        list($waiting->entries[], $waiting->words[]) = kvIndexRows($row, $names, 0);
        foreach ($names as $name) {
            $waiting->sets[$name] = ($waiting->sets[$name] ?? '') . pack('l', (int) $row['ID']);
        }
    }
}

/**
 * Inserts rows, each "(...)", in statements of a size that the server takes; `insert` is INSERT and its table, `rest` what
 * is after the rows. The failure.
 */
function kvInsertRows(string $insert, iterable $rows, string $rest = ''): string
{
    $most = min(KV_INDEX_ROWS, kvBatchLimit() - 1000);
    $batch = '';
    foreach ($rows as $row) {
        if ($batch !== '' && strlen($batch) + strlen($row) > $most) {
            if (mysqli_query(kvConnection(), "$insert VALUES $batch$rest") === false) {
                return kvSqlFailure($insert);
            }
            kvSignOfLife();
            $batch = '';
        }
        $batch .= ($batch === '' ? '' : ',') . $row;
    }
    return $batch === '' || mysqli_query(kvConnection(), "$insert VALUES $batch$rest") !== false ? '' : kvSqlFailure($insert);
}

/** A row of kv_insiemi. */
function kvSetRow(string $name, int $count, string $stored): string
{
    return '(' . kvSqlText(substr($name, 1)) . ",$name[0],$count,x'" . bin2hex($stored) . "')";
}

/** Writes the words and sequences among names of sets, each once, into tables that begin so. The failure. */
function kvWriteVocabulary(array $names, string $tables, string $language): string
{
    $words = $sequences = [];
    foreach ($names as $name) {
        $word = substr((string) $name, 1);
        if ((int) ((string) $name)[0] === KV_SEQUENCE_RANK) {
            $sequences[] = '(' . kvSqlText($word) . ')';
        } elseif (!in_array($word[0], [KV_DEPARTMENT, KV_LATE], true)) {
            $words[$word] = "('$word')";
        }
    }
    $failure = kvInsertRows("INSERT IGNORE INTO {$tables}kv_vocaboli$language", $words);
    return $failure === '' ? kvInsertRows("INSERT IGNORE INTO {$tables}kv_sequenze$language", $sequences) : $failure;
}

/** Writes the words that wait into the tables being filled, the sets as lists of numbers of articles. The failure. */
function kvWriteWords(KvIndexRows $waiting, string $language): string
{
    kvSetCharset('utf8mb4');
    $into = fn(string $table): string => 'INTO ' . KV_NEW . $table . $language;
    $lists = (function () use ($waiting): Generator {
        // In the order of their key, which the server adds to the end of its pages.
        ksort($waiting->sets, SORT_STRING);
        foreach ($waiting->sets as $name => $list) {
            yield kvSetRow((string) $name, strlen($list) >> 2, $list);
        }
    })();
    $failure = kvInsertRows('INSERT ' . $into('kv_parole'), $waiting->words);
    $failure = $failure === '' ? kvInsertRows('INSERT ' . $into('kv_voci'), $waiting->entries) : $failure;
    $failure = $failure === '' ? kvWriteVocabulary(array_keys($waiting->sets), KV_NEW, $language) : $failure;
    return $failure === '' ? kvInsertRows('INSERT ' . $into('kv_insiemi'), $lists, ' ON DUPLICATE KEY UPDATE quanti = quanti'
        . ' + VALUES(quanti), insieme = CONCAT(insieme, VALUES(insieme))') : $failure;
}

/** The rows of the articles that `where` chooses, after a number, as many as are read at a time; null when the server refused. */
function kvIndexArticles(array $tables, string $where, int $after): ?array
{
    list($articles, $cartText) = $tables;
    kvSetCharset('latin1');
    $result = mysqli_query(kvConnection(), 'SELECT a.ID, catID, codice, plain_titolo, plain_sottotitolo, descrizione, note,'
        . ' correlazione, ' . KV_DIGEST . " AS segno FROM $articles a LEFT JOIN $cartText d ON d.ID = a.ID WHERE a.ID > $after AND $where"
        . ' ORDER BY a.ID LIMIT ' . KV_ARTICLES_TOGETHER);
    return $result instanceof mysqli_result ? mysqli_fetch_all($result, MYSQLI_ASSOC) : null;
}

/** Reads all articles in steps and writes their words into the tables being filled. The failure. */
function kvReadWords(array $tables, string $language): string
{
    $last = -2147483648;
    $waiting = new KvIndexRows();
    for ($step = 1; true; $step++) {
        $rows = kvIndexArticles($tables, '1 = 1', $last);
        if ($rows === null) {
            return kvSqlFailure("SELECT FROM $tables[0]");
        }
        kvCollectWords($rows, $waiting);
        $finished = count($rows) < KV_ARTICLES_TOGETHER;
        if ($finished || $step % KV_STEPS_TOGETHER === 0) {
            $failure = kvWriteWords($waiting, $language);
            if ($finished || $failure !== '') {
                return $failure;
            }
            $waiting = new KvIndexRows();
        }
        $last = (int) end($rows)['ID'];
        kvSignOfLife();
    }
}

/** Whether the index of a language is there as this release makes it, with all its tables. */
function kvIsIndexCurrent(string $language): bool
{
    $columns = [["kv_voci$language", 'posizione'], ["kv_insiemi$language", 'insieme'], ["kv_parole$language", 'parole'],
        ["kv_vocaboli$language", 'parola'], ["kv_sequenze$language", 'parola']];
    $row = kvRiga('SELECT COUNT(*) AS n FROM information_schema.COLUMNS WHERE TABLE_SCHEMA = DATABASE() AND ('
        . implode(' OR ', array_fill(0, count($columns), '(TABLE_NAME = ? AND COLUMN_NAME = ?)')) . ')', array_merge(...$columns));
    return (int) ($row['n'] ?? 0) === count($columns);
}

/** Rebuilds the index of a language beside the former one. The failure. */
function kvRebuildIndex(KvLoad $load, array $tables): string
{
    $failure = kvIndexTables($load->language);
    foreach (['kv_parole', 'kv_vocaboli', 'kv_sequenze', 'kv_insiemi', 'kv_voci'] as $name) {
        $load->made[] = $name . $load->language;
    }
    $failure = $failure === '' ? kvReadWords($tables, $load->language) : $failure;
    return $failure === '' ? kvGivePositions($load->language) : $failure;
}

/** Gives the articles of the tables being filled their positions, and the sets their members by these. The failure. */
function kvGivePositions(string $language): string
{
    $table = KV_NEW . "kv_voci$language";
    // The order is that of the server, which results have as well. A key of rows that are there is sorted at once.
    foreach (['SET @kv_posizione = -1', "UPDATE $table SET posizione = (@kv_posizione := @kv_posizione + 1) ORDER BY titolo, articolo",
              "ALTER TABLE $table ADD KEY posizione (posizione)"] as $statement) {
        $failure = kvRunSql($statement);
        if ($failure !== '') {
            return $failure;
        }
    }
    $result = mysqli_query(kvConnection(), "SELECT articolo, posizione FROM $table", MYSQLI_USE_RESULT);
    $positions = [];
    while (is_object($result) && ($row = mysqli_fetch_row($result))) {
        $positions[(int) $row[0]] = (int) $row[1];
    }
    return kvOrderSets($positions, KV_NEW . "kv_insiemi$language");
}

/** Makes sets of positions out of lists of numbers of articles, some words at a time. The failure. */
function kvOrderSets(array $positions, string $table): string
{
    $empty = str_repeat("\0", (count($positions) >> 3) + 1);
    $from = '';
    kvSetCharset('utf8mb4');
    do {
        $result = mysqli_query(kvConnection(), "SELECT parola, rango, insieme FROM $table WHERE parola >= " . kvSqlText($from) . " ORDER BY parola, rango"
            . ' LIMIT ' . KV_SETS_TOGETHER);
        $rows = $result instanceof mysqli_result ? mysqli_fetch_all($result, MYSQLI_ASSOC) : null;
        $finished = count($rows ?? []) < KV_SETS_TOGETHER;
        // The next ones begin with the last word, of which there may be more.
        $from = $finished ? '' : (string) end($rows)['parola'];
        $sets = [];
        foreach ($finished ? $rows ?? [] : array_filter($rows, fn($row) => (string) $row['parola'] !== $from) as $row) {
            $members = array_map(fn($article) => $positions[$article], unpack('l*', $row['insieme']));
            $sets[] = kvSetRow($row['rango'] . $row['parola'], ...kvSetToStore(kvWithPositions($empty, $members)));
        }
        $failure = $rows === null ? kvSqlFailure("SELECT FROM $table") : kvInsertRows("REPLACE INTO $table", $sets);
    } while ($failure === '' && !$finished);
    return $failure;
}

/** Brings the index up to what a load brings: rebuilt where there is none, else for the articles that differ. The failure. */
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
