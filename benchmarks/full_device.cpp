#include "benchmarks/full_device.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "backends/text/utf.h"
#include "maintenance/math_version.h"
#include "storage/device_paths.h"
#include "storage/tag_record.h"
#include "tags/contact_picker.h"
#include "tags/tag_reader.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace benchmarks {

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

FullDevice::FullDevice(int contacts)
    : m_file((m_folder.Path() / "all.vcf").string()),
      m_files(m_folder.Text()),
      m_registry(m_folder.Path() / "registry.db"),
      m_store(m_files, m_registry) {
  std::ofstream file(m_file, std::ios::binary);
  for (int i = 0; i < contacts; ++i) {
    file << Person(i);
  }
  file.close();
  const auto store = Open();
  for (std::uint32_t i = 0; i < kTags; ++i) {
    const auto contact = store->GetItem(static_cast<std::int32_t>(i) * 10 + 1);
    const auto oid = (*contact)->GetOid();
    if (!oid || !m_store.WriteEntry(storage::TagNameOfTickCount(100'000 + i), *oid, u"Mobile")) {
      std::abort();
    }
  }
  // Nothing is to be computed again when the page opens.
  static_cast<void>(maintenance::UpdateVersion(m_registry));
}

void FullDevice::Record(const std::filesystem::path& samples) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(samples)) {
    if (entry.path().extension() == ".wav") {
      files.push_back(entry.path());
    }
  }
  const auto onHost = [this](std::u16string_view path) {
    std::string name = text::ToUtf8(path.substr(1));
    std::ranges::replace(name, '\\', '/');
    return m_folder.Path() / name;
  };
  std::filesystem::create_directories(onHost(storage::kWaveFolder));
  std::filesystem::create_directories(onHost(storage::kTemplateFolder));
  headless::HeadlessUi ui;
  for (std::uint32_t i = 0; i < kTags; ++i) {
    const std::u16string tag = storage::TagNameOfTickCount(100'000 + i);
    voicemath::CVoiceMathematics mathematics(m_files, ui);
    mathematics.m_wavePath = storage::WavePath(tag);
    std::filesystem::copy_file(files.at(i % files.size()), onHost(mathematics.m_wavePath));
    if (mathematics.LearnFile(0) != voicemath::kLearned ||
        !voicemath::WriteTemplateFile(m_files, storage::TemplatePath(tag), mathematics)) {
      std::abort();
    }
  }
}

std::unique_ptr<vcard::AddressBooks> FullDevice::Open(platform::FileSystem* cache) {
  vcard::AddressBooks::Options options;
  options.choice = vcard::SourceChoice{text::FromHostName(m_file)};
  options.oidsInUse = [this] {
    const auto group = platform::RegistryGroup::BeginReading(m_registry);
    return tags::FindOidsInUse(m_store);
  };
  if (cache != nullptr) {
    options.openCache = [cache] { return cache; };
  }
  auto contacts = std::make_unique<vcard::AddressBooks>(m_files, m_registry, options);
  if (!contacts->Initialize() || !contacts->Connect() || !contacts->Logon()) {
    std::abort();
  }
  return contacts;
}

std::size_t FullDevice::ReadTags(platform::ContactsStore& contacts) const {
  std::size_t found = 0;
  const auto names = m_store.OpenNames();
  std::uint32_t index = 0;
  while (const auto name = names->Get(index++)) {
    const auto entry = m_store.ReadEntry(*name);
    if (!entry || !entry->oid) {
      continue;
    }
    const auto contact = contacts.GetItemFromOid(*entry->oid);
    const auto read = contact ? tags::ReadForTagList(**contact, entry->phoneType) : tags::TagText();
    found += read && !read->text.empty() ? 1U : 0U;
  }
  return found;
}

}  // namespace benchmarks
