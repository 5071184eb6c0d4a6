#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/session/session.h"
#include "platform/file_system.h"
#include "storage/tag_trash.h"
#include "tags/page_one.h"
#include "voicemath/recording_review.h"
#include "voicemath/voice_mathematics.h"

namespace session {

/// Returns why a file was not made or written, in words that go on after its name and a colon.
[[nodiscard]] std::string ExplainFileError(platform::FileError error);

/// Returns why the file at `path` could not be opened to be read, in words that go on after its
/// name and a colon. Opens it once more to find out, for itself alone. So the words are those of
/// this moment.
[[nodiscard]] std::string ExplainUnread(platform::FileSystem& files, std::u16string_view path);

/// Returns why a page that recorded has no new tag. Returns an empty text if messages have said it.
[[nodiscard]] std::string ExplainNoTag(Session& session, const tags::Page_one& page);

/// Returns why a tag stays in the trash.
[[nodiscard]] std::string ExplainRestoreError(storage::RestoreError error);

/// The file cannot be opened, so there is no header to give a code for.
inline constexpr int kFileNotOpened = -1;

/// Checks the header of the wave file at `path`, which is left closed: a voicemath::HeaderCode, or
/// kFileNotOpened.
[[nodiscard]] int CheckHeader(voicemath::CVoiceMathematics& mathematics,
                              const std::u16string& path);

/// Returns a code of CheckHeader for the file at `path` in words for the user.
[[nodiscard]] std::string ExplainHeaderCode(platform::FileSystem& files, std::u16string_view path,
                                            int code);

/// Returns why nothing was played, in words and with `code`. The words say what the user should
/// look at. `code` is an audio::PlayCode other than kPlayed.
[[nodiscard]] std::string ExplainPlayCode(const Session& session, int code);

/// Returns why nothing was recorded, in words. `code` is an audio::RecordCode other than kRecorded.
/// Returns an empty text if a message box has said it all.
[[nodiscard]] std::string ExplainRecordCode(Session& session, int code);

/// Returns a sentence for each thing that is odd about a recording. What makes a recording useless
/// is not among them.
[[nodiscard]] std::vector<std::string> DescribeOddities(const voicemath::RecordingReview& review);

}  // namespace session
