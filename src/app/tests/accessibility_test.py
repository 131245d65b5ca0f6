#!/usr/bin/python3
"""What a screen reader hears: the real program on a private session bus and X server, read
through AT-SPI as Orca reads it. Every control that shows is named after its label (a combo box
by its label, not its value), the Start button says Stop while the schedule runs, and the
Preferences and Date & Time windows are windows, not fillers.

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


def showing(acc):
    try:
        return acc.getState().contains(pyatspi.STATE_SHOWING)
    except Exception:
        return False


def walk(acc, out):
    out.append(acc)
    for i in range(acc.childCount):
        child = acc.getChildAtIndex(i)
        if child is not None:
            walk(child, out)
    return out


def labels(acc):
    """The text of the labels acc is labelled by."""
    said = []
    for relation in acc.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
            for i in range(relation.getNTargets()):
                said.append(relation.getTarget(i).name)
    return ' '.join(said)


def wait_for(predicate, seconds=10):
    deadline = time.time() + seconds
    while time.time() < deadline:
        result = predicate()
        if result:
            return result
        time.sleep(0.1)
    return None


def controls(app):
    return [a for a in walk(app, []) if showing(a)]


def child_named(acc, name):
    return next((c for c in (acc.getChildAtIndex(i) for i in range(acc.childCount)) if c is not None and c.name == name), None)


def press(app, role, name):
    for acc in walk(app, []):
        if acc.getRoleName() == role and acc.name == name:
            acc.queryAction().doAction(0)
            return True
    return False


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
        app = wait_for(lambda: child_named(pyatspi.Registry.getDesktop(0), 'Quillon'), 20)
        check(app is not None, 'the program shows up on the accessibility bus')
        if app is None:
            return
        window = wait_for(lambda: child_named(app, 'Quillon'))
        check(window is not None and window.getRoleName() in WINDOW_ROLES, 'the list window is a window')

        buttons = {a.name: a for a in controls(app) if a.getRoleName() == 'push button'}
        check('Stop' in buttons and 'Start' not in buttons, 'the schedule runs: the button is announced as Stop (%s)' % sorted(buttons))
        if 'Stop' in buttons:
            check(buttons['Stop'].description == 'Cancel the schedule.', 'Stop says what it does: %r' % buttons['Stop'].description)
        check('Date & Time' in buttons, 'Date & Time keeps its "&" and loses its accelerator mark')

        # Preferences, opened as the menu opens it.
        check(press(app, 'menu item', 'Preferences…'), 'Edit ▸ Preferences… can be pressed')
        prefs = wait_for(lambda: child_named(app, 'Quillon Preferences'))
        check(prefs is not None and prefs.getRoleName() in WINDOW_ROLES, 'Preferences is a window of its own')
        if prefs is not None:
            seen = controls(prefs)
            unnamed = [a.getRoleName() for a in seen if a.getRoleName() in NAMED_ROLES and not a.name.strip()]
            check(not unnamed, 'every control in Preferences has a name (unnamed: %s)' % unnamed)
            # On Linux a combo box's name is its value, by design; what it is for comes from the
            # label it is labelled by, or its description. Each needs one of them.
            combos = [a for a in seen if a.getRoleName() == 'combo box']
            check(combos, 'the General page shows its combo box')
            for combo in combos:
                said = labels(combo) or combo.description
                check(bool(said.strip()), 'the combo box showing %r says what it is for: %r' % (combo.name, said))
            spins = [a for a in seen if a.getRoleName() == 'spin button']
            check(len(spins) == 2 and all(labels(a) or a.name for a in spins), 'both spin boxes have a label or name')
            check(any('Repeat every' in labels(a) for a in spins), 'the repeat count is labelled "Repeat every:"')

        check(press(app, 'menu item', 'Date and Time…'), 'Schedule ▸ Date and Time… can be pressed')
        dates = wait_for(lambda: child_named(app, 'Date & Time'))
        check(dates is not None and dates.getRoleName() in WINDOW_ROLES,
              'the Date & Time window is a window (%s)' % (dates.getRoleName() if dates else None))
        if dates is not None:
            unnamed = [a.getRoleName() for a in controls(dates) if a.getRoleName() in NAMED_ROLES and not a.name.strip()]
            check(not unnamed, 'every control in Date & Time has a name (unnamed: %s)' % unnamed)

        unnamed = [a.getRoleName() for a in controls(window) if a.getRoleName() in NAMED_ROLES - {'menu item'} and not a.name.strip()]
        check(not unnamed, 'every control in the list window has a name (unnamed: %s)' % unnamed)
    finally:
        quillon.terminate()
        quillon.wait(30)


main()
print('Totals: %d failed' % len(failures))
sys.exit(1 if failures else 0)
