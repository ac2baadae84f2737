<?php
// ***1.0.7***
// The merchant's words of the order mail, as the build makes them: lines that append to $info. kvmail.php includes it
// with $codice, $totale_lordo, $mail_valuta and $riepilogo set.
if (!isset($riepilogo)) {
    exit;
}
$info = "";
<<1-testo_email>>
return $info;
