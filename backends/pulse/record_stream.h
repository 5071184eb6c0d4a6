#pragma once

#include <pulse/sample.h>

#include <memory>
#include <string>

#include "backends/pulse/answer.h"
#include "backends/pulse/capture_buffer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/server_stream.h"

namespace pulse {

/// A running record stream from a source into a buffer. Does not outlive the connection
/// or the buffer.
class RecordStream {
 public:
  /// From the source of that name; the empty name is the server's default, which the user may have
  /// chosen for this program alone. Null where the server gives no stream before the deadline. The
  /// stream runs when this returns; it may be a while yet until its first data.
  [[nodiscard]] static std::unique_ptr<RecordStream> Open(Connection& connection,
                                                          const std::string& source,
                                                          CaptureBuffer& buffer,
                                                          const pa_sample_spec& sampleSpec,
                                                          Deadline deadline);

  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;
  ~RecordStream() = default;

  /// Waits until the source has delivered something, or went away, or the deadline is there.
  void WaitForFirstData(Deadline deadline);

 private:
  RecordStream(Connection& connection, CaptureBuffer& buffer);

  static void OnReadable(pa_stream* stream, std::size_t byteCount, void* self);

  CaptureBuffer& m_buffer;
  Answer<bool> m_delivered;
  ServerStream m_stream;
};

}  // namespace pulse
