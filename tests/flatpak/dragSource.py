#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A window in the upper left corner of the screen that files are dragged out of.

    dragSource.py gtk|kde PATH...

Offers the files like a file manager of that toolkit. Both offer a list of URIs and a key for the file transfer portal:
GTK starts the transfer when the target asks for the key, KDE at the beginning of the drag. Prints "ready", "action N"
when the target's answer changes, and "end".
"""

import os
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gio, GLib, Gtk  # noqa: E402

BUS = Gio.bus_get_sync(Gio.BusType.SESSION, None)  # the portal forgets the files when it is closed
TRANSFER_TYPE = "application/vnd.portal.filetransfer"


def start_transfer(paths):
    """Registers the files with the portal. Returns the key."""
    def call(method, arguments, descriptors=None):
        answer, _ = BUS.call_with_unix_fd_list_sync(
            "org.freedesktop.portal.Documents", "/org/freedesktop/portal/documents",
            "org.freedesktop.portal.FileTransfer", method, arguments, None, 0, -1, descriptors, None)
        return answer.unpack()

    key, = call("StartTransfer", GLib.Variant("(a{sv})", ({},)))
    descriptors = Gio.UnixFDList()
    opened = [os.open(path, os.O_PATH | os.O_CLOEXEC) for path in paths]
    handles = [descriptors.append(each) for each in opened]
    for each in opened:
        os.close(each)  # the list has duplicates
    call("AddFiles", GLib.Variant("(saha{sv})", (key, handles, {})), descriptors)
    return key


def say(*words):
    print(*words, flush=True)


class Source:
    def __init__(self, style, paths):
        self.paths = paths
        self.uris = [GLib.filename_to_uri(path) for path in paths]
        self.key = ""
        self.context = None
        self.action = None
        window = Gtk.Window(type=Gtk.WindowType.POPUP)
        window.set_default_size(120, 100)
        window.move(0, 0)
        area = Gtk.EventBox()
        area.add(Gtk.Label(label="drag"))
        window.add(area)
        area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
        if style == "gtk":
            area.drag_source_add_uri_targets()
            area.connect("drag-data-get", lambda _area, _context, data, *_: data.set_uris(self.uris))
        else:
            targets = [Gtk.TargetEntry.new(name, 0, 0) for name in ("text/uri-list", TRANSFER_TYPE)]
            area.drag_source_set_target_list(Gtk.TargetList.new(targets))
            area.connect("drag-data-get", self.send_as_kde)
        area.connect("drag-begin", self.begin, style)
        area.connect("drag-end", lambda *_: say("end"))
        window.connect("map-event", lambda *_: say("ready"))
        window.show_all()

    def begin(self, _area, context, style):
        if style == "kde":
            self.key = start_transfer(self.paths)
        self.context = context
        GLib.timeout_add(20, self.watch)

    def watch(self):
        action = int(self.context.get_selected_action())
        if action != self.action:
            say("action", action)
        self.action = action
        return True

    def send_as_kde(self, _area, _context, data, *_):
        if data.get_target().name() == TRANSFER_TYPE:
            data.set(data.get_target(), 8, self.key.encode())
        else:
            data.set_uris(self.uris)


Source(sys.argv[1], sys.argv[2:])
Gtk.main()
