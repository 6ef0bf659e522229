// A result that is written row by row, as things happen.
#ifndef CHNSW_ROW_STREAM_H
#define CHNSW_ROW_STREAM_H

#include <functional>
#include <vector>

#include "output/result_document.h"
#include "output/result_stream.h"

namespace chnsw_tool {

class row_stream {
 public:
  // Begins the document.
  row_stream(result_stream& results, const output_style& style, std::vector<column> columns);

  void add(std::vector<cell> cells);

  // Lets fill add rows, and ends the document also when it throws: what was written until then is a whole one.
  void fill(const std::function<void()>& fill);

 private:
  void end();

  result_stream& results_;
  output_style style_;
  std::vector<column> columns_;
  bool any_row_ = false;
};

} // namespace chnsw_tool

#endif
