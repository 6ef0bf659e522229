// The library's exported variables, all of them.
//
// They stand alone because this file is compiled without link-time optimisation, which leaves their types out of the debug
// information that tests/libchnsw/abi reads.
#include <libchnsw.h>

ficon_platform_info* libchnsw_pinfo;

int32_t MAX_FICON_PORTS;
uint16_t* ficon_pmap_port_to_vsan;
ficon_pmap_port_entry* ficon_pmap_port_to_pn;
uint16_t* ficon_pmap_pa_to_pn;
uint32_t* ficon_pmap_pn_to_logif;
uint8_t ficon_port_to_vsan_array[32];
int32_t fastpath_got_vsan_port;

ficon_convert_fn convert_fnptr;

uint64_t SECONDS_BTWN_EPOCHS = 2208988800;
