"""Goes the ways to the windows of a running program, looks at each, and leaves it again."""
import time

from .reader import ANSWER_SECONDS, ESCAPE_KEY
from .ways import BOX, CHOOSER, OUTSIDE, PASSING, WAYS, Await, Click, Each, Fill, Key, Type, Walk

PAGES = ["Reparti", "Articoli", "Sito", "Internet"]
BUTTONS = ("push button", "toggle button")
MOST_LEFT = 8  # windows over each other
SETTLE_SECONDS = 0.3


class Looks:
    """What has been looked at in one run of a program. `isWhole`: the long ways too, and the round of Tab in every window."""

    def __init__(self, reader, program, frame, screen, is_whole):
        self.reader, self.program, self.frame, self.screen = reader, program, frame, screen
        self.is_whole = is_whole
        self.classes, self.windows, self.stops = set(), 0, 0
        self.is_silent = False

    # Windows.

    def shown(self):
        return self.reader.windows(self.program)

    def look(self, where, window):
        """The controls of one window, and the way of Tab through it."""
        self.reader.look(where, window)
        self.reader.activate(window)
        self.stops += self.reader.go_round(where, window)
        self.windows += 1

    def await_window(self, where, before, name):
        """The window of the class `name` that has come, or a box for BOX; looked at. None when it doesn't come."""
        def come():
            new = [window for window in self.shown() if window not in before]
            return next((window for window in reversed(new) if self.reader.class_of(window) == wanted), None)
        wanted = BOX if name == CHOOSER else name
        window = self.reader.wait(come, ANSWER_SECONDS)
        if window is None:
            there = [f"{self.reader.class_of(one)} \"{one.get_name()}\"" for one in self.shown() if one not in before]
            self.reader.complain(where, f"{name or 'no box'} does not come", None if there else self.frame)
            if there:
                self.reader.complain(where, "instead there is " + ", ".join(there))
            return None
        self.classes.add(name)
        if name in PASSING and not (self.is_silent and name == "frmFTP"):
            self.reader.look(where, window)
            self.windows += 1
        elif name != CHOOSER:
            self.look(where, window)
        return window

    def leave(self, where, before, yes=False):
        """Escape until the windows of before are left; a question that comes then has a yes pressed if that is wanted."""
        for _ in range(MOST_LEFT):
            time.sleep(SETTLE_SECONDS)
            later = [window for window in self.shown() if window not in before]
            if not later:
                return True
            top = later[-1]
            agree, count = self.control(top, "Sì") if yes else None, len(self.shown())
            if agree is not None:
                self.reader.trigger(agree)
            else:
                self.reader.activate(top)
                self.reader.press(ESCAPE_KEY)
            if not self.reader.wait(lambda top=top, count=count: top not in self.shown() or len(self.shown()) > count,
                                    ANSWER_SECONDS):
                self.reader.complain(where, "Escape does not close it", top)
                return False
        self.reader.complain(where, "there is always one window more")
        return False

    def control(self, window, start, roles=()):
        """The control of a window, of one of the roles if any are named, whose name starts with a text."""
        return next((node for node in self.reader.walk(window)
                     if node.get_role_name() != "label" and node.get_name().startswith(start)
                     and (not roles or node.get_role_name() in roles) and self.reader.has(node, "ENABLED")), None)

    # Steps of a way.

    def step(self, where, base, step):
        """One step from the window in front; `base` are the windows before the way. False when the way ends here."""
        before = self.shown()
        top = before[-1]
        if isinstance(step, Each):
            return self.each(where, top, step)
        if isinstance(step, Walk):
            return self.walk_again(where, step.name)
        if isinstance(step, Await):
            return self.await_window(where, base, step.opens) is not None
        if isinstance(step, Click):
            return self.reader.click(next(node for node in self.reader.walk(top) if node.get_role_name() == "table cell"))
        if isinstance(step, (Key, Type)):
            self.reader.activate(top)
            if isinstance(step, Key):
                self.reader.press(step.name)
            else:
                self.reader.type_line(self.path(step.text))
        elif step.name and not self.use(where, top, step):
            return False
        if getattr(step, "opens", None) is None:
            return True
        # A window may be there already: it came by itself, or a box over it had to go first.
        return self.await_window(where, before if step.opens in (BOX, CHOOSER) else base, step.opens) is not None

    def walk_again(self, where, name):
        """The window of the class `name` once it is in front; False when it isn't."""
        if not self.reader.wait(lambda: self.reader.class_of(self.shown()[-1]) == name, ANSWER_SECONDS):
            self.reader.complain(where, f"{name} does not come to the front", self.shown()[-1])
            return False
        self.look(where, self.shown()[-1])
        return True

    def path(self, text):
        return text.replace("~", str(self.screen.home))

    def use(self, where, top, step):
        """Presses or fills a control of a window; False when it isn't there."""
        control = self.control(top, step.name)
        if control is None:
            self.reader.complain(where, f"there is no \"{step.name}\" that is on", top)
            return False
        if isinstance(step, Fill):
            self.fill(control, self.path(step.text))
        else:
            self.press(control)
        return True

    def press(self, control):
        if control.get_role_name() == "list item":
            self.reader.spi.Component.grab_focus(control)
        self.reader.trigger(control)

    def fill(self, control, text):
        self.reader.spi.Component.grab_focus(control)
        self.reader.spi.EditableText.set_text_contents(control, text)
        self.reader.press("Tab")
        time.sleep(SETTLE_SECONDS)

    def each(self, where, top, step):
        names = [node.get_name() for node in self.reader.walk(top)
                 if node.get_role_name() == "push button" and step.mark in node.get_name()]
        for name in names:
            before = self.shown()
            self.reader.trigger(self.control(top, name))
            if self.await_window(f"{where} / {name}", before, step.opens) is None:
                return False
            if not self.leave(f"{where} / {name}", before):
                return False
            self.reader.activate(top)
        return True

    def go(self, way, opener, where):
        """One whole way from what opens its window."""
        before = self.shown()
        self.is_silent = way.isSilent
        self.screen.use_server(way.isSilent)
        self.reader.trigger(opener)
        ok = self.await_window(where, before, way.opens) is not None
        for step in way.steps if ok else ():
            if not self.step(where, before, step):
                break
        return self.leave(where, before, way.yes)

    # The ways.

    def entries(self):
        """The entries of the menus that show, by the names on the way to them."""
        reader = self.reader
        bar = next(child for child in reader.children(self.frame) if child.get_role_name() == "menu bar")

        def below(node, names):
            for child in reader.children(node):
                if child.get_role_name() == "popup menu":
                    yield from below(child, names)
                elif child.get_role_name().endswith("menu item"):
                    steps = [*names, child.get_name()]
                    yield steps, child
                    yield from below(child, steps)
        return [(names, node) for menu in reader.children(bar) if reader.has(menu, "SHOWING")
                for names, node in below(menu, [menu.get_name()])]

    def show_page(self, name):
        tab = next(node for node in self.reader.walk(self.frame)
                   if node.get_role_name() == "page tab" and node.get_name() == name)
        self.reader.trigger(tab)
        # A strip of tabs bears the name of the one in front.
        if not self.reader.wait(lambda: tab.get_parent().get_name() == name):
            self.reader.complain(name, "does not come to the front", tab)
        self.reader.spi.Component.grab_focus(tab.get_parent())

    def go_to_article(self):
        """To the last department of the tree that has articles, where variants can be defined."""
        def has_article():
            return any(names[-1] == "1" and self.reader.has(node, "ENABLED") for names, node in self.entries())
        tree = next(node for node in self.reader.walk(self.frame) if node.get_role_name() == "tree")
        for cell in reversed(self.reader.children(tree)):
            if not cell.get_name():
                continue
            self.reader.click(cell)
            if self.reader.wait(has_article, 1):
                return
        self.reader.complain("Articoli", "there is no way to an article", tree)

    def ways_of(self, start, page=""):
        return [way for way in WAYS if way.start == start and way.page == page and (self.is_whole or not way.isLong)]

    def go_ways(self):
        """All ways from the entries of the menus of each page and from controls of pages. An entry that opens a window, as
        its dots tell, and has no way is a fault, and so is one that is off."""
        known = set()
        for page in PAGES:
            self.show_page(page)
            if page == "Articoli":
                self.go_to_article()
            for names, entry in self.entries():
                start, where = names[-1], " / ".join(names)
                if start in known or start in OUTSIDE:
                    continue
                known.add(start)
                self.go_entry(start, where, entry)
            for way in [way for way in WAYS if way.page == page and (self.is_whole or not way.isLong)]:
                control = self.control(self.frame, way.start, BUTTONS)
                if control is None:
                    self.reader.complain(page, f"there is no \"{way.start}\" that is on", self.frame)
                    continue
                self.go(way, control, f"{page} / {way.start}")

    def go_entry(self, start, where, entry):
        every = [way for way in WAYS if way.start == start and not way.page and way.opens is not None]
        if start.endswith("...") and not every:
            self.reader.complain(where, "no way is known", entry)
        if every and not self.reader.has(entry, "ENABLED"):
            return self.reader.complain(where, "is off", entry)
        for way in self.ways_of(start):
            if way.opens is not None and not self.go(way, entry, where):
                return None
        return None
