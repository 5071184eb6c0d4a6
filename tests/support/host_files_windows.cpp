#include <windows.h>

#include <algorithm>

#include "tests/support/host_files.h"

namespace support {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAW found{};
  const HANDLE search = ::FindFirstFileW((Exactly(folder) / "*").c_str(), &found);
  for (BOOL isFound = search != INVALID_HANDLE_VALUE ? TRUE : FALSE; isFound != FALSE;
       isFound = ::FindNextFileW(search, &found)) {
    const std::string name = fs::path(found.cFileName).string();
    if (name != "." && name != "..") {
      names.push_back(name);
    }
  }
  if (search != INVALID_HANDLE_VALUE) {
    ::FindClose(search);
  }
  std::ranges::sort(names);
  return names;
}

void RemoveTree(const fs::path& folder) {
  const fs::path exact = Exactly(folder);
  for (const std::string& name : NamesIn(exact)) {
    const fs::path entry = exact / name;
    ::SetFileAttributesW(entry.c_str(), FILE_ATTRIBUTE_NORMAL);  // Tests protect some.
    if (::DeleteFileW(entry.c_str()) == FALSE) {
      RemoveTree(entry);
    }
  }
  ::RemoveDirectoryW(exact.c_str());
}

}  // namespace support
