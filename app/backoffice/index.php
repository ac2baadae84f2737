<?php
// First page of the back office: asks for user and password. Five wrong answers for one account from one address, or
// twenty from one address, bar further ones for a quarter of an hour.
include "bo_base.php";

/** Why these access data don't open the back office; empty when they do. */
function boRifiuto(string $utente, string $password): string
{
    $chiavi = [kvAttemptsKey('backoffice', $utente), kvAttemptsKey('backoffice', '')];
    if (!kvAdmitAttempt($chiavi[0], 'accessi_conto') || !kvAdmitAttempt($chiavi[1], 'accessi')) {
        return 'Troppi tentativi: riprovare tra un quarto d\'ora.';
    }
    // Both comparisons always take place, on texts of equal length.
    $giuste = hash_equals(hash('sha256', kvFromCp1252(boImpostazioni()['utente'])), hash('sha256', $utente))
        & hash_equals(hash('sha256', kvFromCp1252(boImpostazioni()['password'])), hash('sha256', $password));
    if (!boProtetto() || !$giuste) {
        return 'Nome utente o password errati.';
    }
    foreach ($chiavi as $chiave) {
        kvForgetAttempts($chiave);
    }
    return '';
}

if (boEntrato()) {
    boVai('pannello.php');
}
$boErrore = '';
if (!boProtetto()) {
    $boErrore = 'Il BackOffice non è protetto e resta chiuso: indicare nome utente e password nella scheda Internet,'
        . ' quindi costruire ed aggiornare il negozio.';
} elseif (boInvio()) {
    $boErrore = boRifiuto(kvCampo($_POST, 'utente'),
        isset($_POST['password']) && is_string($_POST['password']) ? kvCut(kvSentText($_POST['password'], true), 200) : '');
    if ($boErrore === '') {
        boEntra();
        boVai('pannello.php');
    }
}
if ($boErrore !== '') {
    boAvvisa($boErrore, true);
}
boInizio('Accesso');
if (boProtetto()) {
?>
<form class="modulo" method="post" accept-charset="utf-8" action="index.php">
<?php echo boCampoGettone(); ?>
<label>Nome utente <input name="utente" maxlength="200" autocomplete="username" required autofocus></label>
<label>Password <input type="password" name="password" maxlength="200" autocomplete="current-password" required></label>
<p><button type="submit">Entra</button></p>
</form>
<?php
}
boFine();
