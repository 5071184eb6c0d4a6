#pragma once

#include <ostream>

// One row for each way in which phones and address books write a telephone line: the table of
// docs/contacts.md.

namespace vcard_test {

struct Row {
  const char* name;
  const char* lines;
  const char* numbers;
  const char* version = "3.0";
};

inline void PrintTo(const Row& row, std::ostream* stream) { *stream << row.name; }

inline constexpr Row kStandard[] = {
    {"Cell", "TEL;TYPE=CELL:1", "Mobile=1"},
    {"CellVoice", "TEL;TYPE=CELL,VOICE:1", "Mobile=1"},
    {"CellPreferredInOneList", "TEL;TYPE=CELL,PREF:1", "Mobile=1"},
    {"CellPreferredTwice", "TEL;TYPE=CELL;TYPE=PREF:1", "Mobile=1"},
    {"LowerCase", "tel;type=cell:1", "Mobile=1"},
    {"Car", "TEL;TYPE=CAR,VOICE:1", "Car=1"},
    {"WorkFirstAndSecond", "TEL;TYPE=WORK,VOICE:1\nTEL;TYPE=WORK,VOICE:2\nTEL;TYPE=WORK,VOICE:3",
     "Business=1; Business2=2"},
    {"HomeFirstAndSecond", "TEL;TYPE=HOME:1\nTEL;TYPE=HOME:2\nTEL;TYPE=HOME:3", "Home=1; Home2=2"},
    {"WorkFax", "TEL;TYPE=WORK,FAX:1", "BusinessFax=1"},
    {"HomeFax", "TEL;TYPE=HOME,FAX:1", "HomeFax=1"},
    {"FaxFirst", "TEL;TYPE=FAX;TYPE=HOME:1", "HomeFax=1"},
    {"WorkMobile", "TEL;TYPE=WORK,CELL:1", "Mobile=1"},
    {"WorkMobileBesideAMobile", "TEL;TYPE=CELL:1\nTEL;TYPE=WORK,CELL:2", "Mobile=1; Business=2"},
    {"HomeMobileBesideAMobile", "TEL;TYPE=CELL:1\nTEL;TYPE=HOME,CELL:2", "Mobile=1; Home=2"},
    {"SecondMobileIsPreferred", "TEL;TYPE=CELL:1\nTEL;TYPE=CELL,PREF:2", "Mobile=2; Home=1"},
    {"FurtherMobiles", "TEL;TYPE=CELL:1\nTEL;TYPE=CELL:2\nTEL;TYPE=CELL:3",
     "Mobile=1; Home=2; Home2=3"},
    {"FurtherMobilesTakeWhatTheOthersLeave",
     "TEL;CELL:1\nTEL;CELL:2\nTEL;CELL:6\nTEL;HOME:3\nTEL:4\nTEL;WORK:5",
     "Mobile=1; Business=5; Business2=2; Home=3; Home2=4"},
    {"PreferredWorkKeepsItsPlace", "TEL;TYPE=WORK:1\nTEL;TYPE=WORK,PREF:2",
     "Business=1; Business2=2"},
    {"NoVoice",
     "TEL;TYPE=PAGER:1\nTEL;TYPE=FAX:2\nTEL;TYPE=ISDN:3\nTEL;TYPE=MODEM:4\nTEL;TYPE=WORK,PAGER:5\n"
     "TEL;TYPE=TELEX:6\nTEL;TYPE=TTY:7\nTEL;TYPE=BBS:8",
     ""},
    {"WithoutAType", "TEL:1", "Mobile=1"},
    {"VoiceOnlyTakesWhatIsLeft", "TEL;TYPE=VOICE:1\nTEL;TYPE=CELL:2\nTEL;TYPE=HOME:3",
     "Mobile=2; Home=3; Home2=1"},
};

inline constexpr Row kEvolution[] = {
    {"Assistant", "TEL;TYPE=X-EVOLUTION-ASSISTANT;X-EVOLUTION-UI-SLOT=1:1", "Assistant=1"},
    {"AssistantQuoted", "TEL;TYPE=\"X-EVOLUTION-ASSISTANT\":1", "Assistant=1"},
    {"Radio", "TEL;TYPE=X-EVOLUTION-RADIO:1", "Radio=1"},
    {"CallbackAndCompanyTakeWhatIsLeft",
     "TEL;TYPE=X-EVOLUTION-CALLBACK:1\nTEL;TYPE=X-EVOLUTION-COMPANY:2", "Mobile=1; Home=2"},
    {"TextTelephone", "TEL;TYPE=X-EVOLUTION-TTYTDD:1", ""},
};

inline constexpr Row kOutlook[] = {
    {"Telephones",
     "TEL;WORK;VOICE:1\nTEL;HOME;VOICE:2\nTEL;CELL;VOICE:3\nTEL;CAR;VOICE:4\nTEL;WORK;FAX:5\n"
     "TEL;HOME;FAX:6\nTEL;PAGER;VOICE:7\nTEL;PREF;WORK;VOICE:8",
     "Car=4; Mobile=3; Business=1; Business2=8; BusinessFax=5; Home=2; HomeFax=6", "2.1"},
    {"Assistant", "X-MS-TEL;VOICE;ASSISTANT:1", "Assistant=1", "2.1"},
    {"Radio", "X-MS-TEL;VOICE;RADIO:1", "Radio=1", "2.1"},
    {"AssistantTyped", "X-MS-TEL;TYPE=ASSISTANT:1", "Assistant=1"},
    {"OtherExtensions", "X-MS-TEL;VOICE;CALLBACK:1\nX-MS-TEL;VOICE;COMPANY:2", "", "2.1"},
};

inline constexpr Row kApple[] = {
    {"IPhone", "TEL;type=IPHONE;type=CELL;type=VOICE;type=pref:1", "Mobile=1"},
    {"BuiltInLabels",
     "item1.TEL:1\nitem1.X-ABLabel:_$!<Mobile>!$_\nitem2.TEL:2\nitem2.X-ABLabel:_$!<Home>!$_\n"
     "item3.TEL:3\nitem3.X-ABLabel:_$!<Work>!$_\nitem4.TEL:4\nitem4.X-ABLabel:_$!<HomeFAX>!$_\n"
     "item5.TEL:5\nitem5.X-ABLabel:_$!<WorkFAX>!$_\nitem6.TEL:6\n"
     "item6.X-ABLabel:_$!<OtherFAX>!$_\nitem7.TEL:7\nitem7.X-ABLabel:_$!<Assistant>!$_\n"
     "item8.TEL:8\nitem8.X-ABLabel:_$!<Car>!$_\nitem9.TEL:9\nitem9.X-ABLabel:_$!<Radio>!$_",
     "Car=8; Radio=9; Mobile=1; Assistant=7; Business=3; BusinessFax=5; Home=2; HomeFax=4"},
    {"OwnLabels", "item1.TEL:1\nitem1.X-ABLabel:car\nitem2.TEL:2\nitem2.X-ABLabel:Work Fax",
     "Car=1; BusinessFax=2"},
    {"OtherWordsForTheMobile",
     "TEL:1\nitem1.TEL:2\nitem1.X-ABLabel:iPhone\nitem2.TEL:3\nitem2.X-ABLabel:Boat",
     "Mobile=2; Home=1; Home2=3"},
    {"CellularIsTheMobile", "TEL:1\nitem1.TEL:2\nitem1.X-ABLabel:Cellular", "Mobile=2; Home=1"},
    {"OtherWordsForWork",
     "item1.TEL:1\nitem1.X-ABLabel:Office\nitem2.TEL:2\nitem2.X-ABLabel:Business\n"
     "item3.TEL:3\nitem3.X-ABLabel:BusinessFax",
     "Business=1; Business2=2; BusinessFax=3"},
    {"LabelBeforeTheLine", "item1.X-ABLabel:_$!<Home>!$_\nitem1.TEL:1", "Home=1"},
    {"GroupsInOtherCase", "Item1.TEL:1\nitem1.X-ABLABEL:radio", "Radio=1"},
    {"LabelsThatSayMoreThanAKind",
     "item1.TEL:1\nitem1.X-ABLabel:Car Rental\nitem2.TEL:2\nitem2.X-ABLabel:Radio station",
     "Mobile=1; Home=2"},
    {"LabelsWithWordsThatSayNothing",
     "item1.TEL:1\nitem1.X-ABLabel:Mobile 2\nitem2.TEL:2\nitem2.X-ABLabel:Work phone\n"
     "item3.TEL:3\nitem3.X-ABLabel:Home (main number)",
     "Mobile=1; Business=2; Home=3"},
    {"UnknownLabelTakesWhatIsLeft", "item1.TEL:1\nitem1.X-ABLabel:Boat", "Mobile=1"},
    {"LabelWithoutAGroupMeansNothing", "TEL:1\nX-ABLabel:radio", "Mobile=1"},
    {"MainAndPager", "TEL;type=MAIN:1\nTEL;type=PAGER:2", "Mobile=1"},
    {"NoVoice",
     "TEL;type=textphone:1\nTEL;type=DATA:2\nitem1.TEL:3\nitem1.X-ABLabel:TDD\nTEL;type=MAIN:4",
     "Mobile=4"},
};

inline constexpr Row kAndroid[] = {
    {"Bare", "TEL;CELL:1\nTEL;HOME:2\nTEL;WORK:3\nTEL;WORK;FAX:4\nTEL;HOME;FAX:5",
     "Mobile=1; Business=3; BusinessFax=4; Home=2; HomeFax=5", "2.1"},
    {"CellPreferred", "TEL;CELL;PREF:1", "Mobile=1", "2.1"},
    {"ExtensionTypes", "TEL;X-Car:1\nTEL;X-Radio:2\nTEL;X-Assistant:3",
     "Car=1; Radio=2; Assistant=3", "2.1"},
    {"CustomLabel", "TEL;X-CUSTOM(Radio):1", "Radio=1", "2.1"},
    {"CustomLabelThatSaysMoreThanAKind", "TEL;X-CUSTOM(Car Rental):1", "Mobile=1", "2.1"},
    {"CustomLabelEncoded", "TEL;X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=43=61=72):1",
     "Car=1", "2.1"},
    {"CustomLabelOfItsOwn", "TEL;X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=E8=88=B9):1",
     "Mobile=1", "2.1"},
    {"CustomLabelWithAZero", "TEL;X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=43=00=61=72):1",
     "Car=1", "2.1"},
    {"CustomLabelOfTwoLines",
     "TEL;X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=0D=0AEND=3AVCARD=0D=0A):1\nTEL;X-Car:2",
     "Car=2; Mobile=1", "2.1"},
    {"WaitsAndPauses", "TEL;CELL:+15551234,,12;34", "Mobile=+15551234,,12;34", "2.1"},
};

inline constexpr Row kNokia[] = {
    {"Telephones",
     "TEL;PREF;CELL;VOICE:1\nTEL;VOICE;HOME:2\nTEL;VOICE;WORK:3\nTEL;FAX;WORK:4\nTEL;CAR;VOICE:5",
     "Car=5; Mobile=1; Business=3; BusinessFax=4; Home=2", "2.1"},
    {"EncodedNumber", "TEL;CELL;VOICE;ENCODING=QUOTED-PRINTABLE:=2B358=\n40=2D1", "Mobile=+35840-1",
     "2.1"},
};

inline constexpr Row kVersion4[] = {
    {"QuotedList", "TEL;TYPE=\"cell,voice\":1", "Mobile=1", "4.0"},
    {"QuotedWorkFax", "TEL;TYPE=\"work,fax\":1", "BusinessFax=1", "4.0"},
    {"Uri", "TEL;VALUE=uri;TYPE=cell:tel:+1-201-555-0123", "Mobile=+1-201-555-0123", "4.0"},
    {"UriWithExtension", "TEL;VALUE=uri;PREF=1;TYPE=\"voice,home\":tel:+1-555-555-5555;ext=5555",
     "Home=+1-555-555-5555,5555", "4.0"},
    {"UriWithOtherParameters", "TEL;VALUE=uri;TYPE=home:tel:7042;phone-context=example.org;EXT=%39",
     "Home=7042,9", "4.0"},
    {"UriWithoutANumber", "TEL;VALUE=uri;TYPE=home:tel:;ext=5", "", "4.0"},
    {"UriInCapitals", "TEL;VALUE=URI;TYPE=home:TEL:123", "Home=123", "4.0"},
    {"UriWithPercents", "TEL;VALUE=uri;TYPE=home:tel:%2B1%20555", "Home=+1 555", "4.0"},
    {"UriWithoutTheParameter", "TEL;TYPE=home:tel:123", "Home=123", "4.0"},
    {"UriOfAnotherKind", "TEL;VALUE=uri;TYPE=home:sip:ann@example.org", "", "4.0"},
    {"UriOfAnotherKindQuoted", "TEL;VALUE=\"uri\";TYPE=home:sip:ann@example.org", "", "4.0"},
    {"PreferenceIsANumber", "TEL;TYPE=cell:1\nTEL;PREF=1;TYPE=cell:2", "Mobile=2; Home=1", "4.0"},
    {"PreferencesHaveAnOrder",
     "TEL;PREF=3;TYPE=cell:1\nTEL;PREF=1;TYPE=cell:2\nTEL;PREF=2;TYPE=cell:3",
     "Mobile=2; Home=3; Home2=1", "4.0"},
    {"PreferencesOrderBothPlacesOfAKind", "TEL;TYPE=work:1\nTEL;PREF=1;TYPE=work:2",
     "Business=2; Business2=1", "4.0"},
    {"PreferencesThatAreNone", "TEL;TYPE=cell:1\nTEL;PREF=101;TYPE=cell:2\nTEL;PREF=x;TYPE=cell:3",
     "Mobile=2; Home=3; Home2=1", "4.0"},
};

inline constexpr Row kNumbers[] = {
    {"BlanksAtTheEnds", "TEL;TYPE=CELL:  555 12 34  ", "Mobile=555 12 34"},
    {"Empty", "TEL;TYPE=CELL:\nTEL;TYPE=CELL:2", "Mobile=2"},
    {"WithAColon", "TEL;TYPE=CELL:ext: 5", "Mobile=ext: 5"},
    {"Escaped", "TEL;TYPE=CELL:555\\,1\\;2", "Mobile=555,1;2"},
    {"Folded", "TEL;TYPE=CELL:555\n 1234", "Mobile=5551234"},
};

}  // namespace vcard_test
