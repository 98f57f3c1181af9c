#pragma once

namespace Aws::Client {

/// Names the policies of Signature V4; requests are signed inside the client.
class AWSAuthV4Signer {
public:
    AWSAuthV4Signer() = delete;

    /// Whether the signature covers the body's digest. Over plain HTTP it always does.
    enum class PayloadSigningPolicy {
        RequestDependent,  ///< covers all bodies but streams
        Always,
        Never
    };
};

}  // namespace Aws::Client
