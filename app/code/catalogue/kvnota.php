<?php
// ***1.0.7***
// What stands beside every price: whether it holds VAT, and that delivery is added, with the way to its cost. Source:
// directive 2011/83/EU, article 6(1)(e).

/** The note as HTML; nothing for a visitor who doesn't see prices. */
function kvNotaPrezzo(): string
{
    if (kvPrezziNascosti()) {
        return '';
    }
    return '<span class="nota">' . kvHtml($GLOBALS['ivacompresa'] ? "<<4-iva_inclusa>>" : "<<4-iva_esclusa>>")
        . ' <a href="condizioni.htm">' . kvHtml("<<4-spedizione_breve>>") . '</a></span>';
}
