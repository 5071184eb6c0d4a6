# Functions for scripts that write wave files. Source this file.

little_endian() { # WIDTH VALUE
  local i byte bytes=
  for ((i = 0; i < $1; i++)); do
    printf -v byte '\\x%02x' $((($2 >> (8 * i)) & 255))
    bytes+=$byte
  done
  printf '%b' "$bytes"
}

# The header as the recorder writes it: the RIFF size field holds the length of the whole file,
# and not that length less 8 as is usual.
wave_header() { # DATA_BYTES
  printf RIFF
  little_endian 4 $(($1 + 44))
  printf 'WAVEfmt '
  little_endian 4 16
  little_endian 2 1
  little_endian 2 1
  little_endian 4 11025
  little_endian 4 22050
  little_endian 2 2
  little_endian 2 16
  printf data
  little_endian 4 "$1"
}
