#include <cstdlib>

#include "host/machine/system.h"
#include "tests/host/cli/store.h"

std::unique_ptr<platform::Registry> OpenStore(const std::filesystem::path& root) {
  return machine::MakeRegistry(root, machine::RegistryUse::kChange);
}

std::string NameOfStore(const std::filesystem::path& root) { return machine::NameOfRegistry(root); }

std::string NameOfContacts(const std::filesystem::path& /*root*/) {
  return std::string(std::getenv("USERPROFILE")) + "\\Contacts";
}
