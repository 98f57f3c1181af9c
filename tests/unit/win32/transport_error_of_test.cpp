#include <gtest/gtest.h>

#include "sdk/core/http/win32/AsyncRequest.h"

namespace Mirqos::Http {
namespace {

TEST(ErrorOf, SaysWhyACallFailedAndNeverThatItDidNot) {
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(FALSE), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(ErrorOf(FALSE), static_cast<DWORD>(ERROR_WINHTTP_INTERNAL_ERROR));
}

TEST(ErrorOf, IsNotMisledByTheErrorOfACallBefore) {
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(TRUE), static_cast<DWORD>(ERROR_SUCCESS));
}

}  // namespace
}  // namespace Mirqos::Http
