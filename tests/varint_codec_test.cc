// The word-at-a-time varint codecs, each instruction-set form on its own
// (the library picks one at run time, so the suite checks every form this
// processor can run), held against the runtime's one-varint functions.

#include <google/protobuf/io/coded_stream.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "varint.h"

namespace {

namespace varint = Tarnwick::MavProtobuf::varint;
using google::protobuf::io::CodedOutputStream;

// Values of every varint length, 1 to 10 bytes, in random order.
std::vector<uint64_t> MixedValues(int count) {
  std::mt19937_64 random(11);
  std::vector<uint64_t> values;
  for (int i = 0; i < count; ++i) values.push_back(random() >> (random() % 64));
  return values;
}

std::string RuntimeEncoding(const std::vector<uint64_t>& values) {
  std::string bytes;
  for (uint64_t v : values) {
    uint8_t buffer[varint::kMaxSize];
    bytes.append(reinterpret_cast<char*>(buffer),
                 CodedOutputStream::WriteVarint64ToArray(v, buffer) - buffer);
  }
  return bytes;
}

template <typename Bits>
void ExpectCodecMatchesTheRuntime() {
  const std::vector<uint64_t> values = MixedValues(2000);
  const std::string expected = RuntimeEncoding(values);
  std::vector<uint8_t> encoded(values.size() * varint::kMaxSize + varint::kEncodeSlack);
  const uint8_t* end = varint::EncodeRunWith<Bits>(values.data(), static_cast<int>(values.size()), encoded.data());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(encoded.data()), end - encoded.data()), expected);
  EXPECT_EQ(varint::RunSize(values.data(), static_cast<int>(values.size())), expected.size());
  EXPECT_EQ(varint::RunSizeWith(values.data(), static_cast<int>(values.size())), expected.size());

  const int count = varint::CountEnds(expected.data(), expected.data() + expected.size());
  ASSERT_EQ(count, static_cast<int>(values.size()));
  std::vector<uint64_t> decoded(values.size());
  int n = 0;
  const char* after = varint::DecodeRunWith<Bits>(expected.data(), expected.data() + expected.size(), count,
                                                  decoded.data(), &n, [](uint64_t raw) { return raw; });
  EXPECT_EQ(after, expected.data() + expected.size());
  EXPECT_EQ(n, count);
  EXPECT_EQ(decoded, values);

  // An eleven-byte varint stops the run at any position in the window.
  for (size_t at : {0u, 5u, 63u, 64u, 100u}) {
    std::string bad = expected.substr(0, 200);
    const int before = varint::CountEnds(bad.data(), bad.data() + at);
    bad.insert(at, std::string(10, '\x80') + '\x01');
    std::vector<uint64_t> out(200);
    after = varint::DecodeRunWith<Bits>(bad.data(), bad.data() + bad.size(),
                                        varint::CountEnds(bad.data(), bad.data() + bad.size()), out.data(), &n,
                                        [](uint64_t raw) { return raw; });
    EXPECT_EQ(after, nullptr) << at;
    EXPECT_EQ(n, before) << at;
  }
}

TEST(VarintCodec, PortableFormMatchesTheRuntime) { ExpectCodecMatchesTheRuntime<varint::PortableBits>(); }

#ifdef MAV_PROTOBUF_VARINT_BMI2
TEST(VarintCodec, BitFieldInstructionFormMatchesTheRuntime) {
  if (!varint::HasBmi2()) GTEST_SKIP() << "this processor lacks the instructions";
  ExpectCodecMatchesTheRuntime<varint::Bmi2Bits>();
}
#endif

TEST(VarintCodec, SizesOfSignedValuesAreTenBytesWhenNegative) {
  const int32_t narrow[] = {-1, 0, 127, 128, INT32_MIN, INT32_MAX};
  size_t expected = 0;
  for (int32_t v : narrow) expected += CodedOutputStream::VarintSize64(static_cast<uint64_t>(int64_t{v}));
  EXPECT_EQ(varint::RunSize(narrow, 6), expected);
}

}  // namespace
