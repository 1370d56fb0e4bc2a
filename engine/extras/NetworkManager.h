#pragma once

#include <string>
#include <vector>

#include "core/Manager.h"
#include "extras/EventNetwork.h"
#include "extras/MessageBuffer.h"

namespace vt {

class Clock;

// The port servers listen on and clients connect to unless told otherwise.
inline const std::string DEFAULT_PORT = "9876";
// Every message begins with its size as a 32-bit int in host byte order; the
// size counts the whole message, these 4 bytes included.
const int MESSAGE_HEADER_SIZE = 4;
// The largest message a peer may announce, and the most bytes one send or
// receive handles; a buffer of this size holds any message.
const int MAX_MESSAGE_SIZE = 32768;

// TCP connections as a manager: listens as a server and accepts clients up
// to a limit, connects as a client, sends and receives raw bytes on numbered
// connections, and raises a "vt-network" event when a connection opens or
// closes and when a whole length-prefixed message is waiting. A connection's
// number is its index in the list of connections, stable until a close.
//
// Incoming bytes are moved off each socket into a buffer of the manager's
// own that holds one message of the largest size plus the next header, so
// the kernel never sits on a backlog waiting for a message to complete, and
// the peer's close is reported only after the messages it sent before it.
class NetworkManager : public Manager {
 public:
  static NetworkManager& getInstance();

  // The four network event types only.
  bool isValid(std::string event_type) const override;
  int startUp() override;
  // Closes connections with closeAll() and stops listening.
  void shutDown() override;

  // true: listens on all local addresses at the port (non-blocking);
  // false: stops listening. 0 on success, -1 on failure.
  int setServer(bool server, std::string port = DEFAULT_PORT);
  // Takes one waiting client: its index, -1 when none waits or the limit is
  // reached (the client is then dropped), -2 on error or when not a server.
  int accept();
  // Connects to a server, blocking: the new connection's index or -1.
  int connect(std::string host, std::string port = DEFAULT_PORT);
  // Most connections accept() takes. Connections made with connect() count
  // toward it, but connect() itself ignores it.
  void setMaxConnections(int new_max_connections);
  int getMaxConnections() const { return max_connections; }

  // Sends once; 0 when all bytes went out, else -1.
  int send(int sock_index, const void* buffer, int bytes);
  // Receives at most nbytes (0 to MAX_MESSAGE_SIZE) of what has arrived,
  // waiting only when nothing has; with peek the bytes stay queued. The
  // number of bytes received (0 once the peer has gone), or -1.
  int receive(int sock_index, void* buffer, int nbytes, bool peek = false);
  // Bytes waiting on the connection, read or not yet read off the socket,
  // or -1.
  int isData(int sock_index) const;
  bool isConnected(int sock_index) const;
  // Raises a close event for the connection, then removes it: every later
  // connection's index drops by one.
  int close(int sock_index);
  // Calls close(i) for i counting up while the list shrinks, which closes
  // only every other connection; the sum of the results.
  int closeAll();

  // Raises a data event when a whole message is waiting on the connection
  // (1), else returns 0; the message stays queued until an object receives
  // it. A connection whose peer hung up with no whole message left is
  // closed; one announcing a size outside MESSAGE_HEADER_SIZE to
  // MAX_MESSAGE_SIZE is closed too and gives -1, as does a failed read.
  int genDataEvents(int sock_index);
  // The game loop's network step: accepts one client when serving, then
  // makes passes of genDataEvents over every connection while a pass
  // delivers something, or takes in part of a message and more input comes
  // before the deadline, the budget (in microseconds, the loop gives 20 %
  // of the frame) past the clock's split. Returns the number of data events
  // raised.
  int processFrame(const Clock& clock, long long budget);

  int getNumConnections() const { return static_cast<int>(connections.size()); }
  bool isServer() const { return is_server; }
  // The port the server listens on (useful after asking for port "0"), or
  // "" when not listening.
  std::string getServerPort() const;

 private:
  struct Connection {
    int socket;
    MessageBuffer buffer;
  };

  NetworkManager();

  // Tops the connection's buffer up until it holds count bytes, as far as
  // the socket has them; -1 after logging a failed read.
  int fillTo(int sock_index, int count);
  int addConnection(int socket, NetworkEventLabel label);
  void stopListening();
  // One genDataEvents call per connection; how many raised a data event.
  int dataPass();
  // Waits at most this long for input on any connection; true if some came.
  bool awaitInput(long long microseconds) const;
  int closeIfHungUp(int sock_index);
  int refuseMessage(int sock_index, int size);

  int listen_socket = -1;
  std::vector<Connection> connections;
  int max_connections = 1;
  bool is_server = false;
  // Whether the current pass took bytes off any socket.
  bool bytes_arrived = false;
};

}  // namespace vt
