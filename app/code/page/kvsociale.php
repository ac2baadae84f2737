<?php
// ***1.0.7***
// What a page says of itself to those who show a link to it, and of delivery and return to those who compare offers.
// Sources: the Open Graph protocol (ogp.me); schema.org, OfferShippingDetails and MerchantReturnPolicy.

/** The picture that stands for this page: that of the article shown alone; null without one. */
function kvPagePicture(): ?array
{
    $row = $GLOBALS['kvSolo'] ?? null;
    return !is_array($row) ? null : kvImmagine((string) ($row['immagine2'] ?? '')) ?? kvImmagine((string) ($row['immagine1'] ?? ''));
}

/** The address of a picture for others. */
function kvPictureAddress(array $picture): string
{
    return kvAbsoluteAddress(rawurlencode(kvUtf8(html_entity_decode($picture['src'], ENT_QUOTES, 'cp1252'))));
}

/** The elements of the Open Graph protocol. */
function kvSocialData(string $description): string
{
    $title = (string) ($GLOBALS['kvTitoloPagina'] ?? '');
    $picture = kvPagePicture();
    $data = ['og:type' => is_array($GLOBALS['kvSolo'] ?? null) ? 'product' : 'website', 'og:site_name' => kvNome(),
        'og:title' => $title === '' ? kvNome() : $title, 'og:description' => kvHtml($description),
        'og:url' => kvHtml(kvAbsoluteAddress(kvPageFile() . kvShownPart())),
        'og:locale' => ['it' => 'it_IT', 'en' => 'en_GB', 'fr' => 'fr_FR', 'de' => 'de_DE']["<<4-codice_lingua>>"] ?? '',
        'og:image' => $picture === null ? '' : kvHtml(kvPictureAddress($picture))];
    $html = '';
    foreach (array_filter($data, fn($value) => $value !== '') as $name => $value) {
        $html .= "<meta property=\"$name\" content=\"$value\">\n";
    }
    return $html;
}

/** The two-character codes of the countries of KV_COUNTRIES that most shops deliver to. Source: ISO 3166-1. */
const KV_COUNTRY_CODES = ['Italia' => 'IT', 'Austria' => 'AT', 'Belgio' => 'BE', 'Bulgaria' => 'BG', 'Cechia' => 'CZ', 'Cipro' => 'CY',
    'Croazia' => 'HR', 'Danimarca' => 'DK', 'Estonia' => 'EE', 'Finlandia' => 'FI', 'Francia' => 'FR', 'Germania' => 'DE',
    'Grecia' => 'GR', 'Irlanda' => 'IE', 'Lettonia' => 'LV', 'Lituania' => 'LT', 'Lussemburgo' => 'LU', 'Malta' => 'MT',
    'Paesi Bassi' => 'NL', 'Polonia' => 'PL', 'Portogallo' => 'PT', 'Romania' => 'RO', 'Slovacchia' => 'SK', 'Slovenia' => 'SI',
    'Spagna' => 'ES', 'Svezia' => 'SE', 'Ungheria' => 'HU', 'Norvegia' => 'NO', 'Regno Unito' => 'GB', 'Svizzera' => 'CH',
    'San Marino' => 'SM'];

/** The country that the order form starts with, by its code of two characters, and its zone; null when it isn't known. */
function kvInitialCountry(): ?array
{
    foreach (kvSelectOptions(<<<'KORVANE_VALORI'
<<1-paesi>>
KORVANE_VALORI
        , true) as $entry) {
        if ($entry['selected'] && isset(KV_COUNTRY_CODES[$entry['name']]) && (int) $entry['value'] > 0) {
            return [KV_COUNTRY_CODES[$entry['name']], (int) $entry['value']];
        }
    }
    return null;
}

/** Shipping and return of one piece of an article, for its Offer; nothing where the tables don't tell. */
function kvDeliveryData(array $row, string $valuta): array
{
    include_once "kvstima.php";
    $country = kvInitialCountry();
    $entry = kvCartLine(['id' => (int) $row['ID'], 'q' => 1, 'k' => kvFirstKeys($row)], $row);
    $estimate = $country === null || !$entry['ok'] ? null : kvFirstEstimate([$entry], $country[1]);
    if ($estimate === null) {
        return [];
    }
    // The price is the visitor's: so is what shipping costs them, with its VAT.
    $shipping = kvScriptNumber($estimate['spese'] + $estimate['ivaspese'], kvScale());
    $region = ['@type' => 'DefinedRegion', 'addressCountry' => $country[0]];
    return ['shippingDetails' => ['@type' => 'OfferShippingDetails', 'shippingDestination' => $region,
        'shippingRate' => ['@type' => 'MonetaryAmount', 'value' => $shipping, 'currency' => $valuta]]
        + kvDeliveryTimeData($entry['consegna'])] + kvReturnData($country[0]);
}

/** The time of delivery in days: from the order to the buyer, who isn't told when the goods are handed over. */
function kvDeliveryTimeData(string $time): array
{
    $days = kvDeliveryDays($time);
    $duration = fn(int $least, int $most): array => ['@type' => 'QuantitativeValue', 'minValue' => $least,
        'maxValue' => $most, 'unitCode' => 'DAY'];
    return $days === null ? [] : ['deliveryTime' => ['@type' => 'ShippingDeliveryTime', 'handlingTime' => $duration(0, 0),
        'transitTime' => $duration(...$days)]];
}

/**
 * The right of withdrawal, in the Union of fourteen days, where the shop has a text about it.
 * Source: Directive 2011/83/EU, article 9.
 */
function kvReturnData(string $country): array
{
    $text = trim(<<<'KORVANE_VALORI'
<<1-recesso>>
KORVANE_VALORI
    );
    return $text === '' || in_array($country, ['NO', 'GB', 'CH', 'SM'], true) ? [] : ['hasMerchantReturnPolicy' => [
        '@type' => 'MerchantReturnPolicy', 'applicableCountry' => $country, 'merchantReturnDays' => 14,
        'returnPolicyCategory' => 'https://schema.org/MerchantReturnFiniteReturnWindow',
        'merchantReturnLink' => kvAbsoluteAddress("recesso.htm")]];
}

/** The keys of the first value of each variant of an article. */
function kvFirstKeys(array $row): array
{
    $keys = ['', '', '', ''];
    for ($slot = 1; $slot <= 4; $slot++) {
        $variant = kvVariantNumber($row, $slot, (int) $GLOBALS['listino']);
        $entries = $variant > 0 ? (kvVariantValues($variant)['entries'] ?? []) : [];
        $keys[$slot - 1] = (string) (array_key_first($entries) ?? '');
    }
    return $keys;
}

/** The entry of the menu that leads to the customer's own page: with their name once they are signed in. */
function kvVoceConto(): string
{
    $row = $GLOBALS['cliente'] > 0 ? kvRiga('SELECT nome FROM kv_clienti WHERE id = ?', [(int) $GLOBALS['cliente']]) : null;
    return $row === null ? kvHtml("<<4-menu_accesso>>") : kvHtml("<<4-menu_conto>>") . ' <small class="nome">('
        . kvHtmlUtf8($row['nome']) . ')</small>';
}
