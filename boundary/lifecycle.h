#pragma once

#include <cstdint>

#include "store/AwsSdk.h"

/// Successful starts that are outstanding. Plain on purpose: the host serialises starts and stops.
extern std::int32_t g_nInitCount;

/// What the SDK is started and stopped with. Only the log level and the log factory are set.
extern Aws::SDKOptions g_SDKOptions;
