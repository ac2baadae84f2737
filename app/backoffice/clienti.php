<?php
// The registered customers, with the listino (0 to 9) and the personal discount (percent) of each.
include "bo_base.php";
boRiservata();

if ($_SERVER['REQUEST_METHOD'] === 'POST') {
    $boListino = (int) boCampo($_POST, 'listino', 2);
    $boSconto = (float) str_replace(',', '.', boCampo($_POST, 'sconto', 6));
    if (boGettoneValido() && $boListino >= 0 && $boListino <= 9 && $boSconto >= 0 && $boSconto <= 100) {
        boQuery('UPDATE kv_clienti SET listino = ?, sconto = ? WHERE id = ?',
            [$boListino, $boSconto, (int) boCampo($_POST, 'id', 10)]);
    }
    header('Location: clienti.php?q=' . rawurlencode(boCampo($_GET, 'q', 100)), true, 303);
    exit;
}
$boCerca = boCampo($_GET, 'q', 100);
$boSimile = '%' . addcslashes($boCerca, '%_\\') . '%';
$boClienti = boQuery(
    "SELECT id, email, nome, cognome, listino, sconto, creato FROM kv_clienti"
    . " WHERE CONCAT_WS(' ', email, nome, cognome) LIKE ? ORDER BY id DESC LIMIT 200", [$boSimile]) ?? [];
boInizio('Clienti');
?>
<form method="get" action="clienti.php" role="search">
<label>Cerca <input type="search" name="q" maxlength="100" value="<?php echo boHtml($boCerca); ?>"></label>
<button type="submit">Cerca</button>
</form>
<?php if ($boClienti === []) { ?>
<p>Nessun cliente registrato.</p>
<?php } else { ?>
<table>
<thead><tr><th>Cliente</th><th>E-mail</th><th>Registrato</th><th>Listino e sconto %</th></tr></thead>
<tbody>
<?php foreach ($boClienti as $boCliente) { ?>
<tr>
<td><?php echo boHtml($boCliente['nome'] . ' ' . $boCliente['cognome']); ?></td>
<td><?php echo boHtml($boCliente['email']); ?></td>
<td><?php echo boHtml($boCliente['creato']); ?></td>
<td>
<form class="riga" method="post" action="clienti.php?q=<?php echo rawurlencode($boCerca); ?>">
<input type="hidden" name="gettone" value="<?php echo boGettone(); ?>">
<input type="hidden" name="id" value="<?php echo (int) $boCliente['id']; ?>">
<input type="number" name="listino" min="0" max="9" aria-label="Listino"
  value="<?php echo (int) $boCliente['listino']; ?>">
<input type="number" name="sconto" min="0" max="100" step="0.01" aria-label="Sconto"
  value="<?php echo (float) $boCliente['sconto']; ?>">
<button type="submit">Salva</button>
</form>
</td>
</tr>
<?php } ?>
</tbody>
</table>
<?php }
boFine();
