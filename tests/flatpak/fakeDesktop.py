# SPDX-License-Identifier: MIT
"""The desktop's side of the portals: a scripted user of the file dialogs, and a file manager."""

import collections
import threading

from gi.repository import Gio, GLib

from waiting import wait_until

PORTAL_OBJECT = "/org/freedesktop/portal/desktop"
FILE_MANAGER_OBJECT = "/org/freedesktop/FileManager1"
INTERFACES = """
<node>
  <interface name="org.freedesktop.impl.portal.FileChooser">
    <method name="OpenFile">
      <arg type="o" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="u" direction="out"/><arg type="a{sv}" direction="out"/>
    </method>
    <method name="SaveFile">
      <arg type="o" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="u" direction="out"/><arg type="a{sv}" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.impl.portal.AppChooser">
    <method name="ChooseApplication">
      <arg type="o" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
      <arg type="as" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="u" direction="out"/><arg type="a{sv}" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.FileManager1">
    <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
    <method name="ShowFolders"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
  </interface>
</node>
"""


class FakeDesktop:
    """Owns the names on the bus for the whole session. Calls are handled on a thread of its own."""

    def __init__(self, address):
        self.shown = []  # URIs that the file manager was asked to show
        self.applications = []  # the choice of the last application chooser: the ids of desktop entries
        self.preferred = None  # the id that the user chooses there; None: the first
        self._lock = threading.Lock()
        self._dialogs = collections.deque()  # open: the options and the invocation of each
        ready = threading.Event()
        threading.Thread(target=self._serve, args=(address, ready), daemon=True).start()
        ready.wait()

    def _serve(self, address, ready):
        context = GLib.MainContext()
        context.push_thread_default()
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        for interface in Gio.DBusNodeInfo.new_for_xml(INTERFACES).interfaces:
            place = FILE_MANAGER_OBJECT if interface.name.endswith("FileManager1") else PORTAL_OBJECT
            bus.register_object(place, interface, self._called, None, None)
        for name in ("org.freedesktop.impl.portal.desktop.script", "org.freedesktop.FileManager1"):
            bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                          GLib.Variant("(su)", (name, 0)), None, 0, -1, None)
        ready.set()
        GLib.MainLoop(context).run()

    def _called(self, _connection, _sender, _path, _interface, method, parameters, invocation):
        arguments = parameters.unpack()
        if method in ("OpenFile", "SaveFile"):
            with self._lock:
                self._dialogs.append((method, arguments[-1], invocation))
        elif method == "ChooseApplication":
            self.applications = arguments[3]
            choice = self.preferred or next(iter(self.applications), None)
            chosen = {"choice": GLib.Variant("s", choice)} if choice else {}
            invocation.return_value(GLib.Variant("(ua{sv})", (0 if choice else 1, chosen)))
        else:
            self.shown += arguments[0]
            invocation.return_value(None)

    def wait_for_dialog(self, method):
        """Waits for an open dialog, "OpenFile" or "SaveFile", and returns the options that the program passed."""
        actual, options, _ = wait_until(lambda: self._dialogs and self._dialogs[0], f"the dialog {method}")
        if actual != method:
            raise AssertionError(f"{actual} instead of {method}")
        return options

    def open_dialogs(self):
        """The methods of the dialogs that are open."""
        with self._lock:
            return [method for method, _, _ in self._dialogs]

    def choose(self, method, path, writable=True):
        """Waits for the dialog and closes it with the choice of a path. Returns the program's options.

        The portal never takes a permission back: a path that one test may write to, all later tests may. What is chosen
        in a save dialog is always writable.
        """
        options = self.wait_for_dialog(method)
        results = {"uris": GLib.Variant("as", [GLib.filename_to_uri(str(path))]),
                   "writable": GLib.Variant("b", writable)}
        self._answer(0, results)
        return options

    def cancel(self, method):
        """Returns the program's options."""
        options = self.wait_for_dialog(method)
        self._answer(1, {})
        return options

    def forget_dialogs(self):
        """Forgets dialogs of an app that has ended."""
        with self._lock:
            self._dialogs.clear()

    def _answer(self, response, results):
        with self._lock:
            _, _, invocation = self._dialogs.popleft()
        invocation.return_value(GLib.Variant("(ua{sv})", (response, results)))
