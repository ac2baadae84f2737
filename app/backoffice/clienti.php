<?php
// The registered customers: search, those who wait for approval, approval on the spot.
include "bo_base.php";
boRiservata();

const BO_PER_PAGINA = 25;

/** What a request asks of the list: the parameters that stand for it, the condition and its values. */
function boFiltroClienti(array $richiesta): array
{
    $parametri = ['q' => kvLineField($richiesta, 'q', 100), 'attesa' => isset($richiesta['attesa']) ? '1' : ''];
    $dove = $parametri['attesa'] === '' ? '1 = 1' : 'approvato = 0';
    if ($parametri['q'] === '') {
        return [$parametri, $dove, []];
    }
    return [$parametri, $dove . " AND INSTR(CONCAT_WS(' ', email, nome, cognome, nome, rsoc, piva, citta), ?) > 0",
        [$parametri['q']]];
}

/** What the list says of one customer's approval: a mark, or the form that gives it. */
function boApprovazione(array $cliente, array $parametri): string
{
    if ($cliente['approvato']) {
        return 'Sì';
    }
    return '<form method="post" accept-charset="utf-8" action="' . kvHtml(boIndirizzo('clienti.php', $parametri)) . '">' . boCampoGettone()
        . '<input type="hidden" name="id" value="' . (int) $cliente['id'] . '">'
        . '<button type="submit" aria-label="Approva ' . kvHtmlUtf8($cliente['email']) . '">Approva</button></form>';
}

list($boParametri, $boDove, $boValori) = boFiltroClienti($_GET);
if (boInvio()) {
    kvQuery('UPDATE kv_clienti SET approvato = 1 WHERE id = ?', [boNumero($_POST, 'id', 0, PHP_INT_MAX)]);
    if (kvRigheToccate() === 1) {
        boAvvisa('Cliente approvato.');
    }
    boVai(boIndirizzo('clienti.php', $boParametri));
}
$boTrovati = boConta("SELECT COUNT(*) AS n FROM kv_clienti WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovati / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boClienti = kvQuery('SELECT id, email, nome, cognome, rsoc, listino, sconto, approvato, creato FROM kv_clienti'
    . " WHERE $boDove ORDER BY id DESC LIMIT " . BO_PER_PAGINA . ' OFFSET ' . ($boPagina - 1) * BO_PER_PAGINA,
    $boValori) ?? [];
boInizio('Clienti', 'clienti.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="clienti.php" role="search">
<?php echo boCampo('Nome, e-mail, ragione sociale, partita IVA o città', 'q', $boParametri['q'],
    'type="search" maxlength="100"'); ?>
<label class="spunta"><input type="checkbox" name="attesa" value="1"<?php
    echo $boParametri['attesa'] === '' ? '' : ' checked'; ?>> <span>Solo in attesa di approvazione</span></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boClienti === []) { ?>
<p><?php echo implode('', $boParametri) === '' ? 'Nessun cliente registrato.' : 'Nessun cliente trovato.'; ?></p>
<?php } else { ?>
<p class="sommario"><?php echo $boTrovati, $boTrovati === 1 ? ' cliente' : ' clienti'; ?></p>
<?php
    boTabella(['Cliente', 'E-mail', 'Registrato', '#Listino', '#Sconto %', 'Approvato'], array_map(fn($riga) => [
        '<a href="cliente.php?id=' . (int) $riga['id'] . '">'
            . kvHtmlUtf8(trim($riga['nome'] . ' ' . $riga['cognome']) ?: $riga['email']) . '</a>'
            . ($riga['rsoc'] === '' ? '' : '<small>' . kvHtmlUtf8($riga['rsoc']) . '</small>'),
        kvHtmlUtf8($riga['email']), boData($riga['creato'], false), (string) (int) $riga['listino'],
        boDecimale($riga['sconto']), boApprovazione($riga, $boParametri)], $boClienti), 'Clienti');
    boPagine('clienti.php', $boParametri, $boPagina, $boQuantePagine);
}
boFine();
