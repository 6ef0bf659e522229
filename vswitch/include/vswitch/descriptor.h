// File descriptors with an owner.
#ifndef VSWITCH_DESCRIPTOR_H
#define VSWITCH_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vswitch {

// A file descriptor, closed with its owner.
class descriptor {
 public:
  descriptor() = default;
  explicit descriptor(int number) : number_(number) {}
  ~descriptor() { reset(); }
  descriptor(descriptor&& other) noexcept : number_(other.release()) {}
  descriptor& operator=(descriptor&& other) noexcept {
    if (this != &other) {
      reset();
      number_ = other.release();
    }
    return *this;
  }

  bool open() const noexcept { return number_ >= 0; }
  int number() const noexcept { return number_; } // -1 when it is not open

  // From here on the caller closes it.
  int release() noexcept { return std::exchange(number_, -1); }

  // Closes it, and leaves errno alone.
  void reset() noexcept {
    if (!open()) return;
    const int error = errno;
    close(release());
    errno = error;
  }

 private:
  int number_ = -1;
};

} // namespace vswitch

#endif
