<?php
// ***1.0.7***
// The merchant's words of the order mail, as the build makes them: lines of a script that would append to $info. They are
// read as text (kvmail.php), not run: a backslash or a dollar sign of the merchant's would mean something in a script.
if (!function_exists('kvMailText')) {
    exit;
}
return <<<'KORVANE_MAIL'
<<1-testo_email>>
KORVANE_MAIL;
