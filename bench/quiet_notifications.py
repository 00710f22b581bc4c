#!/usr/bin/python3
"""A notification server that shows nothing, for the in-application benchmarks on a private session
bus: Vistrel posts its edit notification after every capture, and a real server's bubble would
change the pixels the next measurement watches. Prints "ready" once it owns its name."""
import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

IFACE = "org.freedesktop.Notifications"


class Server(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/Notifications")
        self.next_id = 0

    @dbus.service.method(IFACE, out_signature="as")
    def GetCapabilities(self):
        return ["actions", "body"]

    @dbus.service.method(IFACE, out_signature="ssss")
    def GetServerInformation(self):
        return ["quiet", "vistrel-bench", "1", "1.2"]

    @dbus.service.method(IFACE, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, app, replaces, icon, summary, body, actions, hints, timeout):
        self.next_id += 1
        return self.next_id

    @dbus.service.method(IFACE, in_signature="u")
    def CloseNotification(self, identifier):
        pass


DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
name = dbus.service.BusName(IFACE, bus)
server = Server(bus)
print("ready", flush=True)
GLib.MainLoop().run()
