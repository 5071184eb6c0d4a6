# Writes files as arrays of bytes into a header: cmake -DHEADER=... -DFILES=a;b -P EmbedFiles.cmake
# A file "name_size.suffix" becomes resources::kBytesOf<name>For<size>.

set(text "#pragma once\n\n#include <array>\n#include <cstddef>\n\nnamespace resources {\n")
foreach(file IN LISTS FILES)
  get_filename_component(name "${file}" NAME_WE)
  string(REPLACE "_" "For" name "${name}")
  file(READ "${file}" hex HEX)
  string(LENGTH "${hex}" digits)
  math(EXPR size "${digits} / 2")
  string(REGEX REPLACE "(..)" "std::byte{0x\\1}," bytes "${hex}")
  string(APPEND text "\ninline constexpr std::array<std::byte, ${size}> kBytesOf${name} = {{${bytes}}};\n")
endforeach()
string(APPEND text "\n}  // namespace resources\n")
file(WRITE "${HEADER}" "${text}")
