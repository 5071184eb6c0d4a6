#include "backends/pulse/capture_buffer.h"

#include <algorithm>
#include <exception>

namespace pulse {

bool CaptureBuffer::Prepare(std::uint32_t capacity) {
  const std::lock_guard lock(m_mutex);
  m_started = false;
  m_capacity = 0;
  m_bytes.clear();
  try {
    m_bytes.reserve(capacity);
  } catch (const std::exception&) {
    return false;
  }
  m_capacity = capacity;
  return true;
}

void CaptureBuffer::Start() {
  const std::lock_guard lock(m_mutex);
  m_started = true;
}

void CaptureBuffer::Clear() {
  const std::lock_guard lock(m_mutex);
  m_started = false;
  m_capacity = 0;
  m_bytes = {};
}

std::uint32_t CaptureBuffer::CopyTo(std::span<std::byte> into) const {
  const std::lock_guard lock(m_mutex);
  const std::size_t count = std::min(m_bytes.size(), into.size());
  std::copy_n(m_bytes.begin(), count, into.begin());
  return static_cast<std::uint32_t>(count);
}

void CaptureBuffer::Append(std::span<const std::byte> bytes) {
  const std::lock_guard lock(m_mutex);
  const auto kept = bytes.first(Room(bytes.size()));
  m_bytes.insert(m_bytes.end(), kept.begin(), kept.end());
}

void CaptureBuffer::AppendSilence(std::size_t count) {
  const std::lock_guard lock(m_mutex);
  m_bytes.insert(m_bytes.end(), Room(count), std::byte{0});
}

void CaptureBuffer::Lose() {
  const std::lock_guard lock(m_mutex);
  m_lost = true;
}

bool CaptureBuffer::IsLost() const {
  const std::lock_guard lock(m_mutex);
  return m_lost;
}

std::size_t CaptureBuffer::Room(std::size_t count) const {
  return m_started ? std::min(count, m_capacity - m_bytes.size()) : 0;
}

}  // namespace pulse
