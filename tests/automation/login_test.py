#!/usr/bin/env python3
"""A whole login by script: a login server of this machine, an application server and a client in VBScript under Wine.

    login_test.py IN_WINE PLACE ZEBD ZEBCTL

IN_WINE, PLACE: the runner and the prefix in which the DLL is registered.
"""
import os
import queue
import secrets
import subprocess
import sys
import tempfile
import threading

HERE = os.path.dirname(os.path.abspath(__file__))
PATIENCE = 60  # seconds, longer than anything ever should take


class Process:
    """A program whose lines are read one by one; ended with the test at the latest."""

    def __init__(self, name, command, **more):
        self.name = name
        self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, **more)
        self.lines = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.decode(errors="replace").rstrip("\r\n"))
        self.lines.put(None)

    def await_line(self, start):
        """The first line that begins so; what else is said before is shown."""
        while True:
            try:
                line = self.lines.get(timeout=PATIENCE)
            except queue.Empty:
                sys.exit(f"{self.name} does not say \"{start}\"")
            if line is None:
                sys.exit(f"{self.name} ended without saying \"{start}\"")
            print(f"{self.name}: {line}", flush=True)
            if line.startswith("FAILED"):
                sys.exit(1)
            if line.startswith(start):
                return line

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(timeout=PATIENCE)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


def windows(path):
    return "Z:" + path.replace("/", "\\")


def run(in_wine, place, zebd, zebctl, folder, processes):
    password = "Kq-" + secrets.token_hex(8)
    data = os.path.join(folder, "zeb")
    subprocess.run([zebctl, "init", "--data", data], check=True)
    subprocess.run([zebctl, "user", "add", "ann", "--first-name", "Ann", "--last-name", "Example", "--data", data],
                   input=password.encode() + b"\n", check=True)

    def start(name, command, **more):
        processes.append(Process(name, command, **more))
        return processes[-1]

    def script(name, path, *arguments):
        command = [in_wine, "stream", place, "en_US", "cscript.exe", "//nologo", windows(path), *arguments]
        return start(name, command, env={**os.environ, "KQ_PASSWORD": password})

    zeb = start("zebd", [zebd, "--data", data, "--listen", "127.0.0.1", "--port", "0", "--bus-port", "0"])
    port = zeb.await_line("zebd: listening on ").rpartition(":")[2]
    bus_port = zeb.await_line("zebd: bus on ").rpartition(":")[2]

    whole = os.path.join(folder, "appserver.vbs")
    with open(whole, "w", encoding="ascii") as file:
        for part in ("scripts/Testing.vbs", "appserver.vbs"):
            with open(os.path.join(HERE, part), encoding="ascii") as source:
                file.write(source.read())
    enough = os.path.join(folder, "enough")
    server = script("server", whole, "Demo", bus_port, windows(enough))
    server.await_line("READY")

    client = script("client", os.path.join(HERE, "login.vbs"), "Demo", "ann", "127.0.0.1", port)
    client.await_line("LoginState 2")
    client.await_line("Hello Ann")
    server.await_line("Session of ann")
    with open(enough, "w", encoding="ascii"):
        pass
    client.await_line("LoginState 1")
    server.await_line("DONE")


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    processes = []
    with tempfile.TemporaryDirectory() as folder:
        try:
            run(*sys.argv[1:], folder, processes)
        finally:
            for process in reversed(processes):
                process.end()


if __name__ == "__main__":
    main()
