#include "output/row_stream.h"

#include <utility>

namespace chnsw_tool {

row_stream::row_stream(const command_context& context, std::vector<column> columns)
    : context_(context), columns_(std::move(columns)) {
  context_.results.write(stream_begin(columns_, context_.style));
}

void row_stream::add(std::vector<cell> cells) {
  context_.results.write(stream_row(columns_, {std::move(cells), {}, nullptr}, !any_row_, context_.style));
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
  context_.results.write(stream_end(any_row_, context_.style));
}

} // namespace chnsw_tool
