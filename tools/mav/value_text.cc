#include "value_text.h"

#include <google/protobuf/stubs/strutil.h>

#include <charconv>
#include <cstdio>
#include <cmath>
#include <ctime>
#include <limits>

namespace mav_tool {
namespace {

constexpr uint64_t kNanosPerSecond = 1000000000;

std::string Number(double value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof(text), value).ptr);
}
std::string Number(float value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof(text), value).ptr);
}
template <typename Int>
std::string Number(Int value) {
  return std::to_string(value);
}

template <typename Float>
std::string ComplexText(Float re, Float im) {
  std::string imaginary = Number(im);
  if (imaginary[0] != '-') imaginary.insert(0, "+");
  return Number(re) + imaginary + "i";
}

std::string RawChrono(const ChronoData& chrono) {
  return "[" + std::to_string(chrono.seconds_content()) + " s, " + std::to_string(chrono.fractional_content()) +
         " fraction]";
}

std::string TimePointText(const ChronoData& chrono) {
  const std::time_t seconds = static_cast<std::time_t>(chrono.seconds_content());
  std::tm utc;
  if (chrono.fractional_content() >= kNanosPerSecond || gmtime_r(&seconds, &utc) == nullptr) return RawChrono(chrono);
  char text[64];
  const size_t length = std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &utc);
  std::string result(text, length);
  if (chrono.fractional_content() != 0) {
    char fraction[24];
    std::snprintf(fraction, sizeof(fraction), ".%09llu", static_cast<unsigned long long>(chrono.fractional_content()));
    std::string digits(fraction);
    while (digits.back() == '0') digits.pop_back();
    result += digits;
  }
  return result + "Z";
}

// 1.5 s, 250 ms, 3 h 2 min 5 s: the value to nanosecond precision in the
// largest unit that keeps it readable.
std::string DurationText(const ChronoData& chrono) {
  if (chrono.fractional_content() >= kNanosPerSecond) return RawChrono(chrono);
  const long double total = static_cast<long double>(chrono.seconds_content()) +
                            static_cast<long double>(chrono.fractional_content()) / kNanosPerSecond;
  const long double magnitude = std::fabs(total);
  char text[64];
  if (magnitude >= 3600) {
    const long double hours = std::floor(magnitude / 3600);
    const long double minutes = std::floor((magnitude - hours * 3600) / 60);
    std::snprintf(text, sizeof(text), "%s%.0Lf h %.0Lf min %.9Lg s", total < 0 ? "-" : "", hours, minutes,
                  magnitude - hours * 3600 - minutes * 60);
  } else if (magnitude >= 60) {
    const long double minutes = std::floor(magnitude / 60);
    std::snprintf(text, sizeof(text), "%s%.0Lf min %.9Lg s", total < 0 ? "-" : "", minutes, magnitude - minutes * 60);
  } else if (magnitude >= 1 || magnitude == 0) {
    std::snprintf(text, sizeof(text), "%.10Lg s", total);
  } else if (magnitude >= 1e-3L) {
    std::snprintf(text, sizeof(text), "%.7Lg ms", total * 1e3L);
  } else if (magnitude >= 1e-6L) {
    std::snprintf(text, sizeof(text), "%.4Lg us", total * 1e6L);
  } else {
    std::snprintf(text, sizeof(text), "%.0Lf ns", total * 1e9L);
  }
  return text;
}


// Calls `each(text, number)` for element i of the array: its text, and its
// value as a number where it has one (NaN otherwise), in a long double, which
// holds every 64-bit integer exactly.
template <typename Each>
void ForEachElement(const ArrayDataUnion& array, Kind kind, size_t limit, Each&& each) {
  const auto numbers = [&](const auto& values) {
    for (int i = 0; i < values.size() && size_t(i) < limit; ++i) each(Number(values.Get(i)), static_cast<long double>(values.Get(i)));
  };
  const auto bytes = [&](const std::string& values, auto type) {
    for (size_t i = 0; i < values.size() && i < limit; ++i) {
      const auto value = static_cast<decltype(type)>(values[i]);
      each(std::to_string(value), static_cast<long double>(value));
    }
  };
  const auto pairs = [&](const auto& parts) {
    for (int i = 0; i + 1 < parts.size() && size_t(i / 2) < limit; i += 2)
      each(ComplexText(parts.Get(i), parts.Get(i + 1)), std::nanl(""));
  };
  const auto chronos = [&](const ArrayChronoData& values, std::string (*text)(const ChronoData&)) {
    for (int i = 0; i < values.chrono_content_size() && size_t(i) < limit; ++i)
      each(text(values.chrono_content(i)), std::nanl(""));
  };
  switch (kind) {
    case Kind::kString:
      for (int i = 0; i < array.string_content().string_content_size() && size_t(i) < limit; ++i)
        each("\"" + EscapedText(array.string_content().string_content(i)) + "\"", std::nanl(""));
      break;
    case Kind::kFloat32: numbers(array.float_content().float_content()); break;
    case Kind::kFloat64: numbers(array.double_content().double_content()); break;
    case Kind::kInt8: bytes(array.int8_content().int8_content(), int8_t{}); break;
    case Kind::kInt16: numbers(array.int16_content().int16_content()); break;
    case Kind::kInt32: numbers(array.int32_content().int32_content()); break;
    case Kind::kInt64: numbers(array.int64_content().int64_content()); break;
    case Kind::kUInt8: bytes(array.unsignedint8_content().unsignedint8_content(), uint8_t{}); break;
    case Kind::kUInt16: numbers(array.unsignedint16_content().unsignedint16_content()); break;
    case Kind::kUInt32: numbers(array.unsignedint32_content().unsignedint32_content()); break;
    case Kind::kUInt64: numbers(array.unsignedint64_content().unsignedint64_content()); break;
    case Kind::kBool:
      for (int i = 0; i < array.bool_content().bool_content_size() && size_t(i) < limit; ++i)
        each(array.bool_content().bool_content(i) ? "true" : "false", std::nanl(""));
      break;
    case Kind::kComplex64: pairs(array.complexfloat_content().float_content()); break;
    case Kind::kComplex128: pairs(array.complexdouble_content().double_content()); break;
    case Kind::kDuration: chronos(array.duration_content(), DurationText); break;
    case Kind::kTimePoint: chronos(array.timepoint_content(), TimePointText); break;
  }
}

}  // namespace

std::string EscapedText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const size_t valid = static_cast<size_t>(google::protobuf::internal::UTF8SpnStructurallyValid(
        google::protobuf::StringPiece(bytes.data(), bytes.size())));
    for (const char c : bytes.substr(0, valid)) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte >= 0x20 && byte != 0x7F && c != '"' && c != '\\') {
        text += c;
      } else {
        text += google::protobuf::CEscape(std::string(1, c));
      }
    }
    if (valid == bytes.size()) break;
    char escaped[8];
    std::snprintf(escaped, sizeof(escaped), "\\x%02X", static_cast<unsigned char>(bytes[valid]));
    text += escaped;
    bytes.remove_prefix(valid + 1);
  }
  return text;
}

std::string ScalarText(const ScalarDataUnion& scalar) {
  const std::optional<Kind> kind = KindOf(scalar);
  if (!kind) return "(no value)";
  switch (*kind) {
    case Kind::kString: return scalar.string_content();
    case Kind::kFloat32: return Number(scalar.float_content());
    case Kind::kFloat64: return Number(scalar.double_content());
    case Kind::kInt8: return Number(scalar.int8_content());
    case Kind::kInt16: return Number(scalar.int16_content());
    case Kind::kInt32: return Number(scalar.int32_content());
    case Kind::kInt64: return Number(scalar.int64_content());
    case Kind::kUInt8: return Number(scalar.unsignedint8_content());
    case Kind::kUInt16: return Number(scalar.unsignedint16_content());
    case Kind::kUInt32: return Number(scalar.unsignedint32_content());
    case Kind::kUInt64: return Number(scalar.unsignedint64_content());
    case Kind::kBool: return scalar.bool_content() ? "true" : "false";
    case Kind::kComplex64:
      return ComplexText(scalar.complexfloat_content().re_content(), scalar.complexfloat_content().im_content());
    case Kind::kComplex128:
      return ComplexText(scalar.complexdouble_content().re_content(), scalar.complexdouble_content().im_content());
    case Kind::kDuration: return DurationText(scalar.duration_content());
    case Kind::kTimePoint: return TimePointText(scalar.timepoint_content());
  }
  return {};
}

std::string ArrayText(const ArrayDataUnion& array, char separator) {
  std::string text;
  if (const std::optional<Kind> kind = KindOf(array)) {
    ForEachElement(array, *kind, std::numeric_limits<size_t>::max(), [&](const std::string& element, long double) {
      text += element;
      text += separator;
    });
  }
  return text;
}

std::string ArraySummary(const ArrayDataUnion& array, size_t shown) {
  const std::optional<Kind> kind = KindOf(array);
  if (!kind) return "(no elements)";
  const size_t count = StoredElementCount(array);
  std::string text = "[";
  long double least = std::numeric_limits<long double>::infinity(), most = -least, sum = 0;
  size_t numbers = 0, index = 0;
  ForEachElement(array, *kind, count, [&](const std::string& element, long double number) {
    if (index < shown) text += (index > 0 ? ", " : "") + element;
    ++index;
    if (std::isnan(number)) return;
    least = std::min(least, number);
    most = std::max(most, number);
    sum += number;
    ++numbers;
  });
  if (count > shown) text += ", ...";
  text += "]";
  if (numbers > 1) {
    const bool integral = *kind != Kind::kFloat32 && *kind != Kind::kFloat64;
    const auto format = [](const char* form, long double value) {
      if (std::isnan(value)) return std::string("nan");
      char number[64];
      std::snprintf(number, sizeof(number), form, value);
      return std::string(number);
    };
    const char* extreme = integral ? "%.0Lf" : "%.6Lg";
    text += " min " + format(extreme, least) + " max " + format(extreme, most) + " mean " +
            format("%.6Lg", sum / static_cast<long double>(numbers));
  }
  return text;
}

}  // namespace mav_tool
