// Where a command's output goes: standard output, or a file that appears
// only complete. A regular file (or one that does not exist yet) is written
// under a temporary name beside it and renamed over it on Commit(), keeping
// the old file's permissions and, where allowed, its owner; through a
// symbolic link, the file it points to is the one replaced. Where no file can
// be made beside it but the target itself is writable, the whole output is
// kept in memory and written over the target on Commit(). Anything else (a
// device, a FIFO, /dev/stdout) is written in place as the output is made.
// Without Commit() (a failure on the way) a regular target is left as it was.
#ifndef MAV_TOOLS_MAV_OUTPUT_H_
#define MAV_TOOLS_MAV_OUTPUT_H_

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace mav_tool {

class Output {
 public:
  // An empty path or "-" is standard output.
  explicit Output(const std::string& path);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Write(std::string_view bytes);
  void Commit();

 private:
  enum class Mode { kStream, kReplace, kOverwrite };

  void Fail(int error) const;
  void CommitReplacement();
  void CommitOverwrite();

  std::string path_;    // as given, for messages
  std::string target_;  // the file replaced or overwritten
  std::string temporary_;
  std::string held_;  // kOverwrite: the whole output
  Mode mode_ = Mode::kStream;
  FILE* file_ = stdout;
  bool owns_file_ = false;
};

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_OUTPUT_H_
