// detector_frame: one detector frame written and read with MavValues.h.
//
//   detector_frame        builds the frame with the current time, serializes
//                         it, parses it back, reads "frame" as a buffer and a
//                         shape and "timestamp" as a system_clock time point,
//                         and prints every leaf with its path, kind and shape.
//   detector_frame OUT    the same with the fixed timestamp
//                         2026-01-01T00:00:00.25Z, so the output is the same
//                         on every run, and also writes the serialized tree
//                         (map keys sorted) to the file OUT.

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iostream>
#include <string>
#include <vector>

#include "MavValues.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using std::chrono::system_clock;

constexpr uint32_t kSide = 512;

PropertyNode BuildFrame(system_clock::time_point timestamp) {
  std::vector<uint16_t> pixels(kSide * kSide);
  for (uint32_t row = 0; row < kSide; ++row) {
    for (uint32_t column = 0; column < kSide; ++column) {
      pixels[row * kSide + column] = static_cast<uint16_t>((row + 3 * column) % 128);
    }
  }
  const std::array<double, 9> calibration = {1.0, 0.01, 0.0, -0.01, 1.0, 0.0, 0.0, 0.0, 1.0};

  PropertyNode root;
  SetLeaf(root, "exposure", 0.25);
  SetLeaf(root, "gain", uint16_t{4});
  SetLeaf(root, "name", "det1");
  SetLeaf(root, "timestamp", timestamp);
  SetLeaf(root, "impedance", std::complex<double>(50, 3));
  SetArray(Child(root, "roi"), std::array<int32_t, 4>{0, 0, kSide, kSide});
  SetArray(Child(root, "frame"), pixels, {kSide, kSide});
  SetArray(Child(root, "calibration"), calibration, {3, 3});
  return root;
}

// Sorted map keys make the bytes the same on every run.
std::string Serialize(const PropertyNode& root) {
  std::string bytes;
  {
    google::protobuf::io::StringOutputStream output(&bytes);
    google::protobuf::io::CodedOutputStream coded(&output);
    coded.SetSerializationDeterministic(true);
    root.SerializeToCodedStream(&coded);
  }
  return bytes;
}

// Writes beside `path` first, so a failure never leaves a half-written file.
bool WriteFile(const std::string& path, const std::string& bytes, std::string* problem) {
  const std::string partial = path + ".partial";
  std::FILE* file = std::fopen(partial.c_str(), "wb");
  if (file == nullptr) {
    *problem = std::strerror(errno);
    return false;
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool closed = std::fclose(file) == 0;
  if (!written || !closed || std::rename(partial.c_str(), path.c_str()) != 0) {
    *problem = std::strerror(errno);
    std::remove(partial.c_str());
    return false;
  }
  return true;
}

std::string Utc(system_clock::time_point when) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(when);
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(when - seconds);
  const std::time_t whole = system_clock::to_time_t(seconds);
  std::tm parts{};
  gmtime_r(&whole, &parts);
  char text[64];
  const size_t length = std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(text + length, sizeof(text) - length, ".%03dZ", static_cast<int>(millis.count()));
  return text;
}

int Fail(const std::string& input, const std::string& problem) {
  std::cerr << "detector_frame: " << input << ": " << problem << "\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    std::cerr << "usage: detector_frame [OUT]\n";
    return 2;
  }
  const bool to_file = argc == 2;
  const system_clock::time_point timestamp =
      to_file ? system_clock::time_point(std::chrono::seconds(1767225600) + std::chrono::milliseconds(250))
              : system_clock::now();

  const std::string bytes = Serialize(BuildFrame(timestamp));
  PropertyNode back;
  if (!back.ParseFromString(bytes)) return Fail("detector frame", "its bytes do not parse back");

  try {
    const Array<uint16_t> frame = ReadArray<uint16_t>(back, "frame");
    const auto when = GetValue<system_clock::time_point>(back, "timestamp");
    std::printf("%zu bytes; frame %s of %zu pixels, first row starts %u %u %u; taken %s\n\n",
                bytes.size(), frame.shape.ToString().c_str(), frame.values.size(), frame.values[0],
                frame.values[1], frame.values[2], Utc(when).c_str());

    VisitLeaves(back, [](const Leaf& leaf) {
      const std::string kind = leaf.kind ? std::string(KindName(*leaf.kind)) : "-";
      std::printf("%-12.*s %-11s %s\n", static_cast<int>(leaf.path.size()), leaf.path.data(),
                  kind.c_str(), leaf.shape.ToString().c_str());
    });
  } catch (const ValueError& error) {
    return Fail("detector frame", error.what());
  }

  std::string problem;
  if (to_file && !WriteFile(argv[1], bytes, &problem)) return Fail(argv[1], problem);
  return 0;
}
