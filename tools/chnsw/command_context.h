// What every command is given: where its result goes, in which form, and which switch is meant.
#ifndef CHNSW_COMMAND_CONTEXT_H
#define CHNSW_COMMAND_CONTEXT_H

#include <string>

#include "inspect/session/library_session.h"
#include "output/result_document.h"
#include "output/result_stream.h"

namespace chnsw_tool {

struct command_context {
  result_stream& results;
  output_style style;
  std::string switch_path; // empty when none was named

  // The switch that was named, or a usage error when none was.
  const std::string& named_switch() const;
  inspect::library_session open_session() const { return inspect::library_session(inspect::open_switch(named_switch())); }

  // The same for a command that needs a folder: reason says why a file will not do.
  const std::string& named_folder(const std::string& reason) const;

  void print(const result_document& document) const { results.write(render(document, style)); }
};

// The folder of the switch that a manager serves, or a usage error.
const std::string& managed_folder(const command_context& context);

// What several commands say.
inline constexpr char kChangesNeedFolder[] = "edit the file, or make a folder of it with chnsw create";
inline constexpr char kNothingToChange[] = "nothing to change: the switch holds these values already";

// A line on standard error, under the tool's name.
void notice(const std::string& text);

} // namespace chnsw_tool

#endif
