"""What the law wants to be read on the pages: the button of the order, the notes beside prices, who the merchant is."""
import re

from shop_case import Case, cart_cookie

BUTTONS = {"": "Ordine con obbligo di pagare", "_l2": "Order with obligation to pay",
           "_l3": "Commande avec obligation de paiement", "_l4": "Zahlungspflichtig bestellen"}
NOTES = {"": "IVA inclusa, più <a href=\"condizioni.php\">spedizione</a>",
         "_l2": "VAT included, plus <a href=\"condizioni_l2.php\">delivery</a>",
         "_l3": "TVA comprise, plus <a href=\"condizioni_l3.php\">livraison</a>",
         "_l4": "inkl. MwSt., zzgl. <a href=\"condizioni_l4.php\">Versand</a>"}
IDENTITY = "CREATE TABLE identita (ID INTEGER PRIMARY KEY, legale_sede TEXT, legale_piva TEXT, legale_registro TEXT);"


def enter_identity(catalogue):
    """What the merchant's fields leave in the catalogue."""
    catalogue.execute(IDENTITY)
    catalogue.execute("INSERT INTO identita VALUES (1, 'Livia & Figlie, via Nuova 3, Forlì', 'IT01234567890', 'REA FO-1')")


class LawfulPages(Case):
    def test_the_button_says_in_each_language_that_ordering_means_paying(self):
        cart_cookie(self.visitor, self.cart)
        for suffix, words in BUTTONS.items():
            text = self.visitor.ask(f"order{suffix}.php").text
            self.assertIn(f'<button type="submit">{words}</button>', text)

    def test_the_order_has_one_tick_for_the_terms_and_links_the_rest(self):
        cart_cookie(self.visitor, self.cart)
        text = self.visitor.ask("order.php").text
        main = text[text.index("<main"):text.index("</main>")]
        label = re.search(r'<label class="spunta"><input type="checkbox" name="Privacy".*?</label>', main).group(0)
        self.assertEqual(re.findall(r'href="([^"]*)"', label), ["condizioni.php"])
        self.assertEqual(len(re.findall(r'type="checkbox"', main)), 2)  # the other one is the age
        for page in ("recesso.php", "datipers.php"):
            self.assertIn(f'href="{page}"', main)

    def test_each_price_says_whether_it_holds_vat_and_leads_to_the_cost_of_delivery(self):
        for suffix, note in NOTES.items():
            text = self.visitor.ask(f"cat007{suffix}.php").text
            self.assertGreater(text.count('<strong class="prezzo">'), 1)
            self.assertEqual(text.count(note), text.count('<strong class="prezzo">'), suffix)
            self.assertIn(note, self.visitor.ask(f"index{suffix}.php").text)

    def test_every_page_ends_with_who_the_merchant_is(self):
        for suffix, label in (("", "Partita IVA"), ("_l2", "VAT number"), ("_l3", "N° de TVA"), ("_l4", "USt-IdNr.")):
            for name in ("index", "cat007", "cart", "recesso", "kvrecesso"):
                text = self.visitor.ask(f"{name}{suffix}.php").text
                foot = text[text.index("<footer"):]
                self.assertIn(f'<p class="legale">Livia &amp; Figlie, via Nuova 3, Forlì &middot; {label} IT01234567890 &middot; '
                              "REA FO-1</p>", foot)
