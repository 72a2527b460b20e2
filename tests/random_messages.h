// Random trees of the schema, built through the library's accessors, for the
// tests that hold the library against the runtime's generic implementation,
// and the ways the results are compared.
#ifndef MAV_PROTOBUF_TESTS_RANDOM_MESSAGES_H_
#define MAV_PROTOBUF_TESTS_RANDOM_MESSAGES_H_

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/util/field_comparator.h>
#include <google/protobuf/util/message_differencer.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <string>

#include "Mav.pb.h"
#include "test_support.h"

namespace mav_test {

namespace pb = google::protobuf;
using namespace Tarnwick::MavProtobuf;

class Random {
 public:
  explicit Random(uint64_t seed) : engine_(seed) {}
  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine_); }
  bool OneIn(int n) { return Below(n) == 0; }
  // Every varint length, the ends of the range favoured, and often a value of
  // one to three bytes, as counts are.
  uint64_t Unsigned() {
    const uint64_t picks[] = {0, uint64_t(Below(128)), ~uint64_t{0}, engine_() >> Below(64), engine_(),
                              uint64_t(Below(1 << (7 * (1 + Below(3)))))};
    return picks[Below(6)];
  }
  int64_t Signed() { const uint64_t v = Unsigned(); return static_cast<int64_t>(OneIn(2) ? 0 - v : v); }
  int32_t Signed32() { return static_cast<int32_t>(Signed()); }
  uint32_t Unsigned32() { return static_cast<uint32_t>(Unsigned()); }
  // -0.0 only where both sides test presence alike (repeated fields and oneof
  // members): outside a oneof ours counts it as zero, the runtime's does not.
  template <typename Real>
  Real Number(bool signed_zero) {
    using limits = std::numeric_limits<Real>;
    for (;;) {
      const Real picks[] = {0, -Real{0}, limits::quiet_NaN(), -limits::infinity(), limits::denorm_min(),
                            limits::lowest(), static_cast<Real>(std::ldexp(double(engine_() >> 11), Below(120) - 113))};
      const Real value = picks[Below(7)] * (OneIn(2) ? 1 : -1);
      if (signed_zero || !(value == 0 && std::signbit(value))) return value;
    }
  }
  std::string Blob(int longest) {
    std::string bytes(static_cast<size_t>(Below(longest + 1)), '\0');
    for (char& byte : bytes) byte = static_cast<char>(Below(256));
    return bytes;
  }
  std::string Key() {  // valid UTF-8 of one to four bytes a character, or empty
    static const char* const kParts[] = {"", "a", "b", "ab", "key", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
    std::string key;
    for (int n = Below(3); n > 0; --n) key += kParts[Below(8)];
    return key;
  }
  // Fields from a newer schema, which both sides must keep and write last. A
  // group under field 1 or 2 is a known number with the wrong wire type, no
  // field of ours either.
  void Unknowns(pb::Message* message) {
    pb::UnknownFieldSet* unknown = message->GetReflection()->MutableUnknownFields(message);
    unknown->AddVarint(1000 + Below(100), Unsigned());
    unknown->AddLengthDelimited(536870911, Blob(4));
    unknown->AddFixed32(99, Unsigned32());
    unknown->AddGroup(1 + Below(2))->AddFixed64(1, Unsigned());
  }

 private:
  std::mt19937_64 engine_;
};

// Builds trees through the library's own accessors, and checks on the way
// that each member accessor selects its own member.
class TreeMaker {
 public:
  explicit TreeMaker(Random* random) : r_(*random) {}
  std::set<int> scalar_kinds, array_kinds;

  void Node(PropertyNode* node, int depth) {
    const int choice = depth == 0 ? 5 : r_.Below(7);
    if (choice == 1 || choice == 2) {
      auto* map = node->mutable_map_type()->mutable_map_data();
      for (int n = r_.Below(5); n > 0; --n) Node(&(*map)[r_.Key()], depth - 1);
    } else if (choice == 3 || choice == 4) {
      PropertyList* list = node->mutable_list_type();
      for (int n = r_.Below(5); n > 0; --n) Node(list->add_list_data(), depth - 1);
    } else if (choice != 0) {
      KVariant* value = node->mutable_value_type();
      if (r_.OneIn(3)) Scalar(value->mutable_scalar_data());
      else if (!r_.OneIn(3)) Array(value->mutable_array_data());
      if (r_.OneIn(2)) value->set_wellknowntype(r_.Blob(8));
    }
    if (r_.OneIn(12)) r_.Unknowns(node);
  }

  void Scalar(ScalarDataUnion* u) {
    const int kind = r_.Below(17);
    switch (kind) {
      case 1: u->set_string_content(r_.Blob(6)); break;
      case 2: u->set_float_content(r_.Number<float>(true)); break;
      case 3: u->set_double_content(r_.Number<double>(true)); break;
      case 4: u->set_int8_content(r_.Signed32()); break;
      case 5: u->set_int16_content(r_.Signed32()); break;
      case 6: u->set_int32_content(r_.Signed32()); break;
      case 7: u->set_int64_content(r_.Signed()); break;
      case 8: u->set_unsignedint8_content(r_.Unsigned32()); break;
      case 9: u->set_unsignedint16_content(r_.Unsigned32()); break;
      case 10: u->set_unsignedint32_content(r_.Unsigned32()); break;
      case 11: u->set_unsignedint64_content(r_.Unsigned()); break;
      case 12: u->set_bool_content(r_.OneIn(2)); break;
      case 13:
        u->mutable_complexfloat_content()->set_re_content(r_.Number<float>(false));
        u->mutable_complexfloat_content()->set_im_content(r_.Number<float>(false));
        break;
      case 14:
        u->mutable_complexdouble_content()->set_re_content(r_.Number<double>(false));
        u->mutable_complexdouble_content()->set_im_content(r_.Number<double>(false));
        break;
      case 15: Chrono(u->mutable_duration_content()); break;
      case 16: Chrono(u->mutable_timepoint_content()); break;
    }
    if (kind != 0) {
      scalar_kinds.insert(kind);
      EXPECT_EQ(u->content_case(), kind);
    }
    if (r_.OneIn(12)) r_.Unknowns(u);
  }

  void Array(ArrayDataUnion* u) {
    static const int kMembers[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 17, 18};
    const int kind = kMembers[r_.Below(17)];
    // Now and then a run long enough for the word-at-a-time varint codecs.
    int n = r_.OneIn(6) ? 20 + r_.Below(120) : r_.Below(6);
    // Each loop's start selects the member, so an empty array is set too.
    switch (kind) {
      case 1: for (auto* a = u->mutable_string_content(); n > 0; --n) a->add_string_content(r_.Blob(5)); break;
      case 2: for (auto* a = u->mutable_float_content(); n > 0; --n) a->add_float_content(r_.Number<float>(true)); break;
      case 3: for (auto* a = u->mutable_double_content(); n > 0; --n) a->add_double_content(r_.Number<double>(true)); break;
      case 4: u->mutable_int8_content()->set_int8_content(r_.Blob(8)); break;
      case 5: for (auto* a = u->mutable_int16_content(); n > 0; --n) a->add_int16_content(r_.Signed32()); break;
      case 6: for (auto* a = u->mutable_int32_content(); n > 0; --n) a->add_int32_content(r_.Signed32()); break;
      case 7: for (auto* a = u->mutable_int64_content(); n > 0; --n) a->add_int64_content(r_.Signed()); break;
      case 8: u->mutable_unsignedint8_content()->set_unsignedint8_content(r_.Blob(8)); break;
      case 9: for (auto* a = u->mutable_unsignedint16_content(); n > 0; --n) a->add_unsignedint16_content(r_.Unsigned32()); break;
      case 10: for (auto* a = u->mutable_unsignedint32_content(); n > 0; --n) a->add_unsignedint32_content(r_.Unsigned32()); break;
      case 11: for (auto* a = u->mutable_unsignedint64_content(); n > 0; --n) a->add_unsignedint64_content(r_.Unsigned()); break;
      case 12: for (auto* a = u->mutable_bool_content(); n > 0; --n) a->add_bool_content(r_.OneIn(2)); break;
      case 13: for (auto* a = u->mutable_complexfloat_content(); n > 0; --n) a->add_float_content(r_.Number<float>(true)); break;
      case 14: for (auto* a = u->mutable_complexdouble_content(); n > 0; --n) a->add_double_content(r_.Number<double>(true)); break;
      case 17: for (auto* a = u->mutable_duration_content(); n > 0; --n) Chrono(a->add_chrono_content()); break;
      case 18: for (auto* a = u->mutable_timepoint_content(); n > 0; --n) Chrono(a->add_chrono_content()); break;
    }
    if (kind != 0) {
      array_kinds.insert(kind);
      EXPECT_EQ(u->content_case(), kind);
    }
    if (r_.OneIn(12)) r_.Unknowns(u);
    if (r_.OneIn(2)) u->set_dataorder(r_.Blob(3));
    for (int d = r_.Below(4); d > 0; --d) u->add_dimensions(r_.Unsigned32());
  }

  void Chrono(ChronoData* c) {
    c->set_seconds_content(r_.Signed());
    c->set_fractional_content(r_.Unsigned());
  }

 private:
  Random& r_;
};

// MessageDifferencer::Equals, except that a NaN equals a NaN.
inline testing::AssertionResult Same(const pb::Message& a, const pb::Message& b) {
  pb::util::DefaultFieldComparator comparator;
  comparator.set_treat_nan_as_equal(true);
  pb::util::MessageDifferencer differencer;
  differencer.set_field_comparator(&comparator);
  std::string report;
  differencer.ReportDifferencesToString(&report);
  if (differencer.Compare(a, b)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << report;
}

inline void ExpectSameBytes(const std::string& library, const std::string& runtime) {
  if (library != runtime) ADD_FAILURE() << "\n  library: " << Hex(library) << "\n  runtime: " << Hex(runtime);
}

}  // namespace mav_test

#endif  // MAV_PROTOBUF_TESTS_RANDOM_MESSAGES_H_
