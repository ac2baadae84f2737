<?php
// ***1.0.7***
// A load that visitors never see. Tables that the files rebuild are filled under other names and put in the position
// of the former ones by one RENAME TABLE; rows that are exchanged in tables which stay are so in one transaction.
// Whatever fails, and wherever the script is ended, the former catalogue is what visitors read.
include_once "kvindex.php";

/** What the names of tables being filled, and of those being taken away, begin with. */
const KV_NEW = 'kvn_';
const KV_OLD = 'kvo_';
/** Tables of the catalogue that are sent only while they hold a row; a full load without one takes it away. */
const KV_SOMETIMES = ['kv_unita', 'kv_minimi', 'kv_sicurezza', 'kv_produttori', 'kv_consegna'];

/** The state of a load: the tables to be dropped, those rebuilt, the numbers of changed articles. */
final class KvLoad
{
    /** @var string[] */
    public $drops = [];
    /** @var string[] */
    public $made = [];
    /** @var int[] */
    public $articles = [];
    /** @var string[] What a load that was ended has left. */
    public $leftovers;
    /** @var string */
    public $language;

    public function __construct(string $language)
    {
        $this->language = $language;
        $this->leftovers = kvTablesBeginning(KV_NEW);
    }
}

/** Takes a statement of the drop file: a table to be dropped waits for the end, rows are deleted at once. The failure. */
function kvDropForLoad(KvLoad $load, string $statement): string
{
    if (preg_match('/\ADROP TABLE (\S+)\z/i', trim($statement), $parts)) {
        $load->drops[] = $parts[1];
        return '';
    }
    if (preg_match('/\ADELETE FROM (?:articoli\w*|dettaglio) WHERE ID IN \((.*)\)\z/is', trim($statement), $parts)) {
        kvNoteChangedArticles($load, explode(',', $parts[1]));
    }
    return kvRunSql($statement);
}

/** Notes articles whose words are to be read again; numbers come between quotes. */
function kvNoteChangedArticles(KvLoad $load, array $numbers): void
{
    foreach ($numbers as $number) {
        $load->articles[(int) trim($number, " '\r\n")] = true;
    }
}

/**
 * A statement of the load file as it is run: against the table being filled where there is one. Null for one that has no
 * use: locks, which would end a transaction.
 */
function kvLoadStatement(KvLoad $load, string $statement): ?string
{
    if (preg_match('/\A(?:UN)?LOCK TABLES?\b/i', $statement)) {
        return null;
    }
    if (preg_match('/\ACREATE TABLE (\S+)/i', $statement, $parts)) {
        $load->made[] = $parts[1];
        if (in_array(KV_NEW . $parts[1], $load->leftovers, true)) {
            kvRunSql('DROP TABLE IF EXISTS ' . KV_NEW . $parts[1]);
        }
        return 'CREATE TABLE ' . KV_NEW . $parts[1] . substr($statement, strlen($parts[0]));
    }
    if (preg_match('/\AINSERT INTO (\S+)/i', $statement, $parts)) {
        if (in_array($parts[1], $load->made, true)) {
            return 'INSERT INTO ' . KV_NEW . substr($statement, strlen('INSERT INTO '));
        }
        if (preg_match('/\A(?:articoli\w*|dettaglio)\z/', $parts[1])
            && preg_match('/VALUES \(\s*(\d+)/', $statement, $number)) {
            kvNoteChangedArticles($load, [$number[1]]);
        }
    }
    return $statement;
}

/** Tables of the catalogue that a build only writes where it has rows for them. */
const KV_SIDE_TABLES = ['kv_offerte'];

/** Where the whole catalogue comes without one of these tables, its former rows go with it. The failure. */
function kvEmptySideTables(KvLoad $load): string
{
    $failure = '';
    foreach (in_array('ordinamento', $load->made, true) ? array_diff(KV_SIDE_TABLES, $load->made) : [] as $table) {
        if (kvQuery("SELECT 1 FROM $table LIMIT 1") === []) {
            continue;
        }
        $failure = $failure === '' ? kvRunSql('DROP TABLE IF EXISTS ' . KV_NEW . $table) : $failure;
        $failure = $failure === '' ? kvRunSql('CREATE TABLE ' . KV_NEW . "$table (" . kvDefinitions()[$table]
            . ') ENGINE=InnoDB') : $failure;
        $load->made[] = $table;
    }
    return $failure;
}

/** Puts the filled tables in the position of the former ones, all at once; takes those away. The failure. */
function kvSwapTables(KvLoad $load): string
{
    $steps = [];
    $old = [];
    $present = kvTablesBeginning('');
    foreach (array_unique(array_merge($load->drops, $load->made)) as $table) {
        if (in_array($table, $present, true)) {
            if (in_array(KV_OLD . $table, $present, true)) {
                kvRunSql('DROP TABLE IF EXISTS ' . KV_OLD . $table);
            }
            $steps[] = "$table TO " . KV_OLD . $table;
            $old[] = KV_OLD . $table;
        }
        if (in_array($table, $load->made, true)) {
            $steps[] = KV_NEW . "$table TO $table";
        }
    }
    $failure = $steps === [] ? '' : kvRunSql('RENAME TABLE ' . implode(', ', $steps));
    if ($failure === '' && $old !== []) {
        kvRunSql('DROP TABLE IF EXISTS ' . implode(', ', $old));
    }
    return $failure;
}

/** The tables of the database whose names begin so. */
function kvTablesBeginning(string $start): array
{
    $result = mysqli_query(kvConnection(), "SHOW TABLES LIKE '" . addcslashes($start, '_%') . "%'");
    return $result instanceof mysqli_result ? array_column(mysqli_fetch_all($result), 0) : [];
}

/** Whether a table is there. */
function kvTableExists(string $table): bool
{
    return kvRiga('SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = DATABASE() AND TABLE_NAME = ?',
        [$table]) !== null;
}

/** What a failed load leaves: nothing. */
function kvCancelLoad(KvLoad $load): void
{
    kvRunSql('ROLLBACK');
    foreach ($load->made as $table) {
        kvRunSql('DROP TABLE IF EXISTS ' . KV_NEW . $table);
    }
}

/** Runs both files of a load as one step. The first failure, empty when all went well. */
function kvLoadTogether(array $drops, array $new, string $language): string
{
    $load = new KvLoad($language);
    $failure = '';
    foreach (kvSqlStatements($drops) as $statement) {
        $failure = $failure === '' && $statement !== '' ? kvDropForLoad($load, $statement) : $failure;
    }
    $failure = $failure === '' ? kvLoadSql($new, $load) : $failure;
    $failure = $failure === '' ? kvEmptySideTables($load) : $failure;
    $failure = $failure === '' ? kvUpdateIndex($load) : $failure;
    $failure = $failure === '' ? kvMarkLoad() : $failure;
    $failure = $failure === '' ? kvRunSql('COMMIT') : $failure;
    $load->drops = array_merge($load->drops, in_array('articoli', $load->made, true) ? KV_SOMETIMES : []);
    $failure = $failure === '' ? kvSwapTables($load) : $failure;
    if ($failure === '' && array_merge($load->made, $load->drops) !== []) {
        // Once more: what was shown between the first mark and the exchange was the former catalogue.
        $states = in_array("articoli$language", $load->made, true) ? ["indice$language" => (string) KV_INDEX_OF_SEQUENCES] : [];
        $failure = kvMarkLoad($states + ['laterali' => implode(',', array_intersect(KV_SOMETIMES, kvTablesBeginning('kv_')))]);
        $failure = $failure === '' ? kvRunSql('COMMIT') : $failure;
    }
    if ($failure !== '') {
        kvCancelLoad($load);
    }
    return $failure;
}

/**
 * Makes an index of words that a load of changes has found as an earlier release made it, or not at all. The catalogue is
 * loaded by then: what fails here is for the next load, and the search reads all articles until then.
 */
function kvRenewIndex(string $language): void
{
    if (kvIsIndexCurrent($language) || !kvTableExists("articoli$language") || !kvTableExists('dettaglio')) {
        return;
    }
    $load = new KvLoad($language);
    $failure = kvRebuildIndex($load, ["articoli$language", 'dettaglio']);
    $failure = $failure === '' ? kvRunSql('COMMIT') : $failure;
    $failure = $failure === '' ? kvSwapTables($load) : $failure;
    $failure = $failure === '' ? kvMarkLoad(["indice$language" => (string) KV_INDEX_OF_SEQUENCES]) : $failure;
    $failure = $failure === '' ? kvRunSql('COMMIT') : $failure;
    if ($failure !== '') {
        kvCancelLoad($load);
        error_log('Shop database: ' . $failure);
    }
}

/** Marks the load, for pages that browsers keep: a page of another load is another page. Sets other states too. The failure. */
function kvMarkLoad(array $states = []): string
{
    $rows = "('carico', '" . bin2hex(random_bytes(8)) . "')";
    foreach ($states as $name => $value) {
        $rows .= ", ('$name', '$value')";
    }
    return kvRunSql("REPLACE INTO kv_stato (nome, valore) VALUES $rows");
}
