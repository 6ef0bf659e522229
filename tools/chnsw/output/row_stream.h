// A result that is written row by row, as things happen.
#ifndef CHNSW_ROW_STREAM_H
#define CHNSW_ROW_STREAM_H

#include <functional>
#include <vector>

#include "command_context.h"
#include "output/result_document.h"

namespace chnsw_tool {

class row_stream {
 public:
  row_stream(const command_context& context, std::vector<column> columns);

  void add(std::vector<cell> cells);

  // Lets fill add rows, and ends the document also when it throws: what was written until then is a whole one.
  void fill(const std::function<void()>& fill);

 private:
  void end();

  const command_context& context_;
  std::vector<column> columns_;
  bool any_row_ = false;
};

} // namespace chnsw_tool

#endif
