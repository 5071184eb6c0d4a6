#pragma once

#include <string_view>

namespace framework {

class CArchive;

/// What a class tells about itself at run time.
struct RuntimeClass {
  std::string_view name;
};

/// Base of the framework's serialisable classes. The virtual operations stand in the order of the
/// framework's own table.
class CObject {
 public:
  CObject() = default;
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;

  [[nodiscard]] virtual const RuntimeClass& GetRuntimeClass() const;
  virtual ~CObject() = default;

  /// Writes the object to the archive or reads it from there, as the archive's mode says. What went
  /// wrong stands in the archive's status.
  virtual void Serialize(CArchive& archive);

  // The two diagnostic slots.
  virtual void AssertValid() const {}
  virtual void Dump() const {}
};

inline const RuntimeClass& CObject::GetRuntimeClass() const {
  static constexpr RuntimeClass kClass{"CObject"};
  return kClass;
}

inline void CObject::Serialize(CArchive& /*archive*/) {}

}  // namespace framework
