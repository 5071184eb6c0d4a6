#include "backends/vcard/contact_pool.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "backends/vcard/contact_keys.h"

namespace vcard {
namespace {

/// Memory grows by one block, so that no contact is ever moved, and little is left empty.
constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

/// Bits of a length in one byte. The highest bit says that another byte follows.
constexpr unsigned kLengthBits = 7;
constexpr unsigned kMostLengthBytes = 4;

std::size_t CountLengthBytes(std::size_t bytes) {
  std::size_t count = 1;
  for (; bytes >> kLengthBits != 0; bytes >>= kLengthBits) {
    ++count;
  }
  return count;
}

/// Writes a run into room that was counted before.
class RunWriter {
 public:
  explicit RunWriter(std::byte* to) : m_to(to) {}

  void Put(const void* bytes, std::size_t count) {
    if (count > 0) {
      std::memcpy(m_to, bytes, count);
      m_to += count;
    }
  }

  void PutText(const void* text, std::size_t bytes) {
    std::size_t rest = bytes;
    for (; rest >> kLengthBits != 0; rest >>= kLengthBits) {
      *m_to++ = static_cast<std::byte>(rest | 1U << kLengthBits);
    }
    *m_to++ = static_cast<std::byte>(rest);
    Put(text, bytes);
  }

 private:
  std::byte* m_to;
};

/// Reads a run. After the first thing that does not fit, everything is empty.
class RunReader {
 public:
  explicit RunReader(std::span<const std::byte> run) : m_run(run) {}

  [[nodiscard]] std::span<const std::byte> TakeText() {
    std::size_t length = 0;
    for (unsigned i = 0; i < kMostLengthBytes; ++i) {
      const auto byte = Take(1);
      const auto value = byte.empty() ? 0U : std::to_integer<unsigned>(byte.front());
      length |= std::size_t{value & 0x7FU} << (i * kLengthBits);
      if (value >> kLengthBits == 0) {
        return Take(length);
      }
    }
    m_isWhole = false;
    return {};
  }

  [[nodiscard]] std::span<const std::byte> Take(std::size_t count) {
    m_isWhole = m_isWhole && count <= m_run.size();
    if (!m_isWhole) {
      return {};
    }
    const auto taken = m_run.first(count);
    m_run = m_run.subspan(count);
    return taken;
  }

  [[nodiscard]] bool IsWhole() const { return m_isWhole; }
  [[nodiscard]] std::size_t CountLeft() const { return m_run.size(); }

 private:
  std::span<const std::byte> m_run;
  bool m_isWhole = true;
};

/// Calls `each` with the texts of a contact in the order of its run.
template <typename Contact, typename Each>
void ForEachText(Contact& contact, const Each& each) {
  each(contact.uid);
  each(contact.firstName);
  each(contact.middleName);
  each(contact.lastName);
  each(contact.companyName);
  for (auto& number : contact.numbers) {
    each(number);
  }
  each(contact.formerContent);
}

constexpr std::size_t kTexts = 6 + std::tuple_size_v<Numbers>;

/// Passes over one contact. Returns whether it is one.
bool Pass(RunReader& reader) {
  static const ContactData kShape;
  static_cast<void>(reader.Take(sizeof(ContactSigns)));
  bool areTexts = true;
  ForEachText(kShape, [&](const auto& text) {
    areTexts = reader.TakeText().size() % sizeof text[0] == 0 && areTexts;
  });
  return areTexts && reader.IsWhole();
}

}  // namespace

static_assert(std::has_unique_object_representations_v<ContactSigns>);

ContactPool::ContactPool(const std::vector<ContactData>& contacts) {
  std::ranges::for_each(contacts, [this](const ContactData& contact) { Add(contact); });
}

void ContactPool::Add(const ContactData& contact) {
  const ContactSigns signs = SignsOf(contact);
  std::size_t size = sizeof signs;
  ForEachText(contact, [&size](const auto& text) {
    const std::size_t bytes = text.size() * sizeof text[0];
    size += CountLengthBytes(bytes) + bytes;
  });
  RunWriter writer(AddRun(size));
  writer.Put(&signs, sizeof signs);
  ForEachText(contact, [&writer](const auto& text) {
    writer.PutText(text.data(), text.size() * sizeof text[0]);
  });
}

void ContactPool::Add(const ContactPool& other, std::size_t index) {
  const auto run = other.From(other.m_places[index]);
  RunReader reader(run);
  Pass(reader);
  const std::size_t size = run.size() - reader.CountLeft();
  RunWriter(AddRun(size)).Put(run.data(), size);
}

std::byte* ContactPool::AddRun(std::size_t size) {
  if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < size) {
    m_blocks.emplace_back().reserve(std::max(kBlockBytes, size));
  }
  std::vector<std::byte>& block = m_blocks.back();
  const std::size_t offset = block.size();
  m_places.push_back(
      {static_cast<std::uint32_t>(m_blocks.size() - 1), static_cast<std::uint32_t>(offset)});
  block.resize(offset + size);
  return block.data() + offset;
}

std::optional<ContactPool> ContactPool::FromBytes(std::vector<std::byte> bytes, std::size_t start,
                                                  std::size_t count) {
  if (count > bytes.size() / (sizeof(ContactSigns) + kTexts) ||
      bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  ContactPool pool;
  pool.m_places.reserve(count);
  RunReader reader(std::span<const std::byte>(bytes).subspan(start));
  for (std::size_t i = 0; i < count; ++i) {
    pool.m_places.push_back({0, static_cast<std::uint32_t>(bytes.size() - reader.CountLeft())});
    if (!Pass(reader)) {
      return std::nullopt;
    }
  }
  if (reader.CountLeft() != 0) {
    return std::nullopt;
  }
  pool.m_blocks.push_back(std::move(bytes));
  pool.m_start = start;
  return pool;
}

std::span<const std::byte> ContactPool::From(const Place& place) const {
  return std::span(m_blocks[place.block]).subspan(place.offset);
}

ContactSigns ContactPool::GetSigns(std::size_t index) const {
  ContactSigns signs;
  std::memcpy(&signs, From(m_places[index]).data(), sizeof signs);
  return signs;
}

ContactData ContactPool::operator[](std::size_t index) const {
  RunReader reader(From(m_places[index]).subspan(sizeof(ContactSigns)));
  ContactData contact;
  ForEachText(contact, [&reader](auto& text) {
    const auto bytes = reader.TakeText();
    text.resize(bytes.size() / sizeof text[0]);
    std::copy(bytes.begin(), bytes.end(),
              std::as_writable_bytes(std::span(text.data(), text.size())).begin());
  });
  return contact;
}

}  // namespace vcard
