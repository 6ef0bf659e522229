# The model of the port map and what compares the library with it, as sources: fuzzing instruments them too.
set(port_map_model_folders ${CMAKE_CURRENT_LIST_DIR}/model ${CMAKE_CURRENT_LIST_DIR}/comparison)
set(port_map_model_sources
    model/address_and_number.cc
    model/bulk_answers.cc
    model/interface_to_number.cc
    model/number_to_interface.cc
    model/numbering.cc
    model/reports.cc
    model/search.cc
    model/switch_services.cc
    model/tables.cc
    comparison/comparison_report.cc
    comparison/compared_switch.cc
    comparison/drawn_values.cc
    comparison/operation_call.cc
    comparison/operations.cc
    comparison/port_map_comparison.cc)
list(TRANSFORM port_map_model_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
