#pragma once

#include <string>

#include "tests/support/ScriptedServer.h"

namespace Mirqos::Test {

/// Recomputes the signature of a request from what arrived on the wire, as a service does: the
/// target as received, the headers that the request itself says it signed. Uses the digests of the
/// product and nothing else of it.
/// Returns an empty text when everything agrees, otherwise what does not.
std::string SignatureProblem(const RecordedRequest& request, const std::string& keyId,
                             const std::string& secret, const std::string& region);

/// Whether an installed SDK adds a header of that name, in small letters, to every request: what it
/// tells of itself, of the attempt and of the protocols it could speak.
bool IsOfTheSdkItself(const std::string& header);

/// The "SignedHeaders" list of the request's Authorization header, without those of the SDK itself.
std::string SignedHeadersOf(const RecordedRequest& request);

/// A path, of which nothing but letters, digits, "-", ".", "_", "~" and "/" stands as it is, as the
/// SDK writes it: an installed one leaves some characters more. Its signature is the same.
std::string PathOnWire(std::string encoded);
/// What PathOnWire() was given.
std::string CanonicalPath(std::string path);

/// Lower-case hexadecimal SHA-256.
std::string Sha256Of(const std::string& bytes);

/// Base64 of the MD5, as Content-MD5 carries it.
std::string Md5Of(const std::string& bytes);
/// The value of Content-MD5 with an object or part of these bytes: 1.11 adds it of its own.
std::string Md5OfUploads(const std::string& bytes);

}  // namespace Mirqos::Test
