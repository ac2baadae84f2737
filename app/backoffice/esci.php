<?php
// Leaves the back office.
include "bo_base.php";

$_SESSION = [];
session_destroy();
header('Location: index.php', true, 303);
