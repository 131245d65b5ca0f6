# A Secret Service that takes every call and answers none, as a keyring whose unlock prompt is
# never completed.
import dbus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()


def swallow(_bus, message):
    if isinstance(message, dbus.lowlevel.MethodCallMessage) and message.get_interface() != "org.freedesktop.DBus":
        return dbus.lowlevel.HANDLER_RESULT_HANDLED
    return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED


bus.add_message_filter(swallow)
bus.request_name("org.freedesktop.secrets")
GLib.MainLoop().run()
