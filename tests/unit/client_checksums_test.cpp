#include "store/ClientChecksums.h"

#include <gtest/gtest.h>

namespace {

enum class Calculation { WHEN_SUPPORTED, WHEN_REQUIRED };
enum class Validation { WHEN_SUPPORTED, WHEN_REQUIRED };

struct NewerConfiguration {
    struct {
        Calculation requestChecksumCalculation = Calculation::WHEN_SUPPORTED;
        Validation responseChecksumValidation = Validation::WHEN_SUPPORTED;
    } checksumConfig;
};

struct OlderConfiguration {
    int untouched = 7;
};

TEST(ClientChecksums, AnSdkWithTheSwitchIsAskedForThemOnlyWhenRequired) {
    NewerConfiguration configuration;
    Mirqos::AskForChecksumsOnlyWhenRequired(configuration, 0);
    EXPECT_EQ(configuration.checksumConfig.requestChecksumCalculation, Calculation::WHEN_REQUIRED);
    EXPECT_EQ(configuration.checksumConfig.responseChecksumValidation, Validation::WHEN_REQUIRED);
}

TEST(ClientChecksums, AnSdkWithoutTheSwitchIsLeftAlone) {
    OlderConfiguration configuration;
    Mirqos::AskForChecksumsOnlyWhenRequired(configuration, 0);
    EXPECT_EQ(configuration.untouched, 7);
}

}  // namespace
