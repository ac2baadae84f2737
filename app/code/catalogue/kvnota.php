<?php
// ***1.0.7***
// What the law wants to be read on every page: beside a price whether it holds VAT, and that delivery is added, with the
// way to its cost (directive 2011/83/EU, article 6(1)(e)); at the end who the merchant is.

/** The note as HTML; nothing for a visitor who doesn't see prices. */
function kvNotaPrezzo(): string
{
    if (kvArePricesHidden()) {
        return '';
    }
    return '<span class="nota">' . kvHtml($GLOBALS['ivacompresa'] ? "<<4-iva_inclusa>>" : "<<4-iva_esclusa>>")
        . ' <a href="condizioni.htm">' . kvHtml("<<4-spedizione_breve>>") . '</a></span>';
}

/**
 * Who the merchant is, for the end of every page, from three lines: seat, VAT number, register. Nothing where none of them
 * was entered. Source: directive 2000/31/EC, article 5.
 */
function kvDatiLegali(string $values): string
{
    list($office, $piva, $register) = array_map('trim', kvLinee($values)) + ['', '', ''];
    $entries = array_filter([$office, $piva === '' ? '' : "<<4-legale_piva>> " . $piva, $register], fn($entry) => $entry !== '');
    return $entries === [] ? '' : '<p class="legale">' . implode(' &middot; ', array_map('kvHtml', $entries)) . "</p>\n";
}
