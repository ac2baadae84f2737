<?php
// One order: what was bought, by whom, where it goes; its state, of which the customer is told; notes; ways to print it.
include "bo_base.php";
include_once "bo_ordini.php";
include_once "bo_ordine.php";
include_once "bo_recessi.php";
include_once "bo_testi.php";
boRiservata();

/** The form of the state. Whether stock moves is asked where an order has pieces and is cancelled or comes back. */
function boModuloStato(array $ordine, array $dati): void
{
    $annullato = $ordine['stato'] === 'annullato';
    echo '<form class="modulo non-stampare" method="post" accept-charset="utf-8" action="',
        kvHtml(boIndirizzo('ordine.php', ['codice' => $ordine['codice']])), '">', boCampoGettone(),
        '<input type="hidden" name="prima" value="', kvHtml($ordine['stato']), '"><h2>Stato</h2>',
        '<label>Stato dell\'ordine <select name="stato">', boScelte(boSceltaStati(), $ordine['stato']),
        '</select></label>';
    if (boPezziOrdine($dati['righe']) !== []) {
        echo '<label class="spunta"><input type="checkbox" name="scorte" value="1" checked> <span>',
            $annullato ? 'Se l\'ordine torna valido, togliere di nuovo i pezzi dalle quantità disponibili'
                : 'Se l\'ordine viene annullato, rimettere i pezzi tra le quantità disponibili', '</span></label>';
    }
    if ($ordine['email'] !== '') {
        echo '<label class="spunta"><input type="checkbox" name="scrivi" value="1" checked> <span>Scrivere al cliente (',
            kvHtml(BO_LINGUE[boLinguaOrdine($ordine, $dati)]), ')</span></label><label>Testo del messaggio',
            ' <textarea name="messaggio" rows="3" maxlength="', BO_TESTO_MASSIMO,
            '" placeholder="vuoto: quello previsto per lo stato"></textarea></label>';
    }
    echo '<p><button type="submit">Salva</button></p></form>';
}

/** Sets the state that the form asks for, and writes to the customer; the notices say what came of both. */
function boEseguiStato(array $ordine): void
{
    $prima = kvCampo($_POST, 'prima', 20);
    $dopo = kvCampo($_POST, 'stato', 20);
    if (!in_array($dopo, BO_STATI, true) || $dopo === $prima) {
        return;
    }
    if (!boCambiaStato($ordine, $prima, $dopo, isset($_POST['scorte']))) {
        boAvvisa('Lo stato è cambiato nel frattempo: controllare e ripetere.', true);
        return;
    }
    boAvvisa("Lo stato dell'ordine è ora: $dopo.");
    $esito = isset($_POST['scrivi']) ? boAvvisaCliente($ordine, $dopo, kvCampo($_POST, 'messaggio', BO_TESTO_MASSIMO)) : '';
    if ($esito !== '') {
        boAvvisa(kvFromUtf8($esito) . '.', strpos($esito, 'Il server') === 0);
    }
}

/** What was noted of an order, newest first, and the form for another note. */
function boNote(array $ordine): void
{
    $note = kvQuery('SELECT quando, testo, tipo FROM kv_annotazioni WHERE ordine = ? ORDER BY id DESC LIMIT 200',
        [(int) $ordine['id']]) ?? [];
    echo '<h2>Annotazioni</h2>';
    if ($note !== []) {
        echo '<ul class="note">';
        foreach ($note as $nota) {
            echo '<li class="nota-', kvHtml($nota['tipo']), '"><small>', boData($nota['quando']), '</small> ',
                nl2br(kvHtmlUtf8($nota['testo'])), '</li>';
        }
        echo '</ul>';
    }
    echo '<form class="modulo non-stampare" method="post" accept-charset="utf-8" action="',
        kvHtml(boIndirizzo('ordine.php', ['codice' => $ordine['codice']])), '">', boCampoGettone(),
        '<label>Nuova annotazione, solo per il negozio <textarea name="nota" rows="2" maxlength="2000" required></textarea>',
        '</label><p><button type="submit">Annota</button></p></form>';
}

$boCodice = kvLineField($_GET, 'codice', 20);
$boOrdine = kvRiga('SELECT * FROM kv_ordini WHERE codice = ?', [$boCodice]);
if ($boOrdine === null) {
    boChiudi(404, 'Questo ordine non esiste.');
}
if (boInvio()) {
    kvRequireTables();
    $boNota = kvCampo($_POST, 'nota', 2000);
    if ($boNota !== '') {
        boAvvisa(boAnnota((int) $boOrdine['id'], 'nota', $boNota) ? 'Annotazione salvata.'
            : 'L\'annotazione non è stata salvata.');
    } else {
        boEseguiStato($boOrdine);
    }
    boVai(boIndirizzo('ordine.php', ['codice' => $boCodice]));
}
$boDati = boDatiOrdine($boOrdine['dati']);
boInizio('Ordine ' . $boOrdine['codice'], 'ordini.php');
?>
<p class="sommario"><?php echo boData($boOrdine['creato']), ' &middot; ', boStato($boOrdine['stato']), ' &middot; ',
    boNomeMetodo($boOrdine, $boDati); ?></p>
<?php if (($boOrdine['pagamento'] ?? '') !== '') { ?>
<p>Pagamento confermato: <?php echo kvHtmlUtf8($boOrdine['pagamento']); ?></p>
<?php } ?>
<div class="colonne">
<section><h2>Destinatario</h2>
<?php boDestinatario($boOrdine, $boDati['campi']); ?>
</section>
<?php boModuloStato($boOrdine, $boDati); ?>
</div>
<h2>Articoli</h2>
<?php
boContenuto($boOrdine, $boDati);
boRecessiOrdine($boOrdine);
if (($boDati['campi']['Note'] ?? '') !== '') {
    echo '<h2>Note</h2><p class="testo">', nl2br(kvHtmlUtf8($boDati['campi']['Note'])), '</p>';
}
boNote($boOrdine);
echo '<p class="non-stampare stampe">';
foreach (['ordine' => 'Stampa dell\'ordine', 'consegna' => 'Documento di consegna', 'ricevuta' => 'Ricevuta'] as $boCosa => $boNome) {
    echo '<a href="', kvHtml(boIndirizzo('stampa.php', ['codice' => $boOrdine['codice'], 'cosa' => $boCosa])), '">',
        kvHtml($boNome), '</a> ';
}
echo '<a href="ordini.php">Tutti gli ordini</a></p>';
boFine();
