// With the real servers of a desktop, in a session of this test's own.

#include "backends/vcard/contact_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "backends/sqlite/sqlite_registry.h"
#include "backends/vcard/address_books.h"
#include "tests/backends/ebook/desktop_book.h"
#include "tests/backends/vcard/read_cards.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace vcard {
namespace {

using ebook_test::DesktopBook;

std::string Person(int number) {
  const std::string text = std::to_string(number);
  return WriteCard("UID:person-" + text + "\nN:Family" + text + ";Given;;;\nTEL;TYPE=CELL:555" +
                   text + "\nTEL;TYPE=WORK:666" + text);
}

std::vector<std::string> People(int count) {
  std::vector<std::string> people;
  for (int i = 0; i < count; ++i) {
    people.push_back(Person(i));
  }
  return people;
}

std::vector<Book> ReadAll() {
  RemarkList remarks;
  return DesktopSource(ebook_test::LoadDesktopBooks).Read(remarks).value();
}

TEST(DesktopSource, ReadsAThousandContactsInTheOrderOfTheirNames) {
  DesktopBook().Add(People(1000));
  const std::vector<Book> books = ReadAll();
  ASSERT_EQ(books.size(), 1U);
  const ContactPool& contacts = books[0].contacts;
  ASSERT_EQ(contacts.size(), 1000U);
  EXPECT_TRUE(books[0].isComplete);
  EXPECT_EQ(NamesOf(contacts[0]), "Family0|Given||");
  EXPECT_EQ(NamesOf(contacts[1]), "Family1|Given||");
  EXPECT_EQ(NamesOf(contacts[2]), "Family10|Given||");
  EXPECT_EQ(NamesOf(contacts[999]), "Family999|Given||");
  EXPECT_EQ(NumbersOf(contacts[999]), "Mobile=555999; Business=666999");
  EXPECT_EQ(contacts[999].uid, "person-999");
}

TEST(DesktopSource, AnEmptyBookIsReadAndMakesNobodyAbsent) {
  const std::vector<Book> books = ReadAll();
  ASSERT_EQ(books.size(), 1U);
  EXPECT_TRUE(books[0].contacts.empty());
  EXPECT_FALSE(books[0].isComplete);
}

TEST(DesktopSource, ReadsAllTenNumbersAsTheServerItselfWritesThem) {
  constexpr EContactField kFields[] = {E_CONTACT_PHONE_CAR,          E_CONTACT_PHONE_RADIO,
                                       E_CONTACT_PHONE_MOBILE,       E_CONTACT_PHONE_ASSISTANT,
                                       E_CONTACT_PHONE_BUSINESS,     E_CONTACT_PHONE_BUSINESS_2,
                                       E_CONTACT_PHONE_BUSINESS_FAX, E_CONTACT_PHONE_HOME,
                                       E_CONTACT_PHONE_HOME_2,       E_CONTACT_PHONE_HOME_FAX};
  DesktopBook().Add([&](EContact& contact) {
    for (std::size_t i = 0; i < std::size(kFields); ++i) {
      e_contact_set(&contact, kFields[i], std::to_string(i).c_str());
    }
    e_contact_set(&contact, E_CONTACT_FAMILY_NAME, "Lee");
    e_contact_set(&contact, E_CONTACT_ORG, "Acme");
  });
  const std::vector<Book> books = ReadAll();
  ASSERT_EQ(books.at(0).contacts.size(), 1U);
  EXPECT_EQ(NamesOf(books[0].contacts[0]), "Lee|||Acme");
  EXPECT_EQ(
      NumbersOf(books[0].contacts[0]),
      "Car=0; Radio=1; Mobile=2; Assistant=3; Business=4; Business2=5; BusinessFax=6; Home=7; "
      "Home2=8; HomeFax=9");
}

TEST(DesktopSource, ReadsEveryBookThatIsSwitchedOn) {
  DesktopBook().Add({Person(1)});
  DesktopBook other("second");
  other.Add({Person(2)});
  EXPECT_EQ(ReadAll().size(), 2U);
  other.SetEnabled(false);
  EXPECT_EQ(ReadAll().size(), 1U);
}

/// Takes the server's name on the bus and swallows every call.
class SilentServer {
 public:
  SilentServer() : m_bus(Connect()) {
    g_dbus_connection_add_filter(m_bus.get(), &Swallow, nullptr, nullptr);
    // Not through g_bus_own_name, which would answer for us.
    const auto reply = g_dbus_connection_call_sync(
        m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.gnome.evolution.dataserver.Sources5", 0), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    EXPECT_NE(reply, nullptr);
    g_variant_unref(reply);
  }

 private:
  /// A connection of its own, which gives the name back when it is closed.
  static GDBusConnection* Connect() {
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr), &g_free);
    constexpr auto kFlags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return g_dbus_connection_new_for_address_sync(address.get(), kFlags, nullptr, nullptr, nullptr);
  }

  static GDBusMessage* Swallow(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                               gpointer) {
    const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (isIncoming != FALSE && isCall) {
      g_object_unref(message);
      return nullptr;
    }
    return message;
  }

  ebook::ObjectPointer<GDBusConnection> m_bus;
};

TEST(DesktopSource, AServerThatDoesNotAnswerIsGivenUp) {
  const SilentServer server;
  RemarkList remarks;
  const ReadBooks books =
      DesktopSource(ebook_test::LoadDesktopBooks, std::chrono::milliseconds(300)).Read(remarks);
  ASSERT_FALSE(books);
  EXPECT_EQ(books.error().kind, platform::BooksError::Kind::kNoAnswer);
}

class DesktopContacts : public testing::Test {
 protected:
  bool Start() {
    AddressBooks::Options options;
    options.choice = SourceChoice{};
    options.desktop = &m_desktop;
    options.oidsInUse = [this] { return m_inUse; };
    m_registry = std::make_unique<sqlite::SqliteRegistry>(m_folder.Path() / "registry.db");
    m_store = std::make_unique<AddressBooks>(m_files, *m_registry, options);
    return m_store->Initialize() && m_store->Connect() && m_store->Logon();
  }

  std::int32_t Oid(std::int32_t index) { return (*m_store->GetItem(index))->GetOid().value(); }

  /// Why the contact cannot be found; nothing if it can.
  std::optional<platform::ContactsError> LookUp(std::int32_t oid) {
    return support::ErrorOf(m_store->GetItemFromOid(oid));
  }

  std::vector<std::int32_t> m_inUse;

 private:
  support::TempFolder m_folder;
  machine::MemoryFileSystem m_files;
  DesktopSource m_desktop{ebook_test::LoadDesktopBooks};
  std::unique_ptr<sqlite::SqliteRegistry> m_registry;
  std::unique_ptr<AddressBooks> m_store;
};

TEST_F(DesktopContacts, NumbersLastOverRestartsAndADeletedContactIsAbsent) {
  DesktopBook book;
  book.Add(People(1000));
  ASSERT_TRUE(Start());
  const std::int32_t first = Oid(1);
  const std::int32_t last = Oid(1000);
  m_inUse = {first, last};
  ASSERT_TRUE(Start());
  EXPECT_EQ(Oid(1), first);
  EXPECT_EQ(Oid(1000), last);
  book.Remove("person-999");
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(first), std::nullopt);
  EXPECT_EQ(LookUp(last), platform::ContactsError::kAbsent);
}

TEST_F(DesktopContacts, ABookThatIsSwitchedOffDoesNotMakeItsContactsAbsent) {
  DesktopBook().Add({Person(1)});
  DesktopBook other("second");
  other.Add({Person(2)});
  ASSERT_TRUE(Start());
  m_inUse = {Oid(1), Oid(2)};
  other.SetEnabled(false);
  EXPECT_FALSE(Start());
  other.SetEnabled(true);
  EXPECT_TRUE(Start());
}

}  // namespace
}  // namespace vcard
