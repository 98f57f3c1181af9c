#include "tools/mirqos/Settings.h"

#include <gtest/gtest.h>

#include <map>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

using Variables = std::map<std::string, std::string>;

Settings Resolve(const std::vector<std::string>& given, const Variables& variables) {
    return ResolveSettings(Arguments(given, CommonOptions()),
                           [&](const std::string& name) -> std::optional<std::string> {
                               const auto found = variables.find(name);
                               return found == variables.end()
                                          ? std::nullopt
                                          : std::optional<std::string>(found->second);
                           });
}

const Variables& Keys() {
    static const Variables keys = {{"MIRQOS_ACCESS_KEY", "id"}, {"MIRQOS_SECRET_KEY", "topsecret"}};
    return keys;
}

/// The message of the usage error that it ends with; empty when there is none.
std::string UsageMessage(const std::vector<std::string>& given, const Variables& variables) {
    try {
        Resolve(given, variables);
    } catch (const Failure& failure) {
        return failure.Code() == ExitCode::Usage ? failure.what() : "";
    }
    return "";
}

Variables With(Variables variables, const std::string& name, const std::string& value) {
    variables[name] = value;
    return variables;
}

TEST(ToolSettings, KeysAloneSufficeForTheDefaults) {
    const Settings settings = Resolve({}, Keys());
    EXPECT_EQ(settings.accessKey, "id");
    EXPECT_EQ(settings.secretKey, "topsecret");
    EXPECT_EQ(settings.region, "");
    EXPECT_EQ(settings.endpoint, "");
    EXPECT_TRUE(settings.https);
    EXPECT_EQ(settings.provider, 0);
    EXPECT_EQ(settings.threads, 4U);
    EXPECT_EQ(settings.logLevel, 3);
    EXPECT_FALSE(settings.quiet);
    EXPECT_TRUE(settings.progress);
}

TEST(ToolSettings, AFlagWinsOverItsVariable) {
    Variables variables = Keys();
    variables.insert({{"MIRQOS_REGION", "r1"},
                      {"MIRQOS_ENDPOINT", "http://one:1"},
                      {"MIRQOS_THREADS", "7"},
                      {"MIRQOS_PROVIDER", "2"},
                      {"MIRQOS_LOG_LEVEL", "trace"}});
    const Settings fromVariables = Resolve({}, variables);
    EXPECT_EQ(fromVariables.region, "r1");
    EXPECT_EQ(fromVariables.endpoint, "one:1");
    EXPECT_FALSE(fromVariables.https);
    EXPECT_EQ(fromVariables.threads, 7U);
    EXPECT_EQ(fromVariables.provider, 2);
    EXPECT_EQ(fromVariables.logLevel, 6);

    const Settings fromFlags =
        Resolve({"--region=r2", "--endpoint=https://two", "--threads=2", "--provider=gcs",
                 "--log-level=0", "--access-key=other", "--secret-key=hidden"},
                variables);
    EXPECT_EQ(fromFlags.region, "r2");
    EXPECT_EQ(fromFlags.endpoint, "two");
    EXPECT_TRUE(fromFlags.https);
    EXPECT_EQ(fromFlags.threads, 2U);
    EXPECT_EQ(fromFlags.provider, 6);
    EXPECT_EQ(fromFlags.logLevel, 0);
    EXPECT_EQ(fromFlags.accessKey, "other");
    EXPECT_EQ(fromFlags.secretKey, "hidden");
}

TEST(ToolSettings, AmazonsVariablesFillInOnlyWhereNothingElseGivesAKey) {
    const Variables aws = {{"AWS_ACCESS_KEY_ID", "aws-id"},
                           {"AWS_SECRET_ACCESS_KEY", "aws-secret"}};
    EXPECT_EQ(Resolve({}, aws).accessKey, "aws-id");
    EXPECT_EQ(Resolve({}, aws).secretKey, "aws-secret");

    Variables both = aws;
    both.insert(Keys().begin(), Keys().end());
    EXPECT_EQ(Resolve({}, both).accessKey, "id");
    EXPECT_EQ(Resolve({}, both).secretKey, "topsecret");

    // one half of each would sign for an account with another's secret
    EXPECT_NE(UsageMessage({"--access-key=id"}, aws), "");
    EXPECT_NE(UsageMessage({}, With(aws, "MIRQOS_SECRET_KEY", "topsecret")), "");
}

TEST(ToolSettings, TemporaryCredentialsAreRefusedRatherThanMisused) {
    const Variables aws = {{"AWS_ACCESS_KEY_ID", "aws-id"},
                           {"AWS_SECRET_ACCESS_KEY", "aws-secret"},
                           {"AWS_SESSION_TOKEN", "token"}};
    EXPECT_NE(UsageMessage({}, aws), "");
    // they do not matter where other keys are given
    EXPECT_EQ(Resolve({}, With(Keys(), "AWS_SESSION_TOKEN", "token")).accessKey, "id");
}

TEST(ToolSettings, MissingKeysAreNamed) {
    EXPECT_NE(UsageMessage({}, {}).find("MIRQOS_ACCESS_KEY"), std::string::npos);
    EXPECT_NE(UsageMessage({"--access-key=id"}, {}).find("MIRQOS_SECRET_KEY"), std::string::npos);
    EXPECT_NE(UsageMessage({"--access-key=id", "--secret-key="}, {}).find("MIRQOS_SECRET_KEY"),
              std::string::npos);
}

TEST(ToolSettings, TheSchemeComesFromEndpointOrSwitchAndTheyMayNotDisagree) {
    EXPECT_FALSE(Resolve({"--endpoint=host", "--http"}, Keys()).https);
    EXPECT_TRUE(Resolve({"--endpoint=host"}, Keys()).https);
    EXPECT_FALSE(Resolve({"--endpoint=http://host", "--http"}, Keys()).https);
    EXPECT_TRUE(Resolve({"--endpoint=https://host", "--https"}, Keys()).https);
    EXPECT_NE(UsageMessage({"--endpoint=http://host", "--https"}, Keys()), "");
    EXPECT_NE(UsageMessage({"--endpoint=https://host", "--http"}, Keys()), "");
    EXPECT_NE(UsageMessage({"--http", "--https"}, Keys()), "");
}

TEST(ToolSettings, NumbersOutOfBoundsAreUsageErrors) {
    for (const char* const wrong :
         {"--threads=0", "--threads=65", "--threads=", "--threads=4x", "--log-level=7",
          "--log-level=loud", "--provider=-1", "--provider=100", "--provider=somebody"}) {
        EXPECT_NE(UsageMessage({wrong}, Keys()), "") << wrong;
    }
    EXPECT_EQ(Resolve({"--provider=s3-compatible"}, Keys()).provider, 2);
    EXPECT_EQ(Resolve({"--provider=5"}, Keys()).provider, 5);
}

TEST(ToolSettings, QuietTakesTheProgressAwayToo) {
    EXPECT_TRUE(Resolve({"--quiet"}, Keys()).quiet);
    EXPECT_FALSE(Resolve({"--quiet"}, Keys()).progress);
    EXPECT_FALSE(Resolve({"--no-progress"}, Keys()).progress);
    EXPECT_FALSE(Resolve({"--no-progress"}, Keys()).quiet);
}

TEST(ToolSettings, NoMessageHoldsTheSecret) {
    for (const char* const wrong : {"--threads=0", "--endpoint=a b", "--provider=x"}) {
        const std::string message = UsageMessage({wrong, "--secret-key=topsecret"}, Keys());
        EXPECT_NE(message, "");
        EXPECT_EQ(message.find("topsecret"), std::string::npos);
    }
    EXPECT_EQ(UsageMessage({"--secret-key=topsecret"}, {}).find("topsecret"), std::string::npos);
}

}  // namespace
}  // namespace Mirqos::Tool
