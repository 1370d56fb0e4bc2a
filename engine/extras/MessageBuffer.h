#pragma once

#include <cstdint>
#include <vector>

namespace vt {

// Bytes taken off one connection and not yet read by the game. Its capacity
// is fixed at construction, so a peer can never make it grow; bytes are
// pulled from the socket only while there is room, which keeps the peer's
// flow going as soon as the game reads.
class MessageBuffer {
 public:
  explicit MessageBuffer(int capacity);

  // Moves what the socket has (at most the free room) into the buffer: the
  // number of bytes moved, or -1 with errno set. Without wait it never
  // blocks. An orderly close or a reset by the peer marks the end.
  int fill(int socket, bool wait);
  // Copies up to count bytes from the front; consume removes them.
  int copy(void* p_out, int count, bool consume);
  int size() const { return end - begin; }
  // The first four bytes as a host-order int; size() must be at least 4.
  std::int32_t frontInt() const;
  // True once the peer has hung up: nothing more will arrive.
  bool ended() const { return peer_gone; }

 private:
  // Moves the unread bytes to the front so the free room is in one piece.
  void compact();

  std::vector<char> bytes;
  int begin = 0;
  int end = 0;
  bool peer_gone = false;
};

}  // namespace vt
