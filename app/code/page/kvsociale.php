<?php
// ***1.0.7***
// What a page says of itself to those who show a link to it, and of delivery and return to those who compare offers.
// Sources: the Open Graph protocol (ogp.me); schema.org, OfferShippingDetails and MerchantReturnPolicy.

/** The picture that stands for this page: that of the article shown alone; null without one. */
function kvImmaginePagina(): ?array
{
    $riga = $GLOBALS['kvSolo'] ?? null;
    return !is_array($riga) ? null : kvImmagine((string) ($riga['immagine2'] ?? '')) ?? kvImmagine((string) ($riga['immagine1'] ?? ''));
}

/** The address of a picture for others. */
function kvIndirizzoImmagine(array $immagine): string
{
    return kvAssoluto(rawurlencode(kvUtf8(html_entity_decode($immagine['src'], ENT_QUOTES, 'cp1252'))));
}

/** The elements of the Open Graph protocol. */
function kvDatiSociali(string $descrizione): string
{
    $titolo = (string) ($GLOBALS['kvTitoloPagina'] ?? '');
    $immagine = kvImmaginePagina();
    $dati = ['og:type' => is_array($GLOBALS['kvSolo'] ?? null) ? 'product' : 'website', 'og:site_name' => kvNome(),
        'og:title' => $titolo === '' ? kvNome() : $titolo, 'og:description' => kvHtml($descrizione),
        'og:url' => kvHtml(kvAssoluto(kvFile() . kvParteMostrata())),
        'og:locale' => ['it' => 'it_IT', 'en' => 'en_GB', 'fr' => 'fr_FR', 'de' => 'de_DE']["<<4-codice_lingua>>"] ?? '',
        'og:image' => $immagine === null ? '' : kvHtml(kvIndirizzoImmagine($immagine))];
    $html = '';
    foreach (array_filter($dati, fn($valore) => $valore !== '') as $nome => $valore) {
        $html .= "<meta property=\"$nome\" content=\"$valore\">\n";
    }
    return $html;
}

/** The two letters of the countries of KV_PAESI that most shops deliver to. Source: ISO 3166-1. */
const KV_SIGLE = ['Italia' => 'IT', 'Austria' => 'AT', 'Belgio' => 'BE', 'Bulgaria' => 'BG', 'Cechia' => 'CZ', 'Cipro' => 'CY',
    'Croazia' => 'HR', 'Danimarca' => 'DK', 'Estonia' => 'EE', 'Finlandia' => 'FI', 'Francia' => 'FR', 'Germania' => 'DE',
    'Grecia' => 'GR', 'Irlanda' => 'IE', 'Lettonia' => 'LV', 'Lituania' => 'LT', 'Lussemburgo' => 'LU', 'Malta' => 'MT',
    'Paesi Bassi' => 'NL', 'Polonia' => 'PL', 'Portogallo' => 'PT', 'Romania' => 'RO', 'Slovacchia' => 'SK', 'Slovenia' => 'SI',
    'Spagna' => 'ES', 'Svezia' => 'SE', 'Ungheria' => 'HU', 'Norvegia' => 'NO', 'Regno Unito' => 'GB', 'Svizzera' => 'CH',
    'San Marino' => 'SM'];

/** The country that the order form starts with, by its two letters, and its zone; null when it isn't known. */
function kvPaeseIniziale(): ?array
{
    foreach (kvVociSelect(<<<'KORVANE_VALORI'
<<1-paesi>>
KORVANE_VALORI
        , true) as $voce) {
        if ($voce['scelta'] && isset(KV_SIGLE[$voce['nome']]) && (int) $voce['valore'] > 0) {
            return [KV_SIGLE[$voce['nome']], (int) $voce['valore']];
        }
    }
    return null;
}

/** Shipping and return of one piece of an article, for its Offer; nothing where the tables don't tell. */
function kvDatiConsegna(array $riga, string $valuta): array
{
    include_once "kvstima.php";
    $paese = kvPaeseIniziale();
    $voce = kvRigaCarrello(['id' => (int) $riga['ID'], 'q' => 1, 'k' => kvPrimeChiavi($riga)], $riga);
    $stima = $paese === null || !$voce['ok'] ? null : kvStimaPrima([$voce], $paese[1]);
    if ($stima === null) {
        return [];
    }
    // The price is the visitor's: so is what shipping costs them, with its VAT.
    $spese = kvNumeroScript($stima['spese'] + $stima['ivaspese'], kvScala());
    $regione = ['@type' => 'DefinedRegion', 'addressCountry' => $paese[0]];
    return ['shippingDetails' => ['@type' => 'OfferShippingDetails', 'shippingDestination' => $regione,
        'shippingRate' => ['@type' => 'MonetaryAmount', 'value' => $spese, 'currency' => $valuta]]
        + kvDatiTempo($voce['consegna'])] + kvDatiReso($paese[0]);
}

/** The time of delivery in days: from the order to the buyer, who isn't told when the goods are handed over. */
function kvDatiTempo(string $tempo): array
{
    $giorni = kvGiorniConsegna($tempo);
    $durata = fn(int $minimo, int $massimo): array => ['@type' => 'QuantitativeValue', 'minValue' => $minimo,
        'maxValue' => $massimo, 'unitCode' => 'DAY'];
    return $giorni === null ? [] : ['deliveryTime' => ['@type' => 'ShippingDeliveryTime', 'handlingTime' => $durata(0, 0),
        'transitTime' => $durata(...$giorni)]];
}

/**
 * The right of withdrawal, in the Union of fourteen days, where the shop has a text about it.
 * Source: Directive 2011/83/EU, article 9.
 */
function kvDatiReso(string $paese): array
{
    $testo = trim(<<<'KORVANE_VALORI'
<<1-recesso>>
KORVANE_VALORI
    );
    return $testo === '' || in_array($paese, ['NO', 'GB', 'CH', 'SM'], true) ? [] : ['hasMerchantReturnPolicy' => [
        '@type' => 'MerchantReturnPolicy', 'applicableCountry' => $paese, 'merchantReturnDays' => 14,
        'returnPolicyCategory' => 'https://schema.org/MerchantReturnFiniteReturnWindow',
        'merchantReturnLink' => kvAssoluto("recesso.htm")]];
}

/** The keys of the first value of each variant of an article. */
function kvPrimeChiavi(array $riga): array
{
    $chiavi = ['', '', '', ''];
    for ($posto = 1; $posto <= 4; $posto++) {
        $variante = kvVariante($riga, $posto, (int) $GLOBALS['listino']);
        $voci = $variante > 0 ? (kvElencoVariante($variante)['voci'] ?? []) : [];
        $chiavi[$posto - 1] = (string) (array_key_first($voci) ?? '');
    }
    return $chiavi;
}

/** The entry of the menu that leads to the customer's own page: with their name once they are signed in. */
function kvVoceConto(): string
{
    $riga = $GLOBALS['cliente'] > 0 ? kvRiga('SELECT nome FROM kv_clienti WHERE id = ?', [(int) $GLOBALS['cliente']]) : null;
    return $riga === null ? kvHtml("<<4-menu_accesso>>") : kvHtml("<<4-menu_conto>>") . ' <small class="nome">('
        . kvHtmlUtf8($riga['nome']) . ')</small>';
}
