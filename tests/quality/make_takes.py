#!/usr/bin/python3
"""Makes a labelled set of takes: recordings as a microphone hands them over, good ones and bad ones.

    make_takes.py FOLDER [--good N] [--bad N] [--half tune|held-out|recorded] [--repetitions]

The speakers are espeak-ng's. Rooms, microphones, levels and faults are made here. Each take follows
from its name alone, so the same versions of espeak-ng and numpy give the same set. FOLDER/takes.tsv
names each file with its kind, its half and how it was made. The held-out half has other voices,
other words and other draws than the tuning half, and nobody looks at it while choosing limits. The
half "recorded" is made only if it is named: voices that are joined from real people's
recordings (recorded_voices.py), and need packages that nothing else needs.

With --repetitions it makes FOLDER/repetitions.tsv as well: the same names said three times each by the
same speakers, a little faster or slower and higher or lower, in quiet rooms.
"""

import argparse
import multiprocessing
import os
import random
import sys

import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
import recorded_voices
import sounds
from sounds import VOICES, at_rate, band, chance, db, espeak, read_wave, rms, trimmed, wave_bytes

RATE = 11025
TAKE = 3 * RATE
FULL_SCALE = 32768.0

MICROPHONES = sounds.MICROPHONES | {"dull": band(60, 1800, 12)}

VARIANTS = {
    "tune": " +f1 +f3 +f5 +m1 +m3 +m5 +m7 +klatt +klatt3 +croak +linda +edward +max +steph".split(" "),
    "held-out": " +f2 +f4 +m2 +m4 +m6 +m8 +klatt2 +klatt4 +belinda +Andy +Annie +Mike +grandma".split(" "),
}
WORDS = {
    "tune": """
        Anna Berg;Robert;Elizabeth Taylor;Jackson;Oliver Stone;Sophie;Timothy Hernandez;Lee Ann
        Maria Rossi;Giuseppe Verdi;Hans Müller;Klaus;Ingrid Svensson;Björn;Pierre Dupont;Claire
        Carlos Sánchez;Pilar;Agnieszka Nowak;Piotr;Jan de Vries;Saskia;Dimitri Ivanov;Olga
        Mehmet Yılmaz;Ayşe;Kovács István;Zsófia;Yannis Papadopoulos;Eleni;Bob;Kim;Jo;Max;Sam Hill
        Father;Mum;Grandpa at the sea;Doctor Watson;Susan Foster Smith;Patrick O'Hara;Tess;Seth
        Isabelle;Wolfgang;Thatcher;Chuck Finley;Fiona Shaw;Hugh;Victoria Beaumont
        yes;home;five;three;office""",
    "held-out": """
        Charlotte Brown;William;Emily Watson;Jack;Grace Kelly;Harry;Catherine Hepburn;Amy
        João Silva;Beatriz;Andrei Popescu;Ioana;Tomáš Novák;Jana;Mika Häkkinen;Aino;Lars Jensen
        Kirsten;Olav Hansen;Sigrid;Ivan Horvat;Petra;Jozef Kováč;Zuzana;Budi Santoso;Dewi;Arben
        Stephen Fitzgerald;Ruth;Al;Ed;Ben;Zoe;Pip;Sister;Uncle George;The dentist;Mister Peters
        Philippa Featherstone;Scott;Hamish;Chess Club;Keith Sheffield;Faith;Nathan;Bartholomew
        Sasha;Quentin Tarrant;Yvonne;Oscar Wilde
        no;work;seven;eight;mobile""",
}


def words_of(half):
    return [word.strip() for line in WORDS[half].split("\n") for word in line.split(";") if word.strip()]


# --- Speech -----------------------------------------------------------------------------------


def halved(x):
    """From 22,050 to 11,025 samples a second."""
    n = np.arange(-40, 41)
    kernel = 0.47 * np.sinc(0.47 * n) * np.hamming(81)
    return np.convolve(x, kernel / kernel.sum(), "same")[::2]


def say(voice, speed, pitch, word, scratch):
    """The word without silence at its ends; peak 1. Empty if nothing sounds."""
    x = trimmed(halved(espeak(voice, speed, pitch, word, scratch)), 0.004)
    return x / np.abs(x).max() if len(x) >= 100 else np.zeros(0)


SAYINGS = 3  # How often each word of a person of recorded_voices is said in another way.


def said_path(folder, person, word, saying):
    return f"{folder}/.said/{person}_{word}_{saying}.wav"


def say_all(task):
    """Lets a person of recorded_voices say all words."""
    folder, person = task
    sayings = []
    for word, text in enumerate(recorded_voices.words_of(person)):
        for saying in range(SAYINGS):
            r, _ = chance(f"take {person} {word} {saying}")
            sayings.append((said_path(folder, person, word, saying), text + r.choice([".", "!", "?"]),
                            r.uniform(0.75, 1.3), r.uniform(0.85, 1.2)))
    recorded_voices.say_all(person, recorded_voices.missing(sayings))


def said(r, folder):
    """A word of a person of recorded_voices, as say() gives it."""
    person = r.randrange(len(recorded_voices.PEOPLE))
    word = r.randrange(len(recorded_voices.words_of(person)))
    x, hertz = read_wave(said_path(folder, person, word, r.randrange(SAYINGS)))
    x = trimmed(at_rate(x, hertz, RATE), 0.004)
    return x / np.abs(x).max(), f"{recorded_voices.PEOPLE[person][1]} '{recorded_voices.words_of(person)[word]}'"


def speak(r, half, scratch):
    """Some word of some speaker, at most 2.5 s long."""
    while True:
        if half == "recorded":
            x, made = said(r, scratch)
        else:
            voice = r.choice(VOICES[half]) + r.choice(VARIANTS[half])
            word = r.choice(words_of(half))
            x = say(voice, r.randint(110, 220), r.randint(20, 90), word, scratch)
            made = f"{voice} '{word}'"
        if 0.1 * RATE <= len(x) <= 2.5 * RATE:
            return x, made


def humanize(r, x):
    """What a throat does and a synthesizer does not: soft onsets, ends that fade, a level that
    wanders, a creaky end, a compressor in the sound system."""
    n = len(x)
    envelope = np.ones(n)
    if r.random() < 0.5:
        k = min(n // 3, int(r.uniform(0.01, 0.08) * RATE))
        envelope[:k] *= np.linspace(0.05, 1, k) ** r.uniform(0.5, 2)
    if r.random() < 0.5:
        k = min(n // 3, int(r.uniform(0.05, 0.25) * RATE))
        envelope[n - k:] *= np.linspace(1, r.uniform(0.03, 0.4), k)
    if r.random() < 0.5:
        knots = [db(r.uniform(-4, 4)) for _ in range(max(2, n // 1500))]
        envelope *= np.interp(np.arange(n), np.linspace(0, n, len(knots)), knots)
    if r.random() < 0.15:
        k = min(n // 3, int(0.2 * RATE))
        t = np.arange(k) / RATE
        envelope[n - k:] *= 0.4 + 0.6 * (np.mod(t * r.uniform(30, 50), 1) < 0.5)
    x = x * envelope
    if r.random() < 0.25:
        level = np.sqrt(np.convolve(np.square(x), np.ones(300) / 300, "same")) + 0.02
        x = x * level ** -r.uniform(0.2, 0.5)
    return x / np.abs(x).max()


# --- Rooms and microphones ----------------------------------------------------------------------


def shaped(x, gain_of):
    return sounds.shaped(x, gain_of, RATE)


def reverberated(r, x):
    """Returns the sound with the echo of a room, which rings on after it."""
    time = r.uniform(0.12, 0.4)
    n = int(time * RATE)
    g = np.random.default_rng(r.randrange(1 << 30))
    echo = g.standard_normal(n) * 10 ** (-3 * np.arange(n) / n)
    echo[: int(0.004 * RATE)] = 0
    echo *= db(-r.uniform(2, 10)) / np.sqrt(np.sum(np.square(echo)))
    echo[0] = 1
    size = 1 << int(np.ceil(np.log2(len(x) + n)))
    wet = np.fft.irfft(np.fft.rfft(x, size) * np.fft.rfft(echo, size), size)[: len(x) + n]
    return wet / np.abs(wet).max()


def decaying(g, n, frequency, time):
    return sounds.decaying(g, n, frequency, time, RATE)


def clicks(r, g, n, rate):
    """Keys, a mouse, knocks on the table."""
    x = np.zeros(n)
    at = r.expovariate(rate) * 0.5
    while at * RATE < n - 200:
        start = int(at * RATE)
        length = min(n - start, int(0.08 * RATE))
        x[start: start + length] += r.uniform(0.3, 1) * decaying(
            g, length, r.choice([150, 400, 900, 2000, 3500]), r.uniform(0.0008, 0.008))
        at += r.expovariate(rate) + 0.05
    return x


COLOURS = "white pink brown hum fan babble mains street".split()


def noise(r, colour, n, half, scratch):
    """Noise of a room, rms 1."""
    g = np.random.default_rng(r.randrange(1 << 30))
    white = g.standard_normal(n + 2048)
    t = np.arange(n) / RATE

    def power(exponent):
        return shaped(white, lambda f: np.maximum(f, 20) ** exponent)[1024: 1024 + n]

    if colour == "white":
        x = white[:n]
    elif colour == "pink":
        x = power(-0.5)
    elif colour == "brown":
        x = power(-1.0)
    elif colour in ("hum", "mains"):
        base = r.choice([50.0, 60.0])
        x = sum(r.uniform(0.1, 1) / k * np.sin(2 * np.pi * (base * k * t + r.random()))
                for k in range(1, r.randint(3, 14)))
        x = x / rms(x) + (0.15 if colour == "hum" else 0.5) * power(-0.5) / rms(power(-0.5))
    elif colour == "fan":
        x = shaped(white, band(r.uniform(60, 150), r.uniform(300, 1200)))[1024: 1024 + n]
        x = x / rms(x) + 0.3 * np.sin(2 * np.pi * r.uniform(90, 240) * t)
        x *= 1 + 0.15 * np.sin(2 * np.pi * r.uniform(3, 25) * t)
    elif colour == "street":
        x = power(-0.8) * (1 + 0.6 * np.sin(2 * np.pi * (r.uniform(0.15, 0.5) * t + r.random())))
    elif colour == "keys":
        x = clicks(r, g, n, r.uniform(3, 8)) + 0.02 * power(-0.5) / rms(power(-0.5))
    else:  # Many voices.
        x = np.zeros(n)
        for _ in range(14):
            voice, _ = speak(r, half, scratch)
            voice = np.tile(voice, n // len(voice) + 2)
            start = r.randrange(len(voice) - n)
            x += voice[start: start + n]
    if r.random() < 0.3:  # The level of a room wanders.
        knots = [db(r.uniform(-2, 2)) for _ in range(6)]
        x = x * np.interp(np.arange(n), np.linspace(0, n, 6), knots)
    return x / rms(x)


def breath(r, g):
    return sounds.breath(r, g, RATE)


# --- Takes --------------------------------------------------------------------------------------


def speech_level(x):
    return sounds.speech_level(x, 110)


def put(take, at, x):
    take[at: at + len(x)] += x[: max(0, len(take) - at)]


def spoken(r, half, scratch):
    """One word as it comes out of a microphone in a room; peak 1."""
    x, made = speak(r, half, scratch)
    if r.random() < 0.6:
        x = humanize(r, x)
    microphone = r.choice(list(MICROPHONES))
    padded = np.concatenate([np.zeros(20), x, np.zeros(200)])
    x = shaped(padded, MICROPHONES[microphone])
    if r.random() < 0.3:
        x = reverberated(r, x)
        made += " echo"
    loud = np.flatnonzero(np.abs(x) > np.abs(x).max() * 0.004)
    x = x[loud[0]: loud[-1] + 1]
    return x / np.abs(x).max(), f"{made} {microphone}"


def extras(r, take, start, end):
    """What else is heard in a good take: the button, a breath, lips."""
    g = np.random.default_rng(r.randrange(1 << 30))
    made = ""
    if r.random() < 0.25:  # The button is pressed as the take begins.
        n = int(0.03 * RATE)
        put(take, r.randrange(0, int(0.03 * RATE)),
            db(-r.uniform(4, 25)) * decaying(g, n, r.choice([200, 800, 2500]), r.uniform(0.001, 0.005)))
        made += " button"
    if r.random() < 0.25 and start > 0.3 * RATE:
        x = db(-r.uniform(18, 34)) * breath(r, g)
        at = start - len(x) - int(r.uniform(0.02, 0.2) * RATE)
        if at > 0.02 * RATE:
            put(take, at, x)
            made += " breath"
    if r.random() < 0.2 and start > 0.25 * RATE:
        at = start - int(r.uniform(0.06, 0.2) * RATE)
        put(take, at, db(-r.uniform(12, 26)) * decaying(g, 150, 1800, 0.002))
        made += " lips"
    if r.random() < 0.15 and end < TAKE - 0.5 * RATE:
        put(take, end + int(r.uniform(0.05, 0.15) * RATE), db(-r.uniform(20, 34)) * breath(r, g))
        made += " breathes out"
    return made


def in_room(r, half, scratch, x, at, snr, colour=None, has_extras=True):
    """The word `x`, peak 1, from sample `at` on in a room `snr` dB below it."""
    take = np.zeros(TAKE)
    put(take, max(at, 0), x[max(-at, 0):])
    made = extras(r, take, at, at + len(x)) if has_extras else ""
    colour = colour or r.choice(COLOURS + ["keys"])
    take += noise(r, colour, TAKE, half, scratch) * speech_level(x) * db(-snr)
    return take, f"{colour} {snr:.1f} dB{made}"


def place(r, x):
    return r.randint(int(0.1 * RATE), min(int(1.2 * RATE), TAKE - len(x) - int(0.1 * RATE)))


def at_level(r, take, level):
    take = take / np.abs(take).max() * db(level)
    if r.random() < 0.3:
        take = take + r.uniform(-0.02, 0.02) * min(1.0, db(level) * 5)
    return take


def good(r, half, scratch):
    x, made = spoken(r, half, scratch)
    take, room = in_room(r, half, scratch, x, place(r, x), r.choice([20, 22, 25, 30, 40, 50]))
    level = r.uniform(-35, -6)
    return at_level(r, take, level), f"{made} {room} {level:.0f} dBFS"


def soft(r, half, scratch):
    x, made = spoken(r, half, scratch)
    take, room = in_room(r, half, scratch, x, place(r, x), r.choice([20, 25, 30, 40]))
    level = r.uniform(-60, -42)
    return take / np.abs(take).max() * db(level), f"{made} {room} {level:.0f} dBFS"


def silent(r, half, scratch):
    g = np.random.default_rng(r.randrange(1 << 30))
    lsb = 1 / FULL_SCALE
    kind = r.choice(["zeros", "dc", "dither", "few", "pop", "settling"])
    take = np.zeros(TAKE)
    if kind == "dc":
        take += r.uniform(-0.3, 0.3)
    elif kind == "dither":
        take += g.integers(-1, 2, TAKE) * lsb
    elif kind == "few":
        take += g.standard_normal(TAKE) * r.uniform(0.5, 1.2) * lsb + r.randint(-50, 50) * lsb
    elif kind == "pop":
        take += g.integers(0, 2, TAKE) * lsb
        put(take, r.randrange(TAKE - 2000), db(-r.uniform(6, 30)) * decaying(g, 600, 120, 0.01))
    elif kind == "settling":
        take += r.uniform(-0.4, 0.4) * np.exp(-np.arange(TAKE) / RATE / r.uniform(0.05, 0.5))
    return take, kind


def no_speech(r, half, scratch):
    g = np.random.default_rng(r.randrange(1 << 30))
    kind = r.choice(["noise"] * 4 + "clicks taps tone beeps breath bursts swell thump".split())
    floor = noise(r, r.choice(["white", "pink", "brown"]), TAKE, half, scratch) * db(-r.uniform(25, 50))
    take = floor
    if kind == "noise":
        colour = r.choice([c for c in COLOURS if c != "babble"])
        take = noise(r, colour, TAKE, half, scratch)
        kind = colour
    elif kind == "clicks":
        take = floor * 0.2 + clicks(r, g, TAKE, r.uniform(0.5, 8))
    elif kind == "taps":
        for _ in range(r.randint(1, 5)):
            put(take, r.randrange(TAKE - 3000), r.uniform(0.3, 1) * decaying(
                g, 1500, r.uniform(60, 500), r.uniform(0.005, 0.02)))
    elif kind == "tone":
        t = np.arange(TAKE) / RATE
        take = take + np.sin(2 * np.pi * r.uniform(100, 3000) * t)
    elif kind == "beeps":
        f = r.uniform(300, 2500)
        for _ in range(r.randint(1, 4)):
            n = int(r.uniform(0.05, 0.4) * RATE)
            t = np.arange(n) / RATE
            ends = np.minimum(1, np.minimum(t, t[::-1]) / 0.004)
            put(take, r.randrange(TAKE - n), np.sin(2 * np.pi * f * t) * ends)
    elif kind == "breath":
        for _ in range(r.randint(1, 3)):
            put(take, r.randrange(TAKE - 4000), breath(r, g))
    elif kind == "bursts":  # Paper, a sleeve over the microphone.
        for _ in range(r.randint(2, 12)):
            n = int(r.uniform(0.02, 0.3) * RATE)
            put(take, r.randrange(TAKE - n), r.uniform(0.2, 1) * np.hanning(n)
                * shaped(g.standard_normal(n), band(r.uniform(100, 1500), 5000)))
    elif kind == "swell":  # A car goes by.
        t = np.arange(TAKE) / RATE
        take = take + noise(r, "pink", TAKE, half, scratch) * np.exp(
            -np.square((t - r.uniform(0.5, 2.5)) / r.uniform(0.3, 1)))
    else:
        for _ in range(r.randint(1, 3)):
            put(take, r.randrange(TAKE - 4000), decaying(g, 3000, r.uniform(30, 90), 0.06))
    level = r.uniform(-50, -6)
    return at_level(r, take, level), f"{kind} {level:.0f} dBFS"


def noisy(r, half, scratch):
    x, made = spoken(r, half, scratch)
    take, room = in_room(r, half, scratch, x, place(r, x), r.uniform(-2, 7), r.choice(COLOURS))
    level = r.uniform(-30, -3)
    return at_level(r, take, level), f"{made} {room} {level:.0f} dBFS"


def clipped(r, half, scratch):
    x, made = spoken(r, half, scratch)
    take, room = in_room(r, half, scratch, x, place(r, x), r.choice([20, 25, 30, 40]))
    # So much louder than full scale that at least 1 % of the speech stands at the top.
    heights = np.sort(np.abs(x[np.abs(x) > 0.02]))
    share = r.choice([0.012, 0.02, 0.04, 0.08, 0.2])
    limit = heights[int(len(heights) * (1 - share * 1.4))]
    take = np.clip(take, -limit, limit * r.uniform(0.9, 1)) / limit
    down = r.choice([0, 0, r.uniform(0, 6), r.uniform(6, 25)])
    take = np.round(take * 32767) * db(-down) / 32768
    return take, f"{made} {room} {100 * share:.0f} % down {down:.0f}"


def cut_place(r, x, low, high):
    """A place inside the word at which something sounds."""
    for _ in range(100):
        at = int(len(x) * r.uniform(low, high))
        if rms(x[at: at + 300]) > speech_level(x) * db(-14):
            return at
    return int(np.argmax(np.abs(x)))


def cut_start(r, half, scratch):
    x, made = spoken(r, half, scratch)
    at = cut_place(r, x, 0.08, 0.6)
    take, room = in_room(r, half, scratch, x, -at, r.choice([20, 22, 25, 30, 40]), has_extras=False)
    return at_level(r, take, r.uniform(-35, -6)), f"{made} {room} without {at / RATE:.2f} s"


def cut_end(r, half, scratch):
    x, made = spoken(r, half, scratch)
    left = min(len(x), cut_place(r, x, 0.4, 0.9) + 300)
    x = x[:left]
    take, room = in_room(r, half, scratch, x, TAKE - left, r.choice([20, 22, 25, 30, 40]),
                         has_extras=False)
    return at_level(r, take, r.uniform(-35, -6)), f"{made} {room}"


def short(r, half, scratch):
    x, made = spoken(r, half, scratch)
    n = int(r.uniform(0.025, 0.075) * RATE)
    at = max(0, int(np.argmax(np.abs(x))) - r.randrange(n))
    x = x[at: at + n] * np.minimum(1, np.minimum(np.arange(n), np.arange(n)[::-1]) / 30)[: len(x[at: at + n])]
    x = x / np.abs(x).max()
    take, room = in_room(r, half, scratch, x, r.randint(1500, TAKE - 3000),
                         r.choice([20, 22, 25, 30, 40]), r.choice(COLOURS), has_extras=False)
    return at_level(r, take, r.uniform(-35, -6)), f"{made} {room} {n / RATE:.3f} s"


def rate(r, half, scratch):
    take, made = good(r, half, scratch)
    return take, made


KINDS = {f.__name__.replace("_", "-"): f for f in (
    good, silent, soft, clipped, no_speech, noisy, cut_start, cut_end, short, rate)}


def make(task):
    folder, half, kind, index = task
    name = f"{half}_{kind}_{index:04}"
    r = random.Random(sounds.number_of(name))
    take, made = KINDS[kind](r, half, folder)
    hertz = r.choice([8000, 16000, 22050, 44100, 48000]) if kind == "rate" else RATE
    with open(f"{folder}/{name}.wav", "wb") as file:
        file.write(wave_bytes(take, hertz))
    return f"{name}.wav\t{kind}\t{half}\t{made}\n"


def repeat(task):
    """One of the times that a speaker says a name."""
    folder, half, speaker, word, time = task
    name = f"{half}_repetition_{speaker}_{word}_{time}"
    of_speaker = random.Random(f"{half} {speaker}")
    voice = VOICES[half][speaker % len(VOICES[half])] + of_speaker.choice(VARIANTS[half])
    speed, pitch = of_speaker.randint(130, 180), of_speaker.randint(30, 70)
    r = random.Random(name)
    x = say(voice, int(speed * r.uniform(0.9, 1.1)), pitch + r.randint(-6, 6),
            words_of(half)[word], folder)[: int(2.5 * RATE)]
    take, _ = in_room(r, half, folder, humanize(r, x), place(r, x), r.choice([25, 30, 40]),
                      r.choice(["white", "pink", "hum", "fan"]))
    with open(f"{folder}/{name}.wav", "wb") as file:
        file.write(wave_bytes(at_level(r, take, r.uniform(-20, -6)), RATE))
    return f"{name}.wav\t{half} {speaker}\t{word}\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder")
    parser.add_argument("--good", type=int, default=1500, help="good takes in each half")
    parser.add_argument("--bad", type=int, default=200, help="bad takes of each kind in each half")
    parser.add_argument("--half", choices=["tune", "held-out", "recorded"])
    parser.add_argument("--repetitions", action="store_true")
    arguments = parser.parse_args()
    os.makedirs(arguments.folder, exist_ok=True)
    halves = [arguments.half] if arguments.half else ["tune", "held-out"]
    tasks = [(arguments.folder, half, kind, i)
             for half in halves
             for kind in KINDS
             for i in range(arguments.good if kind == "good" else arguments.bad)]
    if "recorded" in halves:
        os.makedirs(f"{arguments.folder}/.said", exist_ok=True)
        with multiprocessing.Pool() as pool:
            pool.map(say_all, [(arguments.folder, person) for person in range(len(recorded_voices.PEOPLE))])
    with multiprocessing.Pool() as pool, open(f"{arguments.folder}/takes.tsv", "w") as table:
        table.writelines(pool.imap(make, tasks, chunksize=20))
        if arguments.repetitions:
            said = [(arguments.folder, half, speaker, word, time) for half in halves
                    for speaker in range(10) for word in range(0, 50, 2) for time in range(3)]
            with open(f"{arguments.folder}/repetitions.tsv", "w") as table:
                table.writelines(pool.imap(repeat, said, chunksize=20))


if __name__ == "__main__":
    main()
