#include "output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "failure.h"

namespace mav_tool {

Output::Output(const std::string& path) : path_(path == "-" ? "" : path), file_(stdout) {
  if (path_.empty()) return;
  const size_t slash = path_.rfind('/');
  const std::string directory = slash == std::string::npos ? "" : path_.substr(0, slash + 1);
  const std::string name = slash == std::string::npos ? path_ : path_.substr(slash + 1);
  temporary_ = directory + "." + name + ".XXXXXX";
  const int fd = mkstemp(temporary_.data());
  if (fd < 0) throw Failure(path_, std::strerror(errno));
  file_ = fdopen(fd, "wb");
  if (file_ == nullptr) {
    const int error = errno;
    close(fd);
    unlink(temporary_.c_str());
    throw Failure(path_, std::strerror(error));
  }
}

Output::~Output() {
  if (temporary_.empty()) return;
  std::fclose(file_);
  unlink(temporary_.c_str());
}

void Output::Write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
    throw Failure(path_.empty() ? "<stdout>" : path_, std::strerror(errno));
}

void Output::Commit() {
  if (temporary_.empty()) {
    if (std::fflush(stdout) != 0) throw Failure("<stdout>", std::strerror(errno));
    return;
  }
  // New files get the permissions the user's umask gives, not mkstemp's 0600.
  const mode_t mask = umask(0);
  umask(mask);
  const bool written = std::fflush(file_) == 0 && fchmod(fileno(file_), 0666 & ~mask) == 0;
  const int error = errno;
  const bool closed = std::fclose(file_) == 0;
  file_ = nullptr;
  if (!written || !closed || std::rename(temporary_.c_str(), path_.c_str()) != 0) {
    const int failure = !written ? error : errno;
    unlink(temporary_.c_str());
    temporary_.clear();
    throw Failure(path_, std::strerror(failure));
  }
  temporary_.clear();
}

}  // namespace mav_tool
