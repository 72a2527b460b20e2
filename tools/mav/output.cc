#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "failure.h"

namespace mav_tool {

namespace {

std::string DirectoryOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// The file a path names once its symbolic links are followed, even where the
// last one points at a file that does not exist yet.
std::string FollowLinks(std::string path) {
  for (int hops = 0; hops < 40; ++hops) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
    std::string link(PATH_MAX, '\0');
    const ssize_t length = readlink(path.c_str(), link.data(), link.size());
    if (length < 0) return path;
    link.resize(static_cast<size_t>(length));
    path = link.front() == '/' ? link : DirectoryOf(path) + link;
  }
  return path;
}

mode_t UmaskedMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

Output::Output(const std::string& path) : path_(path == "-" || path == "/dev/stdout" ? "" : path) {
  if (path_.empty()) return;
  struct stat status;
  const bool exists = stat(path_.c_str(), &status) == 0;
  const bool system_file = path_.rfind("/dev/", 0) == 0 || path_.rfind("/proc/", 0) == 0;
  if (system_file || (exists && !S_ISREG(status.st_mode))) {
    // Devices, FIFOs and the like are written in place; there is nothing to
    // replace them with.
    file_ = std::fopen(path_.c_str(), "wb");
    if (file_ == nullptr) Fail(errno);
    owns_file_ = true;
    return;
  }
  target_ = FollowLinks(path_);
  const size_t slash = target_.rfind('/');
  temporary_ = DirectoryOf(target_) + "." +
               (slash == std::string::npos ? target_ : target_.substr(slash + 1)) + ".XXXXXX";
  const int fd = mkstemp(temporary_.data());
  if (fd < 0) {
    const int error = errno;
    temporary_.clear();
    // No file beside it: overwrite the target itself, but only with output
    // made whole first.
    if (!exists || access(target_.c_str(), W_OK) != 0) Fail(error);
    mode_ = Mode::kOverwrite;
    return;
  }
  mode_ = Mode::kReplace;
  file_ = fdopen(fd, "wb");
  if (file_ == nullptr) {
    const int error = errno;
    close(fd);
    unlink(temporary_.c_str());
    temporary_.clear();
    Fail(error);
  }
  owns_file_ = true;
}

Output::~Output() {
  if (owns_file_) std::fclose(file_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void Output::Fail(int error) const { throw Failure(path_.empty() ? "<stdout>" : path_, std::strerror(error)); }

void Output::Write(std::string_view bytes) {
  if (mode_ == Mode::kOverwrite) {
    held_.append(bytes);
    return;
  }
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) Fail(errno);
}

void Output::Commit() {
  switch (mode_) {
    case Mode::kStream: {
      const bool flushed = std::fflush(file_) == 0;
      const int error = errno;
      if (owns_file_) {
        owns_file_ = false;
        if (std::fclose(file_) != 0 || !flushed) Fail(flushed ? errno : error);
      } else if (!flushed) {
        Fail(error);
      }
      return;
    }
    case Mode::kReplace:
      return CommitReplacement();
    case Mode::kOverwrite:
      return CommitOverwrite();
  }
}

void Output::CommitReplacement() {
  // The replacement takes the old file's permissions and owner (the owner
  // only where allowed); a new file gets what the umask gives.
  struct stat old;
  const bool replacing = stat(target_.c_str(), &old) == 0;
  const int fd = fileno(file_);
  // Owner first: a change of owner clears the set-user and set-group bits,
  // which the mode then restores.
  if (replacing && fchown(fd, old.st_uid, old.st_gid) != 0) {
    // Only root may give a file away; others keep at least its group if
    // they may.
    (void)!fchown(fd, static_cast<uid_t>(-1), old.st_gid);
  }
  const bool written = std::fflush(file_) == 0 &&
                       fchmod(fd, replacing ? old.st_mode & 07777 : UmaskedMode()) == 0;
  int error = errno;
  owns_file_ = false;
  const bool closed = std::fclose(file_) == 0;
  if (written && !closed) error = errno;
  if (written && closed && std::rename(temporary_.c_str(), target_.c_str()) == 0) {
    temporary_.clear();
    return;
  }
  if (written && closed) error = errno;
  Fail(error);
}

void Output::CommitOverwrite() {
  const int fd = open(target_.c_str(), O_WRONLY | O_TRUNC);
  if (fd < 0) Fail(errno);
  size_t done = 0;
  while (done < held_.size()) {
    const ssize_t wrote = write(fd, held_.data() + done, held_.size() - done);
    if (wrote < 0) {
      if (errno == EINTR) continue;
      const int error = errno;
      close(fd);
      Fail(error);
    }
    done += static_cast<size_t>(wrote);
  }
  if (close(fd) != 0) Fail(errno);
}

}  // namespace mav_tool
