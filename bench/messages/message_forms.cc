#include "message_forms.h"

#include <cstdlib>
#include <cstring>

void* bench::copy_of(const void* list, uint32_t size) {
  void* copy = std::malloc(size);
  std::memcpy(copy, list, size);
  return copy;
}
