<?php
// One order: what was bought, by whom, where it goes; its state, of which the customer is told; notes; ways to print it.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_ordine.php";
include_once "bo_recessi.php";
include_once "bo_testi.php";
boRequireAccess();

/** The form of the state. Whether stock moves is asked where an order has pieces and is cancelled or comes back. */
function boStateForm(array $order, array $data): void
{
    $cancelled = $order['stato'] === 'annullato';
    echo '<form class="modulo non-stampare" method="post" accept-charset="utf-8" action="',
        kvHtml(boAddress('ordine.php', ['codice' => $order['codice']])), '">', boTokenField(),
        '<input type="hidden" name="prima" value="', kvHtml($order['stato']), '"><h2>Stato</h2>',
        '<label>Stato dell\'ordine <select name="stato">', boOptions(boStateChoices(), $order['stato']),
        '</select></label>';
    if (boOrderPieces($data['righe']) !== []) {
        echo '<label class="spunta"><input type="checkbox" name="scorte" value="1" checked> <span>',
            $cancelled ? 'Se l\'ordine torna valido, togliere di nuovo i pezzi dalle quantità disponibili'
                : 'Se l\'ordine viene annullato, rimettere i pezzi tra le quantità disponibili', '</span></label>';
    }
    if ($order['email'] !== '') {
        echo '<label class="spunta"><input type="checkbox" name="scrivi" value="1" checked> <span>Scrivere al cliente (',
            kvHtml(BO_LANGUAGES[boOrderLanguage($order, $data)]), ')</span></label><label>Testo del messaggio',
            ' <textarea name="messaggio" rows="3" maxlength="', BO_TEXT_LENGTH,
            '" placeholder="vuoto: quello previsto per lo stato"></textarea></label>';
    }
    echo '<p><button type="submit">Salva</button></p></form>';
}

/** Sets the state that the form asks for, and writes to the customer; the notices say what came of both. */
function boRunStateForm(array $order): void
{
    $before = kvCampo($_POST, 'prima', 20);
    $after = kvCampo($_POST, 'stato', 20);
    if (!in_array($after, BO_STATES, true) || $after === $before) {
        return;
    }
    if (!boChangeState($order, $before, $after, isset($_POST['scorte']))) {
        boNotify('Lo stato è cambiato nel frattempo: controllare e ripetere.', true);
        return;
    }
    boNotify("Lo stato dell'ordine è ora: $after.");
    $result = isset($_POST['scrivi']) ? boNotifyCustomer($order, $after, kvCampo($_POST, 'messaggio', BO_TEXT_LENGTH)) : '';
    if ($result !== '') {
        boNotify(kvFromUtf8($result) . '.', strpos($result, 'Il server') === 0);
    }
}

/** What was noted of an order, newest first, and the form for another note. */
function boNotes(array $order): void
{
    $notes = kvQuery('SELECT quando, testo, tipo FROM kv_annotazioni WHERE ordine = ? ORDER BY id DESC LIMIT 200',
        [(int) $order['id']]) ?? [];
    echo '<h2>Annotazioni</h2>';
    if ($notes !== []) {
        echo '<ul class="note">';
        foreach ($notes as $note) {
            echo '<li class="nota-', kvHtml($note['tipo']), '"><small>', boDateText($note['quando']), '</small> ',
                nl2br(kvHtmlUtf8($note['testo'])), '</li>';
        }
        echo '</ul>';
    }
    echo '<form class="modulo non-stampare" method="post" accept-charset="utf-8" action="',
        kvHtml(boAddress('ordine.php', ['codice' => $order['codice']])), '">', boTokenField(),
        '<label>Nuova annotazione, solo per il negozio <textarea name="nota" rows="2" maxlength="2000" required></textarea>',
        '</label><p><button type="submit">Annota</button></p></form>';
}

$boCode = kvLineField($_GET, 'codice', 20);
$boOrder = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [$boCode]);
if ($boOrder === null) {
    boCloseWith(404, 'Questo ordine non esiste.');
}
if (boIsSubmitted()) {
    kvRequireTables();
    $boNote = kvCampo($_POST, 'nota', 2000);
    if ($boNote !== '') {
        boNotify(boAddNote((int) $boOrder['id'], 'nota', $boNote) ? 'Annotazione salvata.'
            : 'L\'annotazione non è stata salvata.');
    } else {
        boRunStateForm($boOrder);
    }
    boGoTo(boAddress('ordine.php', ['codice' => $boCode]));
}
$boData = boOrderData($boOrder['dati']);
boPageStart('Ordine ' . $boOrder['codice'], 'ordini.php');
?>
<p class="sommario"><?php echo boDateText($boOrder['creato']), ' &middot; ', boStateText($boOrder['stato']), ' &middot; ',
    boMethodName($boOrder, $boData); ?></p>
<?php if (($boOrder['pagamento'] ?? '') !== '') { ?>
<p>Pagamento confermato: <?php echo kvHtmlUtf8($boOrder['pagamento']); ?></p>
<?php } ?>
<div class="colonne">
<section><h2>Destinatario</h2>
<?php boRecipient($boOrder, $boData['campi']); ?>
</section>
<?php boStateForm($boOrder, $boData); ?>
</div>
<h2>Articoli</h2>
<?php
boOrderContent($boOrder, $boData);
boOrderWithdrawals($boOrder);
if (($boData['campi']['Note'] ?? '') !== '') {
    echo '<h2>Note</h2><p class="testo">', nl2br(kvHtmlUtf8($boData['campi']['Note'])), '</p>';
}
boNotes($boOrder);
echo '<p class="non-stampare stampe">';
foreach (['ordine' => 'Stampa dell\'ordine', 'consegna' => 'Documento di consegna', 'ricevuta' => 'Ricevuta'] as $boWhat => $boName) {
    echo '<a href="', kvHtml(boAddress('stampa.php', ['codice' => $boOrder['codice'], 'cosa' => $boWhat])), '">',
        kvHtml($boName), '</a> ';
}
echo '<a href="ordini.php">Tutti gli ordini</a></p>';
boPageEnd();
