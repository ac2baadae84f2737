"""What a screen reader knows of the running program, over AT-SPI, and the keys that are pressed in it."""
import re
import select
import subprocess
import time

WAIT_SECONDS = 30
ANSWER_SECONDS = 15
SHORT_MILLISECONDS = 400
LONG_MILLISECONDS = 20000
ROUNDS = 3  # of Tab through a window before something is missed
MOST_OF_A_CELL = 4  # stops of Tab for each cell that shows: a grid has more rows than are seen
NEAR = 2  # pixels by which two tellings of a window's corner may differ on a scaled screen
TAB_KEY, ESCAPE_KEY = "Tab", "Escape"
XDOTOOL_SECONDS = 60  # for what it was asked; a window that is gone never takes the focus it waits for

EDITORS = {"text", "password text", "spin button", "combo box", "entry"}
NAMED = {"push button", "toggle button", "check box", "radio button", "menu item", "check menu item", "radio menu item",
         "page tab", "page tab list", "tree", "tree table", "table", "list", "list box", "slider", "dialog", "alert",
         "image", "icon", "progress bar", "tool bar", "table cell", "tree item"} | EDITORS
# Parts of a control that answer to the arrow keys, or that belong to the control around them.
PARTS = {"page tab", "menu item", "check menu item", "radio menu item", "table cell", "tree item", "list item",
         "table column header", "scroll bar"}
WHOLES = {"combo box", "spin button", "page tab list", "menu bar"}


def xdotool(*words):
    """Runs xdotool; False when it doesn't end, or not well."""
    try:
        return subprocess.run(["xdotool", *words], check=False, stderr=subprocess.DEVNULL,
                              timeout=XDOTOOL_SECONDS).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Reader:
    """What a screen reader knows of the program. `scale`: the pixels of the screen for each of the program's."""

    scale = 1
    keyboard = None  # the program that presses keys

    def __init__(self):
        import gi  # pylint: disable=import-outside-toplevel
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi, GLib  # pylint: disable=import-outside-toplevel
        self.spi, self.loop = Atspi, GLib.MainContext.default()
        self.gone = GLib.Error  # what is raised about a node that is no longer there
        Atspi.init()
        Atspi.set_timeout(LONG_MILLISECONDS, LONG_MILLISECONDS)
        self.focused = []
        self.listener = Atspi.EventListener.new(lambda event: self.focused.append(event.source) if event.detail1 else None)
        self.listener.register("object:state-changed:focused")
        self.wrong, self.seen = [], 0

    def wait(self, condition, seconds=WAIT_SECONDS):
        """The first true value of condition(), or its last one."""
        give_up = time.monotonic() + seconds
        while True:
            while self.loop.iteration(False):
                pass
            value = condition()
            if value or time.monotonic() > give_up:
                return value
            time.sleep(0.005)

    def children(self, node):
        return [child for child in (node.get_child_at_index(at) for at in range(node.get_child_count())) if child]

    def has(self, node, state):
        return node.get_state_set().contains(getattr(self.spi.StateType, state))

    def walk(self, node):
        """A node and what shows below it; the menus, which have a turn of their own, are left out."""
        yield node
        for child in self.children(node):
            if child.get_role_name() != "menu bar" and self.has(child, "SHOWING"):
                yield from self.walk(child)

    def labels(self, node):
        return [relation.get_target(at).get_name() for relation in node.get_relation_set()
                if relation.get_relation_type() == self.spi.RelationType.LABELLED_BY
                for at in range(relation.get_n_targets())]

    def program(self):
        desktop = self.spi.get_desktop(0)
        return next((child for child in reversed(self.children(desktop)) if child.get_name() == "korvane"), None)

    def windows(self, program):
        return [child for child in self.children(program) if self.has(child, "SHOWING")]

    def path(self, node):
        steps = []
        while node is not None and node.get_role_name() != "application":
            if node.get_name().strip():
                steps.append(f"{node.get_role_name()} \"{node.get_name().strip()}\"")
            elif not steps:
                steps.append(node.get_role_name())
            node = node.get_parent()
        return " < ".join(steps)

    def complain(self, where, what, node=None):
        text = f"{where}: {what}" + (f": {self.path(node)}" if node else "")
        if text not in self.wrong:
            print(text, flush=True)
            self.wrong.append(text)

    def look(self, where, root):
        """Every control below `root` that shows has a name; editors have labels."""
        for node in self.walk(root):
            self.seen += 1
            role = node.get_role_name()
            if role not in NAMED:
                continue
            labels = [text for text in self.labels(node) if text.strip()]
            if not node.get_name().strip() and not labels:
                self.complain(where, "no name", node)
            parent = node.get_parent()
            if role in EDITORS and not labels and parent.get_role_name() not in WHOLES and not self.is_told(node):
                self.complain(where, "no label", node)

    def is_told(self, node):
        """One of several texts under a strip of tabs, which is its label, or the text after which its window is named."""
        pane = node.get_parent()
        if node.get_name() and pane.get_role_name() == "dialog" and pane.get_name().endswith(" - " + node.get_name()):
            return True
        if pane.get_role_name() == "filler":  # the text with the button beside it
            pane = pane.get_parent()
        strips = self.children(pane.get_parent())
        return pane.get_role_name() == "layered pane" and any(
            strip.get_role_name() == "page tab list" for strip in strips)

    def press(self, key):
        """Presses a key, and returns when the screen has it. One xdotool presses them all: a run has hundreds, and the
        program takes longer to start than to press."""
        if self.keyboard is None:
            self.keyboard = subprocess.Popen(["xdotool", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                             stderr=subprocess.DEVNULL, bufsize=0)
        try:
            self.keyboard.stdin.write(f"key {key}\ngetmouselocation\n".encode())  # which is answered
            told = select.select([self.keyboard.stdout], [], [], XDOTOOL_SECONDS)[0] and self.keyboard.stdout.readline()
        except BrokenPipeError:
            told = None
        if not told:
            raise SystemExit(f"xdotool key {key} does not end well")

    def run(self, *words):
        """Runs xdotool, which must end well."""
        if not xdotool(*words):
            raise SystemExit(f"xdotool {' '.join(words)} does not end well")

    def click(self, node):
        """Clicks into the middle of a node."""
        box = self.spi.Component.get_extents(node, self.spi.CoordType.SCREEN)
        middle = [str(round((box.x + box.width / 2) * self.scale)), str(round((box.y + box.height / 2) * self.scale))]
        # Without --sync, which waits for a move that doesn't come where the pointer is held at an edge: the server
        # does one after the other anyway.
        self.run("mousemove", *middle, "click", "1")
        return True

    def type_line(self, text):
        """Types a text over that of the line that has the focus, and Enter."""
        self.press("ctrl+a")
        self.run("type", "--delay", "2", text)
        self.press("Return")

    def x_windows(self, window):
        """The numbers of the windows on the screen with the title of `window`; of several, as a box over the window whose
        title it bears, those at the same position."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(window.get_name())}$"],
                               check=False, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        numbers = found.stdout.split()
        if len(numbers) < 2:
            return numbers
        told = self.spi.Component.get_extents(window, self.spi.CoordType.SCREEN)
        wanted = [length * self.scale for length in (told.x, told.y, told.width, told.height)]

        def is_there(number):
            box = self.box_of(number)
            return box and all(abs(one - other) <= NEAR for one, other in zip(box, wanted))
        return [number for number in numbers if is_there(number)]

    def box_of(self, number):
        """Left, top, width and height of a window of the screen, without its frame; None when it is gone."""
        told = subprocess.run(["xwininfo", "-id", number], check=False, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              text=True).stdout
        found = dict(re.findall(r"(Absolute upper-left [XY]|Width|Height): +(-?\d+)", told))
        names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        return [int(found[name]) for name in names] if len(found) == len(names) else None

    def frame(self, window):
        """Left, top, right and bottom of a window on the screen, with what the window manager has put around it. None
        as long as it isn't there, or has no frame."""
        numbers = self.x_windows(window)
        if not numbers:
            return None
        told = subprocess.run(["xprop", "-id", numbers[-1], "_NET_FRAME_EXTENTS"], check=False, stdout=subprocess.PIPE,
                              text=True).stdout
        rims = [int(number) for number in re.findall(r"\d+", told.partition("=")[2])]
        box = self.box_of(numbers[-1])
        if len(rims) != 4 or not any(rims) or box is None:
            return None
        left, top, width, height = box
        return left - rims[0], top - rims[2], left + width + rims[1], top + height + rims[3]

    def class_of(self, window):
        """The class of a dialog, which it bears as its role; empty for a box that only tells or asks, and for what is the
        toolkit's own. None as long as the window isn't on the screen."""
        numbers = self.x_windows(window)
        if not numbers:
            return None
        for number in reversed(numbers):
            told = subprocess.run(["xprop", "-id", number, "WM_WINDOW_ROLE"], check=False, stdout=subprocess.PIPE,
                                  text=True).stdout
            name = re.search(r'= "(\w+)"', told)
            if name:
                return name[1]
        return ""

    def activate(self, window):
        """Gives the keyboard to a window, which is what a window manager would do."""
        found = self.x_windows(window)
        if found:
            xdotool("windowfocus", "--sync", found[-1])
        if not self.wait(lambda: self.has(window, "ACTIVE"), ANSWER_SECONDS):
            self.complain(window.get_name(), "takes no keys", window)

    def control(self, node):
        """The control that a part belongs to."""
        while node.get_role_name() in PARTS or node.get_parent().get_role_name() in WHOLES:
            node = node.get_parent()
        return node

    def wanted(self, window):
        """What Tab should reach: each control that shows, is on and takes the focus; of a group of radio buttons one.
        And the number of cells of tables."""
        found, groups, cells = [], [], 0
        states = self.spi.StateType
        for node in self.walk(window):
            role = node.get_role_name()
            cells += role == "table cell"
            if role in PARTS or role == "filler":  # a sheet of tabs hands the focus to its strip
                continue
            # Each question goes to the program, so the one that most nodes fail comes first.
            told = node.get_state_set()
            if not (told.contains(states.FOCUSABLE) and told.contains(states.ENABLED)):
                continue
            if node.get_parent().get_role_name() in WHOLES:
                continue
            if role == "radio button":
                if node.get_parent() in groups:
                    continue
                groups.append(node.get_parent())
            found.append(node)
        return found, cells

    def go_round(self, where, window):
        """Tab from where the focus is until it is there again; the number of stops.

        What tells of the focus comes in its own time, also when the next key is pressed already, so nothing of it is
        dropped: the stops are all that came, in their order. A list may tell of its current cell when something else has
        the focus, so the walk goes round a second time before it misses anything."""
        wanted, cells = self.wanted(window)
        # Where there is nothing else to go to, Tab stays; a window at work takes the focus when it comes to that.
        if len(wanted) == 1 and self.wait(lambda: self.has(wanted[0], "FOCUSED"), ANSWER_SECONDS):
            return 1
        stops = []
        self.focused.clear()

        def goes_on():
            """Adds what has come to the stops; whether something had come."""
            news, self.focused[:] = list(self.focused), []
            for node in map(self.control, news):
                # In a grid that is typed into Tab goes from cell to cell.
                if not stops or node != stops[-1]:
                    stops.append(node)
            return bool(news)

        def is_complete():
            goes_on()
            return all(self.is_reached(node, stops) for node in wanted)

        for _ in range(ROUNDS * len(wanted) + MOST_OF_A_CELL * cells + 5):
            self.press(TAB_KEY)
            if not self.wait(goes_on, ANSWER_SECONDS):
                break
            rounds = stops.count(stops[0]) - 1
            if rounds >= ROUNDS or (rounds > 0 and is_complete()):
                break
        self.wait(is_complete, ANSWER_SECONDS)
        self.compare_stops(where, wanted, stops)
        return len(set(stops))

    def is_reached(self, node, stops):
        """A group of radio buttons has one stop."""
        if node.get_role_name() != "radio button":
            return node in stops
        return any(stop.get_parent() == node.get_parent() for stop in stops if stop.get_role_name() == "radio button")

    def compare_stops(self, where, wanted, stops):
        for node in wanted:
            # What has been switched off on the way is no stop any more.
            if not self.is_reached(node, stops) and self.has(node, "SHOWING") and self.has(node, "ENABLED"):
                self.complain(where, "not reached by Tab", node)
        # The first may be told late, of the page before; Tab comes again to what it does reach.
        for node in stops[1:]:
            if not self.has(node, "SHOWING"):
                self.complain(where, "hidden, but reached by Tab", node)

    def trigger(self, node):
        # A dialog answers when it is closed: whoever has opened it doesn't wait for that.
        self.spi.set_timeout(SHORT_MILLISECONDS, SHORT_MILLISECONDS)
        try:
            self.spi.Action.do_action(node, 0)
        except Exception:  # pylint: disable=broad-except
            pass
        self.spi.set_timeout(LONG_MILLISECONDS, LONG_MILLISECONDS)
