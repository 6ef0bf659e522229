// SIGINT and SIGTERM, which end some commands in good order instead of killing them.
#ifndef CHNSW_INTERRUPTION_H
#define CHNSW_INTERRUPTION_H

namespace chnsw_tool {

// From its making on the two signals only make a descriptor readable.
class interruption {
 public:
  interruption();
  ~interruption();
  interruption(const interruption&) = delete;
  interruption& operator=(const interruption&) = delete;

  int descriptor() const { return descriptor_; }
  bool has_come() const; // stays true

 private:
  int descriptor_;
};

} // namespace chnsw_tool

#endif
