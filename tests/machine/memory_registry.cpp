#include "tests/machine/memory_registry.h"

#include <algorithm>
#include <optional>
#include <type_traits>
#include <utility>

#include "backends/text/names.h"

namespace machine {

using platform::Failure;
using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

namespace {

constexpr std::uint64_t kNoKey = 0;
constexpr std::uint64_t kRootKey = 1;

}  // namespace

class MemoryRegistry::Key final : public platform::RegistryKey {
 public:
  Key(MemoryRegistry& registry, Number number) : m_registry(registry), m_number(number) {}

  using ItemName = Result<std::optional<std::u16string>, RegistryError>;

  ItemName EnumerateSubkey(std::uint32_t index) override {
    return WithNode([&](Node& node) -> ItemName {
      if (index >= node.subkeys.size()) {
        return std::nullopt;
      }
      return m_registry.m_nodes.at(node.subkeys[index]).name;
    });
  }

  ItemName EnumerateValue(std::uint32_t index) override {
    return WithNode([&](Node& node) -> ItemName {
      if (index >= node.values.size()) {
        return std::nullopt;
      }
      return node.values[index].name;
    });
  }

  Result<RegistryValue, RegistryError> Query(std::u16string_view valueName) override {
    return WithNode([&](Node& node) -> Result<RegistryValue, RegistryError> {
      const auto found = FindValue(node, valueName);
      if (found == node.values.end()) {
        return Failure(RegistryError::kNotFound);
      }
      return found->content;
    });
  }

  Result<void, RegistryError> Set(std::u16string_view valueName, RegistryType type,
                                  std::span<const std::byte> bytes) override {
    if (!platform::IsValueName(valueName) || bytes.size() > platform::kMaxValueBytes) {
      return Failure(RegistryError::kInvalid);
    }
    return WithNode([&](Node& node) -> Result<void, RegistryError> {
      RegistryValue content{type, {bytes.begin(), bytes.end()}};
      if (const auto found = FindValue(node, valueName); found != node.values.end()) {
        found->content = std::move(content);
      } else {
        node.values.push_back(
            {std::u16string(valueName), text::FoldName(valueName), std::move(content)});
      }
      return {};
    });
  }

  Result<void, RegistryError> DeleteValue(std::u16string_view valueName) override {
    return WithNode([&](Node& node) -> Result<void, RegistryError> {
      const auto found = FindValue(node, valueName);
      if (found == node.values.end()) {
        return Failure(RegistryError::kNotFound);
      }
      node.values.erase(found);
      return {};
    });
  }

 private:
  template <typename Call>
  auto WithNode(const Call& call) -> std::invoke_result_t<Call, Node&> {
    const auto pass = m_registry.m_gate.Enter();
    if (!pass) {
      return Failure(RegistryError::kBusy);
    }
    const auto node = m_registry.m_nodes.find(m_number);
    if (node == m_registry.m_nodes.end()) {
      return Failure(RegistryError::kNotFound);
    }
    return call(node->second);
  }

  static std::vector<Value>::iterator FindValue(Node& node, std::u16string_view name) {
    return std::find_if(
        node.values.begin(), node.values.end(),
        [folded = text::FoldName(name)](const Value& value) { return value.foldedName == folded; });
  }

  MemoryRegistry& m_registry;
  Number m_number;
};

MemoryRegistry::MemoryRegistry(const std::vector<std::u16string>& initialKeys,
                               std::chrono::milliseconds busyLimit)
    : m_gate(busyLimit), m_nodes{{kRootKey, {}}}, m_lastNumber(kRootKey) {
  for (const std::u16string& path : initialKeys) {
    if (const auto names = platform::SplitKeyPath(path)) {
      [[maybe_unused]] const Number made = CreatePath(*names);
    }
  }
}

OpenedKey MemoryRegistry::OpenKey(std::u16string_view path) {
  const auto names = platform::SplitKeyPath(path);
  if (!names) {
    return Failure(RegistryError::kInvalid);
  }
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  return Opened(FindPath(*names));
}

OpenedKey MemoryRegistry::CreateKey(std::u16string_view path) {
  const auto names = platform::SplitKeyPath(path);
  if (!names) {
    return Failure(RegistryError::kInvalid);
  }
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  return Opened(CreatePath(*names));
}

Result<void, RegistryError> MemoryRegistry::DeleteKey(std::u16string_view path) {
  auto names = platform::SplitKeyPath(path);
  if (!names || names->empty()) {
    return Failure(RegistryError::kInvalid);
  }
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  const Number number = FindPath(*names);
  if (number == kNoKey) {
    return Failure(RegistryError::kNotFound);
  }
  names->pop_back();
  Node& parent = m_nodes.at(FindPath(*names));
  std::erase(parent.subkeys, number);
  parent.subkeysByName.erase(m_nodes.at(number).foldedName);
  DeleteTree(number);
  return {};
}

Result<void, RegistryError> MemoryRegistry::BeginGroup() {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  if (m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  m_beforeGroup = m_nodes;
  m_gate.OpenGroup();
  return {};
}

Result<void, RegistryError> MemoryRegistry::CommitGroup() {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  if (!m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  EndGroup();
  return {};
}

void MemoryRegistry::CancelGroup() {
  const auto pass = m_gate.Enter();
  if (!pass || !m_gate.GroupIsOpen()) {
    return;
  }
  m_nodes.swap(m_beforeGroup);
  EndGroup();
}

MemoryRegistry::Number MemoryRegistry::FindSubkey(const Node& node, std::u16string_view name) {
  const auto found = node.subkeysByName.find(text::FoldName(name));
  return found == node.subkeysByName.end() ? kNoKey : found->second;
}

MemoryRegistry::Number MemoryRegistry::FindPath(const Names& names) const {
  Number number = kRootKey;
  for (const std::u16string_view name : names) {
    number = FindSubkey(m_nodes.at(number), name);
    if (number == kNoKey) {
      return kNoKey;
    }
  }
  return number;
}

MemoryRegistry::Number MemoryRegistry::CreatePath(const Names& names) {
  Number number = kRootKey;
  for (const std::u16string_view name : names) {
    Number next = FindSubkey(m_nodes.at(number), name);
    if (next == kNoKey) {
      next = ++m_lastNumber;
      const std::u16string folded = text::FoldName(name);
      Node& parent = m_nodes.at(number);
      parent.subkeys.push_back(next);
      parent.subkeysByName.emplace(folded, next);
      m_nodes[next] = {std::u16string(name), folded, {}, {}, {}};
    }
    number = next;
  }
  return number;
}

void MemoryRegistry::DeleteTree(Number number) {
  std::vector<Number> doomed{number};
  while (!doomed.empty()) {
    const auto node = m_nodes.find(doomed.back());
    doomed.pop_back();
    doomed.insert(doomed.end(), node->second.subkeys.begin(), node->second.subkeys.end());
    m_nodes.erase(node);
  }
}

OpenedKey MemoryRegistry::Opened(Number number) {
  if (number == kNoKey) {
    return Failure(RegistryError::kNotFound);
  }
  return std::make_unique<Key>(*this, number);
}

void MemoryRegistry::EndGroup() {
  m_beforeGroup.clear();
  m_gate.CloseGroup();
}

}  // namespace machine
