// The conventions of the value layer: time, order, shape, narrow ranges,
// keys, zero-copy views, and that a refused call writes nothing.
#include <gtest/gtest.h>

#include <typeinfo>

#include "MavValues.h"

namespace {

using namespace Tarnwick::MavProtobuf;
using namespace std::chrono_literals;

// Runs `call`, expects a ValueError whose message contains every fragment.
template <typename Call>
void ExpectRefused(Call call, std::initializer_list<std::string_view> fragments) {
  try {
    call();
    ADD_FAILURE() << "not refused";
  } catch (const ValueError& error) {
    const std::string message = error.what();
    for (std::string_view fragment : fragments) {
      EXPECT_NE(message.find(fragment), std::string::npos) << message << " lacks " << fragment;
    }
  }
}

const ChronoData& StoredTime(const KVariant& variant) {
  return variant.scalar_data().has_timepoint_content() ? variant.scalar_data().timepoint_content()
                                                       : variant.scalar_data().duration_content();
}

TEST(ValuesTime, SecondsAreFlooredAndTheFractionStaysPositive) {
  KVariant variant;
  SetValue(variant, SystemTime(-250ms));
  EXPECT_EQ(StoredTime(variant).seconds_content(), -1);
  EXPECT_EQ(StoredTime(variant).fractional_content(), 750'000'000u);
  EXPECT_EQ(GetValue<SystemTime>(variant), SystemTime(-250ms));

  SetValue(variant, std::chrono::duration<double>(-0.25));
  EXPECT_EQ(StoredTime(variant).seconds_content(), -1);
  EXPECT_EQ(StoredTime(variant).fractional_content(), 750'000'000u);

  // A coarser clock duration still reads back exactly.
  using Millis = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;
  SetValue(variant, Millis(-1ms));
  EXPECT_EQ(GetValue<Millis>(variant), Millis(-1ms));
}

TEST(ValuesTime, TheFractionUnitIsTheCallersAndOneSecondIsRefused) {
  KVariant variant;
  SetValue<std::micro>(variant, 1500ms);
  EXPECT_EQ(StoredTime(variant).seconds_content(), 1);
  EXPECT_EQ(StoredTime(variant).fractional_content(), 500'000u);
  EXPECT_EQ((GetValue<std::chrono::nanoseconds, std::micro>(variant)), 1500ms);

  variant.mutable_scalar_data()->mutable_duration_content()->set_fractional_content(999'999);
  EXPECT_EQ((GetValue<std::chrono::microseconds, std::micro>(variant)), 1'999'999us);
  variant.mutable_scalar_data()->mutable_duration_content()->set_fractional_content(1'000'000);
  ExpectRefused([&] { GetValue<std::chrono::microseconds, std::micro>(variant); },
                {"fraction 1000000", "one second"});
  // In nanoseconds the same fraction is a millisecond.
  EXPECT_EQ(GetValue<std::chrono::nanoseconds>(variant), 1001ms);
}

TEST(ValuesTime, ATimeTheAskedTypeCannotHoldIsRefused) {
  KVariant variant;
  SetValue(variant, std::chrono::seconds(1'000'000'000'000));
  EXPECT_EQ(GetValue<std::chrono::seconds>(variant), std::chrono::seconds(1'000'000'000'000));
  ExpectRefused([&] { GetValue<std::chrono::nanoseconds>(variant); }, {"1000000000000 seconds"});
  // One tick past either end of nanoseconds.
  SetValue(variant, std::chrono::nanoseconds::max());
  variant.mutable_scalar_data()->mutable_duration_content()->set_fractional_content(854'775'808);
  ExpectRefused([&] { GetValue<std::chrono::nanoseconds>(variant); }, {"9223372036 seconds"});
  SetValue(variant, std::chrono::nanoseconds::min());
  variant.mutable_scalar_data()->mutable_duration_content()->set_fractional_content(145'224'191);
  ExpectRefused([&] { GetValue<std::chrono::nanoseconds>(variant); }, {"-9223372037 seconds"});
}

// Every value the layer writes reads back exactly into its own type, up to
// the ends of the std::chrono types.
template <typename T, typename Fraction = std::nano>
void ExpectEndsReadBack() {
  for (const T value : {T::min(), T::max(), T::min() + typename T::duration(1),
                        T::max() - typename T::duration(1)}) {
    KVariant variant;
    SetValue<Fraction>(variant, value);
    EXPECT_EQ((GetValue<T, Fraction>(variant)), value) << typeid(T).name();
  }
}
TEST(ValuesTime, TheEndsOfEveryChronoTypeReadBack) {
  using std::chrono::system_clock;
  using std::chrono::time_point;
  ExpectEndsReadBack<system_clock::time_point>();
  ExpectEndsReadBack<time_point<system_clock, std::chrono::nanoseconds>>();
  ExpectEndsReadBack<time_point<system_clock, std::chrono::microseconds>>();
  ExpectEndsReadBack<time_point<system_clock, std::chrono::microseconds>, std::micro>();
  ExpectEndsReadBack<time_point<system_clock, std::chrono::milliseconds>>();
  ExpectEndsReadBack<time_point<system_clock, std::chrono::seconds>>();
  ExpectEndsReadBack<time_point<std::chrono::steady_clock, std::chrono::nanoseconds>>();
  const auto durations = [](auto duration) {
    using D = decltype(duration);
    for (const D value : {D::min(), D::max(), D(-1), D(0)}) {
      KVariant variant;
      SetValue(variant, value);
      EXPECT_EQ(GetValue<D>(variant), value) << typeid(D).name();
    }
  };
  durations(std::chrono::nanoseconds());
  durations(std::chrono::microseconds());
  durations(std::chrono::milliseconds());
  durations(std::chrono::seconds());
}

TEST(ValuesArrays, OrderAndShapeAreWrittenAndChecked) {
  KVariant variant;
  const std::vector<int32_t> values = {1, 2, 3, 4, 5, 6};
  SetArray(variant, values, {3, 2}, Order::kF);
  EXPECT_EQ(variant.array_data().dataorder(), "F");
  EXPECT_EQ(Shape(variant.array_data().dimensions()), Shape({3, 2}));

  // Another sender's array: no dimensions and no order read as 1-D, 'C'.
  variant.mutable_array_data()->clear_dimensions();
  variant.mutable_array_data()->clear_dataorder();
  ArrayView<int32_t> view = ViewArray<int32_t>(variant);
  EXPECT_EQ(view.shape(), Shape({6}));
  EXPECT_EQ(view.order(), Order::kC);

  EXPECT_EQ(ParseOrder("F"), Order::kF);
  variant.mutable_array_data()->set_dataorder("K");
  ExpectRefused([&] { ViewArray<int32_t>(variant); }, {"unknown data order 'K'"});
  variant.mutable_array_data()->set_dataorder("C");
  variant.mutable_array_data()->add_dimensions(4);
  EXPECT_FALSE(ShapeMatches(variant));
  ExpectRefused([&] { ReadArray<int32_t>(variant); }, {"shape 4", "6 elements"});
  try {
    ReadArray<int32_t>(variant);
  } catch (const ValueError& error) {
    EXPECT_EQ(std::string(error.what()).find("complex"), std::string::npos) << error.what();
  }

  variant.mutable_array_data()->mutable_complexfloat_content()->add_float_content(1);
  variant.mutable_array_data()->set_dimensions(0, 1);
  ExpectRefused([&] { ViewArray<std::complex<float>>(variant); }, {"complex"});
}

TEST(ValuesArrays, ACountThatIsNotTheShapesProductWritesNothing) {
  KVariant variant;
  SetValue(variant, 0.25);
  const KVariant before = variant;
  const std::vector<double> six(6, 1.0);
  ExpectRefused([&] { SetArray(variant, six, {2, 2}); }, {"shape 2x2", "4 elements", "6"});
  ExpectRefused([&] { SetArray(variant, six, Shape()); }, {"at least one dimension"});
  ExpectRefused([&] { SetArray(variant, six.data(), six.size(), {1, 2, 4}); }, {"8 elements"});
  ExpectRefused([&] { SetArray(variant, six, {6}, static_cast<Order>('X')); },
                {"unknown data order 'X'"});
  EXPECT_TRUE(Equal(variant, before));
  EXPECT_EQ(FormOf(variant), Form::kScalar);
  // Any zero extent makes an empty array, however large the others.
  KVariant empty;
  SetArray(empty, std::vector<double>(), {65536, 65536, 65536, 65536, 0});
  EXPECT_EQ(ViewArray<double>(empty).shape().ElementCount(), 0u);
  EXPECT_EQ((Shape{0, 65536, 65536, 65536, 65536}.ElementCount()), 0u);

  PropertyNode node;
  Child(node, "kept");
  EXPECT_THROW(SetArray(node, six, {5}), ValueError);
  EXPECT_TRUE(node.has_map_type()) << "a refused array replaced the node's map";
}

TEST(ValuesNarrow, StoredValuesOutsideTheAskedRangeAreRefused) {
  KVariant variant;
  variant.mutable_scalar_data()->set_int8_content(300);
  ExpectRefused([&] { GetValue<int8_t>(variant); }, {"value 300", "int8"});
  variant.mutable_scalar_data()->set_unsignedint16_content(65535);
  EXPECT_EQ(GetValue<uint16_t>(variant), 65535);
  variant.mutable_scalar_data()->set_int16_content(-32769);
  ExpectRefused([&] { GetValue<int16_t>(variant); }, {"-32769", "int16"});

  SetArray(variant, std::vector<uint16_t>{1, 2, 3}, {3});
  variant.mutable_array_data()->mutable_unsignedint16_content()->set_unsignedint16_content(1, 70000);
  ExpectRefused([&] { ReadArray<uint16_t>(variant); }, {"element 1 (70000)", "uint16"});
  uint16_t buffer[3] = {9, 9, 9};
  ExpectRefused([&] { CopyArray(variant, buffer, 3); }, {"element 1"});
  EXPECT_EQ(buffer[0], 9) << "a refused copy wrote into the buffer";

  variant.mutable_array_data()->mutable_unsignedint16_content()->set_unsignedint16_content(1, 7);
  ExpectRefused([&] { CopyArray(variant, buffer, 2); }, {"3 elements", "holds 2"});
  const ArrayView<uint16_t> copy = CopyArray(variant, buffer, 3);
  EXPECT_EQ(copy.data(), buffer);
  EXPECT_EQ(std::vector<uint16_t>(copy.begin(), copy.end()), (std::vector<uint16_t>{1, 7, 3}));
}

TEST(ValuesViews, ViewsPointIntoTheMessage) {
  KVariant variant;
  SetArray(variant, std::vector<double>{1, 2, 3, 4}, {2, 2});
  EXPECT_EQ(ViewArray<double>(variant).data(),
            variant.array_data().double_content().double_content().data());

  SetArray(variant, std::vector<uint8_t>{1, 2, 255}, {3});
  const ArrayView<uint8_t> bytes = ViewArray<uint8_t>(variant);
  EXPECT_EQ(static_cast<const void*>(bytes.data()),
            static_cast<const void*>(variant.array_data().unsignedint8_content().unsignedint8_content().data()));
  EXPECT_EQ(bytes[2], 255);

  SetArray(variant, std::vector<std::complex<double>>{{1, 2}, {3, 4}}, {2});
  const ArrayView<std::complex<double>> complex = ViewArray<std::complex<double>>(variant);
  EXPECT_EQ(static_cast<const void*>(complex.data()),
            static_cast<const void*>(variant.array_data().complexdouble_content().double_content().data()));
  EXPECT_EQ(complex[1], std::complex<double>(3, 4));

  SetArray(variant, std::vector<std::string>{"ab", "c"});
  const Array<std::string_view> text = ReadArray<std::string_view>(variant);
  EXPECT_EQ(text.values[0].data(), variant.array_data().string_content().string_content(0).data());
}

TEST(ValuesKinds, NamesParseBackAndEachTypeHasOneKind) {
  for (Kind kind : kAllKinds) EXPECT_EQ(ParseKind(KindName(kind)), kind);
  EXPECT_EQ(ParseKind("float"), std::nullopt);
  EXPECT_EQ(KindName(Kind::kComplex128), "complex128");
  EXPECT_EQ(KindName(Kind::kTimePoint), "datetime64");

  KVariant variant;
  SetValue(variant, true);
  EXPECT_EQ(KindOf(variant), Kind::kBool);
  SetArray(variant, std::vector<bool>{true, false, true});
  EXPECT_EQ(ReadArray<bool>(variant).values, (std::vector<bool>{true, false, true}));
  // Braced lists: integers stay integers, whatever their values.
  SetArray(variant, {1, 0, 1});
  EXPECT_EQ(KindOf(variant), Kind::kInt32);
  SetArray(variant, {16, 32, 256, 512}, {2, 2}, Order::kF);
  EXPECT_EQ(ReadArray<int32_t>(variant).values, (std::vector<int32_t>{16, 32, 256, 512}));
  SetArray(variant, {true, false});
  EXPECT_EQ(KindOf(variant), Kind::kBool);
  SetValue(variant, "text");
  EXPECT_EQ(KindOf(variant), Kind::kString);
  SetValue(variant, uint8_t{7});
  EXPECT_EQ(KindOf(variant), Kind::kUInt8);
  ExpectRefused([&] { GetValue<int32_t>(variant); }, {"expected an int32 scalar, found a uint8 scalar"});
  EXPECT_EQ(KindOf(KVariant()), std::nullopt);
}

}  // namespace
