// Chassis files: a switch written down as TOML (docs/chassis-file.md).
#ifndef VSWITCH_CHASSIS_FILE_H
#define VSWITCH_CHASSIS_FILE_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/chassis_description.h"

namespace vswitch {

// One thing that is wrong in a file.
struct file_problem {
  std::string file;
  unsigned line = 0;   // from 1; 0 when the file as a whole is meant
  unsigned column = 0; // from 1
  std::string what;    // what was found, and what is allowed

  std::string text() const; // "director.toml:12:8: ..."
};

// A file that is not a chassis file: every problem found, in the order of the file.
class chassis_file_error : public std::runtime_error {
 public:
  explicit chassis_file_error(std::vector<file_problem> problems);
  const std::vector<file_problem>& problems() const { return problems_; }

 private:
  std::vector<file_problem> problems_;
};

// Where in the file a line card was described, for callers that know more about a chassis than the file does.
struct card_place {
  unsigned slot;
  unsigned line;
  unsigned column;
};

// Reads a whole file, or throws chassis_file_error. A "now" in it is the moment of reading (std::system_error when the
// host's clock cannot be read). name is what messages call it. places (may be null) receives where each
// line card stands.
chassis_description read_chassis_file(const std::string& path, std::vector<card_place>* places = nullptr);
chassis_description parse_chassis_text(std::string_view text, const std::string& name,
                                       std::vector<card_place>* places = nullptr);

// The same switch as TOML: reading it back gives an equal description.
std::string write_chassis_file(const chassis_description& chassis);

} // namespace vswitch

#endif
