// Network input within the frame: a client sends 10,000 messages of 64
// bytes over loopback while the network step runs once per frame at the
// default frame time; a receiving object reads each data event's message.
// Reports how many frames it took (the target is at most 10, so at least
// 1,000 messages a frame inside the 20 % network budget) and the step's cost.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
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

const int MESSAGES = 10000;
const int MESSAGE_BYTES = 64;
const int FRAME_TARGET = 10;
// Gives up on an iteration that takes far longer than the target.
const int FRAME_CAP = 100;

// A loopback client socket connected to the port, or -1.
int connectClient(const std::string& port) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) return fd;
  close(fd);
  return -1;
}

// Each message on its own send, as a client sending as it goes would.
void sendMessages(int fd) {
  char message[MESSAGE_BYTES];
  std::memset(message, 'm', sizeof(message));
  const std::int32_t size = MESSAGE_BYTES;
  std::memcpy(message, &size, sizeof(size));
  for (int i = 0; i < MESSAGES; i++) send(fd, message, sizeof(message), MSG_NOSIGNAL);
}

struct FrameRun {
  int frames = 0;
  int most_in_a_frame = 0;
  double step_us = 0;
  double worst_step_us = 0;
};

// Runs frames until every message has been read: network step, then sleep
// for the rest of the frame as the game loop does.
FrameRun runFrames(const int& received, int frame_time) {
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  FrameRun run;
  while (received < MESSAGES && run.frames < FRAME_CAP) {
    const vt::Clock clock;
    const int before = received;
    network_manager.processFrame(clock, vt::GameManager::networkBudget(frame_time));
    const double step = clock.split();
    run.step_us += step;
    run.worst_step_us = std::max(run.worst_step_us, step);
    run.most_in_a_frame = std::max(run.most_in_a_frame, received - before);
    run.frames++;
    const auto rest = static_cast<long>(frame_time) * 1000 - static_cast<long>(clock.split());
    if (rest > 0) std::this_thread::sleep_for(std::chrono::microseconds(rest));
  }
  return run;
}

// Lets the server notice that the client left, so the next iteration starts
// with no connection.
void drainClosedConnection(int frame_time) {
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  for (int i = 0; i < FRAME_CAP && network_manager.getNumConnections() > 0; i++) {
    network_manager.processFrame(vt::Clock(), vt::GameManager::networkBudget(frame_time));
  }
}

void BM_TenThousandMessages(benchmark::State& state) {
  vt::Harness harness;
  const std::string port = startServer(state, harness);
  if (port.empty()) return;
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  const int frame_time = vt::Config::getInstance().getFrameTime();
  int received = 0;
  std::vector<char> buffer(vt::MAX_MESSAGE_SIZE);
  new MessageReader([&](const vt::EventNetwork& event) {
    if (event.getLabel() != vt::NETWORK_DATA) return;
    if (network_manager.receive(event.getSocketIndex(), buffer.data(), event.getBytes()) ==
        MESSAGE_BYTES) {
      received++;
    }
  });
  FrameRun total;
  for (auto _ : state) {
    received = 0;
    const int fd = connectClient(port);
    std::thread sender(sendMessages, fd);
    const FrameRun run = runFrames(received, frame_time);
    sender.join();
    close(fd);
    drainClosedConnection(frame_time);
    if (received < MESSAGES) state.SkipWithError("messages lost");
    state.SetIterationTime(run.step_us / 1e6);
    total.frames = std::max(total.frames, run.frames);
    total.most_in_a_frame = std::max(total.most_in_a_frame, run.most_in_a_frame);
    total.worst_step_us = std::max(total.worst_step_us, run.worst_step_us);
    total.step_us += run.step_us;
  }
  const double budget_us = 0.2 * frame_time * 1000.0;
  const double us_per_message =
      total.step_us / (static_cast<double>(state.iterations()) * MESSAGES);
  state.counters["frames_worst"] = total.frames;
  state.counters["frame_target"] = FRAME_TARGET;
  state.counters["most_msgs_in_a_frame"] = total.most_in_a_frame;
  state.counters["worst_step_ms"] = total.worst_step_us / 1000.0;
  state.counters["budget_ms"] = budget_us / 1000.0;
  state.counters["us_per_msg"] = us_per_message;
  state.counters["msgs_per_budget"] = budget_us / us_per_message;
  if (total.frames > FRAME_TARGET) state.SkipWithError("more than 10 frames for 10,000 messages");
}

}  // namespace

BENCHMARK(BM_TenThousandMessages)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
