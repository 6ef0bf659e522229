#include "library_test.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <stdexcept>

void PrintTo(const ficon_pmap_port_entry& entry, std::ostream* stream) {
  *stream << "{pn " << entry.pn << ", pa " << entry.pa << ", vsans";
  for (const uint16_t vsan : entry.vsans) *stream << ' ' << vsan;
  *stream << '}';
}

namespace chnsw_test {
namespace {

template <class Value>
void release(Value*& pointer) {
  free(pointer);
  pointer = nullptr;
}

// Replaces a cached table by a copy of values.
template <class Value>
void cache(Value*& table, const Value* values, size_t count) {
  free(table);
  table = static_cast<Value*>(malloc(count * sizeof(Value)));
  if (table == nullptr) throw std::bad_alloc();
  std::copy(values, values + count, table);
}

// Standard output led into a temporary file, from construction until finish().
class captured_output {
 public:
  captured_output() : file_(tmpfile()), kept_(dup(STDOUT_FILENO)) {
    if (file_ == nullptr || kept_ < 0) throw std::runtime_error("cannot capture standard output");
    fflush(stdout);
    if (dup2(fileno(file_), STDOUT_FILENO) < 0) throw std::runtime_error("cannot capture standard output");
  }
  ~captured_output() {
    put_back();
    fclose(file_);
  }
  captured_output(const captured_output&) = delete;
  captured_output& operator=(const captured_output&) = delete;

  std::string finish() {
    put_back();
    std::string text;
    rewind(file_);
    for (int c = getc(file_); c != EOF; c = getc(file_)) text.push_back(static_cast<char>(c));
    return text;
  }

 private:
  void put_back() {
    if (kept_ < 0) return;
    fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
    kept_ = -1;
  }

  FILE* file_;
  int kept_;
};

} // namespace

std::string allocation_warning(int source_line, uint32_t size) {
  return "Warning! Malloc Failure in " + std::string(kWarningPath) + "[" + std::to_string(source_line) + "] for size " +
         std::to_string(size) + "\n";
}

std::string output_of(const std::function<void()>& call) {
  captured_output output;
  call();
  return output.finish();
}

port_map::port_map(programmable_platform& platform) : platform_(platform) {
  port_to_pn.fill(make_entry(FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER));
}

port_map& port_map::entry(size_t index, uint16_t pn, uint16_t pa, std::initializer_list<uint16_t> vsans, uint16_t current) {
  port_to_pn.at(index) = make_entry(pn, pa, vsans);
  port_to_vsan.at(index) = current;
  return install();
}

port_map& port_map::current_vsan(size_t index, uint16_t vsan) {
  port_to_vsan.at(index) = vsan;
  return install();
}

port_map& port_map::bind(size_t pn, uint32_t if_index) {
  pn_to_if.at(pn) = if_index;
  return install();
}

port_map& port_map::address(size_t pa, uint16_t pn) {
  pa_to_pn.at(pa) = pn;
  return install();
}

port_map& port_map::install() {
  platform_.set_element(2, 1, pa_to_pn.data(), pa_to_pn.size());
  platform_.set_element(2, 2, pn_to_if.data(), pn_to_if.size());
  platform_.set_element(2, 3, port_to_pn.data(), port_to_pn.size());
  platform_.set_element(2, 5, port_to_vsan.data(), port_to_vsan.size());
  return *this;
}

ficon_pmap_port_entry make_entry(uint16_t pn, uint16_t pa, std::initializer_list<uint16_t> vsans) {
  ficon_pmap_port_entry entry = {pn, pa, {}};
  if (vsans.size() > 8) throw std::out_of_range("an entry has eight VSAN slots");
  std::copy(vsans.begin(), vsans.end(), entry.vsans);
  return entry;
}

void make_library_fresh() {
  release(ficon_pmap_port_to_vsan);
  release(ficon_pmap_port_to_pn);
  release(ficon_pmap_pa_to_pn);
  release(ficon_pmap_pn_to_logif);
  release(libchnsw_pinfo);
  memset(ficon_port_to_vsan_array, 0, sizeof(ficon_port_to_vsan_array));
  MAX_FICON_PORTS = 0;
  fastpath_got_vsan_port = 0;
  convert_fnptr = nullptr;
}

LibraryTest::LibraryTest() {
  make_library_fresh();
  platform.reset();
}

LibraryTest::~LibraryTest() {
  make_library_fresh();
  platform.reset();
}

void LibraryTest::cache_map(int32_t got_vsan_port) {
  cache(ficon_pmap_port_to_pn, map.port_to_pn.data(), map.port_to_pn.size());
  cache(ficon_pmap_port_to_vsan, map.port_to_vsan.data(), map.port_to_vsan.size());
  cache(ficon_pmap_pa_to_pn, map.pa_to_pn.data(), map.pa_to_pn.size());
  cache(ficon_pmap_pn_to_logif, map.pn_to_if.data(), map.pn_to_if.size());
  fastpath_got_vsan_port = got_vsan_port;
}

} // namespace chnsw_test
