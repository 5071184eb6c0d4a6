#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vcard {

/// Something that was passed over while contacts were read, for the person who can correct it.
struct Remark {
  std::u16string place;  ///< A file, an address book of the desktop, or a key of the registry.
  std::size_t line = 0;  ///< Of the file, from 1; 0 if none is meant.
  std::string text;      ///< A sentence without its full stop; it may quote what was read.

  friend bool operator==(const Remark&, const Remark&) = default;
};

/// Keeps the first remarks, so that a file of nothing but damage costs no memory, and counts the
/// others.
class RemarkList {
 public:
  static constexpr std::size_t kMaxRemarks = 100;

  void Clear() {
    m_remarks.clear();
    m_further = 0;
  }

  void Add(Remark remark) {
    if (m_remarks.size() < kMaxRemarks) {
      m_remarks.push_back(std::move(remark));
    } else {
      ++m_further;
    }
  }

  /// For remarks about lines that nobody can look up.
  void ForgetLines() {
    for (Remark& remark : m_remarks) {
      remark.line = 0;
    }
  }

  /// Those that were kept, then one that says how many more there were, if there were any.
  [[nodiscard]] std::vector<Remark> GetAll() const {
    std::vector<Remark> all = m_remarks;
    if (m_further > 0) {
      all.push_back({m_remarks.back().place, 0,
                     "there are " + std::to_string(m_further) + " more such remarks"});
    }
    return all;
  }

 private:
  std::vector<Remark> m_remarks;
  std::size_t m_further = 0;
};

}  // namespace vcard
