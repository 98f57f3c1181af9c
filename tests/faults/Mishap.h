#pragma once

#include <aws/s3/S3Errors.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Mirqos::Test {

/// What matters of a request for what a fault does to it.
struct Sent {
    enum class Answered {
        head,      ///< to HEAD: never a body
        empty,     ///< a success has no body that anybody reads
        document,  ///< an XML document
        bytes      ///< the bytes of an object
    };
    Answered answered = Answered::empty;
    bool body = false;    ///< it has one
    bool tagged = false;  ///< a good answer has an ETag header
    bool inside = false;  ///< it asks for bytes behind the object's first
    /// What the service says to it when it has done it already and is asked again; 0: the same.
    Aws::S3::S3Errors repeated = Aws::S3::S3Errors{};
    bool takesTags = false;  ///< it sends back the tags of the answers before it
};

/// Where in an exchange a fault strikes.
enum class Stage {
    refusal,         ///< nobody listens
    connection,      ///< accepted, nothing read
    requestLine,     ///< in the middle of it
    requestHeaders,  ///< in the middle of them
    requestBody,     ///< in the middle of it
    beforeAnswer,    ///< the request is done, nothing of the answer is sent
    statusLine,      ///< in the middle of it
    answerHeaders,   ///< in the middle of them
    answerBody,      ///< in the middle of it
    end,             ///< the answer is whole
    answer           ///< the answer is another one, or comes in another way
};

enum class Harm { reset, close, stall };

/// What becomes of a request that meets a fault.
struct Effect {
    enum class Kind {
        harmless,  ///< it succeeds all the same
        retried,   ///< it is sent again, and fails when that goes on
        final      ///< it fails
    };
    static constexpr int kAllAttempts = 11;

    Kind kind;
    Aws::S3::S3Errors error;      ///< unless harmless
    int attempts = kAllAttempts;  ///< when it goes on, if retried
};

struct Mishap {
    Mishap(std::string itsName, Stage itsStage, Harm itsHarm = Harm::close)
        : name(std::move(itsName)), stage(itsStage), harm(itsHarm) {}

    std::string name;
    Stage stage;
    Harm harm;  ///< not for refusal and answer
    /// stage answer: what is sent instead of the good answer; a null one: that, in small pieces.
    std::function<std::string(const std::string& good, bool toHead)> instead;
    bool done = false;    ///< stage answer: the request is carried out before
    bool closes = false;  ///< stage answer: the connection ends after the answer
    bool losesTag = false;
    /// Nothing: the fault does not go with such a request.
    std::function<std::optional<Effect>(const Sent& sent)> effect;

    /// The service has done the request, whatever becomes of the answer.
    bool IsDone() const { return stage == Stage::answer ? done : stage >= Stage::beforeAnswer; }
};

/// All faults, each under a name of its own, in a fixed order.
const std::vector<Mishap>& Mishaps();

/// A refusal with the error whose number is that of a success. An answer without a body cannot tell
/// it.
const Mishap& RefusalNumberedZero();

}  // namespace Mirqos::Test
