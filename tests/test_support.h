// Helpers shared by the tests: byte strings written as numbers, and
// serialize/parse helpers that drive every path (flat array, chunked stream,
// the array serializer) and insist that the paths agree.
#ifndef MAV_PROTOBUF_TESTS_TEST_SUPPORT_H_
#define MAV_PROTOBUF_TESTS_TEST_SUPPORT_H_

#include <gtest/gtest.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <cstdio>
#include <initializer_list>
#include <string>

#include "Mav.pb.h"

namespace mav_test {

inline std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values) bytes.push_back(static_cast<char>(value));
  return bytes;
}

inline std::string Hex(const std::string& bytes) {
  std::string text;
  char part[4];
  for (unsigned char byte : bytes) {
    std::snprintf(part, sizeof(part), "%02X ", byte);
    text += part;
  }
  if (!text.empty()) text.pop_back();
  return text;
}

// Bytes of any message (ours or the runtime's generic ones) written with
// deterministic serialization, which sorts map entries by key.
inline std::string Deterministic(const google::protobuf::Message& message) {
  std::string bytes;
  {
    google::protobuf::io::StringOutputStream out(&bytes);
    google::protobuf::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(true);
    EXPECT_TRUE(message.SerializeToCodedStream(&coded));
  }
  return bytes;
}

// The wire bytes of `message`. Also writes them through a stream cut into
// one-byte blocks and through the array serializer, and expects the same bytes
// from both.
template <typename Message>
std::string WireOf(const Message& message, bool deterministic = false) {
  std::string flat;
  {
    google::protobuf::io::StringOutputStream out(&flat);
    google::protobuf::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(deterministic);
    EXPECT_TRUE(message.SerializeToCodedStream(&coded));
  }
  const size_t size = message.ByteSizeLong();
  EXPECT_EQ(flat.size(), size);

  std::string chunked(size + 64, '\0');
  {
    google::protobuf::io::ArrayOutputStream out(chunked.data(), static_cast<int>(chunked.size()), 1);
    google::protobuf::io::CodedOutputStream coded(&out);
    coded.SetSerializationDeterministic(deterministic);
    message.SerializeWithCachedSizes(&coded);
    coded.Trim();
    chunked.resize(static_cast<size_t>(coded.ByteCount()));
  }
  EXPECT_EQ(Hex(chunked), Hex(flat)) << "chunked stream";

  std::string array(size, '\0');
  uint8_t* begin = reinterpret_cast<uint8_t*>(array.data());
  uint8_t* end = message.InternalSerializeWithCachedSizesToArray(deterministic, begin);
  EXPECT_EQ(static_cast<size_t>(end - begin), size);
  EXPECT_EQ(Hex(array), Hex(flat)) << "array serializer";
  return flat;
}

// Parses `bytes` into `message` (merging), and also into a fresh copy of the
// starting state through a stream cut into one-byte blocks; expects both to
// end alike. Returns the parse result.
template <typename Message>
bool ParseInto(Message* message, const std::string& bytes) {
  google::protobuf::io::ArrayInputStream in(bytes.data(), static_cast<int>(bytes.size()), 1);
  Message chunked(*message);
  bool chunked_ok;
  {
    google::protobuf::io::CodedInputStream coded(&in);
    chunked_ok = chunked.MergeFromCodedStream(&coded) && coded.ConsumedEntireMessage();
  }
  const bool ok = message->MergeFromString(bytes);
  EXPECT_EQ(chunked_ok, ok) << "chunked parse of " << Hex(bytes);
  if (ok && chunked_ok) {
    EXPECT_EQ(chunked.DebugString(), message->DebugString()) << "chunked parse of " << Hex(bytes);
  }
  return ok;
}

}  // namespace mav_test

#endif  // MAV_PROTOBUF_TESTS_TEST_SUPPORT_H_
