<?php
// ***1.0.7***
// Loads the SQL files that came with the last publishing into the database: dbdel.sql, which drops the shop's tables,
// then db.sql. The caller proves itself with the word that is after "#" on the files' first line; the answer is
// "OK" or a description of what failed. Files that were loaded are removed. With ?w=phpinfo it shows what PHP is here, to
// whoever has just proven themselves; to all others that there is one.
include_once "kvutf8.php";
include_once "kvdb.php";
include_once "kvload.php";

header('Content-Type: text/plain; charset=windows-1252');
header('Cache-Control: no-store');
header('X-Content-Type-Options: nosniff');
if (($_GET['w'] ?? '') === 'phpinfo') {
    die(kvIsDiagnosisAllowed() ? kvDiagnosis() : "PHP attivo\n");
}
ignore_user_abort(true);
@set_time_limit(0);
$kvFile = ['dbdel<<1-IDlingua>>.sql', 'db<<1-IDlingua>>.sql'];
$kvDrops = kvOpenSql($kvFile[0]);
$kvNew = kvOpenSql($kvFile[1]);
$kvWord = isset($_POST['sec']) && is_string($_POST['sec']) ? $_POST['sec'] : '';
if ($kvDrops === null || $kvNew === null || !hash_equals($kvNew['word'], $kvWord)
    || !hash_equals($kvDrops['word'], $kvWord)) {
    die('accesso al database non autorizzato');
}
kvAllowDiagnosis();
kvKeepKey($_POST['chiave'] ?? null);
kvProtectSql($kvFile);
$kvResult = kvLoadAll($kvDrops, $kvNew, "<<1-IDlingua>>");
if ($kvResult === '') {
    kvRemoveSql([$kvDrops, $kvNew], $kvFile);
    kvRenewIndex("<<1-IDlingua>>");
    include_once "kvmappa.php";
    kvWriteMaps("<<1-IDlingua>>");
    $kvResult = 'OK';
}
echo $kvResult;
