// Loading the contacts, and the contacts of a hundred tags, beside the ways that suggest
// themselves. For the desktop's address books run it in a session of its own:
//   tests/ebook/in_desktop_session.sh build/benchmark/benchmarks/contacts_benchmark

#include <benchmark/benchmark.h>
#include <libebook-contacts/libebook-contacts.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ebook/glib_pointers.h"
#include "platform/posix/posix_file_system.h"
#include "platform/sqlite/sqlite_registry.h"
#include "platform/text/utf.h"
#include "platform/vcard/address_books.h"
#include "platform/vcard/desktop_source.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tags/contact_picker.h"
#include "tags/oids_in_use.h"
#include "tests/ebook/desktop_book.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr int kContacts = 1000;
constexpr std::uint32_t kTags = 100;

std::string Person(int number) {
  const std::string text = std::to_string(number);
  return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:4fbe8971-0bc3-424c-9c26-" + text + "\r\nN:Family" +
         text + ";Given;Middle;;\r\nFN:Given Middle Family" + text +
         "\r\nORG:Acme Works;Sales\r\nTITLE:Engineer\r\nEMAIL;TYPE=WORK:person" + text +
         "@example.org\r\nTEL;TYPE=CELL,VOICE:+1 555 100 " + text +
         "\r\nTEL;TYPE=WORK:+1 555 200 " + text + "\r\nTEL;TYPE=\"HOME,VOICE\":+1 555 300 " + text +
         "\r\nADR;TYPE=HOME:;;1 Long Street;Town;;12345;Country\r\nNOTE:Met at the fair\\, "
         "twice\r\n"
         "END:VCARD\r\n";
}

/// Nobody looks.
class NoView final : public tags::ContactView {
 public:
  void AddContact(std::u16string_view /*name*/) override {}
  void SelectFirstContact() override {}
  void AddNumber(std::u16string_view /*text*/) override {}
  void RemoveNumbers() override {}
  void SelectFirstNumber() override {}
  [[nodiscard]] std::u16string GetFirstNumber() override { return {}; }
  void Report(const tags::ContactMessage& /*message*/) override {}
};

/// A root folder with a thousand contacts, and a tag for every tenth of them.
class Device {
 public:
  Device()
      : m_file((m_folder.Path() / "all.vcf").string()),
        m_files(m_folder.Text()),
        m_registry(m_folder.Path() / "registry.db"),
        m_store(m_files, m_registry) {
    std::ofstream file(m_file, std::ios::binary);
    for (int i = 0; i < kContacts; ++i) {
      file << Person(i);
    }
    file.close();
    const auto contacts = Open();
    for (std::uint32_t i = 0; i < kTags; ++i) {
      std::int32_t oid = 0;
      const bool hasOid =
          contacts->GetItem(static_cast<std::int32_t>(i) * 10 + 1).contact->GetOid(oid);
      const bool isWritten = m_store.WriteEntry(storage::TagNameOfTickCount(100'000 + i), oid,
                                                u"Mobile") == platform::RegistryError::kNone;
      if (!hasOid || !isWritten) {
        std::abort();
      }
    }
  }

  [[nodiscard]] const std::string& GetFile() const { return m_file; }

  [[nodiscard]] std::unique_ptr<vcard::AddressBooks> Open() {
    vcard::AddressBooks::Options options;
    options.choice = vcard::SourceChoice{text::FromHostName(m_file)};
    options.oidsInUse = [this] { return tags::FindOidsInUse(m_registry, m_store); };
    auto contacts = std::make_unique<vcard::AddressBooks>(m_files, m_registry, options);
    if (!contacts->Initialize() || !contacts->Connect() || !contacts->Logon()) {
      std::abort();
    }
    return contacts;
  }

  /// What the tag list shows for every tag; the number of tags that have a contact.
  [[nodiscard]] std::size_t ReadTags(platform::ContactsStore& contacts) const {
    std::size_t found = 0;
    std::u16string name;
    const auto names = m_store.OpenNames();
    for (std::uint32_t i = 0; names->Get(i, name); ++i) {
      storage::TagEntry entry;
      std::unique_ptr<platform::Contact> contact;
      if (m_store.ReadEntry(name, entry) == platform::RegistryError::kNone && entry.oid &&
          contacts.GetItemFromOid(*entry.oid, contact) == platform::ContactLookup::kFound) {
        benchmark::DoNotOptimize(tags::ReadForTagList(*contact, entry.phoneType));
        ++found;
      }
    }
    return found;
  }

 private:
  support::TempFolder m_folder;
  std::string m_file;
  posix::PosixFileSystem m_files;
  sqlite::SqliteRegistry m_registry;
  storage::TagStore m_store;
};

Device& TheDevice() {
  static Device device;
  return device;
}

/// The whole of opening the page: log on, list a thousand contacts, read those of a hundred tags.
void LoadHundredTags(benchmark::State& state) {
  Device& device = TheDevice();
  for (auto _ : state) {
    const auto contacts = device.Open();
    NoView view;
    tags::ContactPicker picker(*contacts, view);
    if (!picker.Load() || picker.GetContacts().GetCount() != kContacts ||
        device.ReadTags(*contacts) != kTags) {
      state.SkipWithError("not all contacts or tags were found");
    }
  }
}
BENCHMARK(LoadHundredTags)->Unit(benchmark::kMillisecond);

std::string ReadWhole(const std::string& name) {
  std::ostringstream content;
  content << std::ifstream(name, std::ios::binary).rdbuf();
  return content.str();
}

/// The library's own contacts and their fields, without numbers or a list.
void LibraryContacts(benchmark::State& state) {
  constexpr EContactField kFields[] = {
      E_CONTACT_GIVEN_NAME,      E_CONTACT_FAMILY_NAME,    E_CONTACT_ORG,
      E_CONTACT_PHONE_CAR,       E_CONTACT_PHONE_RADIO,    E_CONTACT_PHONE_MOBILE,
      E_CONTACT_PHONE_ASSISTANT, E_CONTACT_PHONE_BUSINESS, E_CONTACT_PHONE_BUSINESS_2,
      E_CONTACT_PHONE_HOME,      E_CONTACT_PHONE_HOME_2,   E_CONTACT_PHONE_HOME_FAX};
  constexpr std::string_view kEnd = "END:VCARD\r\n";
  for (auto _ : state) {
    const std::string content = ReadWhole(TheDevice().GetFile());
    for (std::size_t at = 0; at < content.size();) {
      const std::size_t end = content.find(kEnd, at) + kEnd.size();
      const ebook::ObjectPointer<EContact> contact(
          e_contact_new_from_vcard(content.substr(at, end - at).c_str()));
      for (const EContactField field : kFields) {
        benchmark::DoNotOptimize(e_contact_get_const(contact.get(), field));
      }
      at = end;
    }
  }
}
BENCHMARK(LibraryContacts)->Unit(benchmark::kMillisecond);

/// Nothing but reading the file.
void ReadTheFile(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadWhole(TheDevice().GetFile()));
  }
}
BENCHMARK(ReadTheFile)->Unit(benchmark::kMillisecond);

/// A thousand contacts from the real servers; the time that the user waits.
void LoadDesktopBook(benchmark::State& state) {
  if (std::getenv("VOXTREL_TEST_SESSION") == nullptr) {
    state.SkipWithError("only with tests/ebook/in_desktop_session.sh");
    return;
  }
  static const bool isFilled = [] {
    std::vector<std::string> people;
    for (int i = 0; i < kContacts; ++i) {
      people.push_back(Person(i));
    }
    ebook_test::DesktopBook().Add(people);
    return true;
  }();
  benchmark::DoNotOptimize(isFilled);
  for (auto _ : state) {
    std::vector<vcard::Book> books;
    if (vcard::DesktopSource(ebook_test::LoadDesktopBooks).Read(books) !=
            vcard::ReadResult::kRead ||
        books.empty() || books[0].contacts.size() != kContacts) {
      state.SkipWithError("the address book was not read");
    }
  }
}
BENCHMARK(LoadDesktopBook)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
