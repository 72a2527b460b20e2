// Where a command's output goes: standard output, or a file that appears
// only complete. A file is written under a temporary name in its own
// directory and renamed over the target on Commit(); without Commit() (a
// failure on the way) the temporary file is removed and the target is left
// as it was.
#ifndef MAV_TOOLS_MAV_OUTPUT_H_
#define MAV_TOOLS_MAV_OUTPUT_H_

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
  std::string path_;
  std::string temporary_;
  FILE* file_;
};

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_OUTPUT_H_
