<?php
// The withdrawals that buyers sent, newest first; what has become of each.
include "bo_base.php";
include_once "bo_recessi.php";
boRequireAccess();

const BO_PER_PAGE = 25;

$boState = kvCampo($_GET, 'stato', 20);
$boState = in_array($boState, BO_WITHDRAWAL_STATES, true) ? $boState : '';
$boHere = boAddress('recessi.php', ['stato' => $boState]);
if (boIsSubmitted()) {
    boSaveWithdrawal($boHere);
}
list($boWhere, $boValues) = $boState === '' ? ['1 = 1', []] : ['r.stato = ?', [$boState]];
$boFound = boCountRows("SELECT COUNT(*) AS n FROM kv_recessi r WHERE $boWhere", $boValues);
$boPageCount = max(1, (int) ceil($boFound / BO_PER_PAGE));
$boPage = boNumberWithin($_GET, 'p', 1, $boPageCount);
$boWithdrawals = kvQuery('SELECT r.id, r.numero, r.creato, r.tardi, r.stato, r.righe, o.codice, o.nome FROM kv_recessi r'
    . " INNER JOIN kv_ordini o ON o.id = r.ordine WHERE $boWhere ORDER BY r.id DESC LIMIT " . BO_PER_PAGE . ' OFFSET '
    . ($boPage - 1) * BO_PER_PAGE, $boValues) ?? [];
boPageStart('Recessi', 'recessi.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="recessi.php">
<label>Stato <select name="stato"><?php
    echo boOptions(['' => 'Tutti'] + array_combine(BO_WITHDRAWAL_STATES, array_map('ucfirst', BO_WITHDRAWAL_STATES)), $boState); ?></select></label>
<p><button type="submit">Mostra</button></p>
</form>
<?php if ($boWithdrawals === []) { ?>
<p>Nessun recesso.</p>
<?php
} else {
    boWithdrawalTable($boWithdrawals, $boHere);
    boPageLinks('recessi.php', ['stato' => $boState], $boPage, $boPageCount);
}
boPageEnd();
