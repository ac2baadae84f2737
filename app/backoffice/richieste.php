<?php
// Passwords that customers asked for. Each request is a link with a token, good once and for an hour; the table holds
// the token's hash alone, so sending it again means making another one.
include "bo_base.php";
include_once "kvmail.php";
boRiservata();

const BO_PER_PAGINA = 25;

/** Mails a customer a fresh link; the one before it is no longer good. False when the mail wasn't taken. */
function boInviaRichiesta(array $cliente): bool
{
    $gettone = bin2hex(random_bytes(24));
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$cliente['email']]);
    kvQuery('INSERT INTO kv_richieste (email, creato, gettone, scade, stato)'
        . " VALUES (?, NOW(), ?, NOW() + INTERVAL 1 HOUR, 'nuova')", [$cliente['email'], hash('sha256', $gettone)]);
    $lingua = preg_match('/^_l[2-4]$/D', $cliente['lingua']) ? $cliente['lingua'] : '';
    $negozio = kvSender();
    // The back office is made once for all languages of the shop, so its mail speaks two.
    return kvMail($cliente['email'], $negozio['email'], $negozio['nome'] . ' - Password',
        "Per scegliere una nuova password aprire questo indirizzo entro un'ora.\r\n"
        . "To choose a new password, open this address within an hour.\r\n\r\n"
        . kvUtf8(boImpostazioni()['indirizzo']) . "/login$lingua.php?g=$gettone\r\n\r\n" . $negozio['firma']);
}

/** What has become of a request. */
function boEsitoRichiesta(array $riga): string
{
    return $riga['stato'] === 'nuova' && $riga['scaduta'] ? 'scaduta' : $riga['stato'];
}

/** What can be done about a request, as HTML; nothing for an address that no customer has. */
function boAzioniRichiesta(array $riga): string
{
    if ($riga['cliente'] === null) {
        return 'Nessun cliente';
    }
    return '<form method="post" accept-charset="utf-8" action="richieste.php">' . boCampoGettone() . '<input type="hidden" name="id" value="'
        . (int) $riga['cliente'] . '"><button type="submit" class="piano" aria-label="Invia di nuovo a '
        . kvHtmlUtf8($riga['email']) . '">Invia di nuovo</button></form> <a href="cliente.php?id=' . (int) $riga['cliente']
        . '">Imposta una password</a>';
}

if (boInvio()) {
    $boCliente = kvRiga('SELECT id, email, lingua FROM kv_clienti WHERE id = ?',
        [boNumero($_POST, 'id', 0, PHP_INT_MAX)]);
    if ($boCliente !== null) {
        $boPartita = boInviaRichiesta($boCliente);
        boAvvisa($boPartita ? 'Inviato un nuovo indirizzo a ' . $boCliente['email'] . '.'
            : 'Il server non ha accettato il messaggio.', !$boPartita);
    }
    boVai('richieste.php');
}
$boCerca = kvLineField($_GET, 'q', 100);
$boDove = "r.stato NOT IN ('registrazione', 'registrata')" . ($boCerca === '' ? '' : ' AND INSTR(r.email, ?) > 0');
$boValori = $boCerca === '' ? [] : [$boCerca];
$boTrovate = boConta("SELECT COUNT(*) AS n FROM kv_richieste r WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovate / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boRichieste = kvQuery('SELECT r.email, r.creato, r.scade, r.scade <= NOW() AS scaduta, r.stato, c.id AS cliente'
    . " FROM kv_richieste r LEFT JOIN kv_clienti c ON c.email = r.email WHERE $boDove ORDER BY r.id DESC LIMIT "
    . BO_PER_PAGINA . ' OFFSET ' . ($boPagina - 1) * BO_PER_PAGINA, $boValori) ?? [];
boInizio('Password richieste', 'richieste.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="richieste.php" role="search">
<?php echo boCampo('E-mail', 'q', $boCerca, 'type="search" maxlength="100"'); ?>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boRichieste === []) { ?>
<p>Nessuna richiesta.</p>
<?php
} else {
    boTabella(['E-mail', 'Richiesta', 'Scade', 'Stato', 'Azioni'], array_map(fn($riga) => [
        kvHtmlUtf8($riga['email']), boData($riga['creato']), boData($riga['scade']), kvHtml(boEsitoRichiesta($riga)),
        boAzioniRichiesta($riga)], $boRichieste), 'Richieste');
    boPagine('richieste.php', ['q' => $boCerca], $boPagina, $boQuantePagine);
}
boFine();
