# SPDX-License-Identifier: MIT
"""A desktop session with the real portals, in which the app is installed. Ends with the PID namespace."""

import os
import pathlib
import subprocess

from gi.repository import Gio, GLib

import accessibility
from fakeDesktop import FakeDesktop
from waiting import wait_until

APPLICATION_ID = "org.tarnwell.Tarnwell"
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>{address}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <servicedir>{exports}/dbus-1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
PORTAL = """[portal]
DBusName=org.freedesktop.impl.portal.desktop.script
Interfaces=org.freedesktop.impl.portal.FileChooser;org.freedesktop.impl.portal.AppChooser;
UseIn=GNOME
"""
PLAYER = """[Desktop Entry]
Type=Application
Name=Player
Exec={program} %u
MimeType=video/mp4;
"""
# What the tests add to the manifest's permissions: the accessibility bus itself instead of flatpak's own connection to
# it, with which Qt 6.4 does not switch accessibility on.
OWN_ACCESSIBILITY = "--no-a11y-bus"
ACCESSIBILITY = ("--env=QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", "--talk-name=org.a11y.Bus", "--filesystem=xdg-run/at-spi")
NO_ACCESSIBILITY = ("--no-talk-name=org.a11y.Bus", "--nofilesystem=xdg-run/at-spi")
DOCUMENT_PORTAL = ("/usr/libexec/xdg-document-portal", "org.freedesktop.portal.Documents")
# On a real desktop, update-desktop-database writes the second section's contents into a cache.
MIME_APPLICATIONS = f"""[Default Applications]
video/mp4=player.desktop
[Added Associations]
video/mp4=player.desktop;{APPLICATION_ID}.desktop
"""


class Session:
    """Starts all services and installs the app. The environment of this process becomes that of the session."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.home = pathlib.Path.home()
        self.played = self.folder / "home" / "played"  # the arguments of the player, one line per start
        self._services = {}
        self._set_environment()
        self._write_files()
        self.start_service("/usr/bin/dbus-daemon", None, f"--config-file={self.home}/bus.conf", "--nofork")
        wait_until(pathlib.Path(f"{os.environ['XDG_RUNTIME_DIR']}/bus").exists, "the session bus")
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        self.run("flatpak", "--user", "remote-add", "--no-gpg-verify", "local", f"file://{folder}/repo")
        self.run("flatpak", "--user", "install", "-y", "--noninteractive", "local", f"{APPLICATION_ID}//stable")
        self.run("flatpak", "--user", "override", *ACCESSIBILITY, APPLICATION_ID)
        self._write_service()
        self.desktop = FakeDesktop(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        self.start_service("/usr/libexec/xdg-permission-store", "org.freedesktop.impl.portal.PermissionStore")
        self.start_service(*DOCUMENT_PORTAL)
        self.start_service("/usr/libexec/flatpak-portal", "org.freedesktop.portal.Flatpak")
        self.start_service("/usr/libexec/xdg-desktop-portal", "org.freedesktop.portal.Desktop")
        # The sandbox prevents that the app starts the accessibility registry.
        self.accessibility = accessibility.connect(self.bus)

    def _set_environment(self):
        runtime = f"/run/user/{os.getuid()}"
        self.exports = self.home / ".local/share/flatpak/exports/share"
        names = ("DISPLAY", "HOME", "LC_ALL", "LOGNAME", "PATH", "USER", "XAUTHORITY")
        keep = {name: os.environ[name] for name in names}
        os.environ.clear()
        os.environ.update(keep)
        os.environ.update({
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={runtime}/bus",
            # flatpak asks the system bus for parental controls.
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={runtime}/bus",
            "XDG_CURRENT_DESKTOP": "GNOME",
            "XDG_DATA_DIRS": f"{self.exports}:/usr/share",
            "XDG_DESKTOP_PORTAL_DIR": f"{self.home}/portals",
            "XDG_RUNTIME_DIR": runtime,
        })

    def _write_files(self):
        program = self.home / "player"
        files = {
            "bus.conf": BUS_CONFIGURATION.format(
                address=os.environ["DBUS_SESSION_BUS_ADDRESS"], services=self.home / "services", exports=self.exports),
            "portals/script.portal": PORTAL,
            ".config/mimeapps.list": MIME_APPLICATIONS,
            ".local/share/applications/player.desktop": PLAYER.format(program=program),
            "player": f"#!/bin/sh\necho \"$*\" >>'{self.played}'\n",
        }
        for name, text in files.items():
            path = self.home / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        program.chmod(0o755)
        services = self.home / "services"
        services.mkdir()
        (services / "org.a11y.Bus.service").symlink_to("/usr/share/dbus-1/services/org.a11y.Bus.service")

    def _write_service(self):
        """Copies the service that flatpak has exported. The bus prefers the copy."""
        name = f"{APPLICATION_ID}.service"
        text = (self.exports / "dbus-1/services" / name).read_text()
        (self.home / "services" / name).write_text(text.replace(" run ", f" run {OWN_ACCESSIBILITY} "))

    def start_service(self, program, name, *arguments):
        """Starts the program, if name is given until it owns that name on the bus."""
        with self.log(pathlib.Path(program).name) as log:
            service = subprocess.Popen([program, *arguments], stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self._services[program] = service
        if name:
            wait_until(lambda: self.owner_of(name), name)

    def kill_service(self, program):
        self._services[program].kill()
        self._services[program].wait()

    def log(self, name):
        return (self.folder / "results" / f"{name}.log").open("ab")

    def owner_of(self, name):
        """The connection that owns the name on the bus; empty without an owner."""
        try:
            answer = self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                        "GetNameOwner", GLib.Variant("(s)", (name,)), None, 0, -1, None)
        except GLib.Error:
            return ""
        return answer.unpack()[0]

    def run(self, *command, check=True):
        """Runs the command and returns its output, error lines included."""
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, timeout=120, check=False)
        if check and done.returncode != 0:
            raise AssertionError(f"{command} fails with {done.returncode}: {done.stdout}")
        return done.stdout

    def run_in_sandbox(self, *command, check=True):
        program, *arguments = command
        return self.run("flatpak", "run", OWN_ACCESSIBILITY, *NO_ACCESSIBILITY, f"--command={program}", APPLICATION_ID,
                        *arguments, check=check)
