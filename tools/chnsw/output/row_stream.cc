#include "output/row_stream.h"

#include <utility>

namespace chnsw_tool {

row_stream::row_stream(result_stream& results, const output_style& style, std::vector<column> columns)
    : results_(results), style_(style), columns_(std::move(columns)) {
  results_.write(stream_begin(columns_, style_));
}

void row_stream::add(std::vector<cell> cells) {
  results_.write(stream_row(columns_, {std::move(cells), {}, nullptr}, !any_row_, style_));
  any_row_ = true;
}

void row_stream::fill(const std::function<void()>& fill) {
  try {
    fill();
  } catch (...) {
    end();
    throw;
  }
  end();
}

void row_stream::end() {
  results_.write(stream_end(any_row_, style_));
}

} // namespace chnsw_tool
