<?php
// ***1.0.7***
// Variants on a page and in the cart. The build wrote each variant as a list of option elements whose value reads
// <<PRICE>>=WEIGHT#CODE|LABEL and whose text may hold <<importo>>: here the visitor's own difference goes in.
// In the cart a value is known by a key of six letters made of its code and label in the shop's first language, so that
// the cart survives a change of language, of prices and of the order of the values.
include_once "kvstock.php";

/** The variants that a row names for a listino. */
function kvVariantiRiga(array $riga, int $listino): array
{
    $numeri = [];
    for ($posto = 1; $posto <= 4; $posto++) {
        $numeri[] = kvVariante($riga, $posto, $listino);
    }
    return array_filter($numeri);
}

/** The numbers of all variants of the page's articles, so that one query reads them. */
function kvVariantiPagina(): array
{
    global $resultArt, $listino;
    $numeri = [];
    foreach ($resultArt instanceof KvRows ? $resultArt->rows : [] as $riga) {
        foreach (kvVariantiRiga($riga, $listino) as $id) {
            $numeri[] = $id;
        }
    }
    return $numeri;
}

/** Reads variants by their numbers, those that were read before excepted. */
function kvLeggiVarianti(array $numeri): array
{
    static $letti = [];
    $mancanti = array_values(array_unique(array_diff($numeri, array_keys($letti))));
    if ($mancanti !== []) {
        $tabella = kvLanguageTable('opzioni');
        $letti += array_fill_keys($mancanti, null);
        // Numbers that the database gave: one trip to the server, where a bound statement takes three.
        $elenco = implode(',', array_map('intval', $mancanti));
        $sql = $tabella === 'opzioni'
            ? "SELECT ID, nomeopzione, opzione, opzione AS prima FROM opzioni WHERE ID IN ($elenco)"
            : "SELECT $tabella.ID, $tabella.nomeopzione, $tabella.opzione, opzioni.opzione AS prima FROM $tabella"
                . " LEFT JOIN opzioni USING (ID) WHERE $tabella.ID IN ($elenco)";
        $esito = mysql_query($sql);
        while ($riga = mysql_fetch_assoc($esito)) {
            $letti[(int) $riga['ID']] = kvScomponiVariante($riga);
        }
    }
    return $letti;
}

/** The option elements of a built list: [attributes before value, price, weight, code, label, text of the element]. */
function kvVociVariante(string $elenco): array
{
    // The build marks the default value with a star, which is for the selector alone.
    $elenco = preg_replace('/(<option selected value="[^"]*) \*">/i', '$1">', $elenco);
    preg_match_all(
        '/<option ([^>]*?)value="<<\s*([-0-9.]*)>>=([^#"]*)#([^|"]*)\|([^"]*)">(.*?)<\/option>/is', $elenco, $voci,
        PREG_SET_ORDER);
    return $voci;
}

/**
 * A variant taken apart: nome, and voci by key, each with attributi, prezzo (ten-thousandths), peso, cifrato (the code as
 * it stands in the value), codice, etichetta (the cart's label), testo, prima (the label in the first language).
 */
function kvScomponiVariante(array $riga): array
{
    $prime = kvVociVariante((string) $riga['prima']);
    $proprie = kvVociVariante((string) $riga['opzione']);
    // Without a translation a value is missing from its list: then positions tell nothing about the other language.
    $paralleli = count($prime) === count($proprie);
    $voci = [];
    foreach ($proprie as $n => $voce) {
        $base = $paralleli ? $prime[$n] : $voce;
        $chiave = substr(md5($base[4] . '|' . $base[5]), 0, 6);
        while (isset($voci[$chiave])) {
            $chiave = substr(md5($chiave), 0, 6);
        }
        $voci[$chiave] = [
            'attributi' => trim($voce[1]), 'prezzo' => kvDecimillesimi($voce[2]), 'peso' => $voce[3],
            'cifrato' => $voce[4], 'codice' => rawurldecode($voce[4]), 'etichetta' => $voce[5], 'testo' => $voce[6],
            'prima' => $base[5],
        ];
    }
    return ['nome' => (string) $riga['nomeopzione'], 'voci' => $voci];
}

/** The variant of a number, null when it has no values. */
function kvElencoVariante(int $id): ?array
{
    static $pagina = false;
    $letti = kvLeggiVarianti($pagina ? [$id] : array_merge([$id], kvVariantiPagina()));
    $pagina = true;
    return isset($letti[$id]) && $letti[$id]['voci'] !== [] ? $letti[$id] : null;
}

/**
 * The difference of a variant value for the visitor, in smallest units: by the department's factor unless the article
 * is on offer, then with VAT where prices include it, like the price it is added to.
 */
function kvDifferenza(int $differenza, array $riga): int
{
    global $listino, $ivacompresa, $scontorep, $ivarep;
    if (!kvPrezziVisitatore($riga)['offerta'] && (float) $scontorep[$listino] !== 1.0) {
        $differenza = kvProdotto($differenza, (float) $scontorep[$listino]);
    }
    return kvMinimi(kvConIva($differenza, (float) $ivarep, (bool) $ivacompresa), kvScala());
}

/** One value of a selector; one that is sold out can't be chosen, not even where it is the default. */
function kvOpzione(array $riga, string $chiave, array $voce, bool $disponibile): string
{
    $nascosti = kvPrezziNascosti();
    $importo = $nascosti ? 0 : kvDifferenza($voce['prezzo'], $riga);
    $testo = $nascosti
        ? preg_replace('/ \( [^()]*<<importo>> \)/', '', $voce['testo'])
        : str_replace('<<importo>>', kvFormato(abs($importo), kvScala(), (int) $GLOBALS['notazione']), $voce['testo']);
    $attributi = $disponibile ? $voce['attributi'] : 'disabled';
    return '<option ' . ($attributi === '' ? '' : $attributi . ' ') . 'value="' . kvNumeroScript($importo, kvScala()) . '='
        . $voce['peso'] . '#' . $voce['cifrato'] . '|' . $voce['etichetta'] . '" data-k="' . $chiave . '">' . $testo
        . ($disponibile ? '' : ' - ' . kvHtml("<<4-esaurito>>")) . '</option>';
}

/** The selector of a variant slot with the visitor's price differences; empty without a variant. */
function kvSelettore(array $riga, int $posto): string
{
    $id = kvVariante($riga, $posto, $GLOBALS['listino']);
    $variante = kvElencoVariante($id);
    if ($variante === null) {
        return '';
    }
    $opzioni = '';
    foreach ($variante['voci'] as $chiave => $voce) {
        $opzioni .= kvOpzione($riga, $chiave, $voce, kvValoreDisponibile($riga, $id, $voce['codice']));
    }
    return '<label class="opzione">' . kvTextHtml($variante['nome']) . ' <select name="op' . $posto
        . (int) ($riga['contatore'] ?? 0) . '">' . $opzioni . '</select></label>';
}
