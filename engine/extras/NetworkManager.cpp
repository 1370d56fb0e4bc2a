#include "extras/NetworkManager.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "core/Clock.h"
#include "core/Config.h"
#include "core/LogManager.h"

namespace vt {

namespace {

const int LISTEN_BACKLOG = 5;
// The failure's line, then the error code and its text on a line of its own.
void logFailure(const char* line, int code, const char* reason) {
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog("%s", line);
  log_manager.writeLog("\t%d - %s", code, reason);
}

// For a failed system call: errno is read before anything can change it.
void logSystemError(const char* line) {
  const int code = errno;
  logFailure(line, code, std::strerror(code));
}

void warnIfNotNetworking(const char* operation) {
  if (Config::getInstance().getNetworking()) return;
  LogManager::getInstance().writeLog(
      1, "NetworkManager::%s(): Warning! Networking is not enabled in vt-config.txt.", operation);
}

// False, with a log line, for a count no single send or receive may handle.
bool countAllowed(const char* operation, int count) {
  if (count >= 0 && count <= MAX_MESSAGE_SIZE) return true;
  LogManager::getInstance().writeLog(
      "NetworkManager::%s(): Error! Cannot %s %d bytes (0 to %d allowed).", operation, operation,
      count, MAX_MESSAGE_SIZE);
  return false;
}

int failListening(int socket, const char* line) {
  logSystemError(line);
  ::close(socket);
  return -1;
}

// A non-blocking socket listening on all local addresses at the port, or -1.
int listeningSocket(const std::string& port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) {
    logSystemError("NetworkManager::setServer(): Error! socket() returned:");
    return -1;
  }
  // A restarted server may take the port while old connections linger.
  const int reuse = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(port.c_str())));
  if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) < 0) {
    return failListening(socket, "NetworkManager::setServer(): Error! bind() returned:");
  }
  if (listen(socket, LISTEN_BACKLOG) < 0) {
    return failListening(socket, "NetworkManager::setServer(): Error! listen() returned:");
  }
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  return socket;
}

// A connected socket for the resolved address, or -1.
int connectSocket(const addrinfo& address) {
  const int socket =
      ::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC, address.ai_protocol);
  if (socket < 0) {
    logSystemError("NetworkManager::connect(): Error! socket() returned:");
    return -1;
  }
  if (::connect(socket, address.ai_addr, address.ai_addrlen) < 0) {
    logSystemError("NetworkManager::connect(): Error! connect() returned:");
    ::close(socket);
    return -1;
  }
  return socket;
}

}  // namespace

NetworkManager::NetworkManager() {
  setType("NetworkManager");
}

NetworkManager& NetworkManager::getInstance() {
  static NetworkManager network_manager;
  return network_manager;
}

bool NetworkManager::isValid(std::string event_type) const {
  if (event_type == NETWORK_EVENT || event_type == KEYBOARD_NETWORK_EVENT ||
      event_type == MOUSE_NETWORK_EVENT || event_type == CUSTOM_NETWORK_EVENT) {
    return true;
  }
  LogManager::getInstance().writeLog(
      "NetworkManager::isValid(): Error! NetworkManager does not handle %s.", event_type.c_str());
  return false;
}

int NetworkManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  Manager::startUp();
  log_manager.writeLog("NetworkManager::startUp(): successfully started.");
  return 0;
}

void NetworkManager::shutDown() {
  closeAll();
  stopListening();
  Manager::shutDown();
  LogManager::getInstance().writeLog(5, "NetworkManager::shutDown(): successfully stopped.");
}

int NetworkManager::setServer(bool server, std::string port) {
  if (notStarted()) return -1;
  warnIfNotNetworking("setServer");
  if (!server) {
    stopListening();
    return 0;
  }
  if (is_server) return 0;
  listen_socket = listeningSocket(port);
  if (listen_socket < 0) return -1;
  is_server = true;
  LogManager::getInstance().writeLog(
      1, "NetworkManager::setServer(): Ready for connections on port %s.", port.c_str());
  return 0;
}

void NetworkManager::stopListening() {
  if (listen_socket >= 0) ::close(listen_socket);
  listen_socket = -1;
  is_server = false;
}

std::string NetworkManager::getServerPort() const {
  sockaddr_in address{};
  socklen_t length = sizeof(address);
  if (listen_socket < 0 ||
      getsockname(listen_socket, reinterpret_cast<sockaddr*>(&address), &length) < 0) {
    return "";
  }
  return std::to_string(ntohs(address.sin_port));
}

int NetworkManager::accept() {
  const LogManager& log_manager = LogManager::getInstance();
  if (listen_socket < 0) {
    log_manager.writeLog("NetworkManager::accept(): Error! Not setup as server.");
    return -2;
  }
  const int socket = accept4(listen_socket, nullptr, nullptr, SOCK_CLOEXEC);
  if (socket < 0) {
    if (errno != EAGAIN && errno != EWOULDBLOCK) {
      logSystemError("NetworkManager::accept(): Error! accept() returned:");
      return -2;
    }
    log_manager.writeLog(15, "NetworkManager::accept(): No new connection. Not blocking.");
    return -1;
  }
  if (getNumConnections() >= max_connections) {
    log_manager.writeLog(
        1, "NetworkManager::accept(): Warning! accept() connection, but at limit (%d).",
        max_connections);
    log_manager.writeLog(1, "\tUse NM.setMaxSockets() to change.");
    ::close(socket);
    return -1;
  }
  log_manager.writeLog(1, "NetworkManager::accept(): New connection.");
  return addConnection(socket, NETWORK_ACCEPT);
}

int NetworkManager::connect(std::string host, std::string port) {
  if (notStarted()) return -1;
  warnIfNotNetworking("connect");
  const LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(1, "NetworkManager::connect(): Connecting to %s, port %s.", host.c_str(),
                       port.c_str());
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* p_addresses = nullptr;
  const int code = getaddrinfo(host.c_str(), port.c_str(), &hints, &p_addresses);
  if (code != 0) {
    logFailure("NetworkManager::connect(): Error! getaddrinfo() returned:", code,
               gai_strerror(code));
    return -1;
  }
  const int socket = connectSocket(*p_addresses);
  freeaddrinfo(p_addresses);
  if (socket < 0) return -1;
  log_manager.writeLog(1, "NetworkManager::connect(): Connection established.");
  return addConnection(socket, NETWORK_CONNECT);
}

int NetworkManager::addConnection(int socket, NetworkEventLabel label) {
  connections.push_back({socket, MessageBuffer(MAX_MESSAGE_SIZE + MESSAGE_HEADER_SIZE)});
  const int sock_index = getNumConnections() - 1;
  const EventNetwork event(label, sock_index, 0);
  onEvent(&event);
  return sock_index;
}

void NetworkManager::setMaxConnections(int new_max_connections) {
  warnIfNotNetworking("setMaxConnections");
  max_connections = new_max_connections;
}

int NetworkManager::send(int sock_index, const void* buffer, int bytes) {
  const LogManager& log_manager = LogManager::getInstance();
  if (!isConnected(sock_index)) {
    log_manager.writeLog("NetworkManager::send(): Error! Socket %d not connected. Unable to send.",
                         sock_index);
    return -1;
  }
  if (!countAllowed("send", bytes)) return -1;
  log_manager.writeLog(15, "NetworkManager::send(): Calling send().");
  // No SIGPIPE when the peer has gone: the failure is reported instead.
  const ssize_t sent =
      ::send(connections[sock_index].socket, buffer, static_cast<std::size_t>(bytes), MSG_NOSIGNAL);
  if (sent < 0) {
    logSystemError("NetworkManager::send(): Error! send() returned:");
    return -1;
  }
  if (sent < bytes) {
    log_manager.writeLog("NetworkManager::send(): Warning! %d of %d bytes sent.",
                         static_cast<int>(sent), bytes);
    return -1;
  }
  return 0;
}

int NetworkManager::receive(int sock_index, void* buffer, int nbytes, bool peek) {
  if (!isConnected(sock_index)) {
    LogManager::getInstance().writeLog(
        "NetworkManager::receive(): Error! Socket %d not connected. Unable to receive.",
        sock_index);
    return -1;
  }
  if (!countAllowed("receive", nbytes)) return -1;
  Connection& connection = connections[sock_index];
  MessageBuffer& waiting = connection.buffer;
  // As a read on the socket would, this waits only when nothing has arrived.
  if (waiting.size() < nbytes && waiting.fill(connection.socket, waiting.size() == 0) < 0) {
    logSystemError("NetworkManager::receive(): Error! recv() returned:");
    return -1;
  }
  return waiting.copy(buffer, nbytes, !peek);
}

int NetworkManager::isData(int sock_index) const {
  if (!isConnected(sock_index)) {
    LogManager::getInstance().writeLog(
        "NetworkManager::isData(): Error! Sock index %d not connected.", sock_index);
    return -1;
  }
  int waiting = 0;
  if (ioctl(connections[sock_index].socket, FIONREAD, &waiting) < 0) {
    logSystemError("NetworkManager::isData(): Error! ioctl()/ioctlsocket() returned:");
    return -1;
  }
  return waiting + connections[sock_index].buffer.size();
}

bool NetworkManager::isConnected(int sock_index) const {
  return sock_index >= 0 && sock_index < getNumConnections() && connections[sock_index].socket >= 0;
}

int NetworkManager::close(int sock_index) {
  if (!isConnected(sock_index)) {
    LogManager::getInstance().writeLog("NetworkManager::close(): sock_index (%d) out of range.",
                                       sock_index);
    return -1;
  }
  const int socket = connections[sock_index].socket;
  // Marked closed while the close event is out, so that handlers neither use
  // nor close it again; its slot is removed after the event.
  connections[sock_index].socket = -1;
  // close() gives 0 or -1, never more: a failed close is left unreported.
  if (::close(socket) > 0) logSystemError("NetworkManager::close(): Error! close() returned:");
  const EventNetwork event(NETWORK_CLOSE, sock_index, 0);
  onEvent(&event);
  connections.erase(
      std::find_if(connections.begin(), connections.end(),
                   [](const Connection& connection) { return connection.socket < 0; }));
  return 0;
}

int NetworkManager::closeAll() {
  int result = 0;
  for (int i = 0; i < getNumConnections(); i++) result += close(i);
  return result;
}

int NetworkManager::genDataEvents(int sock_index) {
  if (!isConnected(sock_index)) return 0;
  if (fillTo(sock_index, MESSAGE_HEADER_SIZE) < 0) return -1;
  const MessageBuffer& waiting = connections[sock_index].buffer;
  if (waiting.size() < MESSAGE_HEADER_SIZE) return closeIfHungUp(sock_index);
  const std::int32_t size = waiting.frontInt();
  if (size < MESSAGE_HEADER_SIZE || size > MAX_MESSAGE_SIZE) return refuseMessage(sock_index, size);
  if (fillTo(sock_index, size) < 0) return -1;
  if (waiting.size() < size) return closeIfHungUp(sock_index);
  LogManager::getInstance().writeLog(
      15, "NetworkManager::genDataEvents(): have full message (%d bytes).", size);
  const EventNetwork event(NETWORK_DATA, sock_index, size);
  onEvent(&event);
  return 1;
}

int NetworkManager::fillTo(int sock_index, int count) {
  Connection& connection = connections[sock_index];
  if (connection.buffer.size() >= count) return 0;
  // A reset is a peer leaving like any other, not an error of ours.
  const int taken = connection.buffer.fill(connection.socket, false);
  bytes_arrived = bytes_arrived || taken > 0;
  if (taken >= 0 || errno == ECONNRESET) return 0;
  logSystemError("NetworkManager::genDataEvents(): Error! recv() returned:");
  return -1;
}

int NetworkManager::closeIfHungUp(int sock_index) {
  if (!connections[sock_index].buffer.ended()) return 0;
  LogManager::getInstance().writeLog(
      1, "NetworkManager::genDataEvents(): Peer left socket %d. Closing.", sock_index);
  close(sock_index);
  return 0;
}

int NetworkManager::refuseMessage(int sock_index, int size) {
  LogManager::getInstance().writeLog(
      "NetworkManager::genDataEvents(): Error! Message size %d not in range [%d,%d]. Closing "
      "socket %d.",
      size, MESSAGE_HEADER_SIZE, MAX_MESSAGE_SIZE, sock_index);
  close(sock_index);
  return -1;
}

int NetworkManager::processFrame(const Clock& clock, long long budget) {
  if (is_server) accept();
  const long long deadline = clock.split() + budget;
  int delivered = 0;
  int pass_delivered = 0;
  do {
    bytes_arrived = false;
    pass_delivered = dataPass();
    delivered += pass_delivered;
    // Bytes of a message still on its way: more of it is worth waiting for
    // while the budget lasts.
  } while ((pass_delivered > 0 || (bytes_arrived && awaitInput(deadline - clock.split()))) &&
           clock.split() < deadline);
  // A pass that still delivered only ends the repeat at the deadline.
  if (pass_delivered > 0) {
    LogManager::getInstance().writeLog("GameManager::run(): Warning! Residual network data.");
  }
  return delivered;
}

bool NetworkManager::awaitInput(long long microseconds) const {
  if (microseconds <= 0) return false;
  std::vector<pollfd> waiting;
  for (const Connection& connection : connections)
    waiting.push_back({connection.socket, POLLIN, 0});
  const timespec timeout{static_cast<time_t>(microseconds / 1000000),
                         static_cast<long>(microseconds % 1000000 * 1000)};
  return ppoll(waiting.data(), waiting.size(), &timeout, nullptr) > 0;
}

int NetworkManager::dataPass() {
  int delivered = 0;
  for (int i = 0; i < getNumConnections(); i++) {
    if (genDataEvents(i) > 0) delivered++;
  }
  return delivered;
}

}  // namespace vt
