<?php
// The mails that tell a customer of a change of state: words for each state in four languages, which the merchant
// changes on the page testi.php. They hold nothing that the customer typed, for an order's address may be a stranger's.
include_once "kvmail.php";
include_once "bo_ordini.php";

/** The languages of the words, by code. */
const BO_LINGUE = ['it' => 'Italiano', 'en' => 'Inglese', 'fr' => 'Francese', 'de' => 'Tedesco'];
/** What every mail begins and ends with, and its subject; the words of the state stand between. */
const BO_CORNICI = [
    'it' => ['Ordine {codice}', "Gentile cliente,\n\n", "\n\nOrdine {codice} del {data}, totale {totale}.\n\nCordiali saluti"],
    'en' => ['Order {codice}', "Dear customer,\n\n", "\n\nOrder {codice} of {data}, total {totale}.\n\nKind regards"],
    'fr' => ['Commande {codice}', "Cher client,\n\n", "\n\nCommande {codice} du {data}, total {totale}.\n\nCordialement"],
    'de' => ['Bestellung {codice}', "Guten Tag,\n\n", "\n\nBestellung {codice} vom {data}, Summe {totale}.\n\nMit freundlichen Grüßen"],
];
/** The words of each state, in the order of BO_LINGUE. */
const BO_PAROLE = [
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
const BO_TESTO_MASSIMO = 4000;

/** Subject and text as shipped, UTF-8; placeholders still in them. */
function boTestoFornito(string $stato, string $lingua): array
{
    list($oggetto, $inizio, $fine) = BO_CORNICI[$lingua];
    $parole = BO_PAROLE[$stato][array_search($lingua, array_keys(BO_LINGUE), true)];
    return ['oggetto' => kvFromCp1252($oggetto), 'testo' => kvFromCp1252($inizio . $parole . $fine)];
}

/** The same as the merchant wants it; an empty text: no mail for this state. */
function boTestoStato(string $stato, string $lingua): array
{
    return kvRiga('SELECT oggetto, testo FROM kv_testi WHERE nome = ?', ["$stato.$lingua"])
        ?? boTestoFornito($stato, $lingua);
}

/** The language of the mails of an order: the customer's where there are words for it, else English. */
function boLinguaOrdine(array $ordine, array $dati): string
{
    $lingua = $dati['lingua'] !== '' ? $dati['lingua'] : ($ordine['lingua'] === '' ? 'it' : 'en');
    return isset(BO_LINGUE[$lingua]) ? $lingua : 'en';
}

/** A text with an order's values in it. */
function boRiempi(string $testo, array $ordine): string
{
    return strtr($testo, ['{codice}' => $ordine['codice'], '{data}' => boData($ordine['creato'], false),
        '{totale}' => trim($ordine['valuta']) . ' ' . boDecimale($ordine['totale']),
        '{negozio}' => kvSender()['nome']]);
}

/**
 * Writes to the customer of an order that it has another state; `proprio` replaces the prepared words. What came of it:
 * a line for the order's notes, empty when there was nothing to be sent.
 */
function boScriviStato(array $ordine, string $stato, string $proprio): string
{
    $lingua = boLinguaOrdine($ordine, boDatiOrdine($ordine['dati']));
    $testo = boTestoStato($stato, $lingua);
    if ($proprio !== '') {
        $testo['testo'] = $proprio;
        $testo['oggetto'] = $testo['oggetto'] === '' ? boTestoFornito($stato, $lingua)['oggetto'] : $testo['oggetto'];
    }
    if ($testo['testo'] === '' || $ordine['email'] === '') {
        return '';
    }
    $negozio = kvSender();
    $corpo = preg_replace('/\r?\n/', "\r\n", boRiempi($testo['testo'], $ordine)) . "\r\n\r\n" . $negozio['firma'];
    $partito = kvMail($ordine['email'], $negozio['email'],
        $negozio['nome'] . ' - ' . boRiempi($testo['oggetto'], $ordine), $corpo);
    return $partito ? "Messaggio al cliente: $stato" : kvFromCp1252("Il server non ha accettato il messaggio al cliente: $stato");
}

/** The same, noted at the order. */
function boAvvisaCliente(array $ordine, string $stato, string $proprio): string
{
    $esito = boScriviStato($ordine, $stato, $proprio);
    if ($esito !== '') {
        boAnnota((int) $ordine['id'], 'messaggio', $esito);
    }
    return $esito;
}
