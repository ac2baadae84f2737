<?php
// ***1.0.7***
// A load that visitors never see. Tables that the files make anew are filled under other names and put in the position
// of the former ones by one RENAME TABLE; rows that are exchanged in tables which stay are so in one transaction.
// Whatever fails, and wherever the script is ended, the former catalogue is what visitors read.
include_once "kvindex.php";

/** What the names of tables being filled, and of those being taken away, begin with. */
const KV_NUOVA = 'kvn_';
const KV_VECCHIA = 'kvo_';
/** Tables of the catalogue that are sent only while they hold a row; a full load without one takes it away. */
const KV_TALVOLTA = ['kv_unita', 'kv_minimi', 'kv_sicurezza', 'kv_produttori', 'kv_consegna'];

/** The state of a load: the tables to be dropped, those made anew, the numbers of changed articles. */
final class KvCarico
{
    /** @var string[] */
    public $via = [];
    /** @var string[] */
    public $nuove = [];
    /** @var int[] */
    public $articoli = [];
    /** @var string[] What a load that was ended has left. */
    public $resti;
    /** @var string */
    public $lingua;

    public function __construct(string $lingua)
    {
        $this->lingua = $lingua;
        $this->resti = kvTabelleComincianti(KV_NUOVA);
    }
}

/** Takes a statement of the drop file: a table to be dropped waits for the end, rows are deleted at once. The failure. */
function kvTogliDaCarico(KvCarico $carico, string $istruzione): string
{
    if (preg_match('/\ADROP TABLE (\S+)\z/i', trim($istruzione), $parti)) {
        $carico->via[] = $parti[1];
        return '';
    }
    if (preg_match('/\ADELETE FROM (?:articoli\w*|dettaglio) WHERE ID IN \((.*)\)\z/is', trim($istruzione), $parti)) {
        kvArticoliCambiati($carico, explode(',', $parti[1]));
    }
    return kvEseguiSql($istruzione);
}

/** Notes articles whose words are to be read again; numbers come between quotes. */
function kvArticoliCambiati(KvCarico $carico, array $numeri): void
{
    foreach ($numeri as $numero) {
        $carico->articoli[(int) trim($numero, " '\r\n")] = true;
    }
}

/**
 * A statement of the load file as it is run: against the table being filled where there is one. Null for one that has no
 * use: locks, which would end a transaction.
 */
function kvIstruzioneCarico(KvCarico $carico, string $istruzione): ?string
{
    if (preg_match('/\A(?:UN)?LOCK TABLES?\b/i', $istruzione)) {
        return null;
    }
    if (preg_match('/\ACREATE TABLE (\S+)/i', $istruzione, $parti)) {
        $carico->nuove[] = $parti[1];
        if (in_array(KV_NUOVA . $parti[1], $carico->resti, true)) {
            kvEseguiSql('DROP TABLE IF EXISTS ' . KV_NUOVA . $parti[1]);
        }
        return 'CREATE TABLE ' . KV_NUOVA . $parti[1] . substr($istruzione, strlen($parti[0]));
    }
    if (preg_match('/\AINSERT INTO (\S+)/i', $istruzione, $parti)) {
        if (in_array($parti[1], $carico->nuove, true)) {
            return 'INSERT INTO ' . KV_NUOVA . substr($istruzione, strlen('INSERT INTO '));
        }
        if (preg_match('/\A(?:articoli\w*|dettaglio)\z/', $parti[1])
            && preg_match('/VALUES \(\s*(\d+)/', $istruzione, $numero)) {
            kvArticoliCambiati($carico, [$numero[1]]);
        }
    }
    return $istruzione;
}

/** Tables of the catalogue that a build only writes where it has rows for them. */
const KV_LATERALI = ['kv_offerte'];

/** Where the whole catalogue comes without one of these tables, its former rows go with it. The failure. */
function kvSvuotaLaterali(KvCarico $carico): string
{
    $guasto = '';
    foreach (in_array('ordinamento', $carico->nuove, true) ? array_diff(KV_LATERALI, $carico->nuove) : [] as $tabella) {
        if (kvQuery("SELECT 1 FROM $tabella LIMIT 1") === []) {
            continue;
        }
        $guasto = $guasto === '' ? kvEseguiSql('DROP TABLE IF EXISTS ' . KV_NUOVA . $tabella) : $guasto;
        $guasto = $guasto === '' ? kvEseguiSql('CREATE TABLE ' . KV_NUOVA . "$tabella (" . kvDefinitions()[$tabella]
            . ') ENGINE=InnoDB') : $guasto;
        $carico->nuove[] = $tabella;
    }
    return $guasto;
}

/** Puts the filled tables in the position of the former ones, all at once; takes those away. The failure. */
function kvScambia(KvCarico $carico): string
{
    $passi = [];
    $vecchie = [];
    $presenti = kvTabelleComincianti('');
    foreach (array_unique(array_merge($carico->via, $carico->nuove)) as $tabella) {
        if (in_array($tabella, $presenti, true)) {
            if (in_array(KV_VECCHIA . $tabella, $presenti, true)) {
                kvEseguiSql('DROP TABLE IF EXISTS ' . KV_VECCHIA . $tabella);
            }
            $passi[] = "$tabella TO " . KV_VECCHIA . $tabella;
            $vecchie[] = KV_VECCHIA . $tabella;
        }
        if (in_array($tabella, $carico->nuove, true)) {
            $passi[] = KV_NUOVA . "$tabella TO $tabella";
        }
    }
    $guasto = $passi === [] ? '' : kvEseguiSql('RENAME TABLE ' . implode(', ', $passi));
    if ($guasto === '' && $vecchie !== []) {
        kvEseguiSql('DROP TABLE IF EXISTS ' . implode(', ', $vecchie));
    }
    return $guasto;
}

/** The tables of the database whose names begin so. */
function kvTabelleComincianti(string $inizio): array
{
    $esito = mysqli_query(kvConnection(), "SHOW TABLES LIKE '" . addcslashes($inizio, '_%') . "%'");
    return $esito instanceof mysqli_result ? array_column(mysqli_fetch_all($esito), 0) : [];
}

/** Whether a table is there. */
function kvEsiste(string $tabella): bool
{
    return kvRiga('SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = DATABASE() AND TABLE_NAME = ?',
        [$tabella]) !== null;
}

/** What a failed load leaves: nothing. */
function kvAnnullaCarico(KvCarico $carico): void
{
    kvEseguiSql('ROLLBACK');
    foreach ($carico->nuove as $tabella) {
        kvEseguiSql('DROP TABLE IF EXISTS ' . KV_NUOVA . $tabella);
    }
}

/** Runs both files of a load as one step. The first failure, empty when all went well. */
function kvCaricaInsieme(array $via, array $nuovo, string $lingua): string
{
    $carico = new KvCarico($lingua);
    $guasto = '';
    foreach (kvIstruzioniSql($via) as $istruzione) {
        $guasto = $guasto === '' && $istruzione !== '' ? kvTogliDaCarico($carico, $istruzione) : $guasto;
    }
    $guasto = $guasto === '' ? kvCaricaSql($nuovo, $carico) : $guasto;
    $guasto = $guasto === '' ? kvSvuotaLaterali($carico) : $guasto;
    $guasto = $guasto === '' ? kvIndicizza($carico) : $guasto;
    $guasto = $guasto === '' ? kvSegnaCarico() : $guasto;
    $guasto = $guasto === '' ? kvEseguiSql('COMMIT') : $guasto;
    $carico->via = array_merge($carico->via, in_array('articoli', $carico->nuove, true) ? KV_TALVOLTA : []);
    $guasto = $guasto === '' ? kvScambia($carico) : $guasto;
    if ($guasto === '' && array_merge($carico->nuove, $carico->via) !== []) {
        // Once more: what was shown between the first mark and the exchange was the former catalogue.
        $stati = in_array("articoli$lingua", $carico->nuove, true) ? ["indice$lingua" => '2'] : [];
        $guasto = kvSegnaCarico($stati + ['laterali' => implode(',', array_intersect(KV_TALVOLTA, kvTabelleComincianti('kv_')))]);
        $guasto = $guasto === '' ? kvEseguiSql('COMMIT') : $guasto;
    }
    if ($guasto !== '') {
        kvAnnullaCarico($carico);
    }
    return $guasto;
}

/** Marks the load, for pages that browsers keep: a page of another load is another page. Sets other states too. The failure. */
function kvSegnaCarico(array $stati = []): string
{
    $righe = "('carico', '" . bin2hex(random_bytes(8)) . "')";
    foreach ($stati as $nome => $valore) {
        $righe .= ", ('$nome', '$valore')";
    }
    return kvEseguiSql("REPLACE INTO kv_stato (nome, valore) VALUES $righe");
}
