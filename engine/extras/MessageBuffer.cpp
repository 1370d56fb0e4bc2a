#include "extras/MessageBuffer.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vt {

MessageBuffer::MessageBuffer(int capacity) : bytes(static_cast<std::size_t>(capacity)) {}

int MessageBuffer::fill(int socket, bool wait) {
  compact();
  const auto room = bytes.size() - static_cast<std::size_t>(end);
  if (peer_gone || room == 0) return 0;
  ssize_t received = 0;
  do {
    received = ::recv(socket, bytes.data() + end, room, wait ? 0 : MSG_DONTWAIT);
  } while (received < 0 && errno == EINTR);
  if (received > 0) {
    end += static_cast<int>(received);
    return static_cast<int>(received);
  }
  if (received == 0) {
    peer_gone = true;
    return 0;
  }
  if (errno == EAGAIN || errno == EWOULDBLOCK) return 0;
  // Nothing more can come from a socket in error; what is already here
  // stays readable.
  peer_gone = true;
  return -1;
}

int MessageBuffer::copy(void* p_out, int count, bool consume) {
  const int copied = std::clamp(count, 0, size());
  if (copied > 0) std::memcpy(p_out, bytes.data() + begin, static_cast<std::size_t>(copied));
  if (consume) begin += copied;
  if (begin == end) begin = end = 0;
  return copied;
}

std::int32_t MessageBuffer::frontInt() const {
  std::int32_t value = 0;
  std::memcpy(&value, bytes.data() + begin, sizeof(value));
  return value;
}

void MessageBuffer::compact() {
  if (begin == 0) return;
  std::memmove(bytes.data(), bytes.data() + begin, static_cast<std::size_t>(size()));
  end -= begin;
  begin = 0;
}

}  // namespace vt
