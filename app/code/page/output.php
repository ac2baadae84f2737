<?php
// ***1.0.7***
// The message of a page: by its number `m`, or the notice that another script left in the session. The text of the
// address itself is never printed; `t` may only name a known message, as in ".37.".
if (!defined('KORVANE_SHOP')) {
    exit;
}
if (isset($kvConfirmation)) {
    echo $kvConfirmation;
    return;
}
$kvMessages = [
    1 => "<<4-accesso_errato>>",
    2 => "<<4-registrazione_incompleta>>",
    3 => "<<4-registrazione_doppia>>",
    4 => "<<4-sessione_scaduta>>",
    5 => "<<4-attesa_approvazione>>",
    6 => "<<4-troppi_tentativi>>",
    7 => "<<4-ordine_campi_mancanti>>",
    8 => "<<4-dati_salvati>>",
    9 => "<<4-password_cambiata>>",
    10 => "<<4-password_inviata>>",
    12 => "<<4-password_scaduta>>",
    13 => "<<4-registrazione_inviata>>",
    14 => "<<4-troppo_presto>>",
    15 => "<<4-dati_eliminati>>",
    16 => "<<4-dati_in_corso>>",
    23 => "<<4-registrazione_obbligatoria>>",
    37 => "<<4-listino_obbligatorio>>",
    53 => "<<4-articolo_non_disponibile>>",
];
$kvNumber = (int) kvCampo($HTTP_GET_VARS, 'm', 4);
if (preg_match('/^\.(\d+)\.$/D', kvCampo($HTTP_GET_VARS, 't', 8), $kvCode)) {
    $kvNumber = (int) $kvCode[1];
}
if ($kvNumber === 23 && $clienteinattesa > 0) {
    $kvNumber = 5;
}
$kvAvviso = '';
if (kvStartSession() && isset($_SESSION['avviso'])) {
    $kvAvviso = (string) $_SESSION['avviso'];
    unset($_SESSION['avviso']);
} elseif (isset($kvMessages[$kvNumber])) {
    $kvAvviso = $kvMessages[$kvNumber];
}
if ($kvNumber === 11) {
?>
<div class="avviso" role="status"><<1-rifiuto>></div>
<?php
} elseif ($kvAvviso !== '') {
?>
<p class="avviso" role="status"><?php echo $kvAvviso; ?></p>
<?php
}
