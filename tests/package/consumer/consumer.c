/* A client as one would write it: asks the switch that CHNSW_SWITCH names for the interface of an address in a VSAN,
 * and has a host's text converted. */
#include <libchnsw.h>
#include <stdio.h>

int main(void) {
  uint16_t pn = 0;
  uint32_t if_index = 0;
  char text[] = "\xC6\xC3\xF1"; /* of a host with code page 37 */
  uint32_t status;

  printf("ports %d\n", (int)ficon_get_max_ficon_ports());
  status = ficon_pmap_get_pa_vsan_to_pn(0x20, 10, &pn);
  printf("pn %u status %#x\n", (unsigned)pn, (unsigned)status);
  status = ficon_pmap_get_pa_vsan_to_if(0x20, 10, &if_index);
  printf("if_index %#x status %#x\n", (unsigned)if_index, (unsigned)status);
  status = convert_codepage(CHAR_CONVERT_FROM_HOST, 37, text, 3);
  printf("text %s status %#x\n", text, (unsigned)status);
  return 0;
}
