#include "tags/tag_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/failing_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace tags {
namespace {

using platform::RegistryError;
using testing::ElementsAre;

class OidsInUse : public testing::Test {
 protected:
  void Write(std::u16string_view tagName, std::int32_t oid) {
    EXPECT_EQ(support::ErrorOf(m_store.WriteEntry(tagName, oid, u"Mobile")), std::nullopt);
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_memory;
  support::FailingRegistry m_registry{m_memory};
  storage::TagStore m_store{m_files, m_registry};
};

TEST_F(OidsInUse, AreNoneBeforeTheFirstTag) {
  EXPECT_THAT(FindOidsInUse(m_store).value(), testing::IsEmpty());
}

TEST_F(OidsInUse, AreThoseOfEveryTag) {
  Write(u"100", 17);
  Write(u"200", -5);
  EXPECT_THAT(FindOidsInUse(m_store).value(), ElementsAre(17, -5));
}

TEST_F(OidsInUse, LeaveOutATagThatNamesNoContact) {
  Write(u"100", 17);
  ASSERT_EQ(support::ErrorOf(support::PutText(m_memory, u"Software\\Zedra\\Zedra Voxtrel\\200",
                                              u"contact", u"?")),
            std::nullopt);
  EXPECT_THAT(FindOidsInUse(m_store).value(), ElementsAre(17));
}

TEST_F(OidsInUse, AreNotKnownIfTheStoreFails) {
  Write(u"100", 17);
  Write(u"200", 18);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    m_registry.FailCall(call, support::Failing::kOnce, RegistryError::kBusy);
    const auto oids = FindOidsInUse(m_store);
    hasFailed = m_registry.HasFailed();
    EXPECT_EQ(oids.has_value(), !hasFailed) << call;
  }
}

}  // namespace
}  // namespace tags
