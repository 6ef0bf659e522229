// The kinds of findings, and the checks that make them.
#include "inspect/port_map/map_findings.h"

#include <algorithm>

#include "inspect/enum_rows.h"
#include "inspect/port_map/map_check.h"

namespace inspect {

namespace {

struct kind_row {
  finding_kind kind;
  const char* name;
  bool note;
};

constexpr kind_row kKinds[] = {
    {finding_kind::ambiguous, "ambiguous", false},  {finding_kind::unreachable, "unreachable", false},
    {finding_kind::unbound, "unbound", false},      {finding_kind::incomplete, "incomplete", false},
    {finding_kind::mismatch, "mismatch", false},    {finding_kind::shared, "shared", true},
    {finding_kind::member, "member", true},         {finding_kind::reserved, "reserved", true},
    {finding_kind::unnumbered, "unnumbered", true},
};
static_assert(has_row_for_each(kKinds, &kind_row::kind, finding_kind::unnumbered));

const kind_row& row_of(finding_kind kind) {
  return kKinds[static_cast<size_t>(kind)];
}

} // namespace

const char* kind_name(finding_kind kind) {
  return row_of(kind).name;
}
bool is_note(finding_kind kind) {
  return row_of(kind).note;
}

std::vector<finding> find_in_map(const library_session& session) {
  const checked_map map = prepare_check(session);
  finding_list findings;
  check_entries(map, findings);
  check_numbers(map, findings);
  check_bindings(map, findings);
  check_address_table(map, findings);
  check_ports_without_place(map, findings);
  auto found = findings.take();
  std::stable_partition(found.begin(), found.end(), [](const finding& one) { return !is_note(one.kind); });
  return found;
}

} // namespace inspect
