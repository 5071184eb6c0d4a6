// Loading the contacts, and the contacts of a hundred tags, next to the ways that suggest
// themselves. For the desktop's address books run it in a session of its own:
//   tests/backends/ebook/in_desktop_session.sh build/benchmark/benchmarks/contacts_benchmark

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

#include "backends/ebook/glib_pointers.h"
#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_ui.h"
#include "backends/posix/posix_file_system.h"
#include "backends/sqlite/sqlite_registry.h"
#include "backends/text/utf.h"
#include "backends/vcard/address_books.h"
#include "backends/vcard/contact_source.h"
#include "benchmarks/full_device.h"
#include "framework/dialog.h"
#include "resources/dialogs.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tags/contact_picker.h"
#include "tags/tag_reader.h"
#include "tests/backends/ebook/desktop_book.h"
#include "tests/support/temp_folder.h"

namespace {

using benchmarks::FullDevice;
using benchmarks::kContacts;
using benchmarks::kTags;
using benchmarks::Person;

FullDevice& TheDevice() {
  static FullDevice device;
  return device;
}

/// The whole of opening the page: log on, list a thousand contacts, read those of a hundred tags.
void LoadHundredTags(benchmark::State& state) {
  FullDevice& device = TheDevice();
  headless::HeadlessUi ui;
  for (auto _ : state) {
    const auto contacts = device.Open();
    framework::CDialog page(resources::kLearningDialog, ui);
    headless::HeadlessDialog window(resources::kLearningDialog, page, nullptr);
    tags::ContactPicker picker(*contacts, [](const tags::ContactMessage& /*message*/) {});
    if (!picker.Load(window) || picker.GetContacts().GetCount() != kContacts ||
        device.ReadTags(*contacts) != kTags) {
      state.SkipWithError("not all contacts or tags were found");
    }
  }
}
BENCHMARK(LoadHundredTags)->Unit(benchmark::kMillisecond);

/// A log-on that reads each card of so many.
void LogOn(benchmark::State& state) {
  FullDevice device(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(device.Open());
  }
}
BENCHMARK(LogOn)->Arg(1000)->Arg(5000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// The same, with the copy of the file that the log-on before has kept.
void LogOnAgain(benchmark::State& state) {
  FullDevice device(static_cast<int>(state.range(0)));
  support::TempFolder folder;
  posix::PosixFileSystem cache(folder.Text());
  while (!cache.Find(u"\\contacts")) {  // A file that is new is not kept.
    static_cast<void>(device.Open(&cache));
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(device.Open(&cache));
  }
}
BENCHMARK(LogOnAgain)
    ->Arg(1000)
    ->Arg(5000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

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
    state.SkipWithError("only with tests/backends/ebook/in_desktop_session.sh");
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
    vcard::RemarkList remarks;
    const auto books = vcard::DesktopSource(ebook_test::LoadDesktopBooks).Read(remarks);
    if (!books || books->empty() || books->front().contacts.size() != kContacts) {
      state.SkipWithError("the address book was not read");
    }
  }
}
BENCHMARK(LoadDesktopBook)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
