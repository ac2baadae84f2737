<?php
// The words of the mails by which customers learn of a change of state, language by language.
include "bo_base.php";
include_once "bo_testi.php";
boRiservata();

/** Stores the words of the form: those that differ from the shipped ones. */
function boSalvaTesti(string $lingua): void
{
    kvRequireTables();
    foreach (BO_STATI as $n => $stato) {
        if (!isset($_POST["t$n"])) {
            continue;
        }
        $testo = ['oggetto' => kvLineField($_POST, "o$n", 200),
            'testo' => str_replace("\r\n", "\n", kvCampo($_POST, "t$n", BO_TESTO_MASSIMO))];
        if ($testo === boTestoFornito($stato, $lingua)) {
            kvQuery('DELETE FROM kv_testi WHERE nome = ?', ["$stato.$lingua"]);
        } else {
            kvQuery('REPLACE INTO kv_testi (nome, oggetto, testo) VALUES (?, ?, ?)',
                ["$stato.$lingua", $testo['oggetto'], $testo['testo']]);
        }
    }
    boAvvisa('Testi salvati.');
}

$boLingua = kvCampo($_GET, 'lingua', 2);
$boLingua = isset(BO_LINGUE[$boLingua]) ? $boLingua : 'it';
if (boInvio()) {
    if (isset($_POST['forniti'])) {
        kvQuery("DELETE FROM kv_testi WHERE nome LIKE ?", ["%.$boLingua"]);
        boAvvisa('Ripristinati i testi forniti con il programma.');
    } else {
        boSalvaTesti($boLingua);
    }
    boVai('testi.php?lingua=' . $boLingua);
}
boInizio('Messaggi ai clienti', 'testi.php');
echo '<nav class="pagine" aria-label="Lingue">';
foreach (BO_LINGUE as $boCodice => $boNome) {
    echo '<a href="testi.php?lingua=', $boCodice, '"', $boCodice === $boLingua ? ' aria-current="page"' : '', '>',
        kvHtml($boNome), '</a>';
}
echo '</nav><p>Quando lo stato di un ordine cambia, il cliente riceve questo messaggio nella lingua in cui ha ordinato;',
    ' un testo vuoto non viene spedito. {codice}, {data}, {totale} e {negozio} diventano i valori dell\'ordine; in fondo',
    ' va la firma del negozio.</p><form class="modulo" method="post" accept-charset="utf-8" action="testi.php?lingua=',
    $boLingua, '">', boCampoGettone();
foreach (BO_STATI as $boN => $boStato) {
    $boTesto = boTestoStato($boStato, $boLingua);
    echo '<fieldset><legend>', kvHtml(ucfirst($boStato)), '</legend>',
        boCampo('Oggetto', "o$boN", $boTesto['oggetto'], 'maxlength="200"'), '<label>Testo <textarea name="t', $boN,
        '" rows="7" maxlength="', BO_TESTO_MASSIMO, '">', "\n", kvHtmlUtf8($boTesto['testo']), '</textarea></label></fieldset>';
}
?>
<p class="salva"><button type="submit">Salva</button></p>
<p><button type="submit" name="forniti" value="1" class="piano">Ripristina i testi forniti</button></p>
</form>
<?php
boFine();
