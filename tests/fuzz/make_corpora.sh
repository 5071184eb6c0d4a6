#!/usr/bin/env bash
# Writes the start corpora of the fuzz targets again: excerpts of the sample recordings and files at
# the edges of what the formats allow. Inputs that a run has found are added by hand, with a name
# that begins with "found_", and stay.
set -eu # Not pipefail: a "head" that has enough ends the command before it.
cd "$(dirname "$0")"
. ../../tools/wave_bytes.sh

wave=corpora/fuzz_wave_file
template=corpora/fuzz_template_file
sound=corpora/fuzz_sound_file
talk=corpora/fuzz_panel_talk
database=corpora/fuzz_registry_database
backup=corpora/fuzz_backup
mkdir -p $wave $template $sound $talk $database $backup
find $wave $template $sound $talk $database $backup -type f ! -name 'found_*' -delete

zeros() { # BYTES
  head -c "$1" /dev/zero
}
tone() { # SAMPLES: a coarse square wave
  local i
  for ((i = 0; i < $1; i++)); do
    little_endian 2 $(((i / 13) % 2 ? 9000 : 65536 - 9000))
  done
}
excerpt() { # SAMPLE FIRST COUNT: a wave file of COUNT samples
  wave_header $(($3 * 2))
  tail -c +$((45 + $2 * 2)) "../../samples/$1" | head -c $(($3 * 2))
}
# The header with COUNT bytes replaced at OFFSET, then samples.
patched() { # OFFSET WIDTH VALUE
  { wave_header 400 && tone 200; } >$wave/patched.tmp
  little_endian "$2" "$3" |
    dd of=$wave/patched.tmp bs=1 seek="$1" conv=notrunc status=none
  cat $wave/patched.tmp
  rm $wave/patched.tmp
}
# The format in its place, the data id at OFFSET, then samples.
data_at() { # OFFSET SAMPLES
  wave_header 0 | head -c 36 >$wave/head.tmp
  { cat $wave/head.tmp && zeros 100; } | head -c "$1"
  printf data
  little_endian 4 $(($2 * 2))
  tone "$2"
  rm $wave/head.tmp
}

# Long enough that something is left to trim beyond the margins that stay round the speech.
excerpt anna_1.wav 2000 16000 >$wave/speech_with_silence_before
excerpt oliver_2.wav 8000 14000 >$wave/speech_with_silence_after
excerpt sophie_3.wav 0 3000 >$wave/noise_alone
{ wave_header 0; } >$wave/no_samples
{ wave_header 0; } | head -c 43 >$wave/one_byte_short
{ wave_header 2 && tone 1; } >$wave/one_sample
{ wave_header 1022 && tone 511; } >$wave/one_sample_below_a_hop
{ wave_header 2048 && tone 1024; } >$wave/one_frame
{ wave_header 8000 && zeros 8000; } >$wave/silence
{ wave_header 8000 && tone 4000; } >$wave/constant_amplitude
{ wave_header 23000 && zeros 11000 && tone 1000 && zeros 10000; } >$wave/burst
{ wave_header 23001 && zeros 11000 && tone 1000 && zeros 10001; } >$wave/odd_length
{ wave_header 64 && tone 10; } >$wave/data_size_of_the_whole_file
{ wave_header 65 && tone 10; } >$wave/data_size_above_the_file
patched 0 1 0 >$wave/no_riff
patched 8 1 0 >$wave/no_wave
patched 20 2 2 >$wave/not_pcm
patched 22 2 2 >$wave/stereo
patched 34 2 8 >$wave/eight_bits
patched 36 1 0 >$wave/no_data_id
patched 40 4 4294967295 >$wave/largest_data_size
data_at 40 300 >$wave/data_id_at_40
data_at 41 300 >$wave/data_id_at_41
data_at 92 300 >$wave/data_id_at_92
data_at 96 300 >$wave/data_id_at_96
data_at 96 300 | head -c 100 >$wave/data_id_at_the_end
data_at 100 300 >$wave/data_id_behind_the_search
# The id inside the fields before the format: the samples begin before byte 44.
{ wave_header 23000 && zeros 11000 && tone 1000 && zeros 10000; } >$wave/whole.tmp
{ head -c 12 $wave/whole.tmp && printf data && little_endian 4 23000 && tail -c +21 $wave/whole.tmp; } \
  >$wave/data_id_at_12
rm $wave/whole.tmp
# The samples begin after byte 44, as in files of other programs.
{ data_at 92 0 | head -c 96 && little_endian 4 23000 && zeros 11000 && tone 1000 && zeros 10000; } \
  >$wave/data_id_at_92_to_trim

stored() { # FRAMES VALUES
  little_endian 4 $(($1 * 5))
  little_endian 2 "$1"
  local i
  for ((i = 0; i < $2; i++)); do
    little_endian 4 $((0x3f800000 + i * 65536))
  done
}
stored 0 0 >$template/no_frames
stored 1 5 >$template/one_frame
stored 10 50 >$template/ten_frames
stored 10 60 >$template/old_end_behind
stored 10 49 >$template/one_value_short
stored 10 50 | head -c 205 >$template/one_byte_short
stored 0 0 | head -c 5 >$template/header_torn
stored 65535 0 >$template/most_frames_and_no_values
{ little_endian 4 4294967295 && little_endian 2 65535 && zeros 20; } >$template/largest_count
{ little_endian 4 4 && little_endian 2 1 && zeros 20; } >$template/count_below_the_frames
{ little_endian 4 6 && little_endian 2 1 && zeros 24; } >$template/count_above_the_frames
{ stored 2 0 && for bits in 0x7fc00000 0x7f800000 0xff800000 0x00000001 0x80000000 \
  0x7f7fffff 0x7fa00000 0xff7fffff 0 0x3f800000; do little_endian 4 $((bits)); done; } \
  >$template/odd_floats

sound_file() { # CHANNELS BITS RATE SAMPLES
  local block=$(($1 * $2 / 8))
  printf RIFF && little_endian 4 $((36 + $4 * block)) && printf 'WAVEfmt ' && little_endian 4 16
  little_endian 2 1 && little_endian 2 "$1" && little_endian 4 "$3"
  little_endian 4 $(($3 * block)) && little_endian 2 $block && little_endian 2 "$2"
  printf data && little_endian 4 $(($4 * block)) && tone "$4"
}
sound_file 1 16 11025 300 >$sound/as_recorded
sound_file 1 16 8000 40 >$sound/another_rate
sound_file 2 16 11025 40 >$sound/stereo
sound_file 1 8 11025 40 >$sound/eight_bits
sound_file 1 24 11025 40 >$sound/three_bytes
sound_file 0 0 0 8 >$sound/no_format
sound_file 1 16 11025 300 | head -c 99 >$sound/cut_in_the_data
sound_file 1 16 11025 300 | head -c 40 >$sound/cut_in_the_header
{ sound_file 1 16 11025 10 | head -c 36 && printf 'LIST' && little_endian 4 3 && printf 'odd\0data' &&
  little_endian 4 4294967295 && tone 20; } >$sound/other_chunk_and_largest_size
{ printf 'RIFF    WAVEdata' && little_endian 4 8 && tone 4 && sound_file 1 16 11025 9 | tail -c +13; } \
  >$sound/data_before_the_format

big_endian() { # NUMBER: 32 bits, as a report has them
  printf "$(printf '\\x%02x\\x%02x\\x%02x\\x%02x' $(($1 >> 24 & 255)) $(($1 >> 16 & 255)) \
    $(($1 >> 8 & 255)) $(($1 & 255)))"
}
wide() { # TEXT
  big_endian $((${#1} * 2))
  printf %s "$1" | sed 's/./\x00&/g'
}
report() { # COUNT
  printf VPN1 && wide '' && big_endian "$1"
}
{ report 1 && wide 'Fox' && big_endian 6 && printf '<svg/>'; } >$talk/one_applet
{ report 2 && wide 'Fox' && big_endian 4294967295 && wide 'Ann' && big_endian 0; } >$talk/two_applets
{ printf VPN1 && wide 'crashes' && big_endian 0; } >$talk/problem
report 65 >$talk/too_many
{ report 1 && big_endian 4294967294 && printf ab; } >$talk/length_above_the_bytes
printf 'Qt: a warning\napplet.cpl: open already\nno end' >$talk/error_lines
{ printf 'applet.cpl: ' && zeros 5000 && printf '\napplet.cpl: \377\033[2J\n'; } >$talk/long_line

# Rows: a kind, then its columns, each a type (0 a number, 1 a text, 2 bytes, 3 nothing) and four
# times its length.
rows() { # BYTES IN OCTAL: not beginning with a zero
  printf "$1"
}
text='\021name\021name'
rows '\004\000\012\000\001'"$text" >$database/key_below_the_root
rows '\004\000\012\000\013'"$text"'\004\000\013\000\012'"$text" >$database/circle
rows '\006\000\002\000\002' >$database/its_own_parent
rows '\004\000\012\000\002\001\001\004\000\013\000\002\003\003' >$database/key_without_a_name
rows '\004\000\012\000\001\022a\000\\b\022a\000\\b' >$database/names_that_no_path_holds
rows '\001\000\012\000\002\021text\021text\000\003\012by' >$database/value
rows '\001\000\012\000\002\021text\021text\021text\000\007' >$database/type_that_is_text
rows '\007\000\001\021text\007\000\002\003' >$database/data_of_another_kind
if command -v sqlite3 >/dev/null; then
  for page in 512 4096; do
    rm -f $database/whole.tmp
    sqlite3 $database/whole.tmp "PRAGMA page_size = $page;
      CREATE TABLE registry_key (id INTEGER PRIMARY KEY AUTOINCREMENT, parent_id INTEGER,
        name TEXT NOT NULL, folded_name TEXT NOT NULL, UNIQUE (parent_id, folded_name));
      CREATE TABLE registry_value (id INTEGER PRIMARY KEY AUTOINCREMENT, key_id INTEGER NOT NULL,
        name TEXT NOT NULL, folded_name TEXT NOT NULL, type INTEGER NOT NULL, data BLOB NOT NULL,
        UNIQUE (key_id, folded_name));
      INSERT INTO registry_key VALUES (1, NULL, 'HKEY_LOCAL_MACHINE', 'hkey_local_machine'),
        (2, 1, 'Software', 'software'), (3, 2, 'Zedra', 'zedra');
      INSERT INTO registry_value VALUES (1, 3, 'a', 'a', 1, x'3300');
      PRAGMA application_id = 0x56505245; PRAGMA user_version = 1;"
    { printf '\0' && cat $database/whole.tmp; } >$database/whole_file_of_pages_of_$page
    { printf '\0' && head -c 600 $database/whole.tmp; } >$database/cut_file_of_pages_of_$page
  done
  rm $database/whole.tmp
fi
printf '\0' >$database/no_bytes
printf '\0SQLite format 3\0' >$database/first_bytes_alone

# Members of a backup: a name, a quarter of a length, and so many bytes.
member() { # NAME TEXT
  local text=$2
  while [ $((${#text} % 4)) -ne 0 ]; do text+=' '; done
  printf '%s\0' "$1"
  little_endian 1 $((${#text} / 4))
  printf '%s' "$text"
}
tags='REGEDIT4
[HKEY_LOCAL_MACHINE\Software\Zedra\Zedra Voxtrel\'
entry() { # TAG
  printf '%s%s]\n"contact"="-17"\n"phone type"="Home"\n' "$tags" "$1"
}
{ member tags/12/entry.reg "$(entry 12)" && member tags/12/recording.wav RIFF &&
  member tags/12/template.st abcd; } >$backup/one_tag
{ member tags/12/entry.reg "$(entry 12)" && member tags/-5/entry.reg "$(entry -5)" &&
  member language.lng texts; } >$backup/two_tags_and_texts
{ member settings/connection.reg 'REGEDIT4
[HKEY_LOCAL_MACHINE\Software\Zedra\Zedra Dialer]
"Com_port"="COM2:"'; } >$backup/settings
{ member tags/../entry.reg "$(entry ..)"; } >$backup/out_of_the_folder
{ member tags/12/entry.reg "$(entry 13)"; } >$backup/another_tags_entry
{ member tags/A/entry.reg "$(entry A)" && member tags/a/entry.reg "$(entry a)"; } >$backup/one_name_twice
{ member tags/12/recording.wav RIFF; } >$backup/no_entry
printf '\0about.txt' >$backup/torn_file
printf '\0' >$backup/empty_file

number=corpora/fuzz_number
modem=corpora/fuzz_modem
mkdir -p $number $modem
find $number $modem -type f ! -name 'found_*' -delete
stored() { # TEXT: as a contact has it
  printf '%s' "$1" | iconv -f utf-8 -t utf-16le
}
stored '+1 (202) 555-0101' >$number/whole_number
stored '555.0101;ext=4-2' >$number/extension
stored '*21*5550101#' >$number/stars_and_hashes
stored '5550101p42,,W#7' >$number/pauses
stored '1-800-FLOWERS' >$number/letters
stored '٣٤٥' >$number/digits_of_another_script
stored '5550101;phone-context=+1;ext=2' >$number/other_parameters
{ stored '5550101' && printf '\r\0A\0T\0H\0\r\0'; } >$number/command_for_a_modem

printf '\100\001ATD+12025550101;\r\r\nOK\r\n' >$modem/echo_and_ok
printf '\003\062\r\nBUSY\r\n' >$modem/pieces
printf '\100\001\r\nRING\r\n\r\nNO CARRIER\r\n' >$modem/news
printf '\100\0010\r' >$modem/a_number
printf '\100\001CONNECT 9600' >$modem/line_without_an_end
printf '\100\001\370\200\036O\376K\r\214' >$modem/noise
printf '\300\001ATD' >$modem/vanishes
printf '\100\001+CME ERROR: 30\r\n' >$modem/error
