#!/usr/bin/env bash
# Writes the start corpora of the fuzz targets anew: excerpts of the sample recordings and files at
# the edges of what the formats allow. Inputs that a run has found are added by hand, with a name
# that begins with "found_", and stay.
set -eu # Not pipefail: a "head" that has enough ends the command before it.
cd "$(dirname "$0")"
. ../../tools/wave_bytes.sh

wave=corpora/fuzz_wave_file
template=corpora/fuzz_template_file
mkdir -p $wave $template
find $wave $template -type f ! -name 'found_*' -delete

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
# The samples begin behind byte 44, as in files of other programs.
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
