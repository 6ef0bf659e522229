/* Memory types: from id to name and back. */
#include <climits>

#include "library_test.h"

namespace {

using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::StrEq;

class MemoryTypeName : public chnsw_test::LibraryTest {};
class MemoryTypeId : public chnsw_test::LibraryTest {};

TEST_F(MemoryTypeName, IsFoundForEveryId) {
  EXPECT_THAT(__libchnsw_mem_type_t_find(0), StrEq("LIBCHNSW_MEM_vsaninstall"));
  EXPECT_THAT(__libchnsw_mem_type_t_find(1), StrEq("LIBCHNSW_MEM_ifindex"));
  EXPECT_THAT(__libchnsw_mem_type_t_find(2), StrEq("LIBCHNSW_MEM_papn"));
  EXPECT_THAT(__libchnsw_mem_type_t_find(3), StrEq("LIBCHNSW_MEM_pnif"));
  EXPECT_THAT(__libchnsw_mem_type_t_find(4), StrEq("LIBCHNSW_MEM_vsanlist"));
  EXPECT_THAT(__libchnsw_mem_type_t_find(5), StrEq("LIBCHNSW_MEM_portpn"));
}

TEST_F(MemoryTypeName, OfTheCountRowIsFoundToo) {
  EXPECT_THAT(__libchnsw_mem_type_t_find(6), StrEq("LIBCHNSW_MEM_TYPES_MAX"));
}

TEST_F(MemoryTypeName, IsNullAboveTheCountRow) {
  EXPECT_THAT(__libchnsw_mem_type_t_find(7), IsNull());
  EXPECT_THAT(__libchnsw_mem_type_t_find(8), IsNull());
  EXPECT_THAT(__libchnsw_mem_type_t_find(256), IsNull());
  EXPECT_THAT(__libchnsw_mem_type_t_find(INT_MAX), IsNull());
}

TEST_F(MemoryTypeName, IsNullForNegativeIds) {
  EXPECT_THAT(__libchnsw_mem_type_t_find(-1), IsNull());
  EXPECT_THAT(__libchnsw_mem_type_t_find(INT_MIN), IsNull());
}

TEST_F(MemoryTypeName, AsksNothingOfThePlatform) {
  for (int id = -1; id <= 7; ++id) __libchnsw_mem_type_t_find(id);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(MemoryTypeId, IsFoundForEveryName) {
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_vsaninstall"), 0);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_ifindex"), 1);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_papn"), 2);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_pnif"), 3);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_vsanlist"), 4);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_portpn"), 5);
}

TEST_F(MemoryTypeId, OfTheCountRowIsSix) {
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_TYPES_MAX"), 6);
}

TEST_F(MemoryTypeId, IsFoundInAnyCase) {
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LibChnsw_Mem_PNIF"), 3);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("libchnsw_mem_portpn"), 5);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_PAPN"), 2);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("libchnsw_mem_types_max"), 6);
}

// Oddity: 0 is the first type as well as "unknown".
TEST_F(MemoryTypeId, OfAnUnknownNameIsThatOfTheFirstType) {
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_nosuch"), 0);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("portpn"), 0);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum(""), 0);
}

TEST_F(MemoryTypeId, NeedsTheWholeName) {
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_portp"), 0);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum("LIBCHNSW_MEM_portpn2"), 0);
  EXPECT_EQ(__libchnsw_mem_type_t_str2enum(" LIBCHNSW_MEM_portpn"), 0);
}

} // namespace
