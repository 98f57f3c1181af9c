#include "tools/mirqos/RangedDownload.h"

#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace Mirqos::Tool {

namespace {

class Crew {
public:
    explicit Crew(const RangedDownload& download)
        : m_download(download),
          m_plan(RangedDownload::kPart, RangedDownload::kOverlap, download.size) {}

    /// The first range goes alone: most objects end in it, and a missing object is then asked for
    /// once. The others help with the rest.
    void Run() {
        Worker own(m_download);
        const auto first = Next();
        if (first) {
            Read(own, *first);
        }
        const auto second = Next();
        if (!second) {
            return;
        }
        std::vector<std::thread> helpers;
        helpers.reserve(m_download.threads);
        try {
            while (helpers.size() + 1 < m_download.threads) {
                helpers.emplace_back([this] { Help(); });
            }
        } catch (const std::system_error&) {
            // fewer threads do the same work
        }
        Guarded([&] {
            Read(own, *second);
            ReadOn(own);
        });
        for (std::thread& helper : helpers) {
            helper.join();
        }
        if (m_error) {
            std::rethrow_exception(m_error);
        }
    }

    const ReadPlan& Plan() const { return m_plan; }
    bool Stopped() const { return m_stopped; }

private:
    struct Worker {
        explicit Worker(const RangedDownload& download)
            : read(download.makeReader()), buffer(RangedDownload::kRoom) {}
        RangeReader read;
        std::vector<unsigned char> buffer;
    };

    std::optional<ReadPlan::Range> Next() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_download.stopped()) {
            m_stopped = true;
            m_plan.Stop();
        }
        return m_plan.Next();
    }

    void Read(Worker& worker, const ReadPlan::Range& range) {
        unsigned char* const data = worker.buffer.data();
        const RangeAnswer answer = worker.read(range.first, range.last, data);
        if (answer.status == 0 && answer.count > range.kept && answer.count <= range.Length()) {
            m_download.take(range.first + range.kept, data + range.kept,
                            static_cast<std::size_t>(answer.count - range.kept));
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (answer.status == 0) {
            m_plan.Delivered(range, data, answer.count);
        } else {
            m_plan.Failed(range, answer.status);
        }
    }

    void ReadOn(Worker& worker) {
        while (const auto range = Next()) {
            Read(worker, *range);
        }
    }

    void Help() {
        Guarded([this] {
            Worker worker(m_download);
            ReadOn(worker);
        });
    }

    template <typename Work>
    void Guarded(const Work& work) {
        try {
            work();
        } catch (...) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_error = m_error ? m_error : std::current_exception();
            m_plan.Stop();
        }
    }

    const RangedDownload& m_download;
    std::mutex m_mutex;
    ReadPlan m_plan;
    std::exception_ptr m_error;
    bool m_stopped = false;
};

}  // namespace

RangedDownload::Result RangedDownload::Run() const {
    Crew crew(*this);
    crew.Run();
    Result result{};
    result.stopped = crew.Stopped();
    if (result.stopped) {
        return result;
    }
    result.verdict = crew.Plan().Judge();
    result.size = crew.Plan().Size();
    if (result.verdict == ReadPlan::Verdict::Failed) {
        result.status = crew.Plan().FailedStatus();
        result.failedAtOnce = crew.Plan().FailedAtOnce();
    }
    return result;
}

}  // namespace Mirqos::Tool
