<?php
// The registered customers: search, those who wait for approval, approval on the spot.
include "bo_base.php";
boRequireAccess();

const BO_PER_PAGE = 25;

/** What a request asks of the list: the parameters that stand for it, the condition and its values. */
function boCustomerFilter(array $request): array
{
    $parameters = ['q' => kvLineField($request, 'q', 100), 'attesa' => isset($request['attesa']) ? '1' : ''];
    $where = $parameters['attesa'] === '' ? '1 = 1' : 'approvato = 0';
    if ($parameters['q'] === '') {
        return [$parameters, $where, []];
    }
    return [$parameters, $where . " AND INSTR(CONCAT_WS(' ', email, nome, cognome, nome, rsoc, piva, citta), ?) > 0",
        [$parameters['q']]];
}

/** What the list says of one customer's approval: a mark, or the form that gives it. */
function boApproval(array $cliente, array $parameters): string
{
    if ($cliente['approvato']) {
        return 'Sì';
    }
    return '<form method="post" accept-charset="utf-8" action="' . kvHtml(boAddress('clienti.php', $parameters)) . '">' . boTokenField()
        . '<input type="hidden" name="id" value="' . (int) $cliente['id'] . '">'
        . '<button type="submit" aria-label="Approva ' . kvHtmlUtf8($cliente['email']) . '">Approva</button></form>';
}

list($boParameters, $boWhere, $boValues) = boCustomerFilter($_GET);
if (boIsSubmitted()) {
    kvQuery('UPDATE kv_clienti SET approvato = 1 WHERE id = ?', [boNumberWithin($_POST, 'id', 0, PHP_INT_MAX)]);
    if (kvRigheToccate() === 1) {
        boNotify('Cliente approvato.');
    }
    boGoTo(boAddress('clienti.php', $boParameters));
}
$boFound = boCountRows("SELECT COUNT(*) AS n FROM kv_clienti WHERE $boWhere", $boValues);
$boPageCount = max(1, (int) ceil($boFound / BO_PER_PAGE));
$boPage = boNumberWithin($_GET, 'p', 1, $boPageCount);
$boCustomers = kvQuery('SELECT id, email, nome, cognome, rsoc, listino, sconto, approvato, creato FROM kv_clienti'
    . " WHERE $boWhere ORDER BY id DESC LIMIT " . BO_PER_PAGE . ' OFFSET ' . ($boPage - 1) * BO_PER_PAGE,
    $boValues) ?? [];
boPageStart('Clienti', 'clienti.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="clienti.php" role="search">
<?php echo boField('Nome, e-mail, ragione sociale, partita IVA o città', 'q', $boParameters['q'],
    'type="search" maxlength="100"'); ?>
<label class="spunta"><input type="checkbox" name="attesa" value="1"<?php
    echo $boParameters['attesa'] === '' ? '' : ' checked'; ?>> <span>Solo in attesa di approvazione</span></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boCustomers === []) { ?>
<p><?php echo implode('', $boParameters) === '' ? 'Nessun cliente registrato.' : 'Nessun cliente trovato.'; ?></p>
<?php } else { ?>
<p class="sommario"><?php echo $boFound, $boFound === 1 ? ' cliente' : ' clienti'; ?></p>
<?php
    boTable(['Cliente', 'E-mail', 'Registrato', '#Listino', '#Sconto %', 'Approvato'], array_map(fn($row) => [
        '<a href="cliente.php?id=' . (int) $row['id'] . '">'
            . kvHtmlUtf8(trim($row['nome'] . ' ' . $row['cognome']) ?: $row['email']) . '</a>'
            . ($row['rsoc'] === '' ? '' : '<small>' . kvHtmlUtf8($row['rsoc']) . '</small>'),
        kvHtmlUtf8($row['email']), boDateText($row['creato'], false), (string) (int) $row['listino'],
        boDecimalText($row['sconto']), boApproval($row, $boParameters)], $boCustomers), 'Clienti');
    boPageLinks('clienti.php', $boParameters, $boPage, $boPageCount);
}
boPageEnd();
