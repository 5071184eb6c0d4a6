#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/contacts_store.h"
#include "platform/file_system.h"
#include "platform/ui.h"
#include "platform/wave_devices.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_file_system.h"

// Each forwards every call to a back end, and calls its listener first.

/// Files whose searches and deletions are heard, "find ..." and "delete ...". Folders that are
/// refused can neither be found nor made.
class WatchedFiles final : public support::WatchedFileSystem {
 public:
  using Listener = std::function<void(const std::u16string&)>;
  using WatchedFileSystem::WatchedFileSystem;

  void SetListener(Listener listener) { m_listener = std::move(listener); }
  void Refuse(std::set<std::u16string_view> folders) { m_refused = std::move(folders); }

  [[nodiscard]] platform::Result<void, platform::FileError> Delete(
      std::u16string_view path) override {
    Tell(u"delete ", path);
    return WatchedFileSystem::Delete(path);
  }
  [[nodiscard]] platform::Result<void, platform::FileError> CreateFolder(
      std::u16string_view path) override {
    return m_refused.contains(path) ? platform::Failure(platform::FileError::kAccessDenied)
                                    : WatchedFileSystem::CreateFolder(path);
  }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    Tell(u"find ", pattern);
    if (m_refused.contains(pattern)) {
      return platform::Failure(platform::FileError::kNotFound);
    }
    return WatchedFileSystem::Find(pattern);
  }

 private:
  void Tell(std::u16string_view what, std::u16string_view path) {
    if (m_listener) {
      m_listener(std::u16string(what).append(path));
    }
  }

  Listener m_listener;
  std::set<std::u16string_view> m_refused;
};

/// Contacts of whose calls each kind is heard.
class WatchedContacts final : public platform::ContactsStore {
 public:
  using Opened = platform::Result<void, platform::ContactsError>;

  explicit WatchedContacts(platform::ContactsStore& inner) : m_inner(inner) {}

  void SetListener(std::function<void(std::string_view)> listener) {
    m_listener = std::move(listener);
  }

  [[nodiscard]] Opened Initialize() override {
    Tell("Initialize");
    return m_inner.Initialize();
  }
  [[nodiscard]] Opened Connect() override {
    Tell("Connect");
    return m_inner.Connect();
  }
  [[nodiscard]] Opened Logon() override {
    Tell("Logon");
    return m_inner.Logon();
  }
  [[nodiscard]] std::int32_t GetCount() override {
    Tell("GetCount");
    return m_inner.GetCount();
  }
  [[nodiscard]] platform::FoundContact GetItem(std::int32_t index) override {
    Tell("GetItem");
    return m_inner.GetItem(index);
  }
  [[nodiscard]] platform::FoundContact GetItemFromOid(std::int32_t oid) override {
    Tell("GetItemFromOid");
    return m_inner.GetItemFromOid(oid);
  }
  void Logoff() override { m_inner.Logoff(); }

 private:
  void Tell(std::string_view call) {
    if (m_listener) {
      m_listener(call);
    }
  }

  platform::ContactsStore& m_inner;
  std::function<void(std::string_view)> m_listener;
};

/// An output whose opening is heard.
class WatchedWaveOut final : public platform::WaveOut {
 public:
  explicit WatchedWaveOut(platform::WaveOut& inner) : m_inner(inner) {}

  void SetListener(std::function<void()> listener) { m_listener = std::move(listener); }

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override {
    if (m_listener) {
      m_listener();
    }
    return m_inner.Open(format);
  }

 private:
  platform::WaveOut& m_inner;
  std::function<void()> m_listener;
};

/// A user interface whose cursors are heard.
class WatchedUi final : public platform::Ui {
 public:
  explicit WatchedUi(platform::Ui& inner) : m_inner(inner) {}

  void SetListener(std::function<void(platform::Cursor)> listener) {
    m_listener = std::move(listener);
  }

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override {
    return m_inner.ShowMessage(box);
  }
  void Beep(platform::Sound sound) override { m_inner.Beep(sound); }
  void SetCursor(platform::Cursor cursor) override {
    if (m_listener) {
      m_listener(cursor);
    }
    m_inner.SetCursor(cursor);
  }
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override {
    return m_inner.RunDialog(dialog, handler);
  }
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override {
    return m_inner.RunSheet(caption, pages, handler);
  }

 private:
  platform::Ui& m_inner;
  std::function<void(platform::Cursor)> m_listener;
};
