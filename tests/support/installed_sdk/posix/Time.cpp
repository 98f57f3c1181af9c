// Gives an installed SDK the seam's clock and wait between attempts: the linker's --wrap puts the
// functions here in place of DateTime::Now() and HttpClient::RetryRequestSleep(), whose names it
// knows as GCC and Clang mangle them.
#include <aws/core/http/HttpClient.h>
#include <aws/core/utils/DateTime.h>

#include <chrono>

#include "sdk/core/Seam.h"

namespace Mirqos::Test {

using Aws::Http::HttpClient;
using Aws::Utils::DateTime;

DateTime RealNow() __asm__("__real__ZN3Aws5Utils8DateTime3NowEv");
DateTime Now() __asm__("__wrap__ZN3Aws5Utils8DateTime3NowEv");
DateTime Now() {
    return TheSeam().now ? DateTime(TheSeam().now()) : RealNow();
}

void RealSleep(HttpClient* client, std::chrono::milliseconds wait) __asm__(
    "__real__"
    "ZN3Aws4Http10HttpClient17RetryRequestSleepENSt6chrono8durationIlSt5ratioILl1ELl1000EEEE");
void Sleep(HttpClient* client, std::chrono::milliseconds wait) __asm__(
    "__wrap__"
    "ZN3Aws4Http10HttpClient17RetryRequestSleepENSt6chrono8durationIlSt5ratioILl1ELl1000EEEE");
void Sleep(HttpClient* client, std::chrono::milliseconds wait) {
    if (TheSeam().sleep) {
        TheSeam().sleep(wait);
    } else {
        RealSleep(client, wait);
    }
}

}  // namespace Mirqos::Test
