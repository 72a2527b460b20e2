#include "input.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

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
  if (!S_ISREG(status.st_mode)) {
    ReadAll(file.fd);
  } else {
    const uint64_t size = static_cast<uint64_t>(status.st_size);
    if (one_message && size > kMessageLimit)
      throw Failure(name_, SizeText(size) + " is over the 2 GiB limit of one message (records need --delimited)");
    Map(file.fd, size);
  }
  if (one_message && size_ > kMessageLimit)
    throw Failure(name_, SizeText(size_) + " is over the 2 GiB limit of one message (records need --delimited)");
}

Input::~Input() {
  if (mapping_ != nullptr) munmap(mapping_, size_);
}

void Input::Map(int fd, uint64_t size) {
  if (size == 0) return;
  mapping_ = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
  if (mapping_ == MAP_FAILED) {
    mapping_ = nullptr;
    return ReadAll(fd);
  }
  madvise(mapping_, size, MADV_SEQUENTIAL);
  data_ = static_cast<const char*>(mapping_);
  size_ = size;
}

void Input::ReadAll(int fd) {
  size_t used = 0;
  buffer_.resize(size_t{1} << 16);
  for (;;) {
    if (used == buffer_.size()) buffer_.resize(buffer_.size() * 2);
    const ssize_t got = read(fd, buffer_.data() + used, buffer_.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw Failure(name_, std::strerror(errno));
    if (got == 0) break;
    used += static_cast<size_t>(got);
  }
  buffer_.resize(used);
  data_ = buffer_.data();
  size_ = used;
}

}  // namespace mav_tool
