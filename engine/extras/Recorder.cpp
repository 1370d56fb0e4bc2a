#include "extras/Recorder.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/InputManager.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

const std::uint64_t FNV_OFFSET = 14695981039346656037ULL;
const std::uint64_t FNV_PRIME = 1099511628211ULL;

void hashBytes(std::uint64_t& hash, const void* p_bytes, std::size_t count) {
  const auto* p_byte = static_cast<const unsigned char*>(p_bytes);
  for (std::size_t i = 0; i < count; i++) {
    hash = (hash ^ p_byte[i]) * FNV_PRIME;
  }
}

void hashFloat(std::uint64_t& hash, float value) {
  // One zero: -0 and 0 place an object alike.
  if (value == 0) value = 0;
  hashBytes(hash, &value, sizeof(value));
}

std::string engineVersion() {
  char text[16];
  std::snprintf(text, sizeof(text), "%.2f", static_cast<double>(VANTOR_VERSION));
  return text;
}

bool isSet(const char* p_value) {
  return p_value != nullptr && *p_value != '\0';
}

}  // namespace

Recorder& Recorder::getInstance() {
  static Recorder recorder;
  return recorder;
}

int Recorder::startFromEnvironment() {
  // A replay that failed in an earlier session of this process does not
  // end this one.
  failure.clear();
  const char* p_record = std::getenv("VANTOR_RECORD");
  const char* p_replay = std::getenv("VANTOR_REPLAY");
  if (isSet(p_record) && isSet(p_replay)) {
    return failStart(LogManager::getInstance().writeLogText(
        "Recorder::startFromEnvironment(): Error! VANTOR_RECORD and VANTOR_REPLAY are both set."));
  }
  int result = 0;
  if (isSet(p_record)) result = startRecording(p_record);
  if (isSet(p_replay)) {
    const char* p_paced = std::getenv("VANTOR_REPLAY_PACED");
    result = startReplay(p_replay, p_paced != nullptr && std::strcmp(p_paced, "1") == 0);
  }
  from_environment = result == 0 && (isSet(p_record) || isSet(p_replay));
  return result;
}

bool Recorder::isIdle(const char* operation) {
  if (mode == OFF) return true;
  failStart(LogManager::getInstance().writeLogText(
      "Recorder::%s(): Error! A %s is already under way.", operation,
      mode == RECORDING ? "recording" : "replay"));
  return false;
}

int Recorder::failStart(std::string reason) {
  start_failure = std::move(reason);
  return -1;
}

void Recorder::reset() {
  mode = OFF;
  from_environment = false;
  paced = false;
  header_written = false;
  step = 0;
  has_pending = false;
  run_index = 0;
  failure.clear();
  if (out.is_open()) out.close();
  InputManager::getInstance().setReplaying(false);
}

int Recorder::startRecording(const std::string& new_file_name) {
  if (!isIdle("startRecording")) return -1;
  reset();
  out.open(new_file_name, std::ios::trunc);
  if (!out) {
    return failStart(LogManager::getInstance().writeLogText(
        "Recorder::startRecording(): Error! Cannot write '%s'.", new_file_name.c_str()));
  }
  file_name = new_file_name;
  mode = RECORDING;
  first_id = Object::peekNextId();
  // Started after the engine: the random numbers start over from the
  // game's seed, so that the recording can be replayed from its first step.
  if (GameManager::getInstance().isStarted())
    std::srand(seed == -1 ? 1 : static_cast<unsigned>(seed));
  LogManager::getInstance().writeLog("Recorder::startRecording(): recording into '%s'.",
                                     file_name.c_str());
  return 0;
}

int Recorder::startReplay(const std::string& new_file_name, bool at_recorded_pace) {
  LogManager& log_manager = LogManager::getInstance();
  if (!isIdle("startReplay")) return -1;
  reset();
  std::ifstream in(new_file_name);
  if (!in) {
    return failStart(log_manager.writeLogText("Recorder::startReplay(): Error! Cannot open '%s'.",
                                              new_file_name.c_str()));
  }
  Recording new_recording;
  const std::string error = new_recording.read(in);
  if (!error.empty()) {
    return failStart(log_manager.writeLogText(
        "Recorder::startReplay(): Error! '%s' is not a usable recording: %s", new_file_name.c_str(),
        error.c_str()));
  }
  const RecordingHeader& header = new_recording.getHeader();
  if (header.engine_version != engineVersion()) {
    log_manager.writeLog(
        "Recorder::startReplay(): Warning! '%s' was recorded by engine %s, this is %s.",
        new_file_name.c_str(), header.engine_version.c_str(), engineVersion().c_str());
  }
  GameManager& game_manager = GameManager::getInstance();
  if (game_manager.isStarted()) {
    const DisplayManager& display_manager = DisplayManager::getInstance();
    if (header.frame_time != game_manager.getFrameTime() ||
        header.columns != display_manager.getHorizontal() ||
        header.rows != display_manager.getVertical()) {
      return failStart(log_manager.writeLogText(
          "Recorder::startReplay(): Error! '%s' was recorded at %d ms on %dx%d cells; this game "
          "runs at %d ms on %dx%d.",
          new_file_name.c_str(), header.frame_time, header.columns, header.rows,
          game_manager.getFrameTime(), display_manager.getHorizontal(),
          display_manager.getVertical()));
    }
    std::srand(header.seed == -1 ? 1 : static_cast<unsigned>(header.seed));
  } else {
    Config& config = Config::getInstance();
    config.setFrameTime(header.frame_time);
    config.setWindowHorizontalChars(header.columns);
    config.setWindowVerticalChars(header.rows);
  }
  recording = std::move(new_recording);
  file_name = new_file_name;
  mode = REPLAYING;
  paced = at_recorded_pace;
  first_id = Object::peekNextId();
  InputManager::getInstance().setReplaying(true);
  log_manager.writeLog("Recorder::startReplay(): replaying %d steps of '%s' %s.",
                       recording.getEndStep(), file_name.c_str(),
                       paced ? "at the recorded pace" : "as fast as the loop runs");
  return 0;
}

long long Recorder::chooseSeed(long long configured_seed) {
  seed = mode == REPLAYING ? recording.getHeader().seed : configured_seed;
  return seed;
}

void Recorder::writeHeader() {
  RecordingHeader header;
  header.engine_version = engineVersion();
  header.frame_time = GameManager::getInstance().getFrameTime();
  header.columns = DisplayManager::getInstance().getHorizontal();
  header.rows = DisplayManager::getInstance().getVertical();
  header.seed = seed;
  header.hash_every = HASH_EVERY;
  out << Recording::formatHeader(header);
  header_written = true;
}

void Recorder::beginStep() {
  if (mode == RECORDING && !header_written) writeHeader();
  if (mode != REPLAYING || hasFailed()) return;
  if (step >= recording.getEndStep()) {
    fail("the recording ends here, the game goes on");
    return;
  }
  const StepRecord* p_record = currentRecord();
  if (p_record == nullptr) return;
  InputManager& input_manager = InputManager::getInstance();
  for (const InputRecord& input : p_record->inputs) input_manager.feedInput(input);
}

const StepRecord* Recorder::currentRecord() {
  const std::vector<RecordingRun>& runs = recording.getRuns();
  while (run_index < runs.size() && runs[run_index].last < step) run_index++;
  if (run_index < runs.size() && runs[run_index].first <= step) return &runs[run_index].record;
  return nullptr;
}

int Recorder::getRecordedPathCalls() const {
  const std::vector<RecordingRun>& runs = recording.getRuns();
  if (mode != REPLAYING || run_index >= runs.size() || runs[run_index].first > step) return 0;
  return runs[run_index].record.path_calls;
}

void Recorder::endStep(int path_calls) {
  if (mode == RECORDING) recordStep(path_calls);
  if (mode == REPLAYING && !hasFailed()) {
    if (path_calls != getRecordedPathCalls()) {
      fail("path searches ran " + std::to_string(path_calls) + " turns, the recording " +
           std::to_string(getRecordedPathCalls()));
    } else {
      checkStep();
    }
  }
  if (mode == OFF) return;
  const int finished = step++;
  if (step_observer) step_observer(finished);
}

void Recorder::recordStep(int path_calls) {
  StepRecord record;
  record.inputs = InputManager::getInstance().getDeliveredInput();
  record.path_calls = path_calls;
  if ((step + 1) % HASH_EVERY == 0) {
    record.has_world = true;
    record.world_hash = worldHash(record.world_objects);
  }
  if (has_pending && pending.last == step - 1 && pending.record == record) {
    pending.last = step;
    return;
  }
  if (has_pending) out << Recording::formatRun(pending);
  has_pending = !record.isEmpty();
  pending = {step, step, std::move(record)};
}

void Recorder::checkStep() {
  const StepRecord* p_record = currentRecord();
  if (p_record == nullptr || !p_record->has_world) return;
  int objects = 0;
  const std::uint64_t hash = worldHash(objects);
  if (hash == p_record->world_hash && objects == p_record->world_objects) return;
  if (objects != p_record->world_objects) {
    fail("the world holds " + std::to_string(objects) + " objects, the recording " +
         std::to_string(p_record->world_objects));
  } else {
    fail("the world's " + std::to_string(objects) +
         " objects differ from the recording in type, position, velocity or frame");
  }
}

void Recorder::fail(const std::string& what) {
  failure = "step " + std::to_string(step) + ": " + what;
  LogManager::getInstance().writeLog("Recorder: Error! The replay of '%s' diverged at %s.",
                                     file_name.c_str(), failure.c_str());
  std::fprintf(stderr, "vantor: the replay of %s diverged at %s\n", file_name.c_str(),
               failure.c_str());
  GameManager::getInstance().setGameOver(true);
}

int Recorder::stop() {
  LogManager& log_manager = LogManager::getInstance();
  int result = 0;
  if (mode == RECORDING) {
    if (!header_written) writeHeader();
    if (has_pending) out << Recording::formatRun(pending);
    out << Recording::formatEnd(step);
    out.close();
    if (!out) {
      log_manager.writeLog("Recorder::stop(): Error! Cannot finish '%s'.", file_name.c_str());
      result = -1;
    } else {
      log_manager.writeLog(1, "Recorder::stop(): recorded %d steps into '%s'.", step,
                           file_name.c_str());
    }
  } else if (mode == REPLAYING) {
    if (!hasFailed() && step != recording.getEndStep()) {
      fail("the game ended, the recording goes on to step " +
           std::to_string(recording.getEndStep()));
    }
    if (!hasFailed()) {
      log_manager.writeLog(1, "Recorder::stop(): replayed %d steps of '%s' as recorded.", step,
                           file_name.c_str());
    }
    result = hasFailed() ? -1 : 0;
  }
  const std::string kept_failure = failure;
  reset();
  failure = kept_failure;
  return result;
}

std::uint64_t Recorder::worldHash(int& object_count) const {
  std::uint64_t hash = FNV_OFFSET;
  object_count = 0;
  for (const Object* p_object : WorldManager::getInstance().getAllObjects(true)) {
    // Counted from the first id of the session, so that a replay in a
    // process that made objects before matches its recording.
    const int id = p_object->getId() - first_id;
    hashBytes(hash, &id, sizeof(id));
    const std::string type = p_object->getType();
    hashBytes(hash, type.data(), type.size() + 1);
    for (const Vector& vector : {p_object->getPosition(), p_object->getVelocity()}) {
      hashFloat(hash, vector.getX());
      hashFloat(hash, vector.getY());
    }
    const int frame = p_object->getAnimation().getIndex();
    hashBytes(hash, &frame, sizeof(frame));
    object_count++;
  }
  return hash;
}

}  // namespace vt
