<?php
// ***1.0.7***
// The message of a page: by its number `m`, or the notice that another script left in the session. The text of the
// address itself is never printed; `t` may only name a known message, as in ".37.".

$kvMessaggi = [
    1 => "<<4-accesso_errato>>",
    2 => "<<4-registrazione_incompleta>>",
    3 => "<<4-registrazione_doppia>>",
    4 => "<<4-sessione_scaduta>>",
    23 => "<<4-registrazione_obbligatoria>>",
    37 => "<<4-listino_obbligatorio>>",
    53 => "<<4-articolo_non_disponibile>>",
];
$kvNumero = (int) kvCampo($HTTP_GET_VARS, 'm', 4);
if (preg_match('/^\.(\d+)\.$/', kvCampo($HTTP_GET_VARS, 't', 8), $kvCodice)) {
    $kvNumero = (int) $kvCodice[1];
}
$kvAvviso = '';
if (kvSessione() && isset($_SESSION['avviso'])) {
    $kvAvviso = (string) $_SESSION['avviso'];
    unset($_SESSION['avviso']);
} elseif (isset($kvMessaggi[$kvNumero])) {
    $kvAvviso = $kvMessaggi[$kvNumero];
}
if ($kvNumero === 11) {
?>
<div class="avviso" role="status"><<1-rifiuto>></div>
<?php
} elseif ($kvAvviso !== '') {
?>
<p class="avviso" role="status"><?php echo $kvAvviso; ?></p>
<?php
}
