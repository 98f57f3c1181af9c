#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/faults/FaultyService.h"
#include "tests/faults/Operation.h"
#include "tests/faults/Tally.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using std::chrono::milliseconds;

// Above what a busy machine needs, since good calls are under the same limit; otherwise as good as
// none. Where a request that is sent twice fails, a limit must not strike by itself.
constexpr milliseconds kShortStall{250};
constexpr milliseconds kSureStall{1000};
constexpr milliseconds kLongStall{30000};

// Primes, so that neighbours do not leave out the same faults.
constexpr std::size_t kOneOf = 7;
constexpr std::size_t kOneOfSlow = kOneOf * 11;  // of those that wait for eleven time limits

Tally& TheTally() {
    static Tally tally;
    return tally;
}

class PrintedTally : public testing::Environment {
public:
    void TearDown() override { std::cout << "\n" << TheTally().Table() << std::flush; }
};

const auto* const g_pPrintedTally = testing::AddGlobalTestEnvironment(new PrintedTally);

/// Whether the line is what the pattern of a promise says.
bool Matches(std::string_view pattern, std::string_view line) {
    if (pattern.empty()) {
        return line.empty();
    }
    const char first = pattern.front();
    const std::string_view rest = pattern.substr(1);
    if (first != '*' && first != '~') {
        return !line.empty() && line.front() == first && Matches(rest, line.substr(1));
    }
    for (std::size_t taken = first == '*' ? 1 : 0; taken <= line.size(); ++taken) {
        if (Matches(rest, line.substr(taken))) {
            return true;
        }
    }
    return false;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += "    " + line + "\n";
    }
    return text;
}

/// One fault and when it strikes.
struct Blow {
    const Mishap& fault;
    std::size_t request;
    bool once;
    bool keepsConnections;

    std::string Name() const {
        return fault.name + (once ? ", once" : ", always") + ", request " +
               std::to_string(request) +
               (keepsConnections ? ", kept connections" : ", new connections");
    }
    /// Whether an attempt ends with its time limit. After a stall at the end of an answer that is
    /// the next one, when it comes on the same connection.
    bool Stalls() const { return fault.harm == Harm::stall; }
};

class Faults : public WireTest, public testing::WithParamInterface<std::size_t> {
protected:
    Faults() : m_operations(AllOperations()), m_operation(*m_operations.at(GetParam())) {}

    std::unique_ptr<AwsS3Store> NewStore() {
        if (m_operation.threads != 0) {
            return StoreWithThreads(m_operation.threads);
        }
        Setup setup;
        setup.provider = m_operation.provider;
        setup.buffer = m_operation.buffer;
        return MakeStore(setup);
    }

    void Prepare(MIRQOSInterface& store, FaultyService& service) {
        service.Inspect([this](ModelService& model) { m_operation.Arrange(model); });
        m_operation.Prepare(store);
        m_log.Clear();
    }

    void ExpectPromise(const Promise& promise, std::int32_t status, FaultyService& service) {
        EXPECT_EQ(status, promise.status);
        EXPECT_EQ(service.Inspect([&](const ModelService& model) {
            return m_operation.Problem(promise.status == 0, model);
        }),
                  "");
        ExpectLines(promise.lines);
    }

    void ExpectLines(const std::vector<std::string>& promised) {
        std::vector<std::string> lines;
        for (const RecordedLine& line : m_log.File().Lines()) {
            if (line.text.rfind("[AWS_SDK]", 0) != 0 &&
                !m_operation.IsOpen(line.level, line.text)) {
                lines.push_back(line.text);
            }
        }
        std::vector<std::string> left = lines;
        bool kept = lines.size() == promised.size();
        for (const std::string& pattern : promised) {
            const auto found = std::find_if(
                left.begin(), left.end(),
                [&pattern](const std::string& line) { return Matches(pattern, line); });
            const bool inOrder = m_operation.IsUnordered() || found == left.begin();
            if (found == left.end() || !inOrder) {
                kept = false;
                break;
            }
            left.erase(found);
        }
        EXPECT_TRUE(kept) << "promised:\n" << Joined(promised) << "written:\n" << Joined(lines);
    }

    void ExpectGoodCall(MIRQOSInterface& store, FaultyService& service) {
        Prepare(store, service);
        Fate good;
        const Promise promise = m_operation.Promised(good);
        ExpectPromise(promise, m_operation.Call(store), service);
    }

    /// As often as the effect on the request that is struck first says.
    void ExpectStruck(const Blow& blow, const Fate& fate, int hits, std::size_t waits) {
        const Effect effect = fate.First();
        const bool alone = fate.Requests().size() == 1;
        if (blow.once) {
            EXPECT_EQ(hits, 1);
            // An installed SDK may lose an attempt on a connection that has been closed meanwhile.
            EXPECT_LE(waits, blow.Stalls() ? 10u : kBundledSdk ? 1u : 2u);
        } else if (effect.kind == Effect::Kind::retried) {
            // A busy machine may lose a stalled attempt before the service sees it.
            EXPECT_GE(hits, blow.Stalls() ? 1 : effect.attempts);
            // After an answer whose date differs an installed SDK sets its clock and asks at once.
            const auto most = static_cast<std::size_t>(effect.attempts) - 1;
            EXPECT_TRUE(!alone || waits == most || (!kBundledSdk && waits + 1 == most)) << waits;
        } else {
            EXPECT_GE(hits, 1);
            EXPECT_TRUE(!alone || (hits == 1 && waits == 0)) << hits << ", " << waits;
        }
    }

    void Count(const Fate& fate, const Promise& promise, bool hit) {
        Tally::Row& row = TheTally().Of(m_operation.name);
        ++row.tried;
        row.hit += hit ? 1 : 0;
        if (promise.status != 0) {
            ++row.failed[promise.status];
        } else if (fate.HasFailure()) {
            ++row.passedOver;
        } else {
            ++(fate.First().kind == Effect::Kind::harmless ? row.unharmed : row.mended);
        }
    }

    void Strike(const Blow& blow) {
        SCOPED_TRACE(m_operation.name + ": " + blow.Name());
        FaultyService service(FilledService(), blow.keepsConnections);
        TheSeam().resolve = [&service](const std::string&, std::uint16_t) {
            return service.NextAddress();
        };
        LimitStalls(!blow.Stalls() ? kLongStall : IsRepeatable() ? kShortStall : kSureStall);
        const auto store = NewStore();
        ExpectGoodCall(*store, service);

        Prepare(*store, service);
        Fate fate(blow.fault, blow.request, blow.once);
        const Promise promise = m_operation.Promised(fate);
        const std::size_t waits = Waits().size();
        service.Break(blow.fault, static_cast<int>(blow.request), blow.once);
        const std::int32_t status = m_operation.Call(*store);
        service.Mend();
        ExpectPromise(promise, status, service);
        ExpectStruck(blow, fate, service.Hits(), Waits().size() - waits);
        Count(fate, promise, service.Hits() > 0);

        ExpectGoodCall(*store, service);
    }

    /// Whether every request may be carried out twice with the same result.
    bool IsRepeatable() const {
        Fate good;
        m_operation.Promised(good);
        return std::all_of(good.Requests().begin(), good.Requests().end(),
                           [](const Sent& sent) { return sent.repeated == Aws::S3::S3Errors{}; });
    }

    bool IsChosen(const Blow& blow, std::size_t number) const {
        static const bool all = std::getenv("MIRQOS_ALL_FAULTS") != nullptr;
        const bool slow = blow.Stalls() && !blow.once && blow.fault.stage != Stage::end;
        const bool itsTurn = blow.keepsConnections == (number / kOneOf % 2 == 0);
        if (all) {
            return itsTurn || !slow;
        }
        return itsTurn && number % (slow ? kOneOfSlow : kOneOf) == 0;
    }

    const Operations m_operations;
    Operation& m_operation;
};

TEST_P(Faults, EachEndsAsPromisedAndTheNextCallWorks) {
    Fate good;
    m_operation.Promised(good);
    std::size_t number = GetParam() * 5;
    for (std::size_t request = 0; request < good.Requests().size(); ++request) {
        for (const Mishap& fault : Mishaps()) {
            const auto effect = fault.effect(good.Requests()[request]);
            for (const bool once : {true, false}) {
                ++number;
                if (!effect || (once && effect->kind == Effect::Kind::harmless)) {
                    continue;
                }
                for (const bool keeps : {true, false}) {
                    const Blow blow{fault, request, once, keeps};
                    if (IsChosen(blow, number)) {
                        Strike(blow);
                    }
                }
            }
        }
    }
}

TEST_P(Faults, ARefusalNumberedLikeASuccessIsNone) {
    // a whole listing hands out what it has then, as its own tests show
    const bool lists =
        m_operation.name == "ListObjects" || m_operation.name == "CopyObject, size looked up";
    Fate good;
    m_operation.Promised(good);
    for (std::size_t request = 0; !lists && request < good.Requests().size(); ++request) {
        if (RefusalNumberedZero().effect(good.Requests()[request])) {
            Strike({RefusalNumberedZero(), request, false, true});
        }
    }
}

std::string NameOf(const testing::TestParamInfo<std::size_t>& info) {
    const std::string operation = AllOperations().at(info.param)->name;
    std::string name;
    for (const char c : operation) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? std::string(1, c) : "";
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Faults, testing::Range<std::size_t>(0, AllOperations().size()),
                         NameOf);

}  // namespace
}  // namespace Mirqos::Test
