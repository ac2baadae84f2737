<?php
// ***1.0.7***
// Access of customers: for a visitor the forms of access and of registration, for a customer the way out.
// logcheck.php takes all three.
$home = "index<<1-IDlingua>>.php";
if ($cliente > 0) {
?>
<form class="modulo" method="post" action="logcheck.php">
<p><<4-accesso_attivo>></p>
<input type="hidden" name="azione" value="esci">
<input type="hidden" name="gettone" value="<?php echo kvGettone(); ?>">
<p><button type="submit"><<4-esci>></button> <a href="<?php echo $home; ?>"><<4-torna_al_negozio>></a></p>
</form>
<?php
} else {
?>
<div class="colonne">
<form class="modulo" method="post" action="logcheck.php">
<h2><<4-accesso_titolo>></h2>
<input type="hidden" name="azione" value="entra">
<input type="hidden" name="gettone" value="<?php echo kvGettone(); ?>">
<label><<4-ordine_email>> <input type="email" name="email" maxlength="190" autocomplete="username" required></label>
<label><<4-password>> <input type="password" name="pw" maxlength="100" autocomplete="current-password" required></label>
<p><button type="submit"><<4-entra>></button></p>
</form>
<form class="modulo" method="post" action="logcheck.php">
<h2><<4-registrazione_titolo>></h2>
<input type="hidden" name="azione" value="registra">
<input type="hidden" name="gettone" value="<?php echo kvGettone(); ?>">
<label><<4-ordine_nome>> <input name="nome" maxlength="100" autocomplete="given-name" required></label>
<label><<4-ordine_cognome>> <input name="cognome" maxlength="100" autocomplete="family-name" required></label>
<label><<4-ordine_email>> <input type="email" name="email" maxlength="190" autocomplete="email" required></label>
<label><<4-password_nuova>> <input type="password" name="pw" minlength="8" maxlength="100" autocomplete="new-password"
  required></label>
<label class="spunta"><input type="checkbox" name="privacy" value="1" required>
  <span><<4-consenso_privacy>> (<a href="datipers.htm"><<4-menu_privacy>></a>)</span></label>
<p><button type="submit"><<4-registrati>></button></p>
</form>
</div>
<?php
}
