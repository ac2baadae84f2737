#!/usr/bin/python3
"""A merchant's first day, by real keys and clicks: from an empty home to twenty articles with prices in two languages,
built, and seen in a browser.

    tests/e2e/first_day.py PROGRAMS [--size WIDTHxHEIGHT] [--dark] [--wm PROGRAM] [--scale FACTOR] [--shots FOLDER]
    tests/e2e/first_day.py PROGRAMS --all

Starts `korvane` of the folder PROGRAMS on a virtual screen with a window manager, a session bus and a home of its own
in which there is nothing. What is pressed is pressed by xdotool, where the eye would look; nothing is known of the
shop but what shows. At the end chromium reads the twenty titles and prices on the shop's pages in both languages.
--wm: the window manager, openbox if none is named. --scale: of what the program shows, 1.25 for 125 %. --shots:
leaves pictures of the screen on the way. --all: each size, palette, scale and window manager in turn, openbox instead
of one that isn't installed (Debian has them in openbox, xfwm4, metacity, and kwin-x11 with kwin-style-breeze). Prints
how many keys and clicks it took, besides the characters of codes, titles and prices; ends with 1 when something isn't
as it should be.
"""
import argparse
import html
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time
import urllib.parse

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

from accessibility.reader import Reader  # noqa: E402  (the path above comes first)
from accessibility.screen import Screen  # noqa: E402

ARTICLES = 20
ITALIAN, ENGLISH = "Lampada ", "Lamp "
MOST_KEYS_AND_CLICKS = 190
TITLE = "Korvane - /"
ENTRIES = ("menu item", "check menu item", "radio menu item")
BUTTONS = ("push button", "toggle button", "push button menu")
END_SECONDS = 60
HOST_SECONDS = 180
SHOT_SECONDS = 0.4
BROWSER_SECONDS = 120
WALKS = [("1280x800", False, "openbox", 1), ("1366x768", True, "xfwm4", 1), ("1366x768", False, "metacity", 1),
         ("1920x1080", False, "kwin_x11", 1), ("1920x1080", True, "openbox", 1), ("1920x1080", False, "openbox", 1.25),
         ("1366x768", True, "openbox", 1.25)]

OF_THE_BUS = ("DISPLAY", "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME")

# Stands for the program by which a desktop opens addresses.
OPENER = """#!/bin/sh
printf '%s\\n' "$1" >"$HOME/address.new"
mv "$HOME/address.new" "$HOME/address"
"""


def price(number):
    """What an article costs, as it is typed."""
    return f"{number},{number % 10}5"


class Desk(Screen):
    """A screen with a window manager, and an empty home whose browser notes what it is given."""

    def __init__(self, programs, walk):
        super().__init__(programs)
        self.size, self.is_dark, manager, self.scale = walk
        self.manager = manager if shutil.which(manager) else "openbox"

    def shop_made(self):
        """Where the welcome proposes a shop."""
        return self.home / "Negozi" / "negozio"

    def start(self):
        self.open_screen()
        opener = self.home / "bin" / "xdg-open"
        opener.parent.mkdir()
        opener.write_text(OPENER, encoding="utf-8")
        opener.chmod(0o755)
        self.own["PATH"] = f"{opener.parent}:{os.environ['PATH']}"
        # Prices are typed as in Italy, also where its locale is not installed.
        self.own["LC_NUMERIC"] = "it_IT.UTF-8"
        if self.scale != 1:
            self.own["QT_SCALE_FACTOR"] = str(self.scale)
        if self.is_dark:
            settings = self.home / "config" / "korvane" / "korvane.ini"
            settings.parent.mkdir(parents=True)
            settings.write_text("[Finestra]\nAspetto=scuro\n", encoding="utf-8")
        quiet = subprocess.DEVNULL
        # What the bus starts for the window manager finds the screen, and keeps its settings in this home.
        subprocess.run(["dbus-update-activation-environment", *(f"{name}={self.own[name]}" for name in OF_THE_BUS)],
                       check=True)
        self.started.append(subprocess.Popen([self.manager], env=self.own, stdin=quiet, stdout=quiet, stderr=quiet))
        give_up = time.monotonic() + END_SECONDS
        while "window id" not in subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], check=False,
                                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout:
            if time.monotonic() > give_up:
                sys.exit(f"{self.manager} does not come up")
            time.sleep(0.05)
        self.run_program()


class Hand:
    """Presses keys and clicks, counts them, and knows what shows and what has the focus."""

    def __init__(self, desk, reader, shots):
        self.desk, self.reader, self.shots = desk, reader, shots
        reader.scale = desk.scale
        self.actions = self.characters = self.pictures = 0
        self.node, self.focus = None, ""
        self.program = reader.wait(reader.program)
        if self.program is None:
            sys.exit("the program shows no window:\n" + (desk.home / "log").read_text(encoding="utf-8"))

    def fail(self, what):
        self.shoot("failed")
        there = ", ".join(f"\"{window.get_name()}\"" for window in self.reader.windows(self.program))
        sys.exit(f"{what}; the focus is on {self.focus}, the windows are {there}")

    def shoot(self, name):
        if self.shots:
            time.sleep(SHOT_SECONDS)  # what has just been asked for is painted
            self.pictures += 1
            picture = self.shots / f"{self.pictures:02}-{name}.png"
            subprocess.run(["import", "-window", "root", picture], check=True, timeout=END_SECONDS)

    def wait(self, condition, seconds=END_SECONDS):
        """The first true value of condition(), or None. What it looks at may go meanwhile: then it looks again."""
        def look():
            try:
                return condition()
            except self.reader.gone:
                return None
        return self.reader.wait(look, seconds)

    def focus_comes_to(self, name):
        def come():
            for node in self.reader.focused:
                self.node, self.focus = node, self.name_of(node)
            self.reader.focused.clear()
            return self.focus == name
        if not self.wait(come):
            self.fail(f"the focus should be on {name}")

    def name_of(self, node):
        try:
            return node.get_name()
        except self.reader.gone:
            return ""  # an entry of a menu that has been closed

    def window(self, start, seconds=END_SECONDS):
        """The window whose title starts with a text, once it is there and has the keyboard."""
        def come():
            return next((window for window in self.reader.windows(self.program)
                         if window.get_name().startswith(start) and self.reader.has(window, "ACTIVE")), None)
        found = self.wait(come, seconds)
        if found is None:
            self.fail(f"no window \"{start}\" has the keyboard")
        return found

    def press(self, *keys):
        self.actions += len(keys)
        self.reader.run("key", "--delay", "8", *keys)

    def type(self, name, text):
        """Types a text over that of the field `name`, once that has the focus, and sees that it is there."""
        self.focus_comes_to(name)
        self.characters += len(text)
        self.reader.run("type", "--delay", "4", text)
        # A key that is a shortcut would overtake keys that the reader of the screen still listens to.
        self.text_comes(self.node, text)

    def text_comes(self, node, text):
        if not self.wait(lambda: self.reader.spi.Text.get_text(node, 0, -1) == text):
            self.fail(f"\"{self.name_of(node)}\" should be {text}")

    def comes(self, name, *roles, after=0, seconds=END_SECONDS):
        """What has a name and one of the roles, or the control `after` it, once it shows."""
        def come():
            shown = [node for window in self.reader.windows(self.program) for node in self.everything(window)
                     if node.get_role_name() in roles]
            return next((shown[at + after] for at, node in enumerate(shown) if node.get_name().strip() == name), None)
        found = self.wait(come, seconds)
        if found is None:
            self.fail(f"there is no {name}")
        return found

    def click(self, *what, after=0):
        self.actions += 1
        self.reader.click(self.comes(*what, after=after))

    def editor(self, label):
        """The editor that a text beside it names."""
        return next(node for window in self.reader.windows(self.program) for node in self.everything(window)
                    if label in self.reader.labels(node))

    def everything(self, node):
        """A node and all that shows below it, menus too."""
        yield node
        for child in self.reader.children(node):
            if self.reader.has(child, "SHOWING"):
                yield from self.everything(child)


def check_frames(hand):
    """The guide and the main window, frames included, come to be whole on the screen, neither over the other."""
    width, height = (int(side) for side in hand.desk.size.split("x"))

    def frames():
        return [hand.reader.frame(window) for window in hand.reader.windows(hand.program)
                if window.get_name().startswith(("Korvane - Per iniziare", TITLE))]

    def fits():
        found = frames()
        if len(found) < 2 or None in found:
            return False
        one, other = sorted(found)
        inside = all(left >= 0 and top >= 0 and right <= width and bottom <= height
                     for left, top, right, bottom in found)
        return inside and (one[2] <= other[0] or min(one[3], other[3]) <= max(one[1], other[1]))
    if not hand.wait(fits):
        hand.fail(f"the guide and the window are at {frames()} on {hand.desk.size}")


def make_shop(hand):
    """The welcome proposes an empty shop; the guide is looked at and closed."""
    hand.window("Korvane - Benvenuto")
    hand.shoot("welcome")
    hand.press("Return")
    hand.window("Korvane - Per iniziare")
    check_frames(hand)
    hand.shoot("guide")
    hand.press("Escape")
    hand.window(TITLE)


def add_language(hand):
    """English beside Italian."""
    hand.click("File", "menu item")
    hand.shoot("menu")
    hand.click("Configura lingue...", "menu item")
    hand.window("Korvane - Configurazione lingue")
    hand.press("Down", "Tab", "Tab", "i")
    hand.shoot("languages")
    if not hand.reader.wait(lambda: hand.editor("Lingua 2:").get_name() == "inglese"):
        hand.fail("the second language is not the one that was typed")
    hand.press("Return")
    hand.window(TITLE)


def type_articles(hand):
    """Code, title and price of each, without a look at the mouse."""
    hand.click("Articoli", "page tab")
    for number in range(1, ARTICLES + 1):
        hand.press("ctrl+i")
        hand.type("Codice", f"L{number:02}")
        hand.press("Tab")
        hand.type("Titolo", ITALIAN + str(number))
        hand.press("Tab", "Tab", "Tab")
        hand.type("Prezzo", price(number))
        if number == 2:
            hand.shoot("article")


def translate(hand):
    """The titles in the other language, one above the other in the list, from the article that was typed last."""
    hand.click("Lingua: italiano", *BUTTONS)
    hand.shoot("language")
    hand.click("2 - inglese", *ENTRIES)
    hand.click(f"L{ARTICLES:02}", "table cell", after=1)
    code = hand.editor("Codice:")
    for number in range(ARTICLES, 0, -1):
        # The panel follows the list.
        hand.text_comes(code, f"L{number:02}")
        hand.press("F2")
        hand.type("Titolo", ENGLISH + str(number))
        hand.press("Return")
        if number > 1:
            hand.press("Up")
    hand.shoot("translated")


def build(hand):
    hand.press("ctrl+b")
    hand.comes("OK", "push button", seconds=HOST_SECONDS)
    hand.shoot("built")
    hand.press("Return")
    hand.window(TITLE)


def view(hand):
    """The shop in the browser; the result is its address there."""
    noted = hand.desk.home / "address"
    hand.press("F5")
    hand.shoot("serving")
    if not hand.reader.wait(noted.exists, HOST_SECONDS):
        hand.fail("the browser is not asked for")
    hand.window(TITLE)
    return noted.read_text(encoding="utf-8").strip()


class Browser:
    """Chromium, for one page at a time."""

    def __init__(self, desk, shots):
        self.desk, self.shots = desk, shots

    def run(self, address, *words):
        flags = ["--headless", "--disable-gpu", "--no-first-run", "--disable-dev-shm-usage",
                 f"--user-data-dir={self.desk.home / 'browser'}", f"--window-size={self.desk.size.replace('x', ',')}"]
        if os.getuid() == 0:
            flags.append("--no-sandbox")
        try:
            return subprocess.run(["chromium", *flags, *words, address], env=self.desk.own, check=True, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=BROWSER_SECONDS).stdout
        except subprocess.TimeoutExpired:
            sys.exit(f"the browser does not show {address}")

    def page(self, address, picture=None):
        """What a page is once its scripts have run."""
        if self.shots and picture:
            self.run(address, f"--screenshot={self.shots / picture}.png")
        return self.run(address, "--dump-dom")


def text_of(page):
    """What a page says, without its scripts."""
    shown = re.sub(r"<(script|style)\b.*?</\1>", " ", page, flags=re.DOTALL)
    return " ".join(html.unescape(re.sub(r"<[^>]*>", " ", shown)).split())


def check_pages(browser, address):
    """Titles and prices in both languages, as visitors come to them from the page that the browser was given."""
    start = browser.page(address)
    english = re.search(r'hreflang="en" href="([^"]*)"', start)[1]
    for language, title, entrance in (("it", ITALIAN, start), ("en", ENGLISH, browser.page(english))):
        department = re.search(r'class="primo" href="([^"]*)"', entrance)[1]
        said = text_of(browser.page(urllib.parse.urljoin(address, department), language))
        shown = re.findall(title + r"(\d+) € (\d+[.,]\d\d)", said)
        sign = "," if language == "it" else "."
        wanted = [(str(number), price(number).replace(",", sign)) for number in range(1, ARTICLES + 1)]
        if shown != wanted:
            sys.exit(f"the page in the language {language} should show {wanted}, it shows {shown}:\n{said}")


def walk(programs, how, shots):
    with Desk(programs, how) as desk:
        hand = Hand(desk, Reader(), shots)
        make_shop(hand)
        add_language(hand)
        type_articles(hand)
        translate(hand)
        build(hand)
        address = view(hand)
        check_pages(Browser(desk, shots), address)
        hand.press("ctrl+q")
        status = desk.program.wait(END_SECONDS)
        if status != 0:
            sys.exit(f"the program ends with status {status}:\n" + (desk.home / "log").read_text(encoding="utf-8"))
        palette = "dark" if desk.is_dark else "light"
        print(f"{desk.size} {palette} {desk.manager} {desk.scale:.0%}: {hand.actions} keys and clicks besides "
              f"{hand.characters} characters", flush=True)
        if hand.actions > MOST_KEYS_AND_CLICKS:
            sys.exit(f"more than {MOST_KEYS_AND_CLICKS} keys and clicks")


def main():
    words = argparse.ArgumentParser(usage=__doc__.split("\n\n")[1])
    words.add_argument("programs", type=pathlib.Path)
    words.add_argument("--size", default="1366x768")
    words.add_argument("--dark", action="store_true")
    words.add_argument("--wm", default="openbox")
    words.add_argument("--scale", type=float, default=1)
    words.add_argument("--shots", type=pathlib.Path)
    words.add_argument("--all", action="store_true")
    given = words.parse_args()
    for how in WALKS if given.all else [(given.size, given.dark, given.wm, given.scale)]:
        name = f"{how[0]}-{'dark' if how[1] else 'light'}-{how[2]}-{how[3]:.0%}".rstrip("%")
        shots = given.shots / name if given.shots else None
        if shots:
            shots.mkdir(parents=True, exist_ok=True)
        walk(given.programs, how, shots)


if __name__ == "__main__":
    if "KORVANE_OWN_BUS" not in os.environ:
        # Once more, on a session bus of its own that ends with it.
        os.environ["KORVANE_OWN_BUS"] = "yes"
        os.execvp("dbus-run-session", ["dbus-run-session", "--", sys.executable, __file__, *sys.argv[1:]])
    main()
