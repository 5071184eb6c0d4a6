#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace twins {

/// The language table written out step by step, straight from the rules of the format: bytes read
/// one by one, zero-terminated copies, arrays that grow by one element. Slow on purpose, and
/// sharing no code with what it is compared with.
class LanguageTableTwin {
 public:
  void Load(std::span<const std::byte> file);
  const char16_t* LookUp(const char16_t* key, const char16_t* defaultText) const;

  std::uint16_t GetCount() const { return m_count; }
  const char16_t* GetKey(std::size_t index) const { return m_keys[index].get(); }
  const char16_t* GetText(std::size_t index) const { return m_texts[index].get(); }

 private:
  using Copy = std::unique_ptr<char16_t[]>;

  void Append(Copy key, Copy text);

  std::unique_ptr<Copy[]> m_keys;
  std::unique_ptr<Copy[]> m_texts;
  std::uint16_t m_count = 0;
};

}  // namespace twins
