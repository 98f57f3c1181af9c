#pragma once

namespace Mirqos {

/// Newer SDKs add a checksum trailer to every upload, which several S3-compatible services refuse.
/// Where the configuration has the switch, ask for checksums only where the service requires them;
/// an SDK without it never adds any. The int and long arguments rank the overloads: the first is
/// taken where it compiles.
template <class Configuration>
auto AskForChecksumsOnlyWhenRequired(Configuration& configuration, int)
    -> decltype(void(configuration.checksumConfig.requestChecksumCalculation)) {
    auto& checksums = configuration.checksumConfig;
    using Calculation = decltype(checksums.requestChecksumCalculation);
    using Validation = decltype(checksums.responseChecksumValidation);
    checksums.requestChecksumCalculation = Calculation::WHEN_REQUIRED;
    checksums.responseChecksumValidation = Validation::WHEN_REQUIRED;
}

template <class Configuration>
void AskForChecksumsOnlyWhenRequired(Configuration&, long) {
}

}  // namespace Mirqos
