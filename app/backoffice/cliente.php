<?php
// One customer: approval, price list, personal discount, data, a new password, the orders; a copy of all data for the
// customer, and the way out of the table.
include "bo_base.php";
include_once "kvdati.php";
boRiservata();

/** The data of a customer: column => label, longest text. */
const BO_DATI_CLIENTE = ['nome' => ['Nome', 100], 'cognome' => ['Cognome', 100], 'rsoc' => ['Ragione sociale', 200],
    'piva' => ['Partita IVA / Codice fiscale', 40], 'indirizzo' => ['Indirizzo', 200], 'cap' => ['CAP', 20],
    'citta' => ['Città', 100], 'provincia' => ['Provincia', 60], 'paese' => ['Paese', 60],
    'telefono' => ['Telefono', 60]];

/** The personal discount of the form: percent, comma or point; null when it isn't one of 0 to 100. */
function boSconto(string $testo): ?string
{
    $testo = $testo === '' ? '0' : str_replace(',', '.', $testo);
    return preg_match('/^\d{1,3}(\.\d{1,2})?$/D', $testo) && (float) $testo <= 100 ? $testo : null;
}

/** Stores what the form says; the result is what is wrong with it, empty for nothing. */
function boSalvaCliente(int $id): string
{
    kvRequireTables();
    $email = strtolower(kvLineField($_POST, 'email', 190));
    $listino = kvCampo($_POST, 'listino', 2);
    $sconto = boSconto(kvCampo($_POST, 'sconto', 8));
    if (filter_var($email, FILTER_VALIDATE_EMAIL) === false) {
        return 'L\'indirizzo e-mail non è valido.';
    }
    if (!preg_match('/^\d$/D', $listino) || $sconto === null) {
        return 'Il listino va da 0 a 9, lo sconto da 0 a 100.';
    }
    $colonne = ['email = ?', 'listino = ?', 'sconto = ?', 'approvato = ?'];
    $valori = [$email, (int) $listino, $sconto, isset($_POST['approvato']) ? 1 : 0];
    foreach (BO_DATI_CLIENTE as $nome => list(, $massimo)) {
        $colonne[] = $nome . ' = ?';
        $valori[] = kvLineField($_POST, $nome, $massimo);
    }
    $valori[] = $id;
    $esito = kvQuery('UPDATE kv_clienti SET ' . implode(', ', $colonne) . ' WHERE id = ?', $valori);
    return $esito === null ? 'I dati non sono stati salvati: un altro cliente ha questo indirizzo e-mail.' : '';
}

/** A password that can be read aloud: no letter that looks like another. */
function boPasswordCasuale(): string
{
    $lettere = 'abcdefghjkmnpqrstuvwxyz23456789';
    $password = '';
    for ($n = 0; $n < 14; $n++) {
        $password .= $n === 4 || $n === 9 ? '-' : $lettere[random_int(0, strlen($lettere) - 1)];
    }
    return $password;
}

/** Links that the customer asked for are no longer good. */
function boAnnullaRichieste(string $email): void
{
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$email]);
}

/** Gives the customer a password: the one of the form, or one made up, which is shown once. */
function boNuovaPassword(array $cliente): void
{
    $caso = kvCampo($_POST, 'azione', 20) === 'genera';
    $pw = $caso ? boPasswordCasuale() : (is_string($_POST['pw'] ?? null) ? kvCut(kvSentText($_POST['pw'], true), 100) : '');
    if (kvLength($pw) < 8) {
        boAvvisa('La password deve avere almeno 8 caratteri.', true);
        return;
    }
    kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [password_hash($pw, PASSWORD_DEFAULT), (int) $cliente['id']]);
    boAnnullaRichieste($cliente['email']);
    boAvvisa($caso ? "La nuova password è $pw (viene mostrata solo ora)." : 'Password cambiata.');
}

/** What a form of the page asks for; goes on to a page. */
function boEsegui(array $cliente): void
{
    $id = (int) $cliente['id'];
    switch (kvCampo($_POST, 'azione', 20)) {
        case 'salva':
            $errore = boSalvaCliente($id);
            boAvvisa($errore === '' ? 'Dati salvati.' : $errore, $errore !== '');
            break;
        case 'password':
        case 'genera':
            boNuovaPassword($cliente);
            break;
        case 'esporta':
            kvDownloadData($cliente);
            break;
        case 'elimina':
            if (kvDeleteData($cliente)) {
                boAvvisa('Il cliente ' . $cliente['email'] . ' è stato eliminato.');
                boVai('clienti.php');
            }
            boAvvisa('Il cliente non è stato eliminato: riprovare tra qualche minuto.', true);
    }
    boVai('cliente.php?id=' . $id);
}

/** Asks whether the customer is really to be deleted. */
function boConfermaElimina(array $cliente): void
{
    boInizio('Eliminare il cliente?', 'clienti.php');
    echo '<p>', kvHtmlUtf8(trim($cliente['nome'] . ' ' . $cliente['cognome'])), ', ', kvHtmlUtf8($cliente['email']),
        ': l\'accesso al negozio e i dati della persona vanno persi; gli ordini restano per il fisco, senza nome.</p>',
        kvOpenOrders($cliente) === 0 ? ''
            : '<p class="avviso errore" role="alert">Ci sono ordini in corso: senza i dati non si possono spedire.</p>',
        '<form method="post" accept-charset="utf-8" action="cliente.php?id=',
        (int) $cliente['id'], '">', boCampoGettone(), '<input type="hidden" name="azione" value="elimina">',
        '<p><button type="submit" class="pericolo">Elimina</button> <a href="cliente.php?id=', (int) $cliente['id'],
        '">Annulla</a></p></form>';
    boFine();
}

function boModuloCliente(array $cliente): void
{
    echo '<form class="modulo" method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $cliente['id'], '"><h2>Dati</h2>',
        boCampoGettone(), '<input type="hidden" name="azione" value="salva">',
        '<label class="spunta"><input type="checkbox" name="approvato" value="1"',
        $cliente['approvato'] ? ' checked' : '',
        '> <span>Approvato</span></label><div class="campi"><label>Listino <select name="listino">';
    for ($n = 0; $n <= 9; $n++) {
        echo '<option', $n === (int) $cliente['listino'] ? ' selected' : '', ">$n</option>";
    }
    echo '</select></label>', boCampo('Sconto personale (%)', 'sconto', boDecimale($cliente['sconto']),
        'inputmode="decimal" maxlength="6" pattern="[0-9]{1,3}([,.][0-9]{1,2})?"'),
        boCampo('E-mail', 'email', $cliente['email'], 'type="email" maxlength="190" required');
    foreach (BO_DATI_CLIENTE as $nome => list($etichetta, $massimo)) {
        echo boCampo($etichetta, $nome, $cliente[$nome], 'maxlength="' . $massimo . '"');
    }
    echo '</div><p><button type="submit">Salva</button></p></form>';
}

function boModuloPassword(array $cliente): void
{
    echo '<form class="modulo" method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $cliente['id'], '">', boCampoGettone(),
        '<h2>Nuova password</h2><label>Password (almeno 8 caratteri) <input type="text" name="pw" maxlength="100"',
        ' autocomplete="off" spellcheck="false"></label><p>',
        '<button type="submit" name="azione" value="password">Imposta</button> ',
        '<button type="submit" name="azione" value="genera" class="piano">Genera e mostra</button></p></form>';
}

$boCliente = kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [boNumero($_GET, 'id', 0, PHP_INT_MAX)]);
if ($boCliente === null) {
    boChiudi(404, 'Questo cliente non esiste.');
}
if (boInvio()) {
    boEsegui($boCliente);
}
if (isset($_GET['elimina'])) {
    boConfermaElimina($boCliente);
    exit;
}
$boOrdini = kvQuery('SELECT codice, creato, totale, valuta, stato FROM kv_ordini WHERE cliente = ? ORDER BY id DESC'
    . ' LIMIT 20', [(int) $boCliente['id']]) ?? [];
boInizio(kvFromUtf8(trim($boCliente['nome'] . ' ' . $boCliente['cognome']) ?: $boCliente['email']), 'clienti.php');
echo '<p class="sommario">Cliente n. ', (int) $boCliente['id'], ', registrato il ', boData($boCliente['creato']),
    '</p>';
if (!$boCliente['approvato']) {
    echo '<p class="avviso">In attesa di approvazione: vede il negozio come un visitatore.</p>';
}
echo '<div class="colonne">';
boModuloCliente($boCliente);
echo '<div>';
boModuloPassword($boCliente);
echo '<h2>Ordini</h2>';
if ($boOrdini === []) {
    echo '<p>Nessun ordine.</p>';
} else {
    boTabella(['Codice', 'Data', '#Totale', 'Stato'], array_map(fn($riga) => [
        '<a href="' . kvHtml(boIndirizzo('ordine.php', ['codice' => $riga['codice']])) . '">' . kvHtml($riga['codice'])
            . '</a>', boData($riga['creato'], false), boImporto($riga['totale'], $riga['valuta']),
        boStato($riga['stato'])], $boOrdini), 'Ordini del cliente');
}
echo '<h2>Dati personali</h2><form method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $boCliente['id'], '">',
    boCampoGettone(), '<input type="hidden" name="azione" value="esporta"><p><button type="submit" class="piano">',
    'Esporta i dati (JSON)</button></p></form>',
    '<p><a href="cliente.php?id=', (int) $boCliente['id'], '&amp;elimina=1">Elimina il cliente...</a></p></div></div>';
boFine();
