<?php
// ***1.0.7***
// The login page's forms, which logcheck.php takes. For a visitor: access, registration, a forgotten password; with the
// token of a mail in `g` the choice of a new one, in `r` the end of a registration. For a customer: own data, password, the way out.
$home = "index<<1-IDlingua>>.php";
if (!defined('KORVANE_SHOP')) {
    exit;
}
include_once "kvaccount.php";
$kvOwn = kvCustomerRow(kvSessionCustomer());
$kvMailToken = kvValidRequest(kvCampo($HTTP_GET_VARS, 'g', 64)) === '' ? '' : kvCampo($HTTP_GET_VARS, 'g', 64);
$kvAfter = in_array((int) kvCampo($HTTP_GET_VARS, 'm', 4), [23], true) ? 'ordine' : '';
$kvHidden = '<input type="hidden" name="_charset_"><input type="hidden" name="gettone" value="' . kvGettone() . '">'
    . '<input type="hidden" name="dopo" value="' . $kvAfter . '">';
$kvAccountToken = kvValidRegistration(kvCampo($HTTP_GET_VARS, 'r', 64)) === null ? '' : kvCampo($HTTP_GET_VARS, 'r', 64);
if ($kvAccountToken !== '') {
?>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-registrazione_titolo>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="conferma">
<input type="hidden" name="r" value="<?php echo kvHtml($kvAccountToken); ?>">
<p><button type="submit"><<4-registrazione_conferma>></button></p>
</form>
<?php
} elseif ($kvMailToken !== '') {
?>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-password_richiesta>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="ripristina">
<input type="hidden" name="g" value="<?php echo kvHtml($kvMailToken); ?>">
<label><<4-password_nuova>> <input type="password" name="pw" minlength="8" maxlength="100" autocomplete="new-password"
  required></label>
<p><button type="submit"><<4-salva>></button></p>
</form>
<?php
} elseif ($kvOwn !== null) {
    $kvLabels = ['nome' => "<<4-ordine_nome>>", 'cognome' => "<<4-ordine_cognome>>", 'rsoc' => "<<4-ordine_rsoc>>",
        'piva' => "<<4-ordine_piva>>", 'indirizzo' => "<<4-ordine_indirizzo>>", 'cap' => "<<4-ordine_cap>>",
        'citta' => "<<4-ordine_citta>>", 'provincia' => "<<4-ordine_provincia>>", 'paese' => "<<4-ordine_paese>>",
        'telefono' => "<<4-ordine_telefono>>"];
    $kvAutocomplete = ['nome' => 'given-name', 'cognome' => 'family-name', 'rsoc' => 'organization', 'piva' => 'off',
        'indirizzo' => 'address-line1', 'cap' => 'postal-code', 'citta' => 'address-level2',
        'provincia' => 'address-level1', 'paese' => 'country-name', 'telefono' => 'tel'];
?>
<p><<4-accesso_attivo>> (<?php echo kvHtmlUtf8($kvOwn['email']); ?>)</p>
<?php if ($clienteinattesa > 0) { ?>
<p class="avviso" role="status"><<4-attesa_approvazione>></p>
<?php } ?>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="esci">
<p><button type="submit"><<4-esci>></button> <a href="<?php echo $home; ?>"><<4-torna_al_negozio>></a></p>
</form>
<?php include_once "kvstorico.php"; echo kvOrderHistory((int) $cliente); ?>
<div class="colonne">
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-dati_cliente>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="dati">
<?php foreach ($kvLabels as $kvName => $kvLabel) { ?>
<label><?php echo kvHtml($kvLabel); ?> <input name="<?php echo $kvName; ?>" maxlength="<?php
    echo KV_CUSTOMER_DATA[$kvName][1]; ?>" autocomplete="<?php echo $kvAutocomplete[$kvName]; ?>" value="<?php
    echo kvHtmlUtf8($kvOwn[$kvName]); ?>"<?php echo $kvName === 'nome' || $kvName === 'cognome' ? ' required' : ''; ?>></label>
<?php } ?>
<p><button type="submit"><<4-salva>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-password>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="password">
<label><<4-password_attuale>> <input type="password" name="attuale" maxlength="100" autocomplete="current-password"
  required></label>
<label><<4-password_nuova>> <input type="password" name="pw" minlength="8" maxlength="100" autocomplete="new-password"
  required></label>
<p><button type="submit"><<4-salva>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-dati_personali>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="esporta">
<p><<4-dati_spiega>></p>
<p><button type="submit"><<4-dati_scarica>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-dati_elimina>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="elimina">
<p><<4-dati_elimina_spiega>></p>
<label><<4-password_attuale>> <input type="password" name="attuale" maxlength="100" autocomplete="current-password"
  required></label>
<label class="spunta"><input type="checkbox" name="sicuro" value="1" required> <span><<4-dati_elimina_sicuro>></span></label>
<p><button type="submit"><<4-dati_elimina>></button></p>
</form>
</div>
<?php
} else {
?>
<div class="colonne">
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-accesso_titolo>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="entra">
<label><<4-ordine_email>> <input type="email" name="email" maxlength="190" autocomplete="username" required></label>
<label><<4-password>> <input type="password" name="pw" maxlength="100" autocomplete="current-password" required></label>
<p><button type="submit"><<4-entra>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-registrazione_titolo>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="registra">
<?php echo kvCampoEsca(); ?>
<label><<4-ordine_nome>> <input name="nome" maxlength="100" autocomplete="given-name" required></label>
<label><<4-ordine_cognome>> <input name="cognome" maxlength="100" autocomplete="family-name" required></label>
<label><<4-ordine_email>> <input type="email" name="email" maxlength="190" autocomplete="email" required></label>
<label><<4-password_nuova>> <input type="password" name="pw" minlength="8" maxlength="100" autocomplete="new-password"
  required></label>
<label class="spunta"><input type="checkbox" name="privacy" value="1" required>
  <span><<4-consenso_privacy>> (<a href="datipers.htm"><<4-menu_privacy>></a>)</span></label>
<p><button type="submit"><<4-registrati>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php" accept-charset="utf-8">
<h2><<4-password_dimenticata>></h2>
<?php echo $kvHidden; ?>
<input type="hidden" name="azione" value="richiedi">
<label><<4-ordine_email>> <input type="email" name="email" maxlength="190" autocomplete="email" required></label>
<p><button type="submit"><<4-invia>></button></p>
</form>
</div>
<?php
}
