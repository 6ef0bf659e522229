// The benchmarks over the virtual switch, a function for each family.
#ifndef BENCH_PORT_MAP_VIRTUAL_SWITCH_BENCHMARKS_H
#define BENCH_PORT_MAP_VIRTUAL_SWITCH_BENCHMARKS_H

#include <functional>
#include <string>

namespace bench {

// The example map's switch, in memory and in a folder of its own that goes with this object.
class example_switch {
 public:
  example_switch();
  ~example_switch();
  example_switch(const example_switch&) = delete;
  example_switch& operator=(const example_switch&) = delete;

  // From now on the platform's services answer for it.
  static void use_in_memory();
  void use_in_folder() const;

 private:
  std::string folder_;
};

// Every translation that fetches, against a copy of what it fetches and a search of what it searches. where completes the names.
void add_fetching_translations(const std::string& where, const std::function<void()>& use_switch);

// The operations over many ports, against their plain forms.
void add_bulk_queries(const std::function<void()>& use_switch);

// The command line's process time for one question.
void add_single_question();

} // namespace bench

#endif
