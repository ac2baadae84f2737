<?php
// ***1.0.7***
// The withdrawal function, for whoever knows code and address of an order, with or without an account: which order, which
// lines, a second look, the receipt. What was chosen is kept in the session, so that no form can name another order.
include "funcs.php";
include_once "kvrecessi.php";

/** Back to a step, with a notice. */
function kvGoToWithdrawalStep(string $step, string $notice = ''): void
{
    if ($notice !== '') {
        kvNotify(kvHtml($notice));
    }
    kvGoTo("kvrecesso.php" . ($step === '' ? '' : "?passo=$step"));
}

/** The order of the session; goes back to the first step when there is none, or nothing of it to give back. */
function kvChosenOrder(): array
{
    $chosen = $_SESSION['recesso'] ?? null;
    $order = is_array($chosen) ? kvWithdrawalOrder($chosen['codice'], $chosen['email']) : null;
    if ($order === null) {
        kvGoToWithdrawalStep('', "<<4-sessione_scaduta>>");
    }
    $denial = kvWithdrawalDenial($order);
    if ($denial !== '') {
        kvGoToWithdrawalStep('', $denial);
    }
    return $order;
}

/** Takes the first form. Unknown codes and wrong addresses get one answer. */
function kvFindWithdrawalOrder(): void
{
    kvRefusePrograms(fn(string $reason) => kvGoToWithdrawalStep('', $reason), "<<4-troppo_presto>>");
    if (!kvAdmitAttempt(kvAttemptsKey('recesso', ''), 'recessi')) {
        kvGoToWithdrawalStep('', "<<4-troppi_tentativi>>");
    }
    $code = strtoupper(kvLineField($_POST, 'codice', 20));
    $email = kvLineField($_POST, 'email', 190);
    if (kvWithdrawalOrder($code, $email) === null) {
        unset($_SESSION['recesso']);
        kvGoToWithdrawalStep('', "<<4-recesso_non_trovato>>");
    }
    $_SESSION['recesso'] = ['codice' => $code, 'email' => $email];
    kvGoToWithdrawalStep('scegli');
}

/** Takes the choice of lines: riga[n] ticks one, pezzi[n] says how many. */
function kvChooseWithdrawal(array $order): void
{
    $choice = [];
    $pieces = is_array($_POST['pezzi'] ?? null) ? $_POST['pezzi'] : [];
    foreach (array_keys(kvWithdrawalLines($order)) as $n) {
        if (isset($_POST['riga'][$n])) {
            $given = kvCampo($pieces, (string) $n, 6);
            $choice[$n] = preg_match('/^\d{1,5}$/D', $given) ? (int) $given : 0;
        }
    }
    if (kvChosenLines(kvWithdrawalLines($order), $choice) === null) {
        kvGoToWithdrawalStep('scegli', "<<4-recesso_niente>>");
    }
    $_SESSION['recesso']['scelta'] = $choice;
    kvGoToWithdrawalStep('conferma');
}

/** The end: entry and mails. The form's token is used up with it; sent twice it leads to the receipt it made. */
function kvConfirmWithdrawal(array $order, string $token): void
{
    $withdrawal = kvEnterWithdrawal((int) $order['id'], $_SESSION['recesso']['scelta'] ?? []);
    unset($_SESSION['recesso']['scelta']);
    if ($withdrawal === null) {
        kvGoToWithdrawalStep('scegli', "<<4-recesso_niente>>");
    }
    $_SESSION['ricevute'] = array_slice([$token => $withdrawal['ricevuta']] + ($_SESSION['ricevute'] ?? []), 0, 5, true);
    unset($_SESSION['recesso'], $_SESSION['gettone']);
    $_SESSION['ricevuta'] = $withdrawal['ricevuta'];
    kvMailWithdrawal($withdrawal);
    kvGoToWithdrawalStep('ricevuta');
}

/** The start of a form of the page. */
function kvWithdrawalForm(string $action): string
{
    return '<form class="modulo" method="post" action="kvrecesso.php" accept-charset="utf-8"><input type="hidden" name="_charset_">'
        . '<input type="hidden" name="gettone" value="' . kvGettone() . "\"><input type=\"hidden\" name=\"azione\" value=\"$action\">";
}

/** The first step as HTML. */
function kvFindStep(): string
{
    return '<p>' . kvHtml("<<4-recesso_spiega>>") . ' <a href="recesso.htm">' . kvHtml("<<4-menu_recesso>>") . '</a></p>'
        . kvWithdrawalForm('cerca') . kvCampoEsca() . '<label>' . kvHtml("<<4-ordine_codice>>")
        . ' <input name="codice" maxlength="20" autocomplete="off" required></label><label>' . kvHtml("<<4-ordine_email>>")
        . ' <input type="email" name="email" maxlength="190" autocomplete="email" required></label><p><button type="submit">'
        . kvHtml("<<4-recesso_cerca>>") . '</button></p></form>';
}

/** The choice of lines as HTML. */
function kvChooseStep(array $order): string
{
    $html = kvWithdrawalForm('scegli') . '<fieldset><legend>' . kvHtml("<<4-recesso_scegli>>") . ' (' . kvHtml($order['codice'])
        . ')</legend>';
    foreach (kvWithdrawalLines($order) as $n => $line) {
        if ($line['rest'] > 0) {
            $name = kvHtmlUtf8($line['testo'] . ($line['scelte'] === '' ? '' : ' (' . $line['scelte'] . ')'));
            $html .= "<label class=\"spunta\"><input type=\"checkbox\" name=\"riga[$n]\" value=\"1\"> <span>$name</span></label>"
                . '<label>' . kvHtml("<<4-recesso_pezzi>>") . "<span class=\"nascosto\">: $name</span> <input type=\"number\""
                . " inputmode=\"numeric\" name=\"pezzi[$n]\" min=\"1\" max=\"$line[rest]\" value=\"$line[rest]\" required></label>";
        }
    }
    return ($order['tardi'] ? '<p class="avviso">' . kvHtml("<<4-recesso_tardi>>") . '</p>' : '') . $html
        . '</fieldset><p><button type="submit">' . kvHtml("<<4-recesso_avanti>>") . '</button></p></form>';
}

/** The second look as HTML. */
function kvConfirmStep(array $order): string
{
    $lines = kvChosenLines(kvWithdrawalLines($order), $_SESSION['recesso']['scelta'] ?? []);
    if ($lines === null) {
        kvGoToWithdrawalStep('scegli');
    }
    $entries = array_map(fn(array $line): string => '<li>' . kvHtmlUtf8(kvWithdrawalLineText($line)) . '</li>', $lines);
    return '<p>' . kvHtml("<<4-recesso_dichiarazione>>") . '</p><ul>' . implode('', $entries) . '</ul><p>' . kvHtml("<<4-ordine_codice>>")
        . ': ' . kvHtml($order['codice']) . '</p>' . kvWithdrawalForm('conferma') . '<p><button type="submit">'
        . kvHtml("<<4-recesso_conferma>>") . '</button> <a href="kvrecesso.php?passo=scegli">' . kvHtml("<<4-recesso_cambia>>")
        . '</a></p></form>';
}

/** The receipt as HTML. */
function kvReceiptStep(): string
{
    return '<p role="status">' . kvHtml("<<4-recesso_mail_inviata>>") . '</p><pre class="riepilogo">'
        . kvHtmlUtf8($_SESSION['ricevuta']) . '</pre><p class="solo-schermo"><button type="button" class="secondario"'
        . ' onclick="print()">' . kvHtml("<<4-stampa>>") . '</button></p>';
}

/** The page of a step, with the notice that waits. */
function kvWithdrawalPage(string $step): string
{
    $notice = (string) ($_SESSION['avviso'] ?? '');
    switch ($step) {
        case 'scegli':
            $html = kvChooseStep(kvChosenOrder());
            break;
        case 'conferma':
            $html = kvConfirmStep(kvChosenOrder());
            break;
        case 'ricevuta':
            $html = isset($_SESSION['ricevuta']) ? kvReceiptStep() : kvFindStep();
            break;
        default:
            $html = kvFindStep();
    }
    unset($_SESSION['avviso']);
    return ($notice === '' ? '' : '<p class="avviso" role="status">' . $notice . '</p>') . $html;
}

kvStartSession(true);
if ($_SERVER['REQUEST_METHOD'] === 'POST') {
    $kvFormToken = kvCampo($_POST, 'gettone', 64);
    if (isset($_SESSION['ricevute'][$kvFormToken])) {
        $_SESSION['ricevuta'] = $_SESSION['ricevute'][$kvFormToken];
        kvGoToWithdrawalStep('ricevuta');
    }
    if (!kvIsTokenValid()) {
        kvGoToWithdrawalStep('', "<<4-sessione_scaduta>>");
    }
    switch (kvCampo($_POST, 'azione', 20)) {
        case 'cerca':
            kvFindWithdrawalOrder();
            break;
        case 'scegli':
            kvChooseWithdrawal(kvChosenOrder());
            break;
        case 'conferma':
            kvConfirmWithdrawal(kvChosenOrder(), $kvFormToken);
    }
    kvGoToWithdrawalStep('');
}
$kvConfirmation = kvWithdrawalPage(kvCampo($_GET, 'passo', 10));
$kvTitoloPagina = kvHtml("<<4-recesso_titolo>>");
$kvPageLanguages = 'kvrecesso';
include "messaggio.htm";
