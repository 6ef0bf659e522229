#include "operation_call.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace chnsw_test {

// ---- outputs ----

outputs::outputs(std::vector<ficon_pmap_port_entry>& passed_numbering) : numbering(passed_numbering.data()) {
  memset(&entry, 0xEE, sizeof entry);
  memset(&info, 0xEE, sizeof info);
  pns.fill(0xEEEE);
  if_indexes.fill(0xEEEEEEEE);
}

outputs::~outputs() {
  if (pn_list != &pn) free(pn_list);
  if (pa_list != &pa) free(pa_list);
  if (if_list != &if_index) free(if_list);
  if (bound_list != &flag) free(bound_list);
}

namespace {

// Where the C library's standard output goes while a call runs. Assigning to stdout is allowed there, and costs no system
// call.
class printed_text {
 public:
  printed_text();
  ~printed_text();
  printed_text(const printed_text&) = delete;
  printed_text& operator=(const printed_text&) = delete;

  std::string text();

 private:
  char* text_ = nullptr;
  size_t size_ = 0;
  FILE* stream_;
  FILE* kept_;
};

printed_text::printed_text() : stream_(open_memstream(&text_, &size_)), kept_(stdout) {
  if (stream_ == nullptr) throw std::bad_alloc();
  stdout = stream_;
}

printed_text::~printed_text() {
  stdout = kept_;
  fclose(stream_);
  free(text_);
}

std::string printed_text::text() {
  fflush(stream_);
  return {text_, size_};
}

} // namespace

// ---- what a call is made with ----

operation_caller::operation_caller(compared_switch& both, comparison_report& report, compared* what)
    : switch_(both),
      report_(report),
      what_(what),
      library_numbering_(kNumberingEntries, {512, 512, {}}),
      model_numbering_(kNumberingEntries, {512, 512, {}}) {}

void operation_caller::draw(step& from) {
  of_library_.emplace(library_numbering_);
  of_model_.emplace(model_numbering_);
  drawn_ = {};
  drawn_.family = from.byte();
  switch_.disturb(from);
  drawn_.operation = from.byte();
  drawn_.number = draw_number_to_ask(from);
  drawn_.vsan = draw_vsan_to_ask(from);
  of_library_->vsan = of_model_->vsan = drawn_.vsan;
  const unsigned flags = from.byte();
  drawn_.with_vsan = (flags & 1) != 0;
  drawn_.fast = (flags & 2) != 0 ? 1 : 0;
  drawn_.pass_pn_to_if = (flags & 4) != 0;
  drawn_.pass_port_to_pn = (flags & 8) != 0;
  drawn_.skip_lag_check = (flags & 16) != 0 ? -1 : 0;
  drawn_.null_result = (flags & 0xE0) == 0x20 && drawn_.number % 2 == 1;
  drawn_.null_flag = (flags & 0xE0) == 0x40 && drawn_.number % 2 == 1;
  drawn_.index = draw_index_to_ask(from);
  drawn_.if_index = draw_interface(from);
  drawn_.slot = draw_slot(from);
  drawn_.port = draw_port(from);
  drawn_.pa_to_pn = switch_.pa_to_pn().data();
}

void operation_caller::change_numbering(step& from) {
  if (from.byte() % 2 == 0) { // what counts as default on a chassis with 10 slots, which nothing lays out
    for (int n = 0; n < 512; ++n) {
      model_numbering_[static_cast<size_t>(n)].pn = static_cast<uint16_t>(n % 64 < 48 ? n / 64 * 48 + n % 64 : 512);
    }
    for (int k = 0; k < 14; ++k) model_numbering_[static_cast<size_t>(1024 + k)].pn = static_cast<uint16_t>(240 + k);
    report_.tell("numbering: eight groups of 48");
  } else {
    const size_t place = from.byte() % 2 == 0 ? draw_index(from) : from.byte() * 2;
    model_numbering_[place].pn = draw_number_of_entry(from);
    report_.tell("numbering: entry %zu has number %d", place, model_numbering_[place].pn);
  }
  library_numbering_ = model_numbering_;
}

// ---- the call ----

// The model is asked first: it knows whether this is a call to make at all.
bool operation_caller::ask_model(const std::function<void()>& call) {
  switch_.watch_model(of_model_->vsan);
  const library_state before = switch_.model().state;
  try {
    call();
    return true;
  } catch (const undefined_call&) {
    switch_.model().state = before;
    if (what_ != nullptr) ++what_->undefined;
    report_.tell("  undefined, not called");
    return false;
  }
}

std::string operation_caller::ask_library(const std::function<void()>& call) {
  switch_.watch_library(of_library_->vsan);
  std::string printed;
  {
    printed_text output;
    errno = kErrorBefore;
    call();
    printed = output.text();
  }
  switch_.end_call();
  return printed;
}

// ---- what is compared ----

void operation_caller::compare_outputs() {
  const outputs& library = *of_library_;
  const outputs& model = *of_model_;
  report_.check("vsan", library.vsan, model.vsan);
  report_.check("pn", library.pn, model.pn);
  report_.check("pa", library.pa, model.pa);
  report_.check("if_index", library.if_index, model.if_index);
  report_.check("flag", library.flag, model.flag);
  report_.check("index", library.index, model.index);
  report_.check("count", library.count, model.count);
  report_.check("line card", library.line_card, model.line_card);
  report_.check("slot", library.slot, model.slot);
  report_.check("port", library.port, model.port);
  report_.check_list("entry", &library.entry, &model.entry, 1);
  report_.check_list("platform information", reinterpret_cast<const uint8_t*>(&library.info),
                     reinterpret_cast<const uint8_t*>(&model.info), sizeof model.info);
  report_.check_list("pns", library.pns.data(), model.pns.data(), kNumbers);
  report_.check_list("if_indexes", library.if_indexes.data(), model.if_indexes.data(), kNumbers);
  report_.check_list("numbering", library_numbering_.data(), model_numbering_.data(), kNumberingEntries);
  compare_lists();
}

void operation_caller::compare_lists() {
  report_.check("whether lists are written", of_library_->lists_are_written(), of_model_->lists_are_written());
  if (report_.differs() || !of_model_->lists_are_written()) return;
  const auto check_list = [&](const char* what, const auto* of_library, const auto* of_model) {
    report_.check(what, of_library == nullptr, of_model == nullptr);
    if (of_library != nullptr && of_model != nullptr) report_.check_list(what, of_library, of_model, of_model_->count);
  };
  check_list("list of numbers", of_library_->pn_list, of_model_->pn_list);
  check_list("list of addresses", of_library_->pa_list, of_model_->pa_list);
  check_list("list of interfaces", of_library_->if_list, of_model_->if_list);
  check_list("list of bound flags", of_library_->bound_list, of_model_->bound_list);
}

void operation_caller::compare_services(const std::string& printed) {
  const switch_services& services = switch_.services();
  report_.check_lines("calls", switch_.platform().all_calls(), services.log);
  if (printed != services.printed) report_.differ("standard output", printed, services.printed);
  // Also where nobody promises that it is cleared, since an answer of "none" need not store anything.
  const auto& queries = switch_.platform().lag_queries();
  for (size_t n = 0; n < queries.size() && n < services.lag_queries.size(); ++n) {
    report_.check("channel before it is asked for", queries[n].channel, services.lag_queries[n].channel);
  }
}

void operation_caller::compare_state() {
  const library_state& state = switch_.model().state;
  report_.check_table("ficon_pmap_port_to_vsan", ficon_pmap_port_to_vsan, state.port_to_vsan);
  report_.check_table("ficon_pmap_port_to_pn", ficon_pmap_port_to_pn, state.port_to_pn);
  report_.check_table("ficon_pmap_pa_to_pn", ficon_pmap_pa_to_pn, state.pa_to_pn);
  report_.check_table("ficon_pmap_pn_to_logif", ficon_pmap_pn_to_logif, state.pn_to_logif);
  report_.check_list("ficon_port_to_vsan_array", ficon_port_to_vsan_array, state.port_to_vsan_array.data(), 32);
  report_.check("MAX_FICON_PORTS", MAX_FICON_PORTS, state.max_ficon_ports);
  report_.check("fastpath_got_vsan_port", fastpath_got_vsan_port, state.fastpath_got_vsan_port);
  report_.check("libchnsw_pinfo", libchnsw_pinfo != nullptr, state.pinfo.has_value());
  if (libchnsw_pinfo != nullptr && state.pinfo) {
    report_.check_list("libchnsw_pinfo", reinterpret_cast<const uint8_t*>(libchnsw_pinfo),
                       reinterpret_cast<const uint8_t*>(&*state.pinfo), sizeof *libchnsw_pinfo);
  }
  report_.check("whether convert_fnptr stayed", convert_fnptr == converter_, true);
  report_.check("SECONDS_BTWN_EPOCHS", SECONDS_BTWN_EPOCHS, uint64_t{2208988800});
}

// ---- what was reached ----

namespace {

// What tells one text from another: "?" for every number, decimal or not.
std::string without_numbers(const std::string& text) {
  const auto is_digit = [&](size_t at) { return at < text.size() && isdigit(static_cast<unsigned char>(text[at])) != 0; };
  const auto is_hex = [&](size_t at) { return at < text.size() && isxdigit(static_cast<unsigned char>(text[at])) != 0; };
  std::string made;
  for (size_t at = 0; at < text.size();) {
    if (text.compare(at, 2, "0x") == 0) {
      for (at += 2; is_hex(at);) ++at;
    } else if (is_digit(at) || (text[at] == '-' && is_digit(at + 1))) {
      for (++at; is_digit(at);) ++at;
    } else {
      made += text[at++];
      continue;
    }
    made += '?';
  }
  return made;
}

} // namespace

void operation_caller::count(const char* name, uint32_t status) {
  if (what_ == nullptr) return;
  ++what_->calls;
  ++what_->status_of[name][status];
  const switch_services& services = switch_.services();
  for (const std::string& line : services.log) {
    if (line.compare(0, 17, "evtrc_hist_event(") != 0) continue;
    const size_t text = line.find('"') + 1;
    what_->texts.insert(without_numbers(line.substr(text, line.rfind('"') - text)));
  }
  for (size_t at = 0; (at = services.printed.find("Warning!", at)) != std::string::npos; ++at) {
    const std::string warning = services.printed.substr(at, services.printed.find(" for size", at) - at);
    what_->warnings.insert(warning.substr(warning.find('[')));
  }
}

} // namespace chnsw_test
