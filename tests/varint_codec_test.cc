// The word-at-a-time varint codecs, each instruction-set form on its own
// (the library picks one at run time, so the suite checks every form this
// processor can run), held against the runtime's one-varint functions.

#include <google/protobuf/io/coded_stream.h>
#include <gtest/gtest.h>

#include <memory>
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

  const int count = Bits::CountEnds(expected.data(), expected.data() + expected.size());
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
    const int before = Bits::CountEnds(bad.data(), bad.data() + at);
    bad.insert(at, std::string(10, '\x80') + '\x01');
    std::vector<uint64_t> out(200);
    after = varint::DecodeRunWith<Bits>(bad.data(), bad.data() + bad.size(),
                                        Bits::CountEnds(bad.data(), bad.data() + bad.size()), out.data(), &n,
                                        [](uint64_t raw) { return raw; });
    EXPECT_EQ(after, nullptr) << at;
    EXPECT_EQ(n, before) << at;
  }
}

// Short varints are decoded, and 32-bit values encoded, four at a time where
// the four are all of one to three bytes. Every sequence of four lengths from
// 1, 2, 3, 4 and 10 bytes (a negative 32-bit value) follows a prefix of 0 to
// 63 one-byte varints, so each mix starts at every offset of a 64-byte window
// and of a group, and crosses their ends.
template <typename Bits>
void ExpectEveryMixOfShortLengthsRoundTrips() {
  const int lengths[] = {1, 2, 3, 4, 10};
  std::vector<uint64_t> mixes;
  for (int code = 0; code < 5 * 5 * 5 * 5; ++code) {
    for (int k = 0, rest = code; k < 4; ++k, rest /= 5) {
      const int size = lengths[rest % 5];
      mixes.push_back(size == 1 ? 0x55 : size == 10 ? uint64_t(int64_t{-42}) : (uint64_t{1} << (7 * (size - 1))) + 0x2A);
    }
  }
  for (int prefix = 0; prefix < 64; ++prefix) {
    std::vector<uint64_t> values(static_cast<size_t>(prefix), 0);
    values.insert(values.end(), mixes.begin(), mixes.end());
    const int count = static_cast<int>(values.size());
    const std::string bytes = RuntimeEncoding(values);
    const char* end = bytes.data() + bytes.size();

    std::vector<int32_t> narrow(values.begin(), values.end());
    std::vector<uint8_t> encoded(values.size() * varint::kMaxSize + varint::kEncodeSlack);
    const uint8_t* encoded_end = varint::EncodeRunWith<Bits>(narrow.data(), count, encoded.data());
    ASSERT_EQ(std::string(reinterpret_cast<const char*>(encoded.data()), encoded_end - encoded.data()), bytes)
        << prefix;

    ASSERT_EQ(Bits::CountEnds(bytes.data(), end), count);
    std::vector<uint64_t> decoded(values.size());
    int n = 0;
    const char* after = varint::DecodeRunWith<Bits>(bytes.data(), end, count, decoded.data(), &n,
                                                    [](uint64_t raw) { return raw; });
    EXPECT_EQ(after, end) << prefix;
    ASSERT_EQ(n, count) << prefix;
    EXPECT_EQ(decoded, values) << prefix;
    // The same bytes into 32-bit elements and into bools, which store a group
    // differently.
    std::vector<int32_t> narrow_back(values.size());
    varint::DecodeRunWith<Bits>(bytes.data(), end, count, narrow_back.data(), &n,
                                [](uint64_t raw) { return static_cast<int32_t>(raw); });
    EXPECT_EQ(narrow_back, narrow) << prefix;
    std::unique_ptr<bool[]> bools(new bool[values.size()]);
    varint::DecodeRunWith<Bits>(bytes.data(), end, count, bools.get(), &n, [](uint64_t raw) { return raw != 0; });
    for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(bools[i], values[i] != 0) << prefix << " at " << i;
  }
}

TEST(VarintCodec, PortableFormMatchesTheRuntime) {
  ExpectCodecMatchesTheRuntime<varint::PortableBits>();
  ExpectEveryMixOfShortLengthsRoundTrips<varint::PortableBits>();
}

#ifdef MAV_PROTOBUF_VARINT_SIMD
TEST(VarintCodec, VectorFormMatchesTheRuntime) {
  if (!varint::HasSimd()) GTEST_SKIP() << "this processor lacks the instructions";
  ExpectCodecMatchesTheRuntime<varint::SimdBits>();
  ExpectEveryMixOfShortLengthsRoundTrips<varint::SimdBits>();
}
#endif

TEST(VarintCodec, SizesOfSignedValuesAreTenBytesWhenNegative) {
  const int32_t narrow[] = {-1, 0, 127, 128, INT32_MIN, INT32_MAX};
  size_t expected = 0;
  for (int32_t v : narrow) expected += CodedOutputStream::VarintSize64(static_cast<uint64_t>(int64_t{v}));
  EXPECT_EQ(varint::RunSize(narrow, 6), expected);
}

}  // namespace
