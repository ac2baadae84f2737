<?php
// ***1.0.7***
// The withdrawal function, for whoever knows code and address of an order, with or without an account: which order, which
// lines, a second look, the receipt. What was chosen is kept in the session, so that no form can name another order.
include "funcs.php";
include_once "kvrecessi.php";

/** Back to a step, with a notice. */
function kvPassoRecesso(string $passo, string $avviso = ''): void
{
    if ($avviso !== '') {
        kvNotify(kvHtml($avviso));
    }
    kvGoTo("kvrecesso.php" . ($passo === '' ? '' : "?passo=$passo"));
}

/** The order of the session; goes back to the first step when there is none, or nothing of it to give back. */
function kvOrdineScelto(): array
{
    $scelto = $_SESSION['recesso'] ?? null;
    $ordine = is_array($scelto) ? kvOrdineRecesso($scelto['codice'], $scelto['email']) : null;
    if ($ordine === null) {
        kvPassoRecesso('', "<<4-sessione_scaduta>>");
    }
    $negato = kvRecessoNegato($ordine);
    if ($negato !== '') {
        kvPassoRecesso('', $negato);
    }
    return $ordine;
}

/** Takes the first form. Unknown codes and wrong addresses get one answer. */
function kvCercaRecesso(): void
{
    kvRefusePrograms(fn(string $motivo) => kvPassoRecesso('', $motivo), "<<4-troppo_presto>>");
    if (!kvAdmitAttempt(kvAttemptsKey('recesso', ''), 'recessi')) {
        kvPassoRecesso('', "<<4-troppi_tentativi>>");
    }
    $codice = strtoupper(kvLineField($_POST, 'codice', 20));
    $email = kvLineField($_POST, 'email', 190);
    if (kvOrdineRecesso($codice, $email) === null) {
        unset($_SESSION['recesso']);
        kvPassoRecesso('', "<<4-recesso_non_trovato>>");
    }
    $_SESSION['recesso'] = ['codice' => $codice, 'email' => $email];
    kvPassoRecesso('scegli');
}

/** Takes the choice of lines: riga[n] ticks one, pezzi[n] says how many. */
function kvScegliRecesso(array $ordine): void
{
    $scelta = [];
    $pezzi = is_array($_POST['pezzi'] ?? null) ? $_POST['pezzi'] : [];
    foreach (array_keys(kvRigheRecesso($ordine)) as $n) {
        if (isset($_POST['riga'][$n])) {
            $detti = kvCampo($pezzi, (string) $n, 6);
            $scelta[$n] = preg_match('/^\d{1,5}$/D', $detti) ? (int) $detti : 0;
        }
    }
    if (kvRigheScelte(kvRigheRecesso($ordine), $scelta) === null) {
        kvPassoRecesso('scegli', "<<4-recesso_niente>>");
    }
    $_SESSION['recesso']['scelta'] = $scelta;
    kvPassoRecesso('conferma');
}

/** The end: entry and mails. The form's token is used up with it; sent twice it leads to the receipt it made. */
function kvConfermaRecesso(array $ordine, string $gettone): void
{
    $recesso = kvRegistraRecesso((int) $ordine['id'], $_SESSION['recesso']['scelta'] ?? []);
    unset($_SESSION['recesso']['scelta']);
    if ($recesso === null) {
        kvPassoRecesso('scegli', "<<4-recesso_niente>>");
    }
    $_SESSION['ricevute'] = array_slice([$gettone => $recesso['ricevuta']] + ($_SESSION['ricevute'] ?? []), 0, 5, true);
    unset($_SESSION['recesso'], $_SESSION['gettone']);
    $_SESSION['ricevuta'] = $recesso['ricevuta'];
    kvMailRecesso($recesso);
    kvPassoRecesso('ricevuta');
}

/** The start of a form of the page. */
function kvModuloRecesso(string $azione): string
{
    return '<form class="modulo" method="post" action="kvrecesso.php" accept-charset="utf-8"><input type="hidden" name="_charset_">'
        . '<input type="hidden" name="gettone" value="' . kvGettone() . "\"><input type=\"hidden\" name=\"azione\" value=\"$azione\">";
}

/** The first step as HTML. */
function kvPassoCerca(): string
{
    return '<p>' . kvHtml("<<4-recesso_spiega>>") . ' <a href="recesso.htm">' . kvHtml("<<4-menu_recesso>>") . '</a></p>'
        . kvModuloRecesso('cerca') . kvCampoEsca() . '<label>' . kvHtml("<<4-ordine_codice>>")
        . ' <input name="codice" maxlength="20" autocomplete="off" required></label><label>' . kvHtml("<<4-ordine_email>>")
        . ' <input type="email" name="email" maxlength="190" autocomplete="email" required></label><p><button type="submit">'
        . kvHtml("<<4-recesso_cerca>>") . '</button></p></form>';
}

/** The choice of lines as HTML. */
function kvPassoScegli(array $ordine): string
{
    $html = kvModuloRecesso('scegli') . '<fieldset><legend>' . kvHtml("<<4-recesso_scegli>>") . ' (' . kvHtml($ordine['codice'])
        . ')</legend>';
    foreach (kvRigheRecesso($ordine) as $n => $riga) {
        if ($riga['resto'] > 0) {
            $nome = kvHtmlUtf8($riga['testo'] . ($riga['scelte'] === '' ? '' : ' (' . $riga['scelte'] . ')'));
            $html .= "<label class=\"spunta\"><input type=\"checkbox\" name=\"riga[$n]\" value=\"1\"> <span>$nome</span></label>"
                . '<label>' . kvHtml("<<4-recesso_pezzi>>") . "<span class=\"nascosto\">: $nome</span> <input type=\"number\""
                . " inputmode=\"numeric\" name=\"pezzi[$n]\" min=\"1\" max=\"$riga[resto]\" value=\"$riga[resto]\" required></label>";
        }
    }
    return ($ordine['tardi'] ? '<p class="avviso">' . kvHtml("<<4-recesso_tardi>>") . '</p>' : '') . $html
        . '</fieldset><p><button type="submit">' . kvHtml("<<4-recesso_avanti>>") . '</button></p></form>';
}

/** The second look as HTML. */
function kvPassoConferma(array $ordine): string
{
    $righe = kvRigheScelte(kvRigheRecesso($ordine), $_SESSION['recesso']['scelta'] ?? []);
    if ($righe === null) {
        kvPassoRecesso('scegli');
    }
    $voci = array_map(fn(array $riga): string => '<li>' . kvHtmlUtf8(kvTestoRigaRecesso($riga)) . '</li>', $righe);
    return '<p>' . kvHtml("<<4-recesso_dichiarazione>>") . '</p><ul>' . implode('', $voci) . '</ul><p>' . kvHtml("<<4-ordine_codice>>")
        . ': ' . kvHtml($ordine['codice']) . '</p>' . kvModuloRecesso('conferma') . '<p><button type="submit">'
        . kvHtml("<<4-recesso_conferma>>") . '</button> <a href="kvrecesso.php?passo=scegli">' . kvHtml("<<4-recesso_cambia>>")
        . '</a></p></form>';
}

/** The receipt as HTML. */
function kvPassoRicevuta(): string
{
    return '<p role="status">' . kvHtml("<<4-recesso_mail_inviata>>") . '</p><pre class="riepilogo">'
        . kvHtmlUtf8($_SESSION['ricevuta']) . '</pre><p class="solo-schermo"><button type="button" class="secondario"'
        . ' onclick="print()">' . kvHtml("<<4-stampa>>") . '</button></p>';
}

/** The page of a step, with the notice that waits. */
function kvPaginaRecesso(string $passo): string
{
    $avviso = (string) ($_SESSION['avviso'] ?? '');
    switch ($passo) {
        case 'scegli':
            $html = kvPassoScegli(kvOrdineScelto());
            break;
        case 'conferma':
            $html = kvPassoConferma(kvOrdineScelto());
            break;
        case 'ricevuta':
            $html = isset($_SESSION['ricevuta']) ? kvPassoRicevuta() : kvPassoCerca();
            break;
        default:
            $html = kvPassoCerca();
    }
    unset($_SESSION['avviso']);
    return ($avviso === '' ? '' : '<p class="avviso" role="status">' . $avviso . '</p>') . $html;
}

kvStartSession(true);
if ($_SERVER['REQUEST_METHOD'] === 'POST') {
    $kvPattern = kvCampo($_POST, 'gettone', 64);
    if (isset($_SESSION['ricevute'][$kvPattern])) {
        $_SESSION['ricevuta'] = $_SESSION['ricevute'][$kvPattern];
        kvPassoRecesso('ricevuta');
    }
    if (!kvIsTokenValid()) {
        kvPassoRecesso('', "<<4-sessione_scaduta>>");
    }
    switch (kvCampo($_POST, 'azione', 20)) {
        case 'cerca':
            kvCercaRecesso();
            break;
        case 'scegli':
            kvScegliRecesso(kvOrdineScelto());
            break;
        case 'conferma':
            kvConfermaRecesso(kvOrdineScelto(), $kvPattern);
    }
    kvPassoRecesso('');
}
$kvConfirmation = kvPaginaRecesso(kvCampo($_GET, 'passo', 10));
$kvTitoloPagina = kvHtml("<<4-recesso_titolo>>");
$kvPageLanguages = 'kvrecesso';
include "messaggio.htm";
