// Standard output, kept for results alone. Whatever else prints there, the library included, comes out on standard error.
#ifndef CHNSW_RESULT_STREAM_H
#define CHNSW_RESULT_STREAM_H

#include <initializer_list>
#include <string_view>

#include "vswitch/descriptor.h"

namespace chnsw_tool {

class result_stream {
 public:
  // Takes standard output over, once a process, before anything else is opened.
  result_stream();

  bool is_terminal() const;

  // Waits until one of the descriptors is readable or the time has passed; timeout_ms is -1 for no end. Throws as write does
  // when the reader goes away meanwhile.
  void wait(std::initializer_list<int> descriptors, int timeout_ms) const;

  // Throws inspect::error when not everything could be written; its message is empty when the reader has gone away.
  void write(std::string_view text);

 private:
  vswitch::descriptor fd_; // not open when the caller closed standard output
};

} // namespace chnsw_tool

#endif
