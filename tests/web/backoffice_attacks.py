"""What others try on the door for the merchant's own machine, and what the machine itself may send by mistake: no request
harms a table, none is carried out twice. Classes for backoffice_work_test.py."""
import concurrent.futures
import json
import threading

from backoffice_case import OFFICE
from backoffice_remote import LINES, RemoteDesk
from desk_client import DeskClient, sign

CODE = "261101-AAAAAA"
# Each action with its fields, as it would be carried out.
REQUESTS = {"ordini": {"dopo": "", "quanti": 5}, "tolti": {"da": 0, "quanti": 5},
            "stato": {"codice": CODE, "da": "nuovo", "a": "pagato", "scorte": True, "scrivi": True, "messaggio": "x"},
            "nota": {"codice": CODE, "testo": "x"}, "scorte": {"tipo": "A", "cerca": "", "da": 0, "quanti": 5},
            "scorta": {"tipo": "A", "chiave": "41", "prima": "1|", "dopo": "1|5"}}
# Those whose value is free: with any of them the request is carried out.
FREE = {("stato", "messaggio"), ("stato", "scorte"), ("stato", "scrivi"), ("nota", "testo"), ("scorta", "chiave")}
SQL = ("' OR '1'='1", "\\' UNION SELECT valore FROM kv_stato -- ", "x\0'; DELETE FROM kv_ordini; -- ")
OTHERS = ([], {"a": 1}, True, None, -1, 1e300, "", "\u202e" * 300)


class RemoteAttacks(RemoteDesk):
    def setUp(self):
        super().setUp()
        self.add_order(CODE, lines=LINES)

    def tables(self):
        return [self.shop.rows(f"SELECT * FROM {table} ORDER BY 1, 2") for table in
                ("kv_clienti", "kv_disponibilita", "kv_stato", "kv_testi", "kv_recessi", "kv_tolti", "kv_annotazioni")] + [
                    self.shop.rows("SELECT codice, stato, totale, nome, email, dati FROM kv_ordini ORDER BY id")]

    def send_changed(self, values):
        """Sends each request with each of its fields changed to each of these values: none may change anything."""
        before = self.tables()
        for action, fields in REQUESTS.items():
            for name in fields:
                for value in values if (action, name) not in FREE else ():
                    asked = {"azione": action, **fields, name: value}
                    answer = self.desk.send(self.desk.request(json.dumps(asked)))
                    self.assertIsInstance(answer, dict, asked)
                    self.assertNotIn("chiave_ordini", str(answer))
        self.assertEqual(self.tables(), before)

    def test_no_sql_in_a_field_is_carried_out(self):
        self.send_changed(SQL)

    def test_values_of_other_types_change_nothing(self):
        self.send_changed(OTHERS)

    def test_a_text_is_written_as_it_is_however_it_looks(self):
        for text in SQL + ("<script>alert(1)</script>", "=1+1", "\u202egnp.exe"):
            self.assertEqual(self.desk.ask("nota", codice=CODE, testo=text)["esito"], "fatto")
            self.assertEqual(self.order()["note"][-1]["testo"], text.replace("\0", "").strip())
        for text in SQL:
            self.assertEqual(self.desk.ask("scorta", tipo="A", chiave=text, prima="1|", dopo="1|5")["esito"], "fatto")
        self.assertEqual(sorted(row[0] for row in self.shop.rows("SELECT chiave FROM kv_disponibilita")),
                         sorted(text.replace("\0", "").strip() for text in SQL))
        self.assertIn("errore", self.desk.ask("scorta", tipo="A", chiave="\u202e" * 100, prima="1|", dopo="1|5"))
        self.assertNotIn("<script>alert", self.order_page().text)

    def test_a_request_of_many_bytes_is_cut_or_refused(self):
        self.assertEqual(self.desk.refusal(firma="0" * 64, dati="x" * 3_000_000), (403, "firma"))
        self.assertEqual(self.desk.ask("nota", codice=CODE, testo="Ł" * 1_000_000)["esito"], "fatto")
        self.assertEqual(self.order()["note"][-1]["testo"], "Ł" * 2000)
        self.assertEqual(self.desk.refusal(number="0" * 100_000), (403, "numero"))
        self.assertIn("errore", self.desk.send(self.desk.request("[" * 100_000)))

    def signed_at(self, moment):
        """The refusal of a request that was signed with any text as its time."""
        asked = self.desk.request({"azione": "prova"}, ora=moment)
        asked["firma"] = sign(self.desk.key, "korvane-ordini-1", moment, asked["numero"], asked["dati"])
        page = self.desk.visitor.ask("remoto.php", asked)
        return None if page.status == 200 else (page.status, page.text[:4])

    def test_a_time_is_digits_and_nothing_else(self):
        now = self.desk.request({"azione": "prova"})["ora"]
        for wrong in ("0x7fffffff", "1e10", " " + now, now + " ", "+" + now, now + ".0", "-" + now, "", "9" * 40):
            self.assertEqual(self.signed_at(wrong), (403, "ora "), wrong)
        self.assertIsNone(self.signed_at(now))

    def test_of_many_changes_at_a_time_one_is_carried_out(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 2)")
        before, barrier = len(self.shop.mails()), threading.Barrier(4)

        def send(_):
            desk = DeskClient(self.shop.visitor("/" + OFFICE))
            barrier.wait()
            return desk.ask("stato", codice=CODE, da="nuovo", a="annullato", scorte=True, scrivi=True, messaggio="")

        with concurrent.futures.ThreadPoolExecutor(4) as threads:
            answers = list(threads.map(send, range(4)))
        self.assertEqual(sorted(answer["esito"] for answer in answers), ["diverso", "diverso", "diverso", "fatto"])
        self.assertEqual({answer["ordine"]["stato"] for answer in answers}, {"annullato"})
        self.assertEqual(self.shop.rows("SELECT quantita FROM kv_disponibilita"), [["5"]])
        self.assertEqual(len(self.shop.mails()), before + 1)
