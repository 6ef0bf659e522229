// What a program shares with the library, and what it does not. The program is compiled to hold the library's exported
// variables itself (copy relocations), and has an operation of the library's name.
#include <iterator>

#include "library_test.h"

extern "C" {
// Where the program's own data begins and ends, by the linker.
extern char __executable_start[];
extern char _end[];
}

namespace {

int calls_of_own_operation = 0;

} // namespace

// Hides the library's from the program, and from every other object of the process that asks for it by name.
int32_t ficon_cmi_get_max_portnumber(void) {
  ++calls_of_own_operation;
  return 1000;
}

namespace chnsw_test {
namespace {

class Interposition : public LibraryTest {
 protected:
  Interposition() { platform.set_chassis(6, 34); }
};

bool lies_in_program(const volatile void* address) {
  const auto place = reinterpret_cast<uintptr_t>(address);
  return place >= reinterpret_cast<uintptr_t>(__executable_start) && place < reinterpret_cast<uintptr_t>(_end);
}

TEST_F(Interposition, EveryExportedVariableLiesInTheProgram) {
  const volatile void* const variables[] = {&libchnsw_pinfo,           &MAX_FICON_PORTS,        &ficon_pmap_port_to_vsan,
                                            &ficon_pmap_port_to_pn,    &ficon_pmap_pa_to_pn,    &ficon_pmap_pn_to_logif,
                                            &ficon_port_to_vsan_array, &fastpath_got_vsan_port, &convert_fnptr,
                                            &SECONDS_BTWN_EPOCHS};
  for (size_t i = 0; i < std::size(variables); ++i) EXPECT_TRUE(lies_in_program(variables[i])) << i;
}

TEST_F(Interposition, TheProgramSeesWhatTheLibraryStores) {
  map.entry(7, 12, 13, {10}, 10).bind(12, fcip_interface(3)).address(13, 12).install();
  platform.set_element(FICON_ELEMDB_TABLE_PMAP, FICON_PMAP_ELEM_VSAN_ARRAY, std::vector<uint8_t>(32, 0x5A));
  ASSERT_EQ(ficon_pmap_prepare_fastpath(10), 0);
  ASSERT_EQ(ficon_get_pmap_papn(), 0);
  ficon_platform_info info;
  ASSERT_EQ(ficon_get_platform_info(&info), 0);

  EXPECT_EQ(MAX_FICON_PORTS, 254);
  EXPECT_EQ(ficon_pmap_port_to_pn[7].pn, 12);
  EXPECT_EQ(ficon_pmap_port_to_vsan[7], 10);
  EXPECT_EQ(ficon_pmap_pn_to_logif[12], fcip_interface(3));
  EXPECT_EQ(ficon_pmap_pa_to_pn[13], 12);
  EXPECT_EQ(ficon_port_to_vsan_array[31], 0x5A);
  EXPECT_EQ(fastpath_got_vsan_port, 1);
  ASSERT_NE(libchnsw_pinfo, nullptr);
  EXPECT_EQ(libchnsw_pinfo->num_slots, 6);
}

TEST_F(Interposition, TheLibrarySeesWhatTheProgramStores) {
  MAX_FICON_PORTS = 77;
  EXPECT_EQ(ficon_get_max_ficon_ports(), 77);

  convert_fnptr = platform_convert;
  char text[] = "AB";
  convert_codepage(CHAR_CONVERT_TO_HOST, 37, text, 2);
  EXPECT_EQ(platform.conversions().size(), 1u);
}

TEST_F(Interposition, InitialValuesAreTheLibrarys) {
  EXPECT_EQ(SECONDS_BTWN_EPOCHS, 2208988800u);
}

TEST_F(Interposition, TheLibrarysOwnCallsStayInside) {
  EXPECT_EQ(ficon_get_max_ficon_ports(), 254);
  EXPECT_EQ(calls_of_own_operation, 0);
  EXPECT_EQ(ficon_cmi_get_max_portnumber(), 1000);
  EXPECT_EQ(calls_of_own_operation, 1);
}

} // namespace
} // namespace chnsw_test
