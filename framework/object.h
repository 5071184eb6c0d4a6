#pragma once

#include <string_view>

namespace framework {

class CArchive;

/// The description of a class that can be asked for at run time.
struct RuntimeClass {
  std::string_view name;
};

/// The base of the framework's serialisable classes. The virtual operations stand in the order of
/// the framework's own table.
class CObject {
 public:
  CObject() = default;
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;

  [[nodiscard]] virtual const RuntimeClass& GetRuntimeClass() const;
  virtual ~CObject() = default;

  /// Writes the object to the archive or reads it from there, as the archive's mode says. A failure
  /// is in the archive's status.
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

/// An application in the style of the framework: the work that is done once when its library is
/// loaded.
class CWinApp : public CObject {
 public:
  /// Returns false if the application cannot run.
  virtual bool InitInstance() { return true; }
};

}  // namespace framework
