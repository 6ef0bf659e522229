// Columns of a result that say themselves what a record puts into them.
#ifndef CHNSW_RECORD_TABLE_H
#define CHNSW_RECORD_TABLE_H

#include <iterator>
#include <span>
#include <vector>

#include "output/result_document.h"

namespace chnsw_tool {

template <typename record>
struct record_column {
  column description;
  cell (*get)(const record&);
};

template <typename record>
std::vector<column> columns_of(std::span<const record_column<record>> rows) {
  std::vector<column> columns;
  for (const auto& row : rows) columns.push_back(row.description);
  return columns;
}

template <typename record>
std::vector<cell> cells_of(std::span<const record_column<record>> rows, const record& shown) {
  std::vector<cell> cells;
  for (const auto& row : rows) cells.push_back(row.get(shown));
  return cells;
}

template <typename record>
result_document document_of(std::span<const record_column<record>> rows, const std::vector<record>& shown) {
  result_document document{columns_of(rows), {}};
  for (const auto& one : shown) document.add(cells_of(rows, one));
  return document;
}

// Columns of one thing after those of another.
template <typename value>
void append(std::vector<value>& all, std::vector<value> more) {
  all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

} // namespace chnsw_tool

#endif
