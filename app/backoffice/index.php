<?php
// First page of the back office: asks for user and password. Five wrong answers for one account from one address, or
// twenty from one address, bar further ones for a quarter of an hour.
include "bo_base.php";

/** Why these access data don't open the back office; empty when they do. */
function boRefusal(string $user, string $password): string
{
    $keys = [kvAttemptsKey('backoffice', $user), kvAttemptsKey('backoffice', '')];
    if (!kvAdmitAttempt($keys[0], 'accessi_conto') || !kvAdmitAttempt($keys[1], 'accessi')) {
        return 'Troppi tentativi: riprovare tra un quarto d\'ora.';
    }
    // Both comparisons always take place, on texts of equal length.
    $areRight = hash_equals(hash('sha256', kvFromCp1252(boSettings()['utente'])), hash('sha256', $user))
        & hash_equals(hash('sha256', kvFromCp1252(boSettings()['password'])), hash('sha256', $password));
    if (!boIsProtected() || !$areRight) {
        return 'Nome utente o password errati.';
    }
    foreach ($keys as $key) {
        kvForgetAttempts($key);
    }
    return '';
}

if (boHasAccess()) {
    boGoTo('pannello.php');
}
$boError = '';
if (!boIsProtected()) {
    $boError = 'Il BackOffice non è protetto e resta chiuso: indicare nome utente e password nella scheda Internet,'
        . ' quindi costruire ed aggiornare il negozio.';
} elseif (boIsSubmitted()) {
    $boError = boRefusal(kvCampo($_POST, 'utente'),
        isset($_POST['password']) && is_string($_POST['password']) ? kvCut(kvSentText($_POST['password'], true), 200) : '');
    if ($boError === '') {
        boLogIn();
        boGoTo('pannello.php');
    }
}
if ($boError !== '') {
    boNotify($boError, true);
}
boPageStart('Accesso');
if (boIsProtected()) {
?>
<form class="modulo" method="post" accept-charset="utf-8" action="index.php">
<?php echo boTokenField(); ?>
<label>Nome utente <input name="utente" maxlength="200" autocomplete="username" required autofocus></label>
<label>Password <input type="password" name="password" maxlength="200" autocomplete="current-password" required></label>
<p><button type="submit">Entra</button></p>
</form>
<?php
}
boPageEnd();
