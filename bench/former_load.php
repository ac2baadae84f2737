<?php
// The load as it was before it was unseen, to be timed beside today's: each statement is run as it comes, on the
// tables that visitors read, rows of one table joined, a commit before each lock is given back. Called as updatedb.php
// is; lies beside the shop's own scripts, whose reading of the files it uses.
include_once "kvutf8.php";
include_once "kvdb.php";
include_once "kvload.php";

/** Runs the statements of a file; the first failure. */
function formerFile(array $sql): string
{
    $limit = kvBatchLimit();
    $table = $rows = '';
    foreach (kvSqlStatements($sql) as $statement) {
        $isRow = preg_match('/\AINSERT INTO (\S+)\s+VALUES \(/', $statement, $parts) === 1;
        if ($isRow && $parts[1] === $table && strlen($rows) + strlen($statement) < $limit) {
            $rows .= ',(' . substr($statement, strlen($parts[0]));
            continue;
        }
        $failure = $rows === '' ? '' : kvRunSql($rows);
        $table = $isRow ? $parts[1] : '';
        $rows = $isRow ? $statement : '';
        if ($failure === '' && !$isRow && $statement !== '') {
            $failure = stripos($statement, 'UNLOCK') === 0 ? kvRunSql('COMMIT') : '';
            $failure = $failure === '' ? kvRunSql($statement) : $failure;
        }
        if ($failure !== '') {
            return $failure;
        }
    }
    $failure = $rows === '' ? '' : kvRunSql($rows);
    return $failure === '' ? kvRunSql('COMMIT') : $failure;
}

@set_time_limit(0);
foreach (["SET SESSION sql_mode = 'STRICT_ALL_TABLES,NO_AUTO_VALUE_ON_ZERO'", 'SET unique_checks = 0',
          'SET foreign_key_checks = 0', 'SET autocommit = 0'] as $setting) {
    mysqli_query(kvConnection(), $setting);
}
$failure = formerFile(kvOpenSql('dbdel.sql'));
$failure = $failure === '' ? formerFile(kvOpenSql('db.sql')) : $failure;
echo $failure === '' ? 'OK' : $failure;
