#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace mav_tool {

Progress::Progress(std::string label, uint64_t total)
    : label_(std::move(label)), total_(total), shown_(total >= kThreshold && isatty(STDERR_FILENO)) {}

Progress::~Progress() { Clear(); }

void Progress::Clear() {
  if (!shown_ || drawn_percent_ < 0) return;
  std::fprintf(stderr, "\r\033[K");
  std::fflush(stderr);
  drawn_percent_ = -1;
}

void Progress::Update(uint64_t done) {
  if (!shown_ || total_ == 0) return;
  const int percent = static_cast<int>(done >= total_ ? 100 : done * 100 / total_);
  if (percent == drawn_percent_) return;
  drawn_percent_ = percent;
  constexpr int kWidth = 40;
  const int filled = percent * kWidth / 100;
  std::fprintf(stderr, "\r%s [%.*s%*s] %3d%%", label_.c_str(), filled, "########################################",
               kWidth - filled, "", percent);
  std::fflush(stderr);
}

}  // namespace mav_tool
