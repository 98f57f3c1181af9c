#include "tests/faults/Mishap.h"

#include <cstddef>
#include <utility>

#include "tests/support/ScriptedAnswer.h"
#include "tests/support/UsedSdk.h"

namespace Mirqos::Test {
namespace {

using Aws::S3::S3Errors;
using Answered = Sent::Answered;
using Judge = std::function<std::optional<Effect>(const Sent&)>;

const Effect kHarmless{Effect::Kind::harmless, {}};
const Effect kLostConnection{Effect::Kind::retried, S3Errors::NETWORK_CONNECTION};
const Effect kNotUnderstood{Effect::Kind::final, S3Errors::UNKNOWN};

Effect Retried(S3Errors error) {
    return {Effect::Kind::retried, error};
}

Judge Always(const Effect& effect) {
    return [effect](const Sent&) { return effect; };
}

/// Where the answer to a success is read for what it says. The bytes of an object are whatever they
/// are: nothing tells them from a page of somebody else.
Judge WhereRead(const Effect& effect) {
    return [effect](const Sent& sent) -> std::optional<Effect> {
        if (sent.answered == Answered::document || sent.answered == Answered::empty) {
            return effect;
        }
        return std::nullopt;
    };
}

Judge Where(Answered answered, const Effect& effect) {
    return [answered, effect](const Sent& sent) {
        return sent.answered == answered ? std::optional<Effect>(effect) : std::nullopt;
    };
}

Judge WhereTagged(const Effect& effect) {
    return [effect](const Sent& sent) {
        return sent.tagged ? std::optional<Effect>(effect) : std::nullopt;
    };
}

/// Left out with an installed SDK, which takes such an answer for a success, or goes where it
/// points.
Judge NotWithInstalledSdk(Judge effect) {
    return kBundledSdk ? effect : Judge([](const Sent&) { return std::nullopt; });
}

/// The error that is made of a status alone. An installed SDK makes nothing of most.
S3Errors OfStatusAlone(S3Errors error) {
    return kBundledSdk ? error : S3Errors::UNKNOWN;
}

/// Another effect on a request whose answers have no body to tell the error.
Judge ByHead(const Effect& effect, const Effect& ofHead) {
    return [effect, ofHead](const Sent& sent) {
        return sent.answered == Answered::head ? ofHead : effect;
    };
}

// Bytes of answers

std::string WithoutHeader(const std::string& good, const std::string& name) {
    const std::size_t at = good.find("\r\n" + name + ":");
    return at == std::string::npos ? good
                                   : good.substr(0, at) + good.substr(good.find("\r\n", at + 2));
}

/// With a further header line after the status line.
std::string WithLine(const std::string& good, const std::string& line) {
    return std::string(good).insert(good.find("\r\n"), "\r\n" + line);
}

std::string HeaderTwice(const std::string& good, const std::string& name) {
    const std::size_t at = good.find("\r\n" + name + ":");
    return at == std::string::npos
               ? good
               : WithLine(good, good.substr(at + 2, good.find("\r\n", at + 2) - at - 2));
}

std::string BodyOf(const std::string& good) {
    return good.substr(good.find("\r\n\r\n") + 4);
}

std::string Page(const std::string& body) {
    return Answer::Status(200).Header("Content-Type", "text/html").Body(body).Plan(false).bytes;
}

// The catalogue

Mishap Instead(std::string name, Answer answer, Judge effect) {
    Mishap fault{std::move(name), Stage::answer};
    fault.instead = [answer = std::move(answer)](const std::string&, bool toHead) {
        return answer.Plan(toHead).bytes;
    };
    fault.effect = std::move(effect);
    return fault;
}

Mishap Altered(std::string name, std::function<std::string(const std::string&)> alter,
               Judge effect) {
    Mishap fault{std::move(name), Stage::answer};
    fault.done = true;
    fault.closes = true;
    fault.instead = [alter = std::move(alter)](const std::string& good, bool) {
        return alter(good);
    };
    fault.effect = std::move(effect);
    return fault;
}

void AddConnectionFaults(std::vector<Mishap>& faults) {
    Mishap refused{"refused", Stage::refusal};
    refused.effect = Always(kLostConnection);
    faults.push_back(refused);
    const std::vector<std::pair<Stage, std::string>> stages{
        {Stage::connection, "the connection"},          {Stage::requestLine, "the request line"},
        {Stage::requestHeaders, "the headers"},         {Stage::requestBody, "the body"},
        {Stage::beforeAnswer, "front of the answer"},   {Stage::statusLine, "the status line"},
        {Stage::answerHeaders, "the answer's headers"}, {Stage::answerBody, "the answer's body"}};
    const std::vector<std::pair<Harm, std::string>> harms{
        {Harm::reset, "reset in "}, {Harm::close, "cut off in "}, {Harm::stall, "stalled in "}};
    for (const auto& [stage, place] : stages) {
        for (const auto& [harm, name] : harms) {
            Mishap fault{name + place, stage, harm};
            fault.effect = [stage = stage](const Sent& sent) -> std::optional<Effect> {
                const bool answerHasBody =
                    sent.answered == Answered::document || sent.answered == Answered::bytes;
                if ((stage == Stage::requestBody && !sent.body) ||
                    (stage == Stage::answerBody && !answerHasBody)) {
                    return std::nullopt;
                }
                return kLostConnection;
            };
            if (stage == Stage::answerHeaders && harm == Harm::close) {
                fault.effect = NotWithInstalledSdk(fault.effect);
            }
            faults.push_back(fault);
        }
    }
    // No reset here: it may overtake the end of the answer or not.
    faults.emplace_back("cut off at the end", Stage::end, Harm::close);
    faults.back().effect = Always(kHarmless);
    faults.emplace_back("stalled at the end", Stage::end, Harm::stall);
    faults.back().effect = Always(kHarmless);
    faults.emplace_back("trickling", Stage::answer);
    faults.back().effect = Always(kHarmless);
    faults.back().done = true;
}

void AddGarbage(std::vector<Mishap>& faults) {
    faults.push_back(Altered(
        "garbage for a status line",
        [](const std::string&) { return std::string("\x16\x03\x01\x02 \xff no status\r\n\r\n"); },
        Always(kLostConnection)));
    faults.push_back(Altered(
        "garbage for a header",
        [](const std::string& good) { return WithLine(good, "\x01\x02 no header \xff"); },
        Always(kLostConnection)));
    faults.push_back(Altered(
        "garbage for a chunk",
        [](const std::string& good) {
            const std::string chunked =
                WithLine(WithoutHeader(good, "Content-Length"), "Transfer-Encoding: chunked");
            return chunked.substr(0, chunked.find("\r\n\r\n") + 4) + "no size\r\ngarbage\r\n";
        },
        [](const Sent& sent) -> std::optional<Effect> {
            if (sent.answered == Answered::document || sent.answered == Answered::bytes) {
                return kLostConnection;
            }
            return std::nullopt;
        }));
    faults.push_back(Altered(
        "garbage for a document",
        [](const std::string&) { return Page(std::string("\xff\xfe\x01<garbage", 12)); },
        WhereRead(kNotUnderstood)));
    faults.push_back(Altered(
        "half a document",
        [](const std::string& good) {
            const std::string body = BodyOf(good);
            return Page(body.substr(0, body.size() / 2));
        },
        NotWithInstalledSdk(Where(Answered::document, kNotUnderstood))));
    faults.push_back(Altered(
        "no document", [](const std::string&) { return Page(""); },
        NotWithInstalledSdk(Where(Answered::document, kNotUnderstood))));
    faults.push_back(Altered(
        "another document",
        [](const std::string&) { return Page("<SomethingElse><a>b</a></SomethingElse>"); },
        NotWithInstalledSdk(Where(Answered::document, kNotUnderstood))));
}

void AddRefusals(std::vector<Mishap>& faults) {
    faults.push_back(Instead("500", Answer::S3Error(500, "InternalError", "We stumbled."),
                             ByHead(Retried(S3Errors::INTERNAL_FAILURE),
                                    Retried(OfStatusAlone(S3Errors::INTERNAL_FAILURE)))));
    faults.push_back(Instead("503 SlowDown", Answer::S3Error(503, "SlowDown", "Slower, please."),
                             ByHead(Retried(S3Errors::SLOW_DOWN),
                                    Retried(OfStatusAlone(S3Errors::SERVICE_UNAVAILABLE)))));
    faults.push_back(
        Instead("429", Answer::Status(429), Always(Retried(OfStatusAlone(S3Errors::THROTTLING)))));
    faults.push_back(Instead("403 AccessDenied", Answer::S3Error(403, "AccessDenied", "No."),
                             Always({Effect::Kind::final, S3Errors::ACCESS_DENIED})));
    faults.push_back(
        Instead("403 with a skewed clock",
                Answer::S3Error(403, "RequestTimeTooSkewed", "The difference is too large.")
                    .Header("Date", "Wed, 16 Nov 2033 01:13:20 GMT"),
                ByHead(Retried(S3Errors::REQUEST_TIME_TOO_SKEWED),
                       {Effect::Kind::retried, S3Errors::ACCESS_DENIED, 2})));
    faults.push_back(Instead("301",
                             Answer::S3Error(301, "PermanentRedirect", "It moved.")
                                 .Header("Location", "http://127.0.0.1:1/elsewhere"),
                             NotWithInstalledSdk(Always(kNotUnderstood))));
    faults.push_back(Instead("307",
                             Answer::S3Error(307, "TemporaryRedirect", "It is away.")
                                 .Header("Location", "http://127.0.0.1:1/elsewhere"),
                             NotWithInstalledSdk(Always(kNotUnderstood))));
    faults.push_back(Instead("200 with InternalError",
                             Answer::S3Error(200, "InternalError", "Half way we stumbled."),
                             NotWithInstalledSdk(WhereRead(Retried(S3Errors::INTERNAL_FAILURE)))));
    faults.push_back(
        Instead("200 with AccessDenied", Answer::S3Error(200, "AccessDenied", "Half way: no."),
                NotWithInstalledSdk(WhereRead({Effect::Kind::final, S3Errors::ACCESS_DENIED}))));
    for (const std::string page :
         {"<html><body><p>Log in</p></body></html>", "<HTML><BODY>Log in</BODY></HTML>",
          "<!DOCTYPE html><html><head><meta charset=utf-8></head>Log in</html>"}) {
        faults.emplace_back("200 with the page " + page.substr(0, 6), Stage::answer);
        faults.back().instead = [bytes = Page(page)](const std::string&, bool) { return bytes; };
        faults.back().effect = NotWithInstalledSdk(WhereRead(kNotUnderstood));
    }
}

void AddHeaderFaults(std::vector<Mishap>& faults) {
    const auto without = [](const char* name) {
        return [name](const std::string& good) { return WithoutHeader(good, name); };
    };
    const auto twice = [](const char* name) {
        return [name](const std::string& good) { return HeaderTwice(good, name); };
    };
    faults.push_back(Altered("two ETags", twice("ETag"), WhereTagged(kHarmless)));
    faults.push_back(Altered("two Content-Types", twice("Content-Type"), Always(kHarmless)));
    faults.push_back(Altered("two Dates", twice("Date"), Always(kHarmless)));
    faults.push_back(Altered("no ETag", without("ETag"), WhereTagged(kHarmless)));
    faults.back().losesTag = true;
    faults.push_back(Altered("no Content-Length", without("Content-Length"), Always(kHarmless)));
    faults.push_back(Altered("no Content-Type", without("Content-Type"), Always(kHarmless)));
    faults.push_back(Altered("no Date", without("Date"), Always(kHarmless)));
    faults.push_back(Altered(
        "another range",
        [](const std::string& good) {
            return WithLine(WithoutHeader(good, "Content-Range"),
                            "Content-Range: bytes 7-1006/2000");
        },
        Where(Answered::bytes, kNotUnderstood)));
    faults.push_back(Altered("no range", without("Content-Range"),
                             [](const Sent& sent) -> std::optional<Effect> {
                                 if (sent.answered != Answered::bytes) {
                                     return std::nullopt;
                                 }
                                 return sent.inside ? kNotUnderstood : kHarmless;
                             }));
    // Whoever reads another of the two lengths reads another answer.
    const auto whereBody = [](const Sent& sent) -> std::optional<Effect> {
        if (sent.answered == Answered::document || sent.answered == Answered::bytes) {
            return kLostConnection;
        }
        return std::nullopt;
    };
    faults.push_back(Altered(
        "two lengths", [](const std::string& good) { return WithLine(good, "Content-Length: 7"); },
        NotWithInstalledSdk(whereBody)));
}

std::vector<Mishap> AllMishaps() {
    std::vector<Mishap> faults;
    AddConnectionFaults(faults);
    AddGarbage(faults);
    AddRefusals(faults);
    AddHeaderFaults(faults);
    return faults;
}

}  // namespace

const std::vector<Mishap>& Mishaps() {
    static const std::vector<Mishap> faults = AllMishaps();
    return faults;
}

const Mishap& RefusalNumberedZero() {
    static const Mishap fault =
        Instead("400 IncompleteSignature", Answer::S3Error(400, "IncompleteSignature", "Half."),
                [](const Sent& sent) {
                    return sent.answered == Answered::head ? std::nullopt
                                                           : std::optional<Effect>(kNotUnderstood);
                });
    return fault;
}

}  // namespace Mirqos::Test
