#pragma once

/// MIRQOS_PRINTF_LIKE(format, first) lets the compiler check a narrow format against its arguments;
/// both are argument numbers from 1. On Windows the check follows the runtime there, which knows
/// neither %zu nor %td: cast sizes at the call.
#if defined(__MINGW32__)
#define MIRQOS_PRINTF_LIKE(format_, first_) __attribute__((format(ms_printf, format_, first_)))
#elif defined(__GNUC__)
#define MIRQOS_PRINTF_LIKE(format_, first_) __attribute__((format(printf, format_, first_)))
#else
#define MIRQOS_PRINTF_LIKE(format_, first_)
#endif
