#include "storage/device_paths.h"

#include <gtest/gtest.h>

namespace storage {

TEST(DevicePaths, ATagNamesItsRecordingAndItsTemplate) {
  EXPECT_EQ(WavePath(u"4711"),
            u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav\\4711.wav");
  EXPECT_EQ(TemplatePath(u"4711"),
            u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_stor\\4711.st");
}

TEST(DevicePaths, ATagNameThatBeginsWithAMinusIsTakenAsItStands) {
  EXPECT_EQ(WavePath(u"-5"), u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav\\-5.wav");
}

TEST(DevicePaths, ARecordingIsFoundUnderItsFileName) {
  EXPECT_EQ(PathIn(kWaveFolder, u"4711.WAV"),
            u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav\\4711.WAV");
}

TEST(DevicePaths, TheTagNameOfARecordingIsItsFileNameLessTheLastFourCharacters) {
  EXPECT_EQ(TagNameOfWaveFile(WavePath(u"4711")), u"4711");
  EXPECT_EQ(TagNameOfWaveFile(u"4711.WAV"), u"4711");
  EXPECT_EQ(TagNameOfWaveFile(u"\\folder.with.dots\\a.b.wav"), u"a.b");
}

TEST(DevicePaths, NothingIsLeftOfANameThatIsTooShort) {
  EXPECT_EQ(TagNameOfWaveFile(u".wav"), u"");
  EXPECT_EQ(TagNameOfWaveFile(u"wav"), u"");
  EXPECT_EQ(TagNameOfWaveFile(u"\\folder\\wav"), u"");
  EXPECT_EQ(TagNameOfWaveFile(u""), u"");
}

TEST(DevicePaths, TheTemplateOfARecordingHasItsTagsName) {
  EXPECT_EQ(TemplatePathOfWaveFile(WavePath(u"4711")), TemplatePath(u"4711"));
  EXPECT_EQ(TemplatePathOfWaveFile(u"4711.wav"), TemplatePath(u"4711"));
}

TEST(DevicePaths, ThePatternsSearchTheTwoFolders) {
  EXPECT_EQ(kWavePattern, std::u16string(kWaveFolder) + u"\\*.wav");
  EXPECT_EQ(kTemplatePattern, std::u16string(kTemplateFolder) + u"\\*.st");
}

TEST(DevicePaths, EachFolderStandsInTheOneBefore) {
  EXPECT_EQ(kMakerFolder, std::u16string(kProgramFilesFolder) + u"\\Zedra Tech.");
  EXPECT_EQ(kInstallFolder, std::u16string(kMakerFolder) + u"\\Zedra Voxtrel");
  EXPECT_EQ(kWaveFolder, std::u16string(kInstallFolder) + u"\\Voxtrel_wav");
  EXPECT_EQ(kTemplateFolder, std::u16string(kInstallFolder) + u"\\Voxtrel_stor");
  EXPECT_EQ(kLanguageFile, std::u16string(kInstallFolder) + u"\\Voxtrel.lng");
}

}  // namespace storage
