<?php
// ***1.0.7***
// The selects of the order form. The build writes them in the shop's first language and with the zone alone as a value;
// here each country has its name in the language of the page, and a value that tells it from others of its zone.

/** Countries by the names that the program proposes: English, French, German. Source: ISO 3166-1, short names. */
const KV_COUNTRIES = [
    'Italia' => ['Italy', 'Italie', 'Italien'], 'Austria' => ['Austria', 'Autriche', 'Österreich'],
    'Belgio' => ['Belgium', 'Belgique', 'Belgien'], 'Bulgaria' => ['Bulgaria', 'Bulgarie', 'Bulgarien'],
    'Cechia' => ['Czechia', 'Tchéquie', 'Tschechien'], 'Cipro' => ['Cyprus', 'Chypre', 'Zypern'],
    'Croazia' => ['Croatia', 'Croatie', 'Kroatien'], 'Danimarca' => ['Denmark', 'Danemark', 'Dänemark'],
    'Estonia' => ['Estonia', 'Estonie', 'Estland'], 'Finlandia' => ['Finland', 'Finlande', 'Finnland'],
    'Francia' => ['France', 'France', 'Frankreich'], 'Germania' => ['Germany', 'Allemagne', 'Deutschland'],
    'Grecia' => ['Greece', 'Grèce', 'Griechenland'], 'Irlanda' => ['Ireland', 'Irlande', 'Irland'],
    'Lettonia' => ['Latvia', 'Lettonie', 'Lettland'], 'Lituania' => ['Lithuania', 'Lituanie', 'Litauen'],
    'Lussemburgo' => ['Luxembourg', 'Luxembourg', 'Luxemburg'], 'Malta' => ['Malta', 'Malte', 'Malta'],
    'Paesi Bassi' => ['Netherlands', 'Pays-Bas', 'Niederlande'], 'Polonia' => ['Poland', 'Pologne', 'Polen'],
    'Portogallo' => ['Portugal', 'Portugal', 'Portugal'], 'Romania' => ['Romania', 'Roumanie', 'Rumänien'],
    'Slovacchia' => ['Slovakia', 'Slovaquie', 'Slowakei'], 'Slovenia' => ['Slovenia', 'Slovénie', 'Slowenien'],
    'Spagna' => ['Spain', 'Espagne', 'Spanien'], 'Svezia' => ['Sweden', 'Suède', 'Schweden'],
    'Ungheria' => ['Hungary', 'Hongrie', 'Ungarn'], 'Albania' => ['Albania', 'Albanie', 'Albanien'],
    'Andorra' => ['Andorra', 'Andorre', 'Andorra'], 'Bielorussia' => ['Belarus', 'Biélorussie', 'Belarus'],
    'Bosnia ed Erzegovina' => ['Bosnia and Herzegovina', 'Bosnie-Herzégovine', 'Bosnien und Herzegowina'],
    'Città del Vaticano' => ['Vatican City', 'Cité du Vatican', 'Vatikanstadt'],
    'Islanda' => ['Iceland', 'Islande', 'Island'], 'Liechtenstein' => ['Liechtenstein', 'Liechtenstein', 'Liechtenstein'],
    'Macedonia del Nord' => ['North Macedonia', 'Macédoine du Nord', 'Nordmazedonien'],
    'Moldavia' => ['Moldova', 'Moldavie', 'Moldau'], 'Monaco' => ['Monaco', 'Monaco', 'Monaco'],
    'Montenegro' => ['Montenegro', 'Monténégro', 'Montenegro'], 'Norvegia' => ['Norway', 'Norvège', 'Norwegen'],
    'Regno Unito' => ['United Kingdom', 'Royaume-Uni', 'Vereinigtes Königreich'],
    'San Marino' => ['San Marino', 'Saint-Marin', 'San Marino'], 'Serbia' => ['Serbia', 'Serbie', 'Serbien'],
    'Svizzera' => ['Switzerland', 'Suisse', 'Schweiz'], 'Turchia' => ['Türkiye', 'Turquie', 'Türkei'],
    'Ucraina' => ['Ukraine', 'Ukraine', 'Ukraine'],
    'Arabia Saudita' => ['Saudi Arabia', 'Arabie saoudite', 'Saudi-Arabien'],
    'Argentina' => ['Argentina', 'Argentine', 'Argentinien'], 'Armenia' => ['Armenia', 'Arménie', 'Armenien'],
    'Australia' => ['Australia', 'Australie', 'Australien'], 'Azerbaigian' => ['Azerbaijan', 'Azerbaïdjan', 'Aserbaidschan'],
    'Bahrein' => ['Bahrain', 'Bahreïn', 'Bahrain'], 'Brasile' => ['Brazil', 'Brésil', 'Brasilien'],
    'Canada' => ['Canada', 'Canada', 'Kanada'], 'Cile' => ['Chile', 'Chili', 'Chile'], 'Cina' => ['China', 'Chine', 'China'],
    'Colombia' => ['Colombia', 'Colombie', 'Kolumbien'], 'Corea del Sud' => ['South Korea', 'Corée du Sud', 'Südkorea'],
    'Costa Rica' => ['Costa Rica', 'Costa Rica', 'Costa Rica'], 'Ecuador' => ['Ecuador', 'Équateur', 'Ecuador'],
    'Egitto' => ['Egypt', 'Égypte', 'Ägypten'],
    'Emirati Arabi Uniti' => ['United Arab Emirates', 'Émirats arabes unis', 'Vereinigte Arabische Emirate'],
    'Filippine' => ['Philippines', 'Philippines', 'Philippinen'], 'Georgia' => ['Georgia', 'Géorgie', 'Georgien'],
    'Giappone' => ['Japan', 'Japon', 'Japan'], 'Giordania' => ['Jordan', 'Jordanie', 'Jordanien'],
    'Hong Kong' => ['Hong Kong', 'Hong Kong', 'Hongkong'], 'India' => ['India', 'Inde', 'Indien'],
    'Indonesia' => ['Indonesia', 'Indonésie', 'Indonesien'], 'Israele' => ['Israel', 'Israël', 'Israel'],
    'Kazakistan' => ['Kazakhstan', 'Kazakhstan', 'Kasachstan'], 'Kenya' => ['Kenya', 'Kenya', 'Kenia'],
    'Kuwait' => ['Kuwait', 'Koweït', 'Kuwait'], 'Libano' => ['Lebanon', 'Liban', 'Libanon'],
    'Malaysia' => ['Malaysia', 'Malaisie', 'Malaysia'], 'Marocco' => ['Morocco', 'Maroc', 'Marokko'],
    'Maurizio' => ['Mauritius', 'Maurice', 'Mauritius'], 'Messico' => ['Mexico', 'Mexique', 'Mexiko'],
    'Nigeria' => ['Nigeria', 'Nigéria', 'Nigeria'], 'Nuova Zelanda' => ['New Zealand', 'Nouvelle-Zélande', 'Neuseeland'],
    'Panama' => ['Panama', 'Panama', 'Panama'], 'Perù' => ['Peru', 'Pérou', 'Peru'], 'Qatar' => ['Qatar', 'Qatar', 'Katar'],
    'Repubblica Dominicana' => ['Dominican Republic', 'République dominicaine', 'Dominikanische Republik'],
    'Senegal' => ['Senegal', 'Sénégal', 'Senegal'], 'Singapore' => ['Singapore', 'Singapour', 'Singapur'],
    "Stati Uniti d'America" => ['United States of America', "États-Unis d'Amérique", 'Vereinigte Staaten von Amerika'],
    'Sudafrica' => ['South Africa', 'Afrique du Sud', 'Südafrika'], 'Thailandia' => ['Thailand', 'Thaïlande', 'Thailand'],
    'Tunisia' => ['Tunisia', 'Tunisie', 'Tunesien'], 'Uruguay' => ['Uruguay', 'Uruguay', 'Uruguay'],
    'Vietnam' => ['Vietnam', 'Viêt Nam', 'Vietnam'],
];

/** The options of a select of the build, with `choices` those selected alone: value (null without one), name (as it is read), selected. */
function kvSelectOptions(string $select, bool $choices = false): array
{
    $mark = $choices ? '(?=[^>]*selected)' : '';
    preg_match_all("/<option$mark([^>]*)>(.*?)<\\/option>/is", $select, $found, PREG_SET_ORDER);
    return array_map(function (array $entry): array {
        $value = preg_match('/value\s*=\s*"([^"]*)"/i', $entry[1], $parts) ? $parts[1] : null;
        return ['value' => $value, 'name' => kvPlainText($entry[2]), 'selected' => stripos($entry[1], 'selected') !== false];
    }, $found);
}

/** A country's name in the language of the page; one that the shop made up stays as it is. */
function kvCountryName(string $name): string
{
    $column = ['en' => 0, 'fr' => 1, 'de' => 2]["<<4-codice_lingua>>"] ?? null;
    return $column === null ? $name : KV_COUNTRIES[$name][$column] ?? $name;
}

/** The country select of the order form, from that of the build. */
function kvSceltaPaesi(string $select): string
{
    $entries = [];
    foreach (kvSelectOptions($select) as $n => $entry) {
        $entries[] = ['n' => $n, 'translated' => kvCountryName($entry['name'])] + $entry;
    }
    if ("<<1-IDlingua>>" !== '') {
        $key = fn(array $entry): string => kvFold(kvUtf8($entry['translated']));
        usort($entries, fn($one, $other) => [$key($one), $one['n']] <=> [$key($other), $other['n']]);
    }
    $html = '<select name="LSStato" onchange="SpedPaese()" autocomplete="country-name">';
    foreach ($entries as $entry) {
        $html .= '<option value="' . (int) $entry['value'] . '-' . $entry['n'] . '" data-paese="' . kvHtml($entry['name']) . '"'
            . ($entry['selected'] ? ' selected' : '') . '>' . kvHtml($entry['translated']) . '</option>';
    }
    return $html . '</select>';
}

/** The payment select of the order form, from that of the build, each method with its number as a value. */
function kvSceltaPagamenti(string $select): string
{
    $html = '<select name="Pagamento" onchange="SpedPaese()">';
    foreach (kvSelectOptions($select) as $n => $entry) {
        $html .= '<option value="' . ($n + 1) . '"' . ($entry['selected'] ? ' selected' : '') . '>' . kvHtml($entry['name'])
            . '</option>';
    }
    return $html . '</select>';
}
