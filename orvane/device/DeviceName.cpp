#include "orvane/device/DeviceName.h"

namespace orvane {
namespace {

struct Model {
  std::string_view identifier;
  DeviceName name;
};

// Promised: these models and no others. The names are sent to the service, which may not know others, so a
// later model is Unknown.
constexpr std::array<Model, 52> models = {{
    {"iPhone3,1", DeviceName::iPhone4},     {"iPhone3,2", DeviceName::iPhone4},
    {"iPhone3,3", DeviceName::iPhone4},     {"iPhone4,1", DeviceName::iPhone4S},
    {"iPhone4,2", DeviceName::iPhone4S},    {"iPhone4,3", DeviceName::iPhone4S},
    {"iPhone5,1", DeviceName::iPhone5},     {"iPhone5,2", DeviceName::iPhone5},
    {"iPhone5,3", DeviceName::iPhone5C},    {"iPhone5,4", DeviceName::iPhone5C},
    {"iPhone6,1", DeviceName::iPhone5S},    {"iPhone6,2", DeviceName::iPhone5S},
    {"iPhone7,2", DeviceName::iPhone6},     {"iPhone7,1", DeviceName::iPhone6Plus},
    {"iPhone8,1", DeviceName::iPhone6S},    {"iPhone8,2", DeviceName::iPhone6SPlus},
    {"iPad1,1", DeviceName::iPad1},         {"iPad2,1", DeviceName::iPad2},
    {"iPad2,2", DeviceName::iPad2},         {"iPad2,3", DeviceName::iPad2},
    {"iPad2,4", DeviceName::iPad2},         {"iPad3,1", DeviceName::iPad3},
    {"iPad3,2", DeviceName::iPad3},         {"iPad3,3", DeviceName::iPad3},
    {"iPad3,4", DeviceName::iPad4},         {"iPad3,5", DeviceName::iPad4},
    {"iPad3,6", DeviceName::iPad4},         {"iPad4,1", DeviceName::iPadAir},
    {"iPad4,2", DeviceName::iPadAir},       {"iPad4,3", DeviceName::iPadAir},
    {"iPad5,3", DeviceName::iPadAir2},      {"iPad5,4", DeviceName::iPadAir2},
    {"iPad2,5", DeviceName::iPadMini},      {"iPad2,6", DeviceName::iPadMini},
    {"iPad2,7", DeviceName::iPadMini},      {"iPad4,4", DeviceName::iPadMini2},
    {"iPad4,5", DeviceName::iPadMini2},     {"iPad4,6", DeviceName::iPadMini2},
    {"iPad4,7", DeviceName::iPadMini3},     {"iPad4,8", DeviceName::iPadMini3},
    {"iPad4,9", DeviceName::iPadMini3},     {"iPad5,1", DeviceName::iPadMini4},
    {"iPad5,2", DeviceName::iPadMini4},     {"iPad6,8", DeviceName::iPadPro},
    {"iPod1,1", DeviceName::iPodTouch1Gen}, {"iPod2,1", DeviceName::iPodTouch2Gen},
    {"iPod3,1", DeviceName::iPodTouch3Gen}, {"iPod4,1", DeviceName::iPodTouch4Gen},
    {"iPod5,1", DeviceName::iPodTouch5Gen}, {"iPod7,1", DeviceName::iPodTouch6Gen},
    {"i386", DeviceName::Simulator},        {"x86_64", DeviceName::Simulator},
}};

}  // namespace

DeviceName deviceNameForMachine(std::string_view identifier) noexcept {
  for (const Model& model : models) {
    if (model.identifier == identifier) return model.name;
  }
  return DeviceName::Unknown;
}

}  // namespace orvane
