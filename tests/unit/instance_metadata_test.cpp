#include "store/InstanceMetadata.h"

#include <gtest/gtest.h>

namespace {

struct InitialValues {
    bool shouldDisableIMDS = false;
};

struct NewerConfiguration {
    NewerConfiguration() = default;
    NewerConfiguration(const InitialValues& values) : disableIMDS(values.shouldDisableIMDS) {}
    NewerConfiguration(const char* /*profile*/, bool /*disable*/ = false) {}
    explicit NewerConfiguration(bool /*smart*/, const char* /*mode*/ = "",
                                bool /*disable*/ = false) {}

    bool disableIMDS = false;
};

struct OlderConfiguration {
    OlderConfiguration() = default;
    OlderConfiguration(const char* /*profile*/) : untouched(0) {}

    int untouched = 7;
};

TEST(InstanceMetadata, AnSdkThatAsksForItIsToldNotTo) {
    EXPECT_TRUE(Mirqos::ConfigurationWithoutInstanceMetadata<NewerConfiguration>().disableIMDS);
}

TEST(InstanceMetadata, AnSdkThatDoesNotGetsItsDefaults) {
    EXPECT_EQ(Mirqos::ConfigurationWithoutInstanceMetadata<OlderConfiguration>().untouched, 7);
}

}  // namespace
