<?php
// Leaves the back office. A link alone can't do it: the form of the header carries the session's token.
include "bo_base.php";

if (boIsSubmitted()) {
    $_SESSION = [];
    session_regenerate_id(true);
    boNotify('Sessione terminata.');
}
boGoTo('index.php');
