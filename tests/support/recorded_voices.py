"""Synthesizers that join pieces of real people's recordings: festival and flite.

    apt install flite festival festvox-kdlpc16k festvox-italp16k festvox-itapc16k festvox-czech-dita \\
      festvox-czech-machac festvox-czech-ph festvox-suopuhe-lj festvox-suopuhe-mv festvox-kallpc16k

Nothing of `./check` needs them.
"""

import os
import subprocess
import tempfile

# One voice a person: the program, what it calls the voice, the usual pitch (flite), the encoding of its
# texts, and ten short words.
PEOPLE = [
    ("flite", "kal16", 105, "ascii", "zero one two three four five six seven eight nine"),
    ("festival", "lp_diphone", 0, "iso-8859-1",
     "mamma papà casa lavoro taxi medico ufficio scuola banca polizia"),
    ("flite", "slt", 180, "ascii", "Emma Noah Olivia Liam Ava Lucas Mia Ethan Zoe Grace"),
    ("festival", "czech_dita", 0, "iso-8859-2", "Jana Petr Eva Karel Lenka Tomáš Zuzana Honza Marie Pavel"),
    ("flite", "rms", 100, "ascii", "zero one two three four five six seven eight nine"),
    ("festival", "suo_fi_lj_diphone", 0, "iso-8859-1",
     "yksi kaksi kolme neljä viisi kuusi seitsemän kahdeksan yhdeksän kymmenen"),
    ("flite", "awb", 130, "ascii", "Fiona Hamish Ewan Morag Ian Skye Duncan Isla Ross Greer"),
    ("festival", "pc_diphone", 0, "iso-8859-1", "Luca Anna Marco Giulia Paolo Sara Pietro Elena Dario Chiara"),
    ("festival", "ked_diphone", 0, "ascii",
     "north south east west home garage kitchen lawyer dentist plumber"),
    ("festival", "czech_machac", 0, "iso-8859-2", "máma táta domov práce taxi doktor úřad škola banka policie"),
    ("festival", "hy_fi_mv_diphone", 0, "iso-8859-1",
     "äiti isä koti työ taksi lääkäri koulu pankki poliisi Anna"),
    ("festival", "czech_ph", 0, "iso-8859-2",
     "pondělí úterý středa čtvrtek pátek sobota neděle leden únor březen"),
]
# The same people say names that people confuse too.
ALIKE = [
    (*PEOPLE[2][:4], "Molly Polly Holly Dolly Sally Ellie Nelly Kelly Shelly Willy"),
    (*PEOPLE[4][:4], "Jack Zack Mac Max Mike Mick Nick Rick Dick Vic"),
    (*PEOPLE[6][:4], "Bill Phil Will Jill Gill Neil Niall Nell Mel Belle"),
    (*PEOPLE[8][:4], "Carol Karen Sharon Aaron Darren Laura Lauren Warren Harry Barry"),
]
HALVES = {"recorded": range(len(PEOPLE)), "alike": range(len(PEOPLE), len(PEOPLE) + len(ALIKE))}


def words_of(person):
    return (PEOPLE + ALIKE)[person][4].split()


def say_all(person, sayings):
    """Writes a wave file for each of `sayings`: (path, text, stretch, pitch), the last two as factors."""
    program, voice, hertz, encoding, _ = (PEOPLE + ALIKE)[person]
    if program == "flite":
        for path, text, stretch, pitch in sayings:
            subprocess.run(["flite", "-voice", voice, "--setf", f"duration_stretch={stretch}", "--setf",
                            f"int_f0_target_mean={hertz * pitch}", "-t", text, "-o", path], check=True)
        return
    # The pitch is changed between the planning of the melody and the joining of the pieces. All
    # voices of festival come through there, and each plans in its own way.
    lines = [f"(voice_{voice})", "(define (sing u) (mapcar (lambda (x) (item.set_feat x \"f0\" (* factor "
             "(item.feat x \"f0\")))) (utt.relation.leafs u 'Target)) u)",
             "(set! after_analysis_hooks (list sing))"]
    for path, text, stretch, pitch in sayings:
        lines += [f"(Parameter.set 'Duration_Stretch {stretch})", f"(set! factor {pitch})",
                  f'(set! u (SynthText "{text}"))', f'(utt.save.wave u "{path}" \'riff)']
    with tempfile.NamedTemporaryFile("w", suffix=".scm", encoding=encoding) as script:
        script.write("\n".join(lines))
        script.flush()
        subprocess.run(["festival", "-b", script.name], check=True, stdout=subprocess.DEVNULL)


def missing(sayings):
    """Those of `sayings` that were not made before."""
    return [saying for saying in sayings if not os.path.exists(saying[0])]
