#!/usr/bin/python3
"""What a screen reader hears: the real program on a private session bus and X server, read
through AT-SPI as Orca reads it. Every control that shows is named (a combo box by its label, not
its value), the Start button says Stop while the schedule runs, and Preferences and Date & Time
are windows, not fillers.

Run as: dbus-run-session -- xvfb-run -a /usr/bin/python3 accessibility_test.py QUILLON_BINARY
"""
import datetime
import os
import subprocess
import sys
import tempfile
import time

import pyatspi

NAMED_ROLES = {'push button', 'check box', 'combo box', 'spin button', 'text', 'table', 'radio button', 'page tab', 'menu item'}
WINDOW_ROLES = {'frame', 'dialog', 'window'}
failures = []


def check(condition, what):
    print(('PASS   : ' if condition else 'FAIL!  : ') + what)
    if not condition:
        failures.append(what)


def controls(acc):
    """What shows under acc."""
    def showing(a):
        try:
            return a.getState().contains(pyatspi.STATE_SHOWING)
        except Exception:
            return False
    return pyatspi.findAllDescendants(acc, showing)


def labels(acc):
    """The text of the labels acc is labelled by."""
    return ' '.join(r.getTarget(i).name for r in acc.getRelationSet() if r.getRelationType() == pyatspi.RELATION_LABELLED_BY
                    for i in range(r.getNTargets()))


def child(parent, name, seconds=20):
    deadline = time.time() + seconds
    while not (found := next((c for c in (parent.getChildAtIndex(i) for i in range(parent.childCount)) if c and c.name == name), None)) \
            and time.time() < deadline:
        time.sleep(0.1)
    return found


def window(app, title, what):
    found = child(app, title)
    check(found is not None and found.getRoleName() in WINDOW_ROLES, '%s is a window (%s)' % (what, found.getRoleName() if found else None))
    return found


def press(app, name):
    item = pyatspi.findDescendant(app, lambda a: a.getRoleName() == 'menu item' and a.name == name)
    if item:
        item.queryAction().doAction(0)
    check(item is not None, '%s can be pressed' % name)


def main():
    home = tempfile.mkdtemp()
    config = os.path.join(home, 'config', 'Quillon')
    os.makedirs(config)
    item = os.path.join(home, 'notes.txt')
    open(item, 'w').close()
    due = (datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(hours=1)).strftime('%Y-%m-%dT%H:%M:%SZ')
    with open(os.path.join(config, 'Quillon.conf'), 'w') as f:
        f.write('[General]\nItems=%s\nDates=%s\nTimersRunning=true\nrememberItems=true\n' % (item, due))
    runtime = os.path.join(home, 'runtime')
    os.makedirs(runtime, mode=0o700)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(home, 'config'), XDG_STATE_HOME=os.path.join(home, 'state'),
               XDG_RUNTIME_DIR=runtime, QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1', QT_QPA_PLATFORM='xcb', LANG='C.UTF-8')
    quillon = subprocess.Popen([sys.argv[1]], env=env)
    try:
        app = child(pyatspi.Registry.getDesktop(0), 'Quillon')
        check(app is not None, 'the program shows up on the accessibility bus')
        if app is None:
            return
        main_window = window(app, 'Quillon', 'the list window')
        buttons = {a.name: a for a in controls(app) if a.getRoleName() == 'push button'}
        check('Stop' in buttons and 'Start' not in buttons, 'the schedule runs: the button is announced as Stop (%s)' % sorted(buttons))
        if 'Stop' in buttons:
            check(buttons['Stop'].description == 'Cancel the schedule.', 'Stop says what it does: %r' % buttons['Stop'].description)
        check('Date & Time' in buttons, 'Date & Time keeps its "&" and loses its accelerator mark')

        press(app, 'Preferences…')
        prefs = window(app, 'Quillon Preferences', 'Preferences')
        if prefs is not None:
            # On Linux a combo box's name is its value, by design; what it is for comes from the
            # label it is labelled by, or its description.
            combos = [a for a in controls(prefs) if a.getRoleName() == 'combo box']
            check(combos, 'the General page shows its combo box')
            for combo in combos:
                said = labels(combo) or combo.description
                check(bool(said.strip()), 'the combo box showing %r says what it is for: %r' % (combo.name, said))
            spins = [a for a in controls(prefs) if a.getRoleName() == 'spin button']
            check(len(spins) == 2 and all(labels(a) or a.name for a in spins), 'both spin boxes have a label or name')
            check(any('Repeat every' in labels(a) for a in spins), 'the repeat count is labelled "Repeat every:"')
        press(app, 'Date and Time…')
        dates = window(app, 'Date & Time', 'the Date & Time window')
        for acc, what, roles in ((prefs, 'Preferences', NAMED_ROLES), (dates, 'Date & Time', NAMED_ROLES),
                                 (main_window, 'the list window', NAMED_ROLES - {'menu item'})):
            seen = [a for a in controls(acc) if a.getRoleName() in roles] if acc else []
            missing = [a.getRoleName() for a in seen if not a.name.strip()]
            check(seen and not missing, 'every control in %s has a name (%d seen, unnamed: %s)' % (what, len(seen), missing))
    finally:
        quillon.terminate()
        quillon.wait(30)


main()
print('Totals: %d failed' % len(failures))
sys.exit(1 if failures else 0)
