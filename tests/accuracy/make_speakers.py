#!/usr/bin/python3
"""Makes sets of made-up speakers who say short words, each several times and never twice alike.

    make_speakers.py FOLDER [--sets NAME...] [--half tune|held-out|recorded|alike] [--speakers N] [--takes N]
                            [--words N] [--variation X]

Each set is a folder FOLDER/HALF-NAME of LABEL_SPEAKER_TAKE.wav, which `voxtrel dial --evaluate` judges.
The voices are espeak-ng's. What makes two takes of one speaker differ is made here, since a
synthesizer says a word alike each time: speed, melody, stress, where in the word the time goes,
resonances that drift, the loudness of each sound, the microphone's distance, the room. --variation
scales all of it: 1 is what makes the documented template distance as often right as it is on real
speech. Each take follows from its name alone. The held-out half has other voices and other words.
The halves "recorded" and "alike" are made only if they are named: voices that are joined from real
people's recordings (recorded_voices.py), and need packages that nothing else needs. In "alike" four of
them say ten names each that sound alike.
"""

import argparse
import multiprocessing
import os
import random
import sys

import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
import recorded_voices
from burdens import BURDENS, as_any_file
from sounds import (ESPEAK_HERTZ as HERTZ, MICROPHONES, VOICES, at_rate, band, chance, db, espeak,
                    read_wave, rms, shaped, speech_level, trimmed, wave_bytes)

VARIANTS = {
    "tune": " +f1 +f3 +f5 +m1 +m3 +m5 +m7 +linda +edward +max +steph".split(" "),
    "held-out": " +f2 +f4 +m2 +m4 +m6 +m8 +belinda +Andy +Annie +Mike +grandma".split(" "),
}
WORDS = {
    "tune": [
        "zero one two three four five six seven eight nine",
        "null eins zwei drei vier fünf sechs sieben acht neun",
        "Anna Bob Claire David Eve Frank Greta Hans Ida Jack",
        "mum dad home work taxi doctor office school bank police",
        "Kim Tim Jim Tom Sam Pam Dan Jan Ben Ken",
        "noll ett två tre fyra fem sex sju åtta nio",
    ],
    "held-out": [
        "uno dos tres cuatro cinco seis siete ocho nueve diez",
        "un deux trois quatre cinq six sept huit neuf dix",
        "Alice Ruth Carl Dora Eric Fay George Helen Igor Julia",
        "mother father sister brother uncle garage dentist hotel station baker",
        "Lee Lou Joe Jay Ray May Roy Ron Don Dawn",
        "nula jedna dva tři čtyři pět šest sedm osm devět",
    ],
}


# --- A speaker and a take ---------------------------------------------------------------------


class Speaker:
    def __init__(self, half, name, number):
        r = random.Random(f"{half} {name} {number}")
        self.person = None
        if half in recorded_voices.HALVES:
            people = recorded_voices.HALVES[half]
            self.person = people[number % len(people)]
        if self.person is None:
            self.voice = r.choice(VOICES[half]) + r.choice(VARIANTS[half])
            self.speed = r.randint(135, 185)
            self.pitch = r.randint(25, 75)
            self.tract = r.uniform(0.9, 1.12)
            self.words = WORDS[half][number % len(WORDS[half])].split()
        else:
            self.tract = 1.0
            self.words = recorded_voices.words_of(self.person)
        self.microphone = r.choice(list(MICROPHONES))
        self.colour = r.choice(["white", "pink", "hum", "fan"])


# A mark after the word changes its melody and the length of its last syllable.
MARKS = [".", ".", ".", "!", "?", ","]


def say(speaker, r, word, variation, scratch):
    """The word as this speaker says it now, at HERTZ."""
    speed = speaker.speed * np.exp(variation * r.gauss(0, 0.05))
    pitch = speaker.pitch + variation * r.gauss(0, 3.5)
    mark = r.choice(MARKS) if variation > 0 else "."
    return espeak(speaker.voice, int(np.clip(speed, 85, 400)), int(np.clip(pitch, 0, 99)), word + mark, scratch)


def said_path(folder, person, word, take):
    return f"{folder}/.said/{person}_{word}_{take}.wav"


def say_all(task):
    """Lets a person of recorded_voices say all words, once for all sets."""
    folder, person, words, takes = task
    sayings = []
    for word in range(words):
        for take in range(takes):
            r, _ = chance(f"said {person} {word} {take}")
            text = recorded_voices.words_of(person)[word] + r.choice(MARKS)
            sayings.append((said_path(folder, person, word, take), text, float(np.exp(r.gauss(0, 0.05))),
                            float(np.exp(r.gauss(0, 0.06)))))
    recorded_voices.say_all(person, recorded_voices.missing(sayings))


def said(path):
    x, hertz = read_wave(path)
    return at_rate(x, hertz, HERTZ)


def smooth(g, n, knots, sigma):
    """A curve of n values that wanders by sigma."""
    at = np.linspace(0, n, max(2, int(knots)))
    return np.interp(np.arange(n), at, sigma * g.standard_normal(len(at)))


def resampled(x, rates):
    """Plays x with a speed that changes from sample to sample."""
    places = np.cumsum(rates)
    places = places[places < len(x) - 1]
    return np.interp(places, np.arange(len(x)), x)


def stretched(g, x, variation):
    """Gives some sounds of the word more time and others less, and keeps their pitch: pieces are laid
    over each other (WSOLA without its search)."""
    size, hop = 1024, 256
    n = len(x)
    rates = np.exp(smooth(g, n, n / (0.12 * HERTZ), 0.11 * variation))
    places = np.cumsum(rates)
    places = places[places < n - 1]
    padded = np.concatenate([np.zeros(size), x, np.zeros(2 * size)])
    window = np.hanning(size)
    y = np.zeros(len(places) + 2 * size)
    weight = np.full(len(y), 1e-3)
    last = None
    for start in range(0, len(places), hop):
        at = int(places[start]) + size // 2
        if last is not None:
            # The best match near the place, so that the periods of the voice meet.
            expected = padded[last + hop: last + hop + 400]
            shifts = range(max(-160, -at), 161, 8)
            at += max(shifts, key=lambda s: float(np.dot(padded[at + s: at + s + 400], expected))
                      if at + s + 400 <= len(padded) and len(expected) == 400 else -1e9)
            at = min(max(at, 0), len(padded) - size)
        y[start: start + size] += padded[at: at + size] * window
        weight[start: start + size] += window
        last = min(at, len(padded) - size - hop)
    return y / weight


def coloured(g, x, variation):
    """Moves the resonances about: gains that wander over time and frequency, a tilt of the whole
    spectrum, as voices have from one saying to the next."""
    size, hop = 512, 128
    padded = np.concatenate([np.zeros(size), x, np.zeros(size)])
    count = (len(padded) - size) // hop
    window = np.sqrt(np.hanning(size + 1)[:-1])
    frames = np.stack([padded[i * hop: i * hop + size] * window for i in range(count)])
    spectra = np.fft.rfft(frames, axis=1)
    f = np.fft.rfftfreq(size, 1 / HERTZ)
    knots_t = max(2, int(count * hop / HERTZ / 0.09))
    knots_f = 22
    # Places of the knots are spaced as the ear hears them.
    mel = 1127 * np.log(1 + f / 700)
    field = g.standard_normal((knots_t, knots_f)) * 2.25 * variation
    whole = g.standard_normal(knots_f) * 1.0 * variation
    over_f = np.stack([np.interp(mel, np.linspace(0, mel[-1], knots_f), row + whole) for row in field])
    t = np.linspace(0, knots_t - 1, count)
    low = np.minimum(t.astype(int), knots_t - 2)
    share = (t - low)[:, None]
    gains = over_f[low] * (1 - share) + over_f[low + 1] * share
    gains += g.standard_normal() * variation * np.log2(np.maximum(f, 100) / 1000)
    # Resonances a little higher or lower, differently over the word.
    shift = np.exp(smooth(g, count, knots_t, 0.0125 * variation) + g.standard_normal() * 0.01 * variation)
    magnitude = np.abs(spectra)
    bins = np.arange(len(f))
    moved = np.stack([np.interp(bins / s, bins, np.convolve(m, np.ones(9) / 9, "same"))
                      for m, s in zip(magnitude, shift)])
    still = np.stack([np.convolve(m, np.ones(9) / 9, "same") for m in magnitude])
    spectra *= (moved + 1e-9) / (still + 1e-9) * db(gains)
    y = np.zeros(len(padded))
    for i, frame in enumerate(np.fft.irfft(spectra, axis=1)):
        y[i * hop: i * hop + size] += frame * window
    return y[size: size + len(x)] / 2


def vary(g, x, speaker, variation):
    """One saying of the word."""
    x = stretched(g, x, variation)
    x = resampled(x, np.full(int(len(x) * 1.3), speaker.tract * np.exp(0.0075 * variation * g.standard_normal())))
    x = coloured(g, x, variation)
    x = x * db(smooth(g, len(x), len(x) / (0.1 * HERTZ), 1.25 * variation))
    if g.random() < 0.5:  # The end fades.
        k = min(len(x) // 3, int(g.uniform(0.03, 0.2) * HERTZ))
        x[len(x) - k:] *= np.linspace(1, g.uniform(0.05, 0.6), k)
    level = np.sqrt(np.convolve(np.square(x), np.ones(600) / 600, "same"))
    breath = g.standard_normal(len(x)) * level * db(g.uniform(-40, -22))
    x = x + breath
    return x / np.abs(x).max()


# --- Rooms --------------------------------------------------------------------


def noise(g, colour, n):
    """Noise of a room, rms 1."""
    white = g.standard_normal(n + 2048)
    t = np.arange(n) / HERTZ
    pink = shaped(white, lambda f: np.maximum(f, 20) ** -0.5, HERTZ)[1024: 1024 + n]
    if colour == "white":
        x = white[:n]
    elif colour == "pink":
        x = pink
    elif colour == "hum":
        x = sum(g.uniform(0.1, 1) / k * np.sin(2 * np.pi * (50 * k * t + g.random())) for k in range(1, 8))
        x = x / rms(x) + 0.15 * pink / rms(pink)
    else:
        x = shaped(white, band(g.uniform(60, 150), g.uniform(300, 1200)), HERTZ)[1024: 1024 + n]
        x = x / rms(x) + 0.3 * pink / rms(pink)
    return x / rms(x)


# What a set is: pauses before and after the word in seconds, the room below the speech in decibels,
# the rate of its files, and how much the takes of a speaker differ. "edge" is below the peak what is
# cut off at both ends of the word; "peak" is the level of the file.
SETS = {
    "quiet": dict(before=(0, 0.03), after=(0, 0.03), snr=(32, 45), hertz=8000, variation=1.0),
    "whole": dict(before=(0.2, 1.2), after=(0.4, 1.2), snr=(30, 40), hertz=11025, variation=1.0),
    "room": dict(before=(0.2, 1.0), after=(0.3, 1.0), snr=(18, 22), hertz=16000, variation=1.0),
    "loud": dict(before=(0.2, 1.0), after=(0.3, 1.0), snr=(9, 11), hertz=11025, variation=1.0),
    "moved": dict(before=(0.1, 1.0), after=(0.1, 1.0), snr=(25, 40), hertz=44100, variation=1.0,
                  microphones=True),
    "hard": dict(before=(0, 0.3), after=(0, 0.3), snr=(25, 40), hertz=11025, variation=1.6),
    "easy": dict(before=(0.2, 0.8), after=(0.3, 0.8), snr=(30, 40), hertz=11025, variation=0.5),
    "tight": dict(before=(0, 0), after=(0, 0), snr=(32, 45), hertz=8000, variation=1.0, edge=20),
    "long": dict(before=(1, 2), after=(1, 2), snr=(30, 40), hertz=8000, variation=1.0),
    "soft": dict(before=(0.1, 0.5), after=(0.1, 0.5), snr=(30, 40), hertz=8000, variation=1.0, peak=(35, 35)),
    "formats": dict(before=(0, 0.5), after=(0, 0.5), snr=(30, 40), hertz=(8000, 16000, 44100, 48000),
                    variation=1.0),
}
SETS |= {name: dict(before=(0.1, 0.4), after=(0.1, 0.4), snr=(30, 40), hertz=8000, variation=1.0)
         for name in BURDENS}


def make_take(task):
    folder, half, name, number, word, take, scale = task
    traits = SETS[name]
    speaker = Speaker(half, name, number)
    label = speaker.words[word]
    r, g = chance(f"{half} {name} {number} {word} {take}")
    variation = traits["variation"] * scale
    x = (say(speaker, r, label, variation, folder) if speaker.person is None
         else said(said_path(folder, speaker.person, word, take)))
    x = trimmed(x, 0.01)
    x = vary(g, x / np.abs(x).max(), speaker, variation)
    microphone = r.choice(list(MICROPHONES)) if traits.get("microphones") else speaker.microphone
    x = trimmed(x, db(-traits.get("edge", 38)))
    level = speech_level(x, 220)
    x = np.concatenate([np.zeros(int(r.uniform(*traits["before"]) * HERTZ)), x,
                        np.zeros(int(r.uniform(*traits["after"]) * HERTZ))])
    x += noise(g, speaker.colour, len(x)) * level * db(-r.uniform(*traits["snr"]))
    if name in BURDENS:
        x = BURDENS[name](r, g, x, level, HERTZ)
    x = shaped(np.concatenate([x, np.zeros(64)]), MICROPHONES[microphone], HERTZ)[: len(x)]
    hertz = traits["hertz"] if name != "formats" else r.choice(traits["hertz"])
    x = at_rate(x, HERTZ, hertz)
    x = x / np.abs(x).max() * db(-r.uniform(*traits.get("peak", (3, 20))))
    with open(f"{folder}/{half}-{name}/{label}_{half[0]}{number}_{take}.wav", "wb") as file:
        file.write(as_any_file(r, x, hertz) if name == "formats" else wave_bytes(x, hertz))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder")
    parser.add_argument("--sets", nargs="+", choices=list(SETS), default=list(SETS))
    parser.add_argument("--half", choices=["tune", "held-out", *recorded_voices.HALVES])
    parser.add_argument("--speakers", type=int, default=6)
    parser.add_argument("--takes", type=int, default=10)
    parser.add_argument("--words", type=int, default=10, help="so many of the ten words of a speaker")
    parser.add_argument("--variation", type=float, default=1.0)
    arguments = parser.parse_args()
    halves = [arguments.half] if arguments.half else ["tune", "held-out"]
    for half in halves:
        for name in arguments.sets:
            os.makedirs(f"{arguments.folder}/{half}-{name}", exist_ok=True)
    tasks = [(arguments.folder, half, name, number, word, take, arguments.variation)
             for half in halves for name in arguments.sets for number in range(arguments.speakers)
             for word in range(arguments.words) for take in range(arguments.takes)]
    os.makedirs(f"{arguments.folder}/.said", exist_ok=True)
    people = {Speaker(half, name, number).person for half in halves for name in arguments.sets
              for number in range(arguments.speakers)} - {None}
    with multiprocessing.Pool() as pool:
        pool.map(say_all, [(arguments.folder, person, arguments.words, arguments.takes)
                           for person in sorted(people)])
        for _ in pool.imap_unordered(make_take, tasks, chunksize=20):
            pass


if __name__ == "__main__":
    main()
