// Text of mainframe hosts: the converter, which is loaded at run time, and the names of code pages.
#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include <libchnsw.h>
#include <platform/char_convert.h>

namespace {

// The line that field tools look for in the message, wherever the code stands today.
constexpr int kConverterLoadLine = 128;
constexpr int32_t kLongestField = 100;

struct codepage_row {
  uint32_t codepage;
  const char* name;
};

constexpr codepage_row kCodepages[] = {
    {FICON_CODEPAGE_ASCII, "ascii"},
    {37, "us-canada"},
    {273, "germany"},
    {275, "brazil"},
    {280, "italy"},
    {281, "japan"},
    {284, "spain-latinamerica"},
    {285, "uk"},
    {297, "france"},
    {500, "international-5"},
};

// The handle of the converter's object is never closed: its entry is in use until the process ends.
[[gnu::noinline]] ficon_convert_fn load_converter() {
  void* object = dlopen("libchar_convert.so", RTLD_LAZY);
  if (object == nullptr) {
    std::printf("%s(%d): Unable to open libchar_convert: %s\n", "ficon_get_convert_fn_ptr", kConverterLoadLine, dlerror());
    return nullptr;
  }
  convert_fnptr = reinterpret_cast<ficon_convert_fn>(dlsym(object, "convert"));
  if (convert_fnptr == nullptr) std::puts("unable to find convert_fnptr");
  return convert_fnptr;
}

ficon_convert_fn converter() {
  return convert_fnptr != nullptr ? convert_fnptr : load_converter();
}

} // namespace

ficon_convert_fn ficon_get_convert_fn_ptr() {
  return converter();
}

// Oddity: a field that is too long still has the converter loaded, and a negative length is not too long. Clients count on
// the load messages; what the converter makes of a negative length is its affair.
uint32_t convert_codepage(uint32_t mode, uint32_t codepage, char* buffer, int32_t length) {
  char scratch[kLongestField] = {};
  char* cursor = scratch;
  uint32_t counter = 0;
  uint32_t space = sizeof scratch;

  const ficon_convert_fn convert = converter();
  if (length > kLongestField) return FICON_RC_INVALID_ARG;
  if (convert == nullptr) {
    std::puts("unable to link to char_convert library");
    return FICON_RC_CONVERT;
  }
  if (convert(buffer, length, mode, &cursor, &counter, &space, codepage) == 0) return FICON_RC_CONVERT;
  // As many bytes as came in, whatever the converter wrote.
  if (length > 0) std::memcpy(buffer, scratch, static_cast<size_t>(length));
  return 0;
}

const char* ficon_get_codepage_name(uint32_t codepage) {
  for (const codepage_row& row : kCodepages) {
    if (row.codepage == codepage) return row.name;
  }
  return "unrecognized";
}
