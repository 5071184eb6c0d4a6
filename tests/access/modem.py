"""A modem on a pseudo terminal, as a program finds one at a serial port. It answers OK to all."""

import os
import threading
import tty


class Modem:
    def __init__(self):
        self._modem, self._port = os.openpty()  # The port stays open, so that it keeps its settings.
        tty.setraw(self._port)
        self.device = os.ttyname(self._port)
        self.lines = []
        threading.Thread(target=self._answer, daemon=True).start()

    def _answer(self):
        line = b""
        while True:
            byte = os.read(self._modem, 1)
            if byte != b"\r":
                line += byte
                continue
            self.lines.append(line.decode())
            line = b""
            os.write(self._modem, b"\r\nOK\r\n")
