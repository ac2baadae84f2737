<?php
// First page of the back office: asks for user and password, then goes on to the orders. Each wrong attempt of a
// session makes the next answer slower.
include "bo_base.php";

$boErrore = '';
list(, , , , $boUtente, $boPassword) = boImpostazioni();
if ($_SERVER['REQUEST_METHOD'] === 'POST') {
    $boData = isset($_POST['password']) && is_string($_POST['password']) ? $_POST['password'] : '';
    $boGiusta = hash_equals($boUtente, boCampo($_POST, 'utente', 100)) && hash_equals($boPassword, $boData);
    if ($boUtente !== '' && $boPassword !== '' && boGettoneValido() && $boGiusta) {
        session_regenerate_id(true);
        $_SESSION = ['accesso' => true];
        header('Location: ordini.php', true, 303);
        exit;
    }
    $_SESSION['tentativi'] = min(12, (int) ($_SESSION['tentativi'] ?? 0) + 1);
    usleep(300000 * $_SESSION['tentativi']);
    $boErrore = 'Nome utente o password errati.';
}
if (isset($_SESSION['accesso'])) {
    header('Location: ordini.php', true, 303);
    exit;
}
boInizio('Accesso');
if ($boUtente === '' || $boPassword === '') {
    $boErrore = 'Il BackOffice non è protetto e resta chiuso: indicare nome utente e password nella scheda Internet,'
        . ' quindi costruire ed aggiornare il negozio.';
}
if ($boErrore !== '') {
    echo '<p class="avviso" role="alert">', boHtml($boErrore), '</p>';
}
?>
<form method="post" action="index.php">
<input type="hidden" name="gettone" value="<?php echo boGettone(); ?>">
<label>Nome utente <input name="utente" maxlength="100" autocomplete="username" required></label>
<label>Password <input type="password" name="password" maxlength="100" autocomplete="current-password" required></label>
<button type="submit">Entra</button>
</form>
<?php
boFine();
