// The one way the tool fails: a problem with one named input or output,
// printed as `mav: <file>: <problem>`.
#ifndef MAV_TOOLS_MAV_FAILURE_H_
#define MAV_TOOLS_MAV_FAILURE_H_

#include <stdexcept>
#include <string>

namespace mav_tool {

class Failure : public std::runtime_error {
 public:
  Failure(std::string file, const std::string& problem) : std::runtime_error(problem), file_(std::move(file)) {}
  const std::string& file() const { return file_; }

 private:
  std::string file_;
};

// How a file is named in messages: standard input has no name of its own.
inline std::string DisplayName(const std::string& path) { return path == "-" ? "<stdin>" : path; }

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_FAILURE_H_
