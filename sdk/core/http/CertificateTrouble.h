#pragma once

#include <string>

namespace Mirqos::Http {

/// Why a server's certificate was refused; both transports say it in the same words.
enum class CertificateTrouble { unknown, untrusted, expired, notYetValid, wrongHost, revoked };

/// One clause for a log line; empty for unknown.
std::string Describe(CertificateTrouble trouble, const std::string& host);

}  // namespace Mirqos::Http
