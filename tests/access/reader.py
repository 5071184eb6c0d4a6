"""What a screen reader does: reads windows, hears announcements, and acts on controls."""

import contextlib
import re
import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from desktop import LIMIT  # noqa: E402

# The bindings have no other names for these.
warnings.simplefilter("ignore", DeprecationWarning)

Role = Atspi.Role
State = Atspi.StateType

_heard = []
_focused = ""


def _on_event(event):
    global _focused
    with contextlib.suppress(GLib.Error):
        name = event.source.get_name() or ""
        if "focused" not in event.type:
            _heard.append((event.type, event.detail1, name))
        elif event.detail1 == 1:
            _focused = name


_listener = Atspi.EventListener.new(_on_event)
for _kind in ("object:state-changed:focused", "object:state-changed:showing",
              "object:property-change:accessible-name"):
    _listener.register(_kind)


def let_events_in():
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)


def wait_for(condition, what):
    """Returns what the condition returns as soon as that is true. Fails if it stays false."""
    deadline = time.monotonic() + LIMIT
    while True:
        let_events_in()
        # Controls may go while they are read.
        with contextlib.suppress(GLib.Error):
            if result := condition():
                return result
        if time.monotonic() > deadline:
            raise AssertionError(f"in vain: {what}")
        time.sleep(0.02)


def has_heard(text):
    """Whether that text was announced."""
    let_events_in()
    return any(text in name and (kind != "object:state-changed:showing" or detail == 1)
               for kind, detail, name in _heard)


def heard():
    """All names that were announced, the latest last."""
    let_events_in()
    return [name for _, _, name in _heard]


def focused():
    """The name of what had the focus last. Menus are in no tree: they are known by this only."""
    let_events_in()
    return _focused


def forget_heard():
    let_events_in()
    _heard.clear()


def windows():
    """The windows of all programs, the newest last."""
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        with contextlib.suppress(GLib.Error):
            program = desktop.get_child_at_index(i)
            if program is None:
                continue
            program.set_cache_mask(Atspi.Cache.NONE)
            for k in range(program.get_child_count()):
                if (window := program.get_child_at_index(k)) is not None:
                    yield window


def window(name):
    """Waits for a window of that name."""
    return wait_for(lambda: next((window for window in windows() if window.get_name() == name and
                                  is_(window, State.SHOWING)), None), f"a window named {name!r}")


def is_(node, state):
    return node.get_state_set().contains(state)


def walk(node, shown_only=True):
    """The control and all below it, in the order in which a reader goes through them."""
    yield node
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child is not None and (not shown_only or is_(child, State.SHOWING)):
            yield from walk(child, shown_only)


def find(root, role=None, name=None):
    """The first control that is shown below the root with that role and name, or None."""
    return next((node for node in walk(root)
                 if (role is None or node.get_role() == role) and
                 (name is None or node.get_name() == name)), None)


def label_of(node):
    """The name of the label that is tied to a control, or an empty text."""
    for relation in node.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name()
    return ""


# What no user understands.
_NONSENSE = re.compile(r"^(q_|qt_|Q[A-Z])|<\w+|^[\W_]*$|%\d")
_NO_ROLES = (Role.INVALID, Role.UNKNOWN, Role.FILLER, Role.REDUNDANT_OBJECT)


def faults(root):
    """What is wrong with the controls, one line each; mostly with those that can have the focus."""
    lines = []
    for node in walk(root):
        if node.get_name() and node.get_role() in (Role.INVALID, Role.UNKNOWN):
            lines.append("no role: " + describe(node))
        if not is_(node, State.FOCUSABLE):
            continue
        if node.get_role() in _NO_ROLES:
            lines.append("no role: " + describe(node))
        # A cell may be empty: not everything is known of each row.
        if node.get_role() != Role.TABLE_CELL or node.get_name():
            name = label_of(node) or node.get_name()
            if _NONSENSE.search(name):
                lines.append("no name: " + describe(node))
        if "<" in node.get_description():
            lines.append("marks: " + describe(node))
    return lines


def describe(node):
    """One line about a control, for a failure."""
    return f"{node.get_role_name()} {node.get_name()!r} ({node.get_description()!r})"


def tree(root):
    """All that a reader finds in a window, one line a control."""
    def lines(node, depth):
        states = [state.value_nick for state in
                  (State.FOCUSABLE, State.FOCUSED, State.CHECKED, State.SELECTED)
                  if is_(node, state)]
        yield "  " * depth + describe(node) + " " + " ".join(states)
        for i in range(node.get_child_count()):
            child = node.get_child_at_index(i)
            if child is not None and is_(child, State.SHOWING):
                yield from lines(child, depth + 1)
    return "\n".join(lines(root, 0))


def text_of(node):
    """The text that a control holds, or an empty one."""
    text = node.get_text_iface()
    return Atspi.Text.get_text(text, 0, -1) if text else ""


def fill(node, text):
    """Puts a text into a field as a screen reader does, without any key."""
    node.set_text_contents(text)


def do(node, action):
    """Does something on a control by the name of the action, such as "Press"."""
    names = [node.get_action_name(i) for i in range(node.get_n_actions())]
    assert action in names, f"{describe(node)} has only {names}"
    node.do_action(names.index(action))


def press(*keys):
    """Keys of a keyboard, by the names of the display: Return, Down, ctrl+z, a."""
    subprocess.run(["xdotool", "key", "--delay", "20", *keys], check=True)


def type_text(text):
    subprocess.run(["xdotool", "type", "--delay", "20", text], check=True)


def resize(title, width, height):
    """Gives a window another size, as a user does with the mouse."""
    subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$", "windowsize",
                    "--sync", width, height], check=True)
