<?php
// One customer: approval, price list, personal discount, data, a new password, the orders; a copy of all data for the
// customer, and the way out of the table.
include "bo_base.php";
include_once "kvdati.php";
boRequireAccess();

/** The data of a customer: column => label, longest text. */
const BO_CUSTOMER_DATA = ['nome' => ['Nome', 100], 'cognome' => ['Cognome', 100], 'rsoc' => ['Ragione sociale', 200],
    'piva' => ['Partita IVA / Codice fiscale', 40], 'indirizzo' => ['Indirizzo', 200], 'cap' => ['CAP', 20],
    'citta' => ['Città', 100], 'provincia' => ['Provincia', 60], 'paese' => ['Paese', 60],
    'telefono' => ['Telefono', 60]];

/** The personal discount of the form: percent, comma or point; null when it isn't one of 0 to 100. */
function boDiscount(string $text): ?string
{
    $text = $text === '' ? '0' : str_replace(',', '.', $text);
    return preg_match('/^\d{1,3}(\.\d{1,2})?$/D', $text) && (float) $text <= 100 ? $text : null;
}

/** Stores what the form says; the result is what is wrong with it, empty for nothing. */
function boSaveCustomer(int $id): string
{
    kvRequireTables();
    $email = strtolower(kvLineField($_POST, 'email', 190));
    $listino = kvCampo($_POST, 'listino', 2);
    $discount = boDiscount(kvCampo($_POST, 'sconto', 8));
    if (filter_var($email, FILTER_VALIDATE_EMAIL) === false) {
        return 'L\'indirizzo e-mail non è valido.';
    }
    if (!preg_match('/^\d$/D', $listino) || $discount === null) {
        return 'Il listino va da 0 a 9, lo sconto da 0 a 100.';
    }
    $columns = ['email = ?', 'listino = ?', 'sconto = ?', 'approvato = ?'];
    $values = [$email, (int) $listino, $discount, isset($_POST['approvato']) ? 1 : 0];
    foreach (BO_CUSTOMER_DATA as $name => list(, $most)) {
        $columns[] = $name . ' = ?';
        $values[] = kvLineField($_POST, $name, $most);
    }
    $values[] = $id;
    $result = kvQuery('UPDATE kv_clienti SET ' . implode(', ', $columns) . ' WHERE id = ?', $values);
    return $result === null ? 'I dati non sono stati salvati: un altro cliente ha questo indirizzo e-mail.' : '';
}

/** A password that can be read aloud: no letter that looks like another. */
function boRandomPassword(): string
{
    $characters = 'abcdefghjkmnpqrstuvwxyz23456789';
    $password = '';
    for ($n = 0; $n < 14; $n++) {
        $password .= $n === 4 || $n === 9 ? '-' : $characters[random_int(0, strlen($characters) - 1)];
    }
    return $password;
}

/** Links that the customer asked for are no longer good. */
function boCancelRequests(string $email): void
{
    kvQuery("UPDATE kv_richieste SET stato = 'annullata' WHERE email = ? AND stato = 'nuova'", [$email]);
}

/** Gives the customer a password: the one of the form, or one made up, which is shown once. */
function boSetPassword(array $cliente): void
{
    $action = kvCampo($_POST, 'azione', 20) === 'genera';
    $pw = $action ? boRandomPassword() : kvPassword('pw');
    if (kvLength($pw) < 8) {
        boNotify('La password deve avere almeno 8 caratteri.', true);
        return;
    }
    kvQuery('UPDATE kv_clienti SET pw = ? WHERE id = ?', [password_hash($pw, PASSWORD_DEFAULT), (int) $cliente['id']]);
    boCancelRequests($cliente['email']);
    boNotify($action ? "La nuova password è $pw (viene mostrata solo ora)." : 'Password cambiata.');
}

/** What a form of the page asks for; goes on to a page. */
function boRun(array $cliente): void
{
    $id = (int) $cliente['id'];
    switch (kvCampo($_POST, 'azione', 20)) {
        case 'salva':
            $error = boSaveCustomer($id);
            boNotify($error === '' ? 'Dati salvati.' : $error, $error !== '');
            break;
        case 'password':
        case 'genera':
            boSetPassword($cliente);
            break;
        case 'esporta':
            kvDownloadData($cliente);
            break;
        case 'elimina':
            if (kvDeleteData($cliente)) {
                boNotify('Il cliente ' . $cliente['email'] . ' è stato eliminato.');
                boGoTo('clienti.php');
            }
            boNotify('Il cliente non è stato eliminato: riprovare tra qualche minuto.', true);
    }
    boGoTo('cliente.php?id=' . $id);
}

/** Asks whether the customer is really to be deleted. */
function boDeletionPage(array $cliente): void
{
    boPageStart('Eliminare il cliente?', 'clienti.php');
    echo '<p>', kvHtmlUtf8(trim($cliente['nome'] . ' ' . $cliente['cognome'])), ', ', kvHtmlUtf8($cliente['email']),
        ': l\'accesso al negozio e i dati della persona vanno persi; gli ordini restano per il fisco, senza nome.</p>',
        kvOpenOrders($cliente) === 0 ? ''
            : '<p class="avviso errore" role="alert">Ci sono ordini in corso: senza i dati non si possono spedire.</p>',
        '<form method="post" accept-charset="utf-8" action="cliente.php?id=',
        (int) $cliente['id'], '">', boTokenField(), '<input type="hidden" name="azione" value="elimina">',
        '<p><button type="submit" class="pericolo">Elimina</button> <a href="cliente.php?id=', (int) $cliente['id'],
        '">Annulla</a></p></form>';
    boPageEnd();
}

function boCustomerForm(array $cliente): void
{
    echo '<form class="modulo" method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $cliente['id'], '"><h2>Dati</h2>',
        boTokenField(), '<input type="hidden" name="azione" value="salva">',
        '<label class="spunta"><input type="checkbox" name="approvato" value="1"',
        $cliente['approvato'] ? ' checked' : '',
        '> <span>Approvato</span></label><div class="campi"><label>Listino <select name="listino">';
    for ($n = 0; $n <= 9; $n++) {
        echo '<option', $n === (int) $cliente['listino'] ? ' selected' : '', ">$n</option>";
    }
    echo '</select></label>', boField('Sconto personale (%)', 'sconto', boDecimalText($cliente['sconto']),
        'inputmode="decimal" maxlength="6" pattern="[0-9]{1,3}([,.][0-9]{1,2})?"'),
        boField('E-mail', 'email', $cliente['email'], 'type="email" maxlength="190" required');
    foreach (BO_CUSTOMER_DATA as $name => list($label, $most)) {
        echo boField($label, $name, $cliente[$name], 'maxlength="' . $most . '"');
    }
    echo '</div><p><button type="submit">Salva</button></p></form>';
}

function boPasswordForm(array $cliente): void
{
    echo '<form class="modulo" method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $cliente['id'], '">', boTokenField(),
        '<h2>Nuova password</h2><label>Password (almeno 8 caratteri) <input type="text" name="pw" maxlength="100"',
        ' autocomplete="off" spellcheck="false"></label><p>',
        '<button type="submit" name="azione" value="password">Imposta</button> ',
        '<button type="submit" name="azione" value="genera" class="piano">Genera e mostra</button></p></form>';
}

$boCustomer = kvRiga('SELECT * FROM kv_clienti WHERE id = ?', [boNumberWithin($_GET, 'id', 0, PHP_INT_MAX)]);
if ($boCustomer === null) {
    boCloseWith(404, 'Questo cliente non esiste.');
}
if (boIsSubmitted()) {
    boRun($boCustomer);
}
if (isset($_GET['elimina'])) {
    boDeletionPage($boCustomer);
    exit;
}
$boOrders = kvQuery('SELECT codice, creato, totale, valuta, stato FROM kv_ordini WHERE cliente = ? ORDER BY id DESC'
    . ' LIMIT 20', [(int) $boCustomer['id']]) ?? [];
boPageStart(kvFromUtf8(trim($boCustomer['nome'] . ' ' . $boCustomer['cognome']) ?: $boCustomer['email']), 'clienti.php');
echo '<p class="sommario">Cliente n. ', (int) $boCustomer['id'], ', registrato il ', boDateText($boCustomer['creato']),
    '</p>';
if (!$boCustomer['approvato']) {
    echo '<p class="avviso">In attesa di approvazione: vede il negozio come un visitatore.</p>';
}
echo '<div class="colonne">';
boCustomerForm($boCustomer);
echo '<div>';
boPasswordForm($boCustomer);
echo '<h2>Ordini</h2>';
if ($boOrders === []) {
    echo '<p>Nessun ordine.</p>';
} else {
    boTable(['Codice', 'Data', '#Totale', 'Stato'], array_map(fn($row) => [
        '<a href="' . kvHtml(boAddress('ordine.php', ['codice' => $row['codice']])) . '">' . kvHtml($row['codice'])
            . '</a>', boDateText($row['creato'], false), boAmountText($row['totale'], $row['valuta']),
        boStateText($row['stato'])], $boOrders), 'Ordini del cliente');
}
echo '<h2>Dati personali</h2><form method="post" accept-charset="utf-8" action="cliente.php?id=', (int) $boCustomer['id'], '">',
    boTokenField(), '<input type="hidden" name="azione" value="esporta"><p><button type="submit" class="piano">',
    'Esporta i dati (JSON)</button></p></form>',
    '<p><a href="cliente.php?id=', (int) $boCustomer['id'], '&amp;elimina=1">Elimina il cliente...</a></p></div></div>';
boPageEnd();
