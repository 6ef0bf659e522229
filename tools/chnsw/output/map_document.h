// The port map as a document.
#ifndef CHNSW_MAP_DOCUMENT_H
#define CHNSW_MAP_DOCUMENT_H

#include <cstdint>
#include <vector>

#include "inspect/session/library_session.h"
#include "output/result_document.h"

namespace chnsw_tool {

// A row for each of these port map indexes.
result_document map_document(const inspect::library_session& session, const std::vector<uint32_t>& indexes);

} // namespace chnsw_tool

#endif
