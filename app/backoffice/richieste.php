<?php
// Passwords that customers asked for. Each request is a link with a token, good once and for an hour; the table holds
// the token's hash alone, so sending it again means making another one.
include "bo_base.php";
include_once "kvmail.php";
boRequireAccess();

const BO_PER_PAGE = 25;

/** Mails a customer a fresh link; the one before it is no longer good. False when the mail wasn't taken. */
function boSendRequest(array $cliente): bool
{
    $token = bin2hex(random_bytes(24));
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$cliente['email']]);
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 HOUR, 'nuova')", [$cliente['email'], hash('sha256', $token)]);
    $language = preg_match('/^_l[2-4]$/D', $cliente['lingua']) ? $cliente['lingua'] : '';
    $shop = kvSender();
    // The back office is made once for all languages of the shop, so its mail speaks two.
    return kvMail($cliente['email'], $shop['email'], $shop['nome'] . ' - Password',
        "Per scegliere una nuova password aprire questo indirizzo entro un'ora.\r\n"
        . "To choose a new password, open this address within an hour.\r\n\r\n"
        . kvUtf8(boSettings()['indirizzo']) . "/login$language.php?g=$token\r\n\r\n" . $shop['firma']);
}

/** What has become of a request. */
function boRequestOutcome(array $row): string
{
    return $row['stato'] === 'nuova' && $row['scaduta'] ? 'scaduta' : $row['stato'];
}

/** What can be done about a request, as HTML; nothing for an address that no customer has. */
function boRequestActions(array $row): string
{
    if ($row['cliente'] === null) {
        return 'Nessun cliente';
    }
    return '<form method="post" accept-charset="utf-8" action="richieste.php">' . boTokenField() . '<input type="hidden" name="id" value="'
        . (int) $row['cliente'] . '"><button type="submit" class="piano" aria-label="Invia di nuovo a '
        . kvHtmlUtf8($row['email']) . '">Invia di nuovo</button></form> <a href="cliente.php?id=' . (int) $row['cliente']
        . '">Imposta una password</a>';
}

if (boIsSubmitted()) {
    $boCustomer = kvRiga('SELECT id, email, lingua FROM kv_clienti WHERE id = ?',
        [boNumberWithin($_POST, 'id', 0, PHP_INT_MAX)]);
    if ($boCustomer !== null) {
        $boSent = boSendRequest($boCustomer);
        boNotify($boSent ? 'Inviato un nuovo indirizzo a ' . $boCustomer['email'] . '.'
            : 'Il server non ha accettato il messaggio.', !$boSent);
    }
    boGoTo('richieste.php');
}
$boSearch = kvLineField($_GET, 'q', 100);
$boWhere = "r.stato NOT IN ('registrazione', 'registrata')" . ($boSearch === '' ? '' : ' AND INSTR(r.email, ?) > 0');
$boValues = $boSearch === '' ? [] : [$boSearch];
$boFound = boCountRows("SELECT COUNT(*) AS n FROM kv_richieste r WHERE $boWhere", $boValues);
$boPageCount = max(1, (int) ceil($boFound / BO_PER_PAGE));
$boPage = boNumberWithin($_GET, 'p', 1, $boPageCount);
$boRequests = kvQuery('SELECT r.email, r.creato, r.scade, r.scade <= NOW() AS scaduta, r.stato, c.id AS cliente'
    . " FROM kv_richieste r LEFT JOIN kv_clienti c ON c.email = r.email WHERE $boWhere ORDER BY r.id DESC LIMIT "
    . BO_PER_PAGE . ' OFFSET ' . ($boPage - 1) * BO_PER_PAGE, $boValues) ?? [];
boPageStart('Password richieste', 'richieste.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="richieste.php" role="search">
<?php echo boField('E-mail', 'q', $boSearch, 'type="search" maxlength="100"'); ?>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boRequests === []) { ?>
<p>Nessuna richiesta.</p>
<?php
} else {
    boTable(['E-mail', 'Richiesta', 'Scade', 'Stato', 'Azioni'], array_map(fn($row) => [
        kvHtmlUtf8($row['email']), boDateText($row['creato']), boDateText($row['scade']), kvHtml(boRequestOutcome($row)),
        boRequestActions($row)], $boRequests), 'Richieste');
    boPageLinks('richieste.php', ['q' => $boSearch], $boPage, $boPageCount);
}
boPageEnd();
