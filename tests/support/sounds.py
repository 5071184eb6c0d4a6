"""What made-up takes are made of: loudness, filters, microphones, other rates, wave files, espeak-ng.

Sounds are one-dimensional arrays of floats with 1 as full scale.
"""

import hashlib
import os
import random
import struct
import subprocess
import wave

import numpy as np

# Each half of a made-up set has other voices and other words.
VOICES = {
    "tune": "en-us de fr-fr es it sv nl pl hu el tr ru".split(),
    "held-out": "en-gb en-gb-scotland pt-br ro cs fi da nb hr sk id sq".split(),
}


def db(value):
    """The factor of an amplitude for decibels."""
    return 10 ** (value / 20)


def rms(x):
    return float(np.sqrt(np.mean(np.square(x)))) + 1e-12


def speech_level(x, block):
    """Rms of the parts of speech that are within 25 dB of its loudest, by blocks of `block` samples."""
    n = len(x) // block
    powers = np.mean(np.square(x[: n * block].reshape(n, block)), axis=1) if n else np.square(x)
    return float(np.sqrt(np.mean(powers[powers > powers.max() * db(-25) ** 2])))


def trimmed(x, floor):
    """Without what is softer than `floor`, as a share of the peak, at both ends. Empty if nothing sounds."""
    loud = np.flatnonzero(np.abs(x) > np.abs(x).max() * floor)
    return x[loud[0]: loud[-1] + 1] if len(loud) else np.zeros(0)


def shaped(x, gain_of, hertz):
    """Filters by a gain for each frequency."""
    size = 1 << int(np.ceil(np.log2(len(x) + 1024)))
    f = np.fft.rfftfreq(size, 1 / hertz)
    return np.fft.irfft(np.fft.rfft(x, size) * gain_of(f), size)[: len(x)]


def band(low, high, slope=12.0):
    def gain(f):
        f = np.maximum(f, 1)
        power = slope / 6.02
        return 1 / np.sqrt(1 + (low / f) ** (2 * power)) / np.sqrt(1 + (f / high) ** (2 * power))
    return gain


MICROPHONES = {
    "flat": lambda f: np.ones_like(f),
    "telephone": band(300, 3400, 24),
    "laptop": lambda f: band(180, 4800)(f) * (1 + 0.8 * np.exp(-((f - 2600) / 500) ** 2)),
    "headset": lambda f: band(110, 5000)(f) * (1 + 1.2 * np.exp(-((f - 3500) / 900) ** 2)),
    "bass": lambda f: 1 + 1.5 / (1 + (f / 250) ** 2),
    "thin": band(350, 5300, 12),
}


def decaying(g, n, frequency, time, hertz):
    """One click or knock."""
    t = np.arange(n) / hertz
    return (0.6 * np.sin(2 * np.pi * frequency * t) + 0.4 * g.standard_normal(n)) * np.exp(-t / time)


def breath(r, g, hertz):
    n = int(r.uniform(0.12, 0.35) * hertz)
    x = shaped(g.standard_normal(n), band(r.uniform(300, 800), r.uniform(1500, 4000)), hertz)
    return x / np.abs(x).max() * np.hanning(n) ** 0.7


def at_rate(x, hertz, wanted):
    """At another rate, by the transform: nothing above the half of the lower rate is left."""
    count = int(len(x) * wanted / hertz)
    spectrum = np.fft.rfft(x)
    kept = np.zeros(count // 2 + 1, complex)
    m = min(len(kept), len(spectrum))
    kept[:m] = spectrum[:m]
    return np.fft.irfft(kept, count) * count / len(x)


def wave_bytes(x, hertz):
    data = np.clip(np.round(x * 32768), -32768, 32767).astype("<i2").tobytes()
    return struct.pack("<4sI8sIHHIIHH4sI", b"RIFF", len(data) + 36, b"WAVEfmt ", 16, 1, 1, hertz,
                       hertz * 2, 2, 16, b"data", len(data)) + data


def read_wave(path):
    """Returns the sound of a wave file of 16 bits and one channel, and its rate."""
    with wave.open(path) as file:
        return np.frombuffer(file.readframes(file.getnframes()), "<i2") / 32768, file.getframerate()


def number_of(seed):
    return int.from_bytes(hashlib.sha256(seed.encode()).digest()[:8], "big")


def chance(seed):
    """Returns both sources of chance for a name, always the same ones."""
    return random.Random(seed), np.random.default_rng(number_of(seed))


ESPEAK_HERTZ = 22050


def espeak(voice, speed, pitch, text, scratch):
    """What espeak-ng says, at ESPEAK_HERTZ, on its own scale."""
    path = f"{scratch}/.{os.getpid()}.wav"
    subprocess.run(["espeak-ng", "-v", voice, "-s", str(speed), "-p", str(pitch), "-w", path, text],
                   check=True, stderr=subprocess.DEVNULL)
    with open(path, "rb") as file:
        raw = file.read()[44:]  # The header says that the file is endless.
    os.remove(path)
    return np.frombuffer(raw[: len(raw) // 2 * 2], "<i2").astype(float)
