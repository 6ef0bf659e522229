/* What the bytes of a step stand for: switches, numbers, indexes, VSANs and interfaces, few enough that ports share them, and the
 * limits among them. */
#ifndef TESTS_PORT_MAP_MODEL_DRAWN_VALUES_H
#define TESTS_PORT_MAP_MODEL_DRAWN_VALUES_H

#include <cstddef>
#include <cstdint>

namespace chnsw_test {

// Bytes that are used up from the first to the last; zeros follow them.
class step {
 public:
  step(const uint8_t* data, size_t size);
  unsigned byte();
  template <class Value, size_t kCount>
  Value one_of(const Value (&values)[kCount]) {
    return values[byte() % kCount];
  }

 private:
  const uint8_t* data_;
  size_t size_;
};

struct chassis_kind {
  int num_slots;
  int32_t type;
};

// A byte each, an interface two.
chassis_kind draw_chassis(step& from);
int32_t draw_max_ficon_ports(step& from);
uint16_t draw_number_of_entry(step& from);
uint16_t draw_vsan_of_entry(step& from);
uint16_t draw_index(step& from);
uint32_t draw_interface(step& from);
int32_t draw_number_to_ask(step& from);
uint32_t draw_vsan_to_ask(step& from);
int32_t draw_index_to_ask(step& from);
uint8_t draw_slot(step& from);
uint8_t draw_port(step& from);

// What draw_vsan_to_ask makes of a byte.
uint32_t vsan_to_ask(unsigned byte);

} // namespace chnsw_test

#endif
