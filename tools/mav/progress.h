// A progress bar on standard error for long reads, drawn only when standard
// error is a terminal and the input is large.
#ifndef MAV_TOOLS_MAV_PROGRESS_H_
#define MAV_TOOLS_MAV_PROGRESS_H_

#include <cstdint>
#include <string>

namespace mav_tool {

class Progress {
 public:
  // Inputs of this size or more get a bar.
  static constexpr uint64_t kThreshold = uint64_t{64} << 20;

  Progress(std::string label, uint64_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Update(uint64_t done);
  // Erases the bar, before output goes to the terminal; the next Update
  // draws it again.
  void Clear();

 private:
  std::string label_;
  uint64_t total_;
  bool shown_;
  int drawn_percent_ = -1;
};

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_PROGRESS_H_
