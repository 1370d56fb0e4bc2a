#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

#include "media/InputRecord.h"

namespace vt {

// Everything a replay needs to know of one step of the loop: the outside
// input delivered in it, how many path-search turns ran, and every few
// steps a fingerprint of the world after drawing.
struct StepRecord {
  std::vector<InputRecord> inputs;
  int path_calls = 0;
  bool has_world = false;
  std::uint64_t world_hash = 0;
  int world_objects = 0;

  bool isEmpty() const { return inputs.empty() && path_calls == 0 && !has_world; }
  bool operator==(const StepRecord& other) const {
    return inputs == other.inputs && path_calls == other.path_calls &&
           has_world == other.has_world && world_hash == other.world_hash &&
           world_objects == other.world_objects;
  }
};

// The same record for every step from first to last.
struct RecordingRun {
  int first = 0;
  int last = 0;
  StepRecord record;
};

struct RecordingHeader {
  std::string engine_version;
  int frame_time = 0;
  int columns = 0;
  int rows = 0;
  // The seed the random numbers were seeded with; -1 when unseeded.
  long long seed = 0;
  int hash_every = 0;
};

// A recorded session as text: a header, then one line a step that had
// anything to record (a run of identical steps shares one line), then the
// step count. Steps not listed had nothing to record.
//
//   vantor-recording 1
//   engine 4.17
//   frame_time 33
//   grid 80 24
//   seed 1732481234
//   hash_every 30
//   96 press:P
//   97-340 down:D hold:left@40,20
//   120 down:D world:9f3a0c1d22e4b6a7/29
//   end 18000
class Recording {
 public:
  // Reads a whole recording; "" on success, else what is wrong and on
  // which line. What was read before stays only on success.
  std::string read(std::istream& in);

  const RecordingHeader& getHeader() const { return header; }
  const std::vector<RecordingRun>& getRuns() const { return runs; }
  int getEndStep() const { return end_step; }

  static std::string formatHeader(const RecordingHeader& header);
  static std::string formatRun(const RecordingRun& run);
  static std::string formatEnd(int end_step);

 private:
  RecordingHeader header;
  std::vector<RecordingRun> runs;
  int end_step = 0;
};

}  // namespace vt
