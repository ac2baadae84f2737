<?php
// The words of the mails by which customers learn of a change of state, language by language.
include "bo_base.php";
include_once "bo_testi.php";
boRequireAccess();

/** Stores the words of the form: those that differ from the shipped ones. */
function boSaveTexts(string $language): void
{
    kvRequireTables();
    foreach (BO_STATES as $n => $state) {
        if (!isset($_POST["t$n"])) {
            continue;
        }
        $text = ['oggetto' => kvLineField($_POST, "o$n", 200),
            'testo' => str_replace("\r\n", "\n", kvCampo($_POST, "t$n", BO_TEXT_LENGTH))];
        if ($text === boShippedText($state, $language)) {
            kvQuery('DELETE FROM kv_testi WHERE nome = ?', ["$state.$language"]);
        } else {
            kvQuery('REPLACE INTO kv_testi (nome, oggetto, testo) VALUES (?, ?, ?)',
                ["$state.$language", $text['oggetto'], $text['testo']]);
        }
    }
    boNotify('Testi salvati.');
}

$boLanguage = kvCampo($_GET, 'lingua', 2);
$boLanguage = isset(BO_LANGUAGES[$boLanguage]) ? $boLanguage : 'it';
if (boIsSubmitted()) {
    if (isset($_POST['forniti'])) {
        kvQuery("DELETE FROM kv_testi WHERE nome LIKE ?", ["%.$boLanguage"]);
        boNotify('Ripristinati i testi forniti con il programma.');
    } else {
        boSaveTexts($boLanguage);
    }
    boGoTo('testi.php?lingua=' . $boLanguage);
}
boPageStart('Messaggi ai clienti', 'testi.php');
echo '<nav class="pagine" aria-label="Lingue">';
foreach (BO_LANGUAGES as $boCode => $boName) {
    echo '<a href="testi.php?lingua=', $boCode, '"', $boCode === $boLanguage ? ' aria-current="page"' : '', '>',
        kvHtml($boName), '</a>';
}
echo '</nav><p>Quando lo stato di un ordine cambia, il cliente riceve questo messaggio nella lingua in cui ha ordinato;',
    ' un testo vuoto non viene spedito. {codice}, {data}, {totale} e {negozio} diventano i valori dell\'ordine; in fondo',
    ' va la firma del negozio.</p><form class="modulo" method="post" accept-charset="utf-8" action="testi.php?lingua=',
    $boLanguage, '">', boTokenField();
foreach (BO_STATES as $boN => $boState) {
    $boText = boStateMailText($boState, $boLanguage);
    echo '<fieldset><legend>', kvHtml(ucfirst($boState)), '</legend>',
        boField('Oggetto', "o$boN", $boText['oggetto'], 'maxlength="200"'), '<label>Testo <textarea name="t', $boN,
        '" rows="7" maxlength="', BO_TEXT_LENGTH, '">', "\n", kvHtmlUtf8($boText['testo']), '</textarea></label></fieldset>';
}
?>
<p class="salva"><button type="submit">Salva</button></p>
<p><button type="submit" name="forniti" value="1" class="piano">Ripristina i testi forniti</button></p>
</form>
<?php
boPageEnd();
