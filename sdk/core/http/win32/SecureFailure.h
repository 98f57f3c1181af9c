#pragma once

#include <windows.h>
// winhttp.h needs windows.h before it
#include <winhttp.h>

#include "sdk/core/http/CertificateTrouble.h"

namespace Mirqos::Http {

/// Whether an error of WinHTTP means that the handshake or the certificate was refused.
bool IsSecureFailure(DWORD error);

/// Why, from the flags of WINHTTP_CALLBACK_STATUS_SECURE_FAILURE and the error that followed.
/// Windows sends flags; Wine sends none and one error (12157) for every refusal, which is then
/// CertificateTrouble::unknown.
CertificateTrouble TroubleOf(DWORD flags, DWORD error);

}  // namespace Mirqos::Http
