// A fast peer: another process sends valid messages back to back over
// loopback, as fast as the socket takes them, then hangs up. The server runs
// the loop's network step once a frame at the default frame time (20 % of
// the frame for network input, then sleep for the rest), and an object reads
// each data event's message. Reports messages delivered per second, whether
// every one arrived whole and in order, and whether the close came after them.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "NetworkBench.h"
#include "core/Clock.h"
#include "core/Config.h"
#include "core/GameManager.h"
#include "extras/EventNetwork.h"
#include "extras/Harness.h"
#include "extras/NetworkManager.h"

namespace {

// Gives up on a run that stops making progress for this long.
const auto STALL_LIMIT = std::chrono::seconds(5);

// In the child: connects, sends count messages of size bytes, each carrying
// its number after the size, and exits.
[[noreturn]] void sendMessages(const std::string& port, int size, int count) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) _exit(1);
  std::vector<char> message(static_cast<std::size_t>(size), 'p');
  std::memcpy(message.data(), &size, sizeof(std::int32_t));
  for (std::int32_t i = 0; i < count; i++) {
    std::memcpy(message.data() + sizeof(std::int32_t), &i, sizeof(i));
    for (std::size_t sent = 0; sent < message.size();) {
      const ssize_t now = send(fd, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
      if (now <= 0) _exit(2);
      sent += static_cast<std::size_t>(now);
    }
  }
  close(fd);
  _exit(0);
}

// What the reading object saw in one run.
struct Reading {
  int delivered = 0;
  bool in_order = true;
  bool closed_after_all = false;
  bool closed = false;
};

MessageReader* makeReader(Reading& reading, int size, int count) {
  return new MessageReader(
      [&reading, size, count,
       message = std::vector<char>(vt::MAX_MESSAGE_SIZE)](const vt::EventNetwork& event) mutable {
        if (event.getLabel() == vt::NETWORK_CLOSE) {
          reading.closed = true;
          reading.closed_after_all = reading.delivered == count;
        }
        if (event.getLabel() != vt::NETWORK_DATA) return;
        const int received = vt::NetworkManager::getInstance().receive(
            event.getSocketIndex(), message.data(), event.getBytes());
        std::int32_t number = -1;
        std::memcpy(&number, message.data() + sizeof(std::int32_t), sizeof(number));
        reading.in_order = reading.in_order && received == size && number == reading.delivered;
        reading.delivered++;
      });
}

// Frames of the network step until the peer's close is seen or nothing has
// arrived for STALL_LIMIT; the frame count.
int runFrames(const Reading& reading, int frame_time) {
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  auto last_progress = std::chrono::steady_clock::now();
  int frames = 0;
  for (int seen = 0; !reading.closed; frames++) {
    const vt::Clock clock;
    network_manager.processFrame(clock, vt::GameManager::networkBudget(frame_time));
    if (reading.delivered > seen) last_progress = std::chrono::steady_clock::now();
    seen = reading.delivered;
    if (std::chrono::steady_clock::now() - last_progress > STALL_LIMIT) break;
    const auto rest = static_cast<long>(frame_time) * 1000 - static_cast<long>(clock.split());
    if (rest > 0) std::this_thread::sleep_for(std::chrono::microseconds(rest));
  }
  return frames;
}

void BM_FastPeer(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  const int count = static_cast<int>(state.range(1));
  vt::Harness harness;
  const std::string port = startServer(state, harness);
  if (port.empty()) return;
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  const int frame_time = vt::Config::getInstance().getFrameTime();
  double seconds = 0;
  bool all_in_order = true;
  int frames = 0;
  for (auto _ : state) {
    Reading reading;
    MessageReader* p_reader = makeReader(reading, size, count);
    const pid_t child = fork();
    if (child == 0) sendMessages(port, size, count);
    const auto start = std::chrono::steady_clock::now();
    frames += runFrames(reading, frame_time);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (network_manager.getNumConnections() > 0) network_manager.close(0);
    p_reader->unregisterInterest(vt::NETWORK_EVENT);
    seconds += elapsed.count();
    state.SetIterationTime(elapsed.count());
    all_in_order =
        all_in_order && reading.in_order && reading.delivered == count && reading.closed_after_all;
    if (!all_in_order) {
      state.SkipWithError(("delivered " + std::to_string(reading.delivered) + " of " +
                           std::to_string(count) + (reading.in_order ? "" : ", out of order") +
                           (reading.closed ? "" : ", close never seen"))
                              .c_str());
      break;
    }
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["msgs_per_s"] = runs * count / seconds;
  state.counters["MB_per_s"] = runs * count * size / seconds / 1e6;
  state.counters["frames"] = frames / runs;
  state.counters["msgs_per_frame"] = runs * count / frames;
  state.counters["all_in_order"] = all_in_order ? 1 : 0;
}

}  // namespace

BENCHMARK(BM_FastPeer)
    ->Args({vt::MAX_MESSAGE_SIZE, 3000})
    ->Args({1024, 100000})
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
