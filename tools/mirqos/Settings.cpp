#include "tools/mirqos/Settings.h"

#include <algorithm>
#include <utility>

#include "tools/mirqos/Endpoint.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

constexpr std::uint64_t kMostThreads = 64;
constexpr std::uint64_t kHighestProvider = 99;

using Names = std::vector<std::pair<const char*, std::int32_t>>;

const Names& ProviderNames() {
    static const Names names = {
        {"s3", 0}, {"aws", 0}, {"s3-compatible", 2}, {"gcs", 6}, {"google", 6}};
    return names;
}

const Names& LevelNames() {
    static const Names names = {{"off", 0},  {"fatal", 1}, {"error", 2}, {"warn", 3},
                                {"info", 4}, {"debug", 5}, {"trace", 6}};
    return names;
}

/// The option's value, or else its variable's.
class Lookup {
public:
    Lookup(const Arguments& arguments, const Environment& environment)
        : m_arguments(arguments), m_environment(environment) {}

    std::optional<std::string> Text(std::string_view option) const {
        if (auto value = m_arguments.Value(option)) {
            return value;
        }
        const auto& options = CommonOptions();
        const auto known = std::find_if(options.begin(), options.end(),
                                        [&](const Option& o) { return o.name == option; });
        return m_environment(std::string(known->environment));
    }

    /// A number from `least` to `most`, or one of `names`.
    std::int32_t Number(std::string_view option, std::int32_t otherwise, std::uint64_t least,
                        std::uint64_t most, const Names& names = {}) const {
        const auto text = Text(option);
        if (!text) {
            return otherwise;
        }
        std::string known;
        for (const auto& [name, number] : names) {
            if (*text == name) {
                return number;
            }
            known += std::string(", ") + name;
        }
        if (const auto number = ParseNumber(*text, least, most)) {
            return static_cast<std::int32_t>(*number);
        }
        throw Failure(ExitCode::Usage, "--" + std::string(option) + " has to be a number from " +
                                           std::to_string(least) + " to " + std::to_string(most) +
                                           (known.empty() ? "" : " or one of" + known.substr(1)));
    }

private:
    const Arguments& m_arguments;
    const Environment& m_environment;
};

void ResolveKeys(const Lookup& lookup, const Environment& environment, Settings& settings) {
    auto access = lookup.Text("access-key");
    auto secret = lookup.Text("secret-key");
    if (!access && !secret) {
        access = environment("AWS_ACCESS_KEY_ID");
        secret = environment("AWS_SECRET_ACCESS_KEY");
        if (access && secret && environment("AWS_SESSION_TOKEN")) {
            throw Failure(ExitCode::Usage,
                          "AWS_SESSION_TOKEN is set: temporary credentials are not supported; give "
                          "a lasting key pair in MIRQOS_ACCESS_KEY and MIRQOS_SECRET_KEY");
        }
    }
    if (!access || access->empty()) {
        throw Failure(ExitCode::Usage,
                      "no access key: set MIRQOS_ACCESS_KEY (see mirqos --help, Credentials)");
    }
    if (!secret || secret->empty()) {
        throw Failure(ExitCode::Usage,
                      "no secret key: set MIRQOS_SECRET_KEY (see mirqos --help, Credentials)");
    }
    settings.accessKey = *access;
    settings.secretKey = *secret;
}

void ResolveService(const Arguments& arguments, const Lookup& lookup, Settings& settings) {
    settings.region = lookup.Text("region").value_or("");
    std::optional<bool> scheme;
    if (const auto text = lookup.Text("endpoint"); text && !text->empty()) {
        const Endpoint endpoint = ParseEndpoint(*text);
        settings.endpoint = endpoint.host;
        scheme = endpoint.https;
    }
    const bool http = arguments.Has("http");
    const bool https = arguments.Has("https");
    if ((http && https) || (scheme && ((*scheme && http) || (!*scheme && https)))) {
        throw Failure(ExitCode::Usage,
                      "--http, --https and the endpoint's scheme contradict each other");
    }
    settings.https = scheme.value_or(!http);
}

}  // namespace

const std::vector<Option>& CommonOptions() {
    static const std::vector<Option> options = {
        {"endpoint", "URL", "MIRQOS_ENDPOINT",
         "the service, as in http://127.0.0.1:8000; without it, Amazon S3"},
        {"region", "NAME", "MIRQOS_REGION", "the region, as in eu-central-1"},
        {"access-key", "ID", "MIRQOS_ACCESS_KEY", "public part of the key pair"},
        {"secret-key", "SECRET", "MIRQOS_SECRET_KEY",
         "secret part; better in the variable, because flags are visible in process lists"},
        {"provider", "KIND", "MIRQOS_PROVIDER",
         "s3 (default), s3-compatible, gcs, or the library's number for it; with gcs and with 5, "
         "\"@\" in keys is stored as \"+\""},
        {"threads", "N", "MIRQOS_THREADS", "requests at the same time, 1 to 64 (default 4)"},
        {"http", "", "", "plain HTTP, also where the endpoint names no scheme"},
        {"https", "", "", "HTTPS (the default where the endpoint names no scheme)"},
        {"log-level", "LEVEL", "MIRQOS_LOG_LEVEL",
         "what the S3 client writes to the library's log: off, fatal, error, warn (default), info, "
         "debug, trace, or 0 to 6"},
        {"quiet", "", "", "say nothing but errors and what a command is there to show"},
        {"no-progress", "", "", "no progress bar, but the result"},
        {"help", "", "", "this text, or a command's with the command in front", 'h'},
        {"version", "", "", "the version"},
    };
    return options;
}

Settings ResolveSettings(const Arguments& arguments, const Environment& environment) {
    const Lookup lookup(arguments, environment);
    Settings settings;
    ResolveService(arguments, lookup, settings);
    ResolveKeys(lookup, environment, settings);
    settings.provider =
        lookup.Number("provider", settings.provider, 0, kHighestProvider, ProviderNames());
    settings.threads = static_cast<unsigned>(
        lookup.Number("threads", static_cast<std::int32_t>(settings.threads), 1, kMostThreads));
    settings.logLevel = lookup.Number("log-level", settings.logLevel, 0, 6, LevelNames());
    settings.quiet = arguments.Has("quiet");
    settings.progress = !settings.quiet && !arguments.Has("no-progress");
    return settings;
}

}  // namespace Mirqos::Tool
