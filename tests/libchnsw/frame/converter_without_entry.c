/* A "libchar_convert.so" without the entry "convert". */
int converter(void);

int converter(void) {
  return 1;
}
