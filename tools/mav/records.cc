#include "records.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/util/delimited_message_util.h>
#include <google/protobuf/wire_format_lite.h>

#include <algorithm>
#include <climits>

#include "MavView.h"
#include "failure.h"
#include "progress.h"

namespace mav_tool {
namespace {

namespace io = google::protobuf::io;
using google::protobuf::internal::WireFormatLite;

// Hands out the input a megabyte at a time, moving the progress bar. Unlike
// the runtime's array stream it counts past 2 GiB, which a file of records
// may hold.
class ProgressStream : public io::ZeroCopyInputStream {
 public:
  ProgressStream(std::string_view bytes, Progress* progress) : bytes_(bytes), progress_(*progress) {}
  bool Next(const void** data, int* size) override {
    if (position_ == bytes_.size()) return false;
    const size_t chunk = std::min(kChunk, bytes_.size() - position_);
    *data = bytes_.data() + position_;
    *size = static_cast<int>(chunk);
    position_ += chunk;
    progress_.Update(position_);
    return true;
  }
  void BackUp(int count) override { position_ -= static_cast<size_t>(count); }
  bool Skip(int count) override {
    const size_t skipped = std::min(static_cast<size_t>(count), bytes_.size() - position_);
    position_ += skipped;
    return skipped == static_cast<size_t>(count);
  }
  int64_t ByteCount() const override { return static_cast<int64_t>(position_); }

 private:
  static constexpr size_t kChunk = size_t{1} << 20;
  std::string_view bytes_;
  size_t position_ = 0;
  Progress& progress_;
};

// What the runtime logs while parsing (a map key that is not UTF-8) becomes
// the reason of the failure instead of a second line on standard error.
class LogCapture {
 public:
  LogCapture() : previous_(google::protobuf::SetLogHandler(&Record)) { Last().clear(); }
  ~LogCapture() { google::protobuf::SetLogHandler(previous_); }
  static std::string& Last() {
    static std::string last;
    return last;
  }

 private:
  static void Record(google::protobuf::LogLevel, const char*, int, const std::string& message) { Last() = message; }
  google::protobuf::LogHandler* previous_;
};

std::string ParseProblem(const char* what) {
  const std::string& logged = LogCapture::Last();
  if (logged.find("UTF-8") != std::string::npos) return std::string(what) + " has a map key that is not valid UTF-8";
  return std::string(what) + " is not a valid property tree (truncated or not a tree)";
}

// A tree's own bytes hold one member of its oneof; a second one means
// several trees were joined, which a parse would silently merge.
size_t TopLevelMembers(std::string_view bytes) {
  io::CodedInputStream stream(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int>(bytes.size()));
  size_t members = 0;
  while (const uint32_t tag = stream.ReadTag()) {
    const int field = WireFormatLite::GetTagFieldNumber(tag);
    if (field >= 1 && field <= 3 && WireFormatLite::GetTagWireType(tag) == WireFormatLite::WIRETYPE_LENGTH_DELIMITED)
      ++members;
    if (!WireFormatLite::SkipField(&stream, tag)) break;
  }
  return members;
}

constexpr char kJoinedTrees[] =
    "holds several trees one after another (joined files?); a sequence of records needs --delimited";

// The runtime reads a record's length as 32 bits and drops the rest, so a
// prefix that does not fit would pass as a smaller one. Truncated or overlong
// prefixes are left to the parse, which refuses them.
void CheckLengthPrefix(std::string_view bytes, size_t at, const Input& input, size_t record) {
  uint64_t length = 0;
  for (int shift = 0; shift < 64 && at < bytes.size(); shift += 7, ++at) {
    const auto byte = static_cast<uint8_t>(bytes[at]);
    length |= static_cast<uint64_t>(byte & 0x7F) << shift;
    if (byte < 0x80) break;
  }
  if (length > static_cast<uint64_t>(INT_MAX)) {
    throw Failure(input.name(), "record " + std::to_string(record) + ": length prefix " +
                                    std::to_string(length) + " is over the 2 GiB limit");
  }
}

}  // namespace

void ForEachTree(const Input& input, bool delimited, const std::function<void(PropertyNode&, size_t)>& visit) {
  const std::string_view bytes = input.bytes();
  Progress progress("mav: reading " + input.name(), bytes.size());
  ProgressStream stream(bytes, &progress);
  LogCapture log;
  PropertyNode tree;
  if (!delimited) {
    if (!tree.ParseFromZeroCopyStream(&stream)) throw Failure(input.name(), ParseProblem("the input"));
    if (TopLevelMembers(bytes) > 1)
      throw Failure(input.name(), kJoinedTrees);
    progress.Clear();
    return visit(tree, 0);
  }
  for (size_t record = 0;; ++record) {
    bool clean_end = false;
    tree.Clear();
    CheckLengthPrefix(bytes, static_cast<size_t>(stream.ByteCount()), input, record);
    if (!google::protobuf::util::ParseDelimitedFromZeroCopyStream(&tree, &stream, &clean_end)) {
      if (clean_end) return;
      throw Failure(input.name(), ParseProblem(("record " + std::to_string(record)).c_str()));
    }
    progress.Clear();
    visit(tree, record);
  }
}

void ForEachTreeBytes(const Input& input, bool delimited,
                      const std::function<void(std::string_view, size_t)>& visit) {
  const std::string_view bytes = input.bytes();
  if (!delimited) {
    if (TopLevelMembers(bytes) > 1) throw Failure(input.name(), kJoinedTrees);
    return visit(bytes, 0);
  }
  size_t at = 0;
  for (size_t record = 0; at < bytes.size(); ++record) {
    CheckLengthPrefix(bytes, at, input, record);
    uint64_t length = 0;
    bool ended = false;
    for (int shift = 0; shift < 64 && !ended && at < bytes.size(); shift += 7) {
      const auto byte = static_cast<uint8_t>(bytes[at++]);
      length |= static_cast<uint64_t>(byte & 0x7F) << shift;
      ended = byte < 0x80;
    }
    if (!ended || length > bytes.size() - at) {
      throw Failure(input.name(), ParseProblem(("record " + std::to_string(record)).c_str()));
    }
    visit(bytes.substr(at, static_cast<size_t>(length)), record);
    at += static_cast<size_t>(length);
  }
}

void ReadThroughView(const Input& input, const std::string& what, const std::function<void()>& read) {
  LogCapture log;
  try {
    read();
  } catch (const Tarnwick::MavProtobuf::DecodeError& error) {
    if (std::string_view(error.what()).find("UTF-8") != std::string_view::npos) {
      LogCapture::Last() = error.what();
    }
    throw Failure(input.name(), ParseProblem(what.c_str()));
  }
}

std::string TreeBytes(const PropertyNode& tree, bool delimited) {
  std::string bytes;
  {
    io::StringOutputStream out(&bytes);
    io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(true);
    const size_t size = tree.ByteSizeLong();  // also caches the sizes the writer uses
    if (delimited) coded.WriteVarint32(static_cast<uint32_t>(size));
    tree.SerializeWithCachedSizes(&coded);
  }
  return bytes;
}

}  // namespace mav_tool
