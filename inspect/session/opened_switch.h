// A switch as a file or a folder holds it.
#ifndef INSPECT_OPENED_SWITCH_H
#define INSPECT_OPENED_SWITCH_H

#include <string>

#include "vswitch/chassis_description.h"

namespace inspect {

// A chassis file, or a folder that holds a switch, as it was at one moment.
struct opened_switch {
  std::string path;
  bool is_folder = false;
  vswitch::chassis_description chassis;
};

bool is_folder(const std::string& path);

// Reads a switch. The line cards of a chassis file are checked by the library's slot numbering, in a session of its own: with
// a session open a chassis file is refused like a second session. Throws error.
opened_switch open_switch(const std::string& path);

} // namespace inspect

#endif
