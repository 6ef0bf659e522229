// Which calls of the library an answer is explained by.
#include "inspect/port_map/explanation.h"

#include "inspect/port_map/explained_calls.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

void add_physical_interface(const port_answer& answer, std::vector<explanation>& explanations) {
  if (answer.phyif_status) explanations.push_back(explain_index_to_physical_interface(*answer.index));
}

} // namespace

std::vector<explanation> explain_address(const library_session& session, const port_answer& answer,
                                         const search_options& options) {
  std::vector<explanation> explanations = {
      explain_search(session, {translation::pa_to_pn, *answer.pa, options.vsan}, options.fast)};
  if (answer.status != 0) return explanations;
  for (translation what : {translation::pn_to_if, translation::pn_to_phyif})
    explanations.push_back(explain_search(session, {what, *answer.pn, options.vsan}, options.fast));
  return explanations;
}

std::vector<explanation> explain_number(const library_session& session, const port_answer& answer,
                                        const search_options& options) {
  std::vector<explanation> explanations;
  for (translation what : {translation::pn_to_pa, translation::pn_to_if, translation::pn_to_phyif})
    explanations.push_back(explain_search(session, {what, *answer.pn, options.vsan}, options.fast));
  return explanations;
}

std::vector<explanation> explain_interface(const library_session& session, const port_answer& answer, bool skip_lag_check) {
  if (answer.unasked) return {};
  std::vector<explanation> explanations = {explain_interface_to_number(session, *answer.if_index, skip_lag_check)};
  add_physical_interface(answer, explanations);
  return explanations;
}

std::vector<explanation> explain_slot(const library_session& session, const port_answer& answer) {
  if (answer.unasked) return {};
  std::vector<explanation> explanations = {explain_slot_to_number(session, *vswitch::fc_port_of(*answer.if_index))};
  add_physical_interface(answer, explanations);
  return explanations;
}

std::vector<explanation> explain_index(const library_session& session, const port_answer& answer) {
  if (answer.unasked) return {};
  std::vector<explanation> explanations = {explain_index_to_interface(session, *answer.index)};
  add_physical_interface(answer, explanations);
  return explanations;
}

} // namespace inspect
