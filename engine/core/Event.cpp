#include "core/Event.h"

namespace vt {

const std::string UNDEFINED_EVENT = "vt-undefined";
const std::string STEP_EVENT = "vt-step";
const std::string OUT_EVENT = "vt-out";
const std::string COLLISION_EVENT = "vt-collision";
const std::string PATH_EVENT = "vt-path";
const std::string KEYBOARD_EVENT = "vt-keyboard";
const std::string MOUSE_EVENT = "vt-mouse";
const std::string VIEW_EVENT = "vt-view";
const std::string NETWORK_EVENT = "vt-network";
const std::string KEYBOARD_NETWORK_EVENT = "vt-keyboard-network";
const std::string MOUSE_NETWORK_EVENT = "vt-mouse-network";
const std::string CUSTOM_NETWORK_EVENT = "vt-custom-network";

}  // namespace vt
