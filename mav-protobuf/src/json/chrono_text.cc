// Time points and durations as text, exactly: integer arithmetic only, so the
// text gives back the very seconds and nanoseconds it came from.
#include <charconv>
#include <cstdio>

#include "json_internal.h"

namespace Tarnwick {
namespace MavProtobuf {
namespace json_internal {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
// 0001-01-01T00:00:00Z and 9999-12-31T23:59:59Z.
constexpr int64_t kFirstSecond = -62135596800;
constexpr int64_t kLastSecond = 253402300799;

// Days since 1970-01-01 of a proleptic Gregorian date, and back (the
// era-based algorithms, exact over the whole range written here).
int64_t DaysFromCivil(int64_t year, unsigned month, unsigned day) {
  year -= month <= 2;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const unsigned year_of_era = static_cast<unsigned>(year - era * 400);
  const unsigned day_of_year = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return era * 146097 + static_cast<int64_t>(day_of_era) - 719468;
}

void CivilFromDays(int64_t days, int64_t* year, unsigned* month, unsigned* day) {
  days += 719468;
  const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const unsigned day_of_era = static_cast<unsigned>(days - era * 146097);
  const unsigned year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const unsigned day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const unsigned shifted_month = (5 * day_of_year + 2) / 153;
  *day = day_of_year - (153 * shifted_month + 2) / 5 + 1;
  *month = shifted_month < 10 ? shifted_month + 3 : shifted_month - 9;
  *year = static_cast<int64_t>(year_of_era) + era * 400 + (*month <= 2);
}

// ".25" for 250000000 ns; nothing for 0.
void AppendFraction(uint64_t nanos, std::string* text) {
  if (nanos == 0) return;
  char digits[24];
  std::snprintf(digits, sizeof(digits), ".%09llu", static_cast<unsigned long long>(nanos));
  std::string_view fraction(digits);
  while (fraction.back() == '0') fraction.remove_suffix(1);
  text->append(fraction);
}

// Reads 1 to 9 digits after a '.', as nanoseconds; `text` starts at the '.'.
// Moves `text` past what it read.
bool ConsumeFraction(std::string_view* text, uint64_t* nanos) {
  *nanos = 0;
  if (text->empty() || text->front() != '.') return true;
  text->remove_prefix(1);
  size_t digits = 0;
  while (digits < text->size() && (*text)[digits] >= '0' && (*text)[digits] <= '9') ++digits;
  if (digits == 0 || digits > 9) return false;
  for (size_t i = 0; i < 9; ++i) *nanos = *nanos * 10 + (i < digits ? uint64_t((*text)[i] - '0') : 0);
  text->remove_prefix(digits);
  return true;
}

bool ConsumeNumber(std::string_view* text, size_t digits, unsigned* value) {
  if (text->size() < digits) return false;
  *value = 0;
  for (size_t i = 0; i < digits; ++i) {
    const char c = (*text)[i];
    if (c < '0' || c > '9') return false;
    *value = *value * 10 + unsigned(c - '0');
  }
  text->remove_prefix(digits);
  return true;
}

bool ConsumeChar(std::string_view* text, char c) {
  if (text->empty() || text->front() != c) return false;
  text->remove_prefix(1);
  return true;
}

}  // namespace

std::optional<std::string> TimePointText(int64_t seconds, uint64_t nanos) {
  if (nanos >= kNanosPerSecond || seconds < kFirstSecond || seconds > kLastSecond) return std::nullopt;
  int64_t days = seconds / kSecondsPerDay;
  int64_t second_of_day = seconds % kSecondsPerDay;
  if (second_of_day < 0) {
    second_of_day += kSecondsPerDay;
    --days;
  }
  int64_t year;
  unsigned month, day;
  CivilFromDays(days, &year, &month, &day);
  char text[32];
  std::snprintf(text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(year), month, day,
                static_cast<int>(second_of_day / 3600), static_cast<int>(second_of_day / 60 % 60),
                static_cast<int>(second_of_day % 60));
  std::string result(text);
  AppendFraction(nanos, &result);
  result += 'Z';
  return result;
}

std::optional<std::string> DurationText(int64_t seconds, uint64_t nanos) {
  if (nanos >= kNanosPerSecond) return std::nullopt;
  std::string text;
  uint64_t whole = static_cast<uint64_t>(seconds);
  if (seconds < 0) {
    text += '-';
    // -s - 1 whole seconds and the rest of the second, or -s when the
    // fraction is zero; unsigned, so the most negative count fits.
    whole = nanos == 0 ? 0 - whole : 0 - whole - 1;
    if (nanos != 0) nanos = kNanosPerSecond - nanos;
  }
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof(digits), whole).ptr);
  AppendFraction(nanos, &text);
  text += 's';
  return text;
}

std::optional<Chrono> ParseTimePoint(std::string_view text) {
  unsigned year, month, day, hour, minute, second;
  uint64_t nanos;
  if (!ConsumeNumber(&text, 4, &year) || !ConsumeChar(&text, '-') || !ConsumeNumber(&text, 2, &month) ||
      !ConsumeChar(&text, '-') || !ConsumeNumber(&text, 2, &day) || !ConsumeChar(&text, 'T') ||
      !ConsumeNumber(&text, 2, &hour) || !ConsumeChar(&text, ':') || !ConsumeNumber(&text, 2, &minute) ||
      !ConsumeChar(&text, ':') || !ConsumeNumber(&text, 2, &second) || !ConsumeFraction(&text, &nanos) ||
      text != "Z")
    return std::nullopt;
  static const unsigned kMonthDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  if (year == 0 || month < 1 || month > 12 || day < 1 || day > kMonthDays[month - 1] ||
      (month == 2 && day == 29 && !leap) || hour > 23 || minute > 59 || second > 59)
    return std::nullopt;
  const int64_t days = DaysFromCivil(year, month, day);
  return Chrono{days * kSecondsPerDay + hour * 3600 + minute * 60 + second, nanos};
}

std::optional<Chrono> ParseDuration(std::string_view text) {
  const bool negative = ConsumeChar(&text, '-');
  const char* end = text.data() + text.size();
  uint64_t whole = 0;
  const auto [rest, error] = std::from_chars(text.data(), end, whole);
  if (error != std::errc() || rest == text.data()) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(rest - text.data()));
  uint64_t nanos;
  if (!ConsumeFraction(&text, &nanos) || text != "s") return std::nullopt;
  const uint64_t kLimit = uint64_t{1} << 63;  // magnitude of the most negative count
  if (!negative) {
    if (whole >= kLimit) return std::nullopt;
    return Chrono{static_cast<int64_t>(whole), nanos};
  }
  if (nanos == 0) {
    if (whole > kLimit) return std::nullopt;
    return Chrono{static_cast<int64_t>(0 - whole), 0};
  }
  if (whole + 1 > kLimit) return std::nullopt;
  return Chrono{static_cast<int64_t>(0 - whole - 1), kNanosPerSecond - nanos};
}

}  // namespace json_internal
}  // namespace MavProtobuf
}  // namespace Tarnwick
