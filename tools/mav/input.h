// The bytes of one input file, or of standard input, held once: a regular
// file is mapped, anything else read straight into its final buffer.
#ifndef MAV_TOOLS_MAV_INPUT_H_
#define MAV_TOOLS_MAV_INPUT_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace mav_tool {

class Input {
 public:
  // The runtime refuses messages past this size.
  static constexpr uint64_t kMessageLimit = (uint64_t{2} << 30) - 1;

  // Opens `path` ("-" is standard input). When the input is one message,
  // an input over kMessageLimit is refused before anything is read.
  Input(const std::string& path, bool one_message);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  std::string_view bytes() const { return {data_, size_}; }
  // The name used in messages.
  const std::string& name() const { return name_; }

 private:
  void Map(int fd, uint64_t size);
  void ReadAll(int fd);

  std::string name_;
  const char* data_ = "";
  size_t size_ = 0;
  void* mapping_ = nullptr;
  std::string buffer_;
};

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_INPUT_H_
