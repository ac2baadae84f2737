<?php
// The mails that tell a customer of a change of state: words for each state in four languages, which the merchant
// changes on the page testi.php. They hold nothing that the customer typed, for an order's address may be a stranger's.
include_once "kvmail.php";
include_once "bo_ordini.php";

/** The languages of the words, by code. */
const BO_LANGUAGES = ['it' => 'Italiano', 'en' => 'Inglese', 'fr' => 'Francese', 'de' => 'Tedesco'];
/** What every mail begins and ends with, and its subject; the words of the state come between. */
const BO_FRAMES = [
    'it' => ['Ordine {codice}', "Gentile cliente,\n\n", "\n\nOrdine {codice} del {data}, totale {totale}.\n\nCordiali saluti"],
    'en' => ['Order {codice}', "Dear customer,\n\n", "\n\nOrder {codice} of {data}, total {totale}.\n\nKind regards"],
    'fr' => ['Commande {codice}', "Cher client,\n\n", "\n\nCommande {codice} du {data}, total {totale}.\n\nCordialement"],
    'de' => ['Bestellung {codice}', "Guten Tag,\n\n", "\n\nBestellung {codice} vom {data}, Summe {totale}.\n\nMit freundlichen Grüßen"],
];
/** The words of each state, in the order of BO_LANGUAGES. */
const BO_WORDS = [
    'nuovo' => ['abbiamo di nuovo in lavorazione il suo ordine.', 'we are working on your order again.',
        'nous traitons de nouveau votre commande.', 'wir bearbeiten Ihre Bestellung wieder.'],
    'da verificare' => ['stiamo verificando il pagamento del suo ordine.', 'we are checking the payment of your order.',
        'nous vérifions le paiement de votre commande.', 'wir prüfen die Zahlung Ihrer Bestellung.'],
    'importo diverso' => ['abbiamo ricevuto per il suo ordine un importo diverso dal totale. La preghiamo di rispondere a questo messaggio.',
        'we received an amount for your order that differs from its total. Please answer this message.',
        'nous avons reçu pour votre commande un montant différent du total. Merci de répondre à ce message.',
        'für Ihre Bestellung ist ein anderer Betrag als die Summe eingegangen. Bitte antworten Sie auf diese Nachricht.'],
    'pagato' => ['abbiamo ricevuto il pagamento del suo ordine e lo stiamo preparando.',
        'we have received the payment of your order and are preparing it.',
        'nous avons reçu le paiement de votre commande et nous la préparons.',
        'die Zahlung Ihrer Bestellung ist eingegangen, wir bereiten sie vor.'],
    'rifiutato' => ['il pagamento del suo ordine non è riuscito. La preghiamo di rispondere a questo messaggio.',
        'the payment of your order has failed. Please answer this message.',
        'le paiement de votre commande a échoué. Merci de répondre à ce message.',
        'die Zahlung Ihrer Bestellung ist fehlgeschlagen. Bitte antworten Sie auf diese Nachricht.'],
    'spedito' => ['il suo ordine è stato spedito.', 'your order has been sent.', 'votre commande a été expédiée.',
        'Ihre Bestellung wurde versandt.'],
    'annullato' => ['il suo ordine è stato annullato.', 'your order has been cancelled.', 'votre commande a été annulée.',
        'Ihre Bestellung wurde storniert.'],
];
/** Most characters of a mail's words. */
const BO_TEXT_LENGTH = 4000;

/** Subject and text as shipped, UTF-8; placeholders still in them. */
function boShippedText(string $state, string $language): array
{
    list($subject, $start, $end) = BO_FRAMES[$language];
    $words = BO_WORDS[$state][array_search($language, array_keys(BO_LANGUAGES), true)];
    return ['oggetto' => kvFromCp1252($subject), 'testo' => kvFromCp1252($start . $words . $end)];
}

/** The same as the merchant wants it; an empty text: no mail for this state. */
function boStateMailText(string $state, string $language): array
{
    return kvRiga('SELECT oggetto, testo FROM kv_testi WHERE nome = ?', ["$state.$language"])
        ?? boShippedText($state, $language);
}

/** The language of the mails of an order: the customer's where there are words for it, else English. */
function boOrderLanguage(array $order, array $data): string
{
    $language = $data['lingua'] !== '' ? $data['lingua'] : ($order['lingua'] === '' ? 'it' : 'en');
    return isset(BO_LANGUAGES[$language]) ? $language : 'en';
}

/** A text with an order's values in it. */
function boFillText(string $text, array $order): string
{
    return strtr($text, ['{codice}' => $order['codice'], '{data}' => boDateText($order['creato'], false),
        '{totale}' => trim($order['valuta']) . ' ' . boDecimalText($order['totale']),
        '{negozio}' => kvSender()['nome']]);
}

/**
 * Writes to the customer of an order that it has another state; `own` replaces the prepared words. What came of it:
 * a line for the order's notes, empty when there was nothing to be sent.
 */
function boMailState(array $order, string $state, string $own): string
{
    $language = boOrderLanguage($order, boOrderData($order['dati']));
    $text = boStateMailText($state, $language);
    if ($own !== '') {
        $text['testo'] = $own;
        $text['oggetto'] = $text['oggetto'] === '' ? boShippedText($state, $language)['oggetto'] : $text['oggetto'];
    }
    if ($text['testo'] === '' || $order['email'] === '') {
        return '';
    }
    $shop = kvSender();
    $body = preg_replace('/\r?\n/', "\r\n", boFillText($text['testo'], $order)) . "\r\n\r\n" . $shop['firma'];
    $sent = kvMail($order['email'], $shop['email'],
        $shop['nome'] . ' - ' . boFillText($text['oggetto'], $order), $body);
    return $sent ? "Messaggio al cliente: $state" : kvFromCp1252("Il server non ha accettato il messaggio al cliente: $state");
}

/** The same, noted at the order. */
function boNotifyCustomer(array $order, string $state, string $own): string
{
    $result = boMailState($order, $state, $own);
    if ($result !== '') {
        boAddNote((int) $order['id'], 'messaggio', $result);
    }
    return $result;
}
