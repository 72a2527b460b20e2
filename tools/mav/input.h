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
  // an input over kMessageLimit is refused: a file before anything is read,
  // a pipe as soon as a byte past the limit arrives.
  Input(const std::string& path, bool one_message);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  std::string_view bytes() const { return {data_, size_}; }
  // The name used in messages.
  const std::string& name() const { return name_; }

 private:
  void Map(int fd, uint64_t size);
  // Reads to the end or until `most` bytes are in; says how many are.
  uint64_t ReadAll(int fd, uint64_t most);

  std::string name_;
  const char* data_ = "";
  size_t size_ = 0;
  void* mapping_ = nullptr;
  char* buffer_ = nullptr;  // what was read, when not mapped
};

}  // namespace mav_tool

#endif  // MAV_TOOLS_MAV_INPUT_H_
