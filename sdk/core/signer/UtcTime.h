#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// The two ways a time is written in S3's protocol. Always UTC and English, whatever the locale and
/// the time zone of the process are.
namespace Mirqos {

using UtcTime = std::chrono::system_clock::time_point;

/// "YYYYMMDDTHHMMSSZ", as the x-amz-date header has it. Needs a time from 1970 on.
std::string FormatAmzDate(UtcTime time);

/// Reads "Sun, 06 Nov 1994 08:49:37 GMT", the form of a Date header. Nothing for any other text and
/// for years outside 1970 to 2200.
std::optional<UtcTime> ParseHttpDate(std::string_view text);

}  // namespace Mirqos
