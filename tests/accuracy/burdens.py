"""What real recordings have besides a word and a room: hum, clicks, breath, flat tops, other formats."""

import struct

import numpy as np

from sounds import breath, db, decaying, wave_bytes


def hum(r, g, x, level, hertz):
    """The mains, 30 to 40 dB below the speech, and a sound card's offset of up to 5 % of full scale."""
    t = np.arange(len(x)) / hertz
    base = r.choice([50.0, 60.0])
    mains = sum(r.uniform(0.1, 1) / k * np.sin(2 * np.pi * (base * k * t + r.random())) for k in range(1, 8))
    mains *= level * db(-r.uniform(30, 40)) / np.sqrt(np.mean(np.square(mains)))
    return x + mains + r.uniform(-0.05, 0.05) * np.abs(x).max()


def click(r, g, x, level, hertz):
    """A mouse's or a mouth's click before or after the word, up to as loud as the word."""
    n = int(0.03 * hertz)
    room = int(0.1 * hertz)  # The pauses of the set are at least as long.
    at = r.randrange(room - n)
    if r.random() < 0.5:
        at = len(x) - room + at
    x[at: at + n] += np.abs(x).max() * db(-r.uniform(0, 20)) * decaying(
        g, n, r.choice([400, 900, 1800, 3500]), r.uniform(0.001, 0.005), hertz)
    return x


def breathing(r, g, x, level, hertz):
    """A breath before or after the word, 12 to 30 dB below its peak."""
    sound = db(-r.uniform(12, 30)) * np.abs(x).max() * breath(r, g, hertz)
    pause = np.zeros(int(r.uniform(0.02, 0.15) * hertz))
    return np.concatenate([sound, pause, x] if r.random() < 0.5 else [x, pause, sound])


def clipped(r, g, x, level, hertz):
    """A tenth of the samples that sound stands at a flat top."""
    heights = np.sort(np.abs(x[np.abs(x) > 0.02 * np.abs(x).max()]))
    top = heights[int(len(heights) * 0.9)]
    return np.clip(x, -top, top)


BURDENS = {"hum": hum, "click": click, "breath": breathing, "clipped": clipped}

# What programs write: a tag, bits, and how a sample becomes bytes.
FORMATS = {
    "8-bit": (1, 8, lambda x: np.clip(np.round(x * 128 + 128), 0, 255).astype("u1").tobytes()),
    "24-bit": (1, 24, lambda x: np.clip(np.round(x * 8388608), -8388608, 8388607).astype("<i4")
               .view("u1").reshape(-1, 4)[:, :3].tobytes()),
    "float": (3, 32, lambda x: x.astype("<f4").tobytes()),
}


def as_any_file(r, x, hertz):
    """A wave file of some usual format: width, channels, and chunks before and after the samples."""
    channels = r.choice([1, 2])
    extra = b"LIST" + struct.pack("<I", 7) + b"made up\0" if r.random() < 0.5 else b""
    name = r.choice(["16-bit", *FORMATS])
    if name == "16-bit" and channels == 1 and not extra:
        return wave_bytes(x, hertz)
    tag, bits, convert = FORMATS.get(
        name, (1, 16, lambda x: np.clip(np.round(x * 32768), -32768, 32767).astype("<i2").tobytes()))
    data = convert(np.repeat(x, channels))
    width = channels * bits // 8
    body = (b"WAVEfmt " + struct.pack("<IHHIIHH", 16, tag, channels, hertz, hertz * width, width, bits)
            + extra + b"data" + struct.pack("<I", len(data)) + data + b"\0" * (len(data) % 2) + extra)
    return b"RIFF" + struct.pack("<I", len(body)) + body
