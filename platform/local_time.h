#pragma once

namespace Mirqos {

/// A moment in the machine's time zone, as log lines show it.
struct LocalTime {
    int year;    ///< all four digits
    int month;   ///< 1 to 12
    int day;     ///< 1 to 31
    int hour;    ///< 0 to 23
    int minute;  ///< 0 to 59
    int second;  ///< 0 to 60
    int millisecond;
};

LocalTime CurrentLocalTime();

}  // namespace Mirqos
