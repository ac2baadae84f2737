<?php
// The orders, newest first, found by code, name, mail, days, state, articles, notes, payment; the same choice goes to the
// CSV files.
include "bo_base.php";
include_once "bo_ordini.php";
boRequireAccess();

const BO_PER_PAGE = 25;

list($boParameters, $boWhere, $boValues) = boOrderFilter($_GET);
$boFound = boCountRows("SELECT COUNT(*) AS n FROM kv_ordini WHERE $boWhere", $boValues);
$boPageCount = max(1, (int) ceil($boFound / BO_PER_PAGE));
$boPage = boNumberWithin($_GET, 'p', 1, $boPageCount);
$boOrders = kvQuery('SELECT ' . BO_ORDER_COLUMNS . " FROM kv_ordini WHERE $boWhere ORDER BY id DESC LIMIT "
    . BO_PER_PAGE . ' OFFSET ' . ($boPage - 1) * BO_PER_PAGE, $boValues) ?? [];
boPageStart('Ordini', 'ordini.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="ordini.php" role="search">
<?php echo boField('Codice, nome, articolo o nota', 'q', $boParameters['q'], 'type="search" maxlength="100"'),
    boField('Dal', 'da', $boParameters['da'], 'type="date"'), boField('Al', 'a', $boParameters['a'], 'type="date"'); ?>
<label>Stato <select name="stato"><?php
    echo boOptions(boStateChoices(true), $boParameters['stato']); ?></select></label>
<label>Pagamento <select name="metodo"><option value="">Tutti</option><?php
    foreach (array_column(kvQuery('SELECT DISTINCT metodo FROM kv_ordini ORDER BY metodo LIMIT 100') ?? [], 'metodo') as $boMethod) {
        echo '<option value="', kvHtmlUtf8($boMethod), '"', $boMethod === $boParameters['metodo'] ? ' selected>' : '>',
            kvHtmlUtf8($boMethod), '</option>';
    } ?></select></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boOrders === []) { ?>
<p><?php echo implode('', $boParameters) === '' ? 'Non ci sono ancora ordini.' : 'Nessun ordine trovato.'; ?></p>
<?php } else { ?>
<p class="sommario"><?php echo $boFound, $boFound === 1 ? ' ordine' : ' ordini'; ?> &middot;
<a href="<?php echo kvHtml(boAddress('ordini_csv.php', $boParameters)); ?>">Scarica in CSV</a> &middot;
<a href="<?php echo kvHtml(boAddress('ordini_csv.php', ['righe' => '1'] + $boParameters)); ?>">CSV con le righe</a></p>
<?php
    boTable(['Codice', 'Data', 'Cliente', 'E-mail', '#Totale', 'Pagamento', 'Stato'], array_map(fn($row) => [
        '<a href="' . kvHtml(boAddress('ordine.php', ['codice' => $row['codice']])) . '">' . kvHtml($row['codice'])
            . '</a>',
        boDateText($row['creato']), kvHtmlUtf8($row['nome']), kvHtmlUtf8($row['email']),
        boAmountText($row['totale'], $row['valuta']), kvHtmlUtf8($row['metodo']), boStateText($row['stato'])], $boOrders),
        'Ordini');
    boPageLinks('ordini.php', $boParameters, $boPage, $boPageCount);
}
boPageEnd();
