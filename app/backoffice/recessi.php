<?php
// The withdrawals that buyers sent, newest first; what has become of each.
include "bo_base.php";
include_once "bo_recessi.php";
boRiservata();

const BO_PER_PAGINA = 25;

$boStato = kvCampo($_GET, 'stato', 20);
$boStato = in_array($boStato, BO_STATI_RECESSO, true) ? $boStato : '';
$boQui = boIndirizzo('recessi.php', ['stato' => $boStato]);
if (boInvio()) {
    boSalvaRecesso($boQui);
}
list($boDove, $boValori) = $boStato === '' ? ['1 = 1', []] : ['r.stato = ?', [$boStato]];
$boTrovati = boConta("SELECT COUNT(*) AS n FROM kv_recessi r WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovati / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boRecessi = kvQuery('SELECT r.id, r.numero, r.creato, r.tardi, r.stato, r.righe, o.codice, o.nome FROM kv_recessi r'
    . " INNER JOIN kv_ordini o ON o.id = r.ordine WHERE $boDove ORDER BY r.id DESC LIMIT " . BO_PER_PAGINA . ' OFFSET '
    . ($boPagina - 1) * BO_PER_PAGINA, $boValori) ?? [];
boInizio('Recessi', 'recessi.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="recessi.php">
<label>Stato <select name="stato"><?php
    echo boScelte(['' => 'Tutti'] + array_combine(BO_STATI_RECESSO, array_map('ucfirst', BO_STATI_RECESSO)), $boStato); ?></select></label>
<p><button type="submit">Mostra</button></p>
</form>
<?php if ($boRecessi === []) { ?>
<p>Nessun recesso.</p>
<?php
} else {
    boTabellaRecessi($boRecessi, $boQui);
    boPagine('recessi.php', ['stato' => $boStato], $boPagina, $boQuantePagine);
}
boFine();
