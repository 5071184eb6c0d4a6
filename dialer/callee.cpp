#include "dialer/callee.h"

#include <initializer_list>
#include <string_view>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "dialer/number.h"
#include "resources/calling_strings.h"
#include "storage/phone_types.h"

// Whatever cannot be found out leaves a callee that has a name to show and a fault that says why
// nobody is called. So no face needs a case of its own for contacts that are missing.
namespace dialer {
namespace {

std::string SayFilled(std::u16string_view english, std::u16string_view filling) {
  return text::Say(english, {text::ToUtf8(filling)});
}

/// Joins the parts of a name that are not empty. A part that cannot be read counts as empty: a name
/// with a gap is better than none.
std::u16string Join(std::initializer_list<platform::ContactText> parts) {
  std::u16string name;
  for (const platform::ContactText& part : parts) {
    if (part && !part->empty()) {
      name += (name.empty() ? u"" : u" ") + *part;
    }
  }
  return name;
}

void ReadNames(platform::Contact& contact, Callee& callee) {
  const auto first = contact.GetFirstName();
  const auto middle = contact.GetMiddleName();
  const auto last = contact.GetLastName();
  const std::u16string name = Join({first, middle, last});
  const std::u16string company = contact.GetCompanyName().value_or(std::u16string());
  if (!name.empty()) {
    callee.name = name;
    callee.listedName = Join({last, first, middle});
  } else if (!company.empty()) {
    callee.name = callee.listedName = company;
  }
}

/// Returns why the number cannot be called. Returns an empty text if it can be.
std::string ReadNumber(platform::Contact& contact, Callee& callee) {
  const std::u16string& kind = callee.candidate.phoneKind;
  const auto type = storage::FindPhoneType(kind);
  if (!type) {
    return SayFilled(resources::kTagNamesNoKind, {});
  }
  const auto number = contact.GetNumber(type->kind);
  if (!number) {
    return SayFilled(resources::kCalleeNotRead, {});
  }
  if (number->empty()) {
    return SayFilled(resources::kCalleeHasNoSuchNumber, kind);
  }
  callee.number = *number;
  const auto dialled = MakeNumber(*number);
  return dialled ? std::string() : Explain(dialled.error());
}

}  // namespace

Callee FindCallee(platform::ContactsStore* contacts, const Candidate& candidate) {
  Callee callee{.candidate = candidate, .name = {}};
  if (!candidate.oid) {
    callee.name = text::FromUtf8(SayFilled(resources::kTagOfNobody, candidate.tag));
    callee.listedName = callee.name;
    callee.fault = SayFilled(resources::kTagNamesNoContact, {});
    return callee;
  }
  const std::u16string oid = text::FromUtf8(std::to_string(*candidate.oid));
  // This stays if the contact cannot be read, or has neither a name nor a company.
  callee.name = callee.listedName = text::FromUtf8(SayFilled(resources::kUnknownContact, oid));
  const auto contact = contacts != nullptr ? contacts->GetItemFromOid(*candidate.oid)
                                           : platform::Failure(platform::ContactsError::kFailed);
  if (contact) {
    ReadNames(**contact, callee);
    callee.fault = ReadNumber(**contact, callee);
  } else {
    callee.fault =
        SayFilled(contact.error() == platform::ContactsError::kAbsent ? resources::kCalleeIsGone
                                                                      : resources::kCalleeNotRead,
                  {});
  }
  return callee;
}

}  // namespace dialer
