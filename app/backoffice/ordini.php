<?php
// The orders, newest first, found by code, name, mail, days, state, articles, notes, payment; the same choice goes to the
// CSV files.
include "bo_base.php";
include_once "bo_ordini.php";
boRiservata();

const BO_PER_PAGINA = 25;

list($boParametri, $boDove, $boValori) = boFiltroOrdini($_GET);
$boTrovati = boConta("SELECT COUNT(*) AS n FROM kv_ordini WHERE $boDove", $boValori);
$boQuantePagine = max(1, (int) ceil($boTrovati / BO_PER_PAGINA));
$boPagina = boNumero($_GET, 'p', 1, $boQuantePagine);
$boOrdini = kvQuery('SELECT ' . BO_COLONNE_ORDINE . " FROM kv_ordini WHERE $boDove ORDER BY id DESC LIMIT "
    . BO_PER_PAGINA . ' OFFSET ' . ($boPagina - 1) * BO_PER_PAGINA, $boValori) ?? [];
boInizio('Ordini', 'ordini.php');
?>
<form class="filtro" method="get" accept-charset="utf-8" action="ordini.php" role="search">
<?php echo boCampo('Codice, nome, articolo o nota', 'q', $boParametri['q'], 'type="search" maxlength="100"'),
    boCampo('Dal', 'da', $boParametri['da'], 'type="date"'), boCampo('Al', 'a', $boParametri['a'], 'type="date"'); ?>
<label>Stato <select name="stato"><?php
    echo boScelte(boSceltaStati(true), $boParametri['stato']); ?></select></label>
<label>Pagamento <select name="metodo"><option value="">Tutti</option><?php
    foreach (array_column(kvQuery('SELECT DISTINCT metodo FROM kv_ordini ORDER BY metodo LIMIT 100') ?? [], 'metodo') as $boMetodo) {
        echo '<option value="', kvHtmlUtf8($boMetodo), '"', $boMetodo === $boParametri['metodo'] ? ' selected>' : '>',
            kvHtmlUtf8($boMetodo), '</option>';
    } ?></select></label>
<p><button type="submit">Cerca</button></p>
</form>
<?php if ($boOrdini === []) { ?>
<p><?php echo implode('', $boParametri) === '' ? 'Non ci sono ancora ordini.' : 'Nessun ordine trovato.'; ?></p>
<?php } else { ?>
<p class="sommario"><?php echo $boTrovati, $boTrovati === 1 ? ' ordine' : ' ordini'; ?> &middot;
<a href="<?php echo kvHtml(boIndirizzo('ordini_csv.php', $boParametri)); ?>">Scarica in CSV</a> &middot;
<a href="<?php echo kvHtml(boIndirizzo('ordini_csv.php', ['righe' => '1'] + $boParametri)); ?>">CSV con le righe</a></p>
<?php
    boTabella(['Codice', 'Data', 'Cliente', 'E-mail', '#Totale', 'Pagamento', 'Stato'], array_map(fn($riga) => [
        '<a href="' . kvHtml(boIndirizzo('ordine.php', ['codice' => $riga['codice']])) . '">' . kvHtml($riga['codice'])
            . '</a>',
        boData($riga['creato']), kvHtmlUtf8($riga['nome']), kvHtmlUtf8($riga['email']),
        boImporto($riga['totale'], $riga['valuta']), kvHtmlUtf8($riga['metodo']), boStato($riga['stato'])], $boOrdini),
        'Ordini');
    boPagine('ordini.php', $boParametri, $boPagina, $boQuantePagine);
}
boFine();
