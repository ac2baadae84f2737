<?php
// ***1.0.7***
// Takes the forms of lognew.php: access, registration, own data, passwords, leaving. Every answer is a redirection, to
// the shop or to the login page with a message.
include "funcs.php";
include_once "kvaccount.php";

if ($_SERVER['REQUEST_METHOD'] !== 'POST' || !kvIsTokenValid()) {
    kvGoToMessage(4);
}
$kvEmail = strtolower(kvLineField($_POST, 'email', 190));
$kvPw = kvPassword('pw');
switch (kvCampo($_POST, 'azione', 20)) {
    case 'entra':
        kvAccess($kvEmail, $kvPw);
        break;
    case 'registra':
        kvRegister($kvEmail, $kvPw);
        break;
    case 'conferma':
        kvConfirmRegistration(kvCampo($_POST, 'r', 64));
        break;
    case 'dati':
        kvChangeData();
        break;
    case 'password':
        kvChangePassword($kvPw);
        break;
    case 'esporta':
        kvOwnData();
        break;
    case 'elimina':
        kvDeleteAccount();
        break;
    case 'richiedi':
        kvRequestPassword($kvEmail);
        break;
    case 'ripristina':
        kvResetPassword(kvCampo($_POST, 'g', 64), $kvPw);
        break;
    case 'esci':
        $_SESSION = [];
        session_regenerate_id(true);
        kvGoTo("index.htm");
        break;
    default:
        kvGoToMessage(4);
}
