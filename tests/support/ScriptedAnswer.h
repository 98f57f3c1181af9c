#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Gate.h"

namespace Mirqos::Test {

/// What a script can do to an exchange besides answering it.
enum class Fault {
    close,  ///< the connection is closed in an orderly way
    reset,  ///< the connection is reset, so that the peer sees an error
    stall   ///< nothing more is read or sent until the server is destroyed
};

/// A place within an exchange. A place that the exchange does not get to is never hit.
class Place {
public:
    /// Once `bytes` bytes of the request's body have arrived; 0: when its head has arrived. No
    /// byte beyond it is taken from the connection before the script goes on, but for those that
    /// came in one piece with the head.
    static Place RequestByte(std::uint64_t bytes) { return {Kind::request, bytes}; }
    /// Before the answer's byte `bytes`, counted from its status line; 0: before any of it.
    static Place AnswerByte(std::uint64_t bytes) { return {Kind::answer, bytes}; }
    /// Before byte `bytes` of the answer's body as it is sent, chunk lines included; 0: after the
    /// whole head.
    static Place BodyByte(std::uint64_t bytes) { return {Kind::body, bytes}; }

private:
    friend class Answer;
    enum class Kind { request, answer, body };
    Place(Kind kind, std::uint64_t bytes) : m_kind(kind), m_bytes(bytes) {}
    Kind m_kind;
    std::uint64_t m_bytes;
};

/// An answer as the server's connection carries it out.
struct AnswerPlan {
    struct Stop {
        std::uint64_t at = 0;
        std::optional<Fault> fault;  ///< empty: wait at the gate
        Gate gate;
    };
    std::string interim;                       ///< sent as soon as the request's head has arrived
    std::string bytes;                         ///< head and body
    std::vector<Stop> requestStops;            ///< by body byte of the request, in order
    std::vector<Stop> answerStops;             ///< by byte of `bytes`, in order
    std::optional<std::uint64_t> answerAfter;  ///< request body bytes; empty: all of them
    bool closes = false;                       ///< the connection ends with this answer
};

/// Describes one answer and what goes wrong with it. A value: copies are independent, but share
/// their gates. The members that add to it return the answer itself, to be chained:
///
///     Answer::Status(200).Header("ETag", "\"1\"").Body("0123456789").Reset(Place::BodyByte(5))
class Answer {
public:
    /// A well-formed answer with that status, without a body until Body() gives it one.
    static Answer Status(int status);
    /// These bytes to the letter instead of a well-formed answer. The connection is closed after
    /// them unless KeepAlive() is called. Header(), Body() and the like have no effect.
    static Answer Raw(std::string bytes);
    /// An S3 error document.
    static Answer S3Error(int status, const std::string& code, const std::string& message);

    /// Adds a header; also a second one of the same name.
    Answer& Header(std::string name, std::string value);
    /// The body, with a Content-Length of its size. An answer to HEAD keeps the length and drops
    /// the body.
    Answer& Body(std::string body);
    /// States this Content-Length instead of the body's own.
    Answer& ClaimLength(std::string length);
    /// Sends the body without a length; its end is the end of the connection.
    Answer& WithoutLength();
    /// Sends the body in chunks of `size` bytes.
    Answer& Chunked(std::size_t size);
    /// As Chunked, but without the last chunk, the empty one, and closes after it.
    Answer& ChunkedWithoutEnd(std::size_t size);
    /// Sends an interim answer such as 100 or 102 as soon as the request's head has arrived.
    Answer& Interim(int status);
    /// Answers once `bytes` bytes of the request's body have arrived, then reads the rest of it.
    Answer& AfterRequestBytes(std::uint64_t bytes);
    /// Closes the connection after the answer and says so in a header.
    Answer& ConnectionClose();
    /// Leaves the connection open after a Raw answer.
    Answer& KeepAlive();

    Answer& Close(Place place);
    Answer& Reset(Place place);
    Answer& Stall(Place place);
    /// Waits there until `gate` lets the exchange on.
    Answer& Wait(Place place, Gate gate);
    /// Sends the body `step` bytes at a time; each piece waits at `gate` first.
    Answer& Trickle(std::size_t step, Gate gate);

    AnswerPlan Plan(bool toHead) const;

private:
    struct PlacedStop {
        Place place;
        AnswerPlan::Stop stop;
    };
    Answer() = default;
    Answer& Add(Place place, std::optional<Fault> fault, Gate gate);
    std::string HeadBytes(std::size_t bodySize) const;
    std::string BodyBytes() const;

    int m_status = 200;
    std::optional<std::string> m_raw;
    std::vector<std::pair<std::string, std::string>> m_headers;
    std::string m_body;
    std::optional<std::string> m_claimedLength;
    bool m_withoutLength = false;
    std::size_t m_chunk = 0;
    bool m_withoutLastChunk = false;
    std::string m_interim;
    std::optional<std::uint64_t> m_answerAfter;
    bool m_close = false;
    std::vector<PlacedStop> m_stops;
    std::size_t m_trickleStep = 0;
    Gate m_trickleGate;
};

}  // namespace Mirqos::Test
