<?php
// ***1.0.7***
// Takes the forms of lognew.php: access, registration, own data, passwords, leaving. Every answer is a redirection, to
// the shop or to the login page with a message.
include "funcs.php";
include_once "kvaccount.php";

if ($_SERVER['REQUEST_METHOD'] !== 'POST' || !kvIsTokenValid()) {
    kvMessaggio(4);
}
$kvEmail = strtolower(kvLineField($_POST, 'email', 190));
$kvPw = kvPassword('pw');
switch (kvCampo($_POST, 'azione', 20)) {
    case 'entra':
        kvAccesso($kvEmail, $kvPw);
        break;
    case 'registra':
        kvRegistrazione($kvEmail, $kvPw);
        break;
    case 'conferma':
        kvConfermaRegistrazione(kvCampo($_POST, 'r', 64));
        break;
    case 'dati':
        kvCambiaDati();
        break;
    case 'password':
        kvCambiaPassword($kvPw);
        break;
    case 'esporta':
        kvDatiPropri();
        break;
    case 'elimina':
        kvEliminaAccesso();
        break;
    case 'richiedi':
        kvRichiediPassword($kvEmail);
        break;
    case 'ripristina':
        kvRipristina(kvCampo($_POST, 'g', 64), $kvPw);
        break;
    case 'esci':
        $_SESSION = [];
        session_regenerate_id(true);
        kvGoTo("index.htm");
        break;
    default:
        kvMessaggio(4);
}
