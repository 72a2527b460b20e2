#include "input.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "failure.h"

namespace mav_tool {
namespace {

std::string SizeText(uint64_t bytes) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f GiB", static_cast<double>(bytes) / (uint64_t{1} << 30));
  return text;
}

// Closes the descriptor it was given, unless it is standard input.
struct Descriptor {
  int fd;
  ~Descriptor() {
    if (fd > STDIN_FILENO) close(fd);
  }
};

}  // namespace

Input::Input(const std::string& path, bool one_message) : name_(DisplayName(path)) {
  Descriptor file{path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.fd < 0) throw Failure(name_, std::strerror(errno));
  struct stat status;
  if (fstat(file.fd, &status) != 0) throw Failure(name_, std::strerror(errno));
  if (S_ISDIR(status.st_mode)) throw Failure(name_, "is a directory, not a file");
  const uint64_t limit = one_message ? kMessageLimit : std::numeric_limits<uint64_t>::max();
  if (!S_ISREG(status.st_mode)) {
    // Reading stops one byte past the limit: that byte is enough to refuse.
    if (ReadAll(file.fd, limit + (one_message ? 1 : 0)) > limit)
      throw Failure(name_, "more than 2 GiB is over the limit of one message (records need --delimited)");
    return;
  }
  const auto size = static_cast<uint64_t>(status.st_size);
  if (size > limit)
    throw Failure(name_, SizeText(size) + " is over the 2 GiB limit of one message (records need --delimited)");
  Map(file.fd, size);
}

Input::~Input() {
  if (mapping_ != nullptr) munmap(mapping_, size_);
  std::free(buffer_);
}

void Input::Map(int fd, uint64_t size) {
  if (size == 0) return;
  mapping_ = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
  if (mapping_ == MAP_FAILED) {
    mapping_ = nullptr;
    ReadAll(fd, size);
    return;
  }
  madvise(mapping_, size, MADV_SEQUENTIAL);
  data_ = static_cast<const char*>(mapping_);
  size_ = size;
}

// Grown with realloc, which moves a large block by remapping its pages: a
// pipe read near the 2 GiB limit needs that much memory, not three halves.
uint64_t Input::ReadAll(int fd, uint64_t most) {
  size_t used = 0;
  size_t capacity = 0;
  while (used < most) {
    if (used == capacity) {
      capacity = static_cast<size_t>(std::min<uint64_t>(std::max<size_t>(capacity * 2, size_t{1} << 16), most));
      void* grown = std::realloc(buffer_, capacity);
      if (grown == nullptr) throw std::bad_alloc();
      buffer_ = static_cast<char*>(grown);
    }
    const ssize_t got = read(fd, buffer_ + used, capacity - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw Failure(name_, std::strerror(errno));
    if (got == 0) break;
    used += static_cast<size_t>(got);
  }
  if (buffer_ != nullptr) data_ = buffer_;
  size_ = used;
  return used;
}

}  // namespace mav_tool
