// Which operations a host thread does, and how often.

#include <algorithm>
#include <numeric>

#include "tests/soak/HostThread.h"

namespace Mirqos::Soak {

struct HostThread::Operation {
    int weight;
    void (HostThread::*run)();
};

void HostThread::Work(Stores& stores, const std::atomic<bool>& stop) {
    static const std::vector<Operation> kOperations = {
        {20, &HostThread::Write},
        {20, &HostThread::ReadOneRange},
        {14, &HostThread::ReadInRanges},
        {2, &HostThread::ReadWhatIsNotThere},
        {6, &HostThread::Head},
        {3, &HostThread::Search},
        {3, &HostThread::List},
        {2, &HostThread::ListSegment},
        {8, &HostThread::Copy},
        {2, &HostThread::CopyWhatIsNotThere},
        {1, &HostThread::CopyThroughFile},
        {5, &HostThread::Delete},
        {2, &HostThread::DeleteMany},
        {2, &HostThread::UploadOneByOne},
        {3, &HostThread::UploadAtOnce},
        {1, &HostThread::UploadFromAnother},
        {1, &HostThread::GiveUploadUp},
        {1, &HostThread::GiveUploadUpWhileItIsSent},
        {5, &HostThread::PutTags},
        {5, &HostThread::GetTags},
        {1, &HostThread::BucketLife},
        {1, &HostThread::ListUploads},
    };
    static const int kWeights =
        std::accumulate(kOperations.begin(), kOperations.end(), 0,
                        [](int sum, const Operation& each) { return sum + each.weight; });
    m_stores = &stores;
    m_uploads.clear();
    while (!stop) {
        auto place = static_cast<int>(Below(static_cast<std::uint64_t>(kWeights)));
        const auto chosen =
            std::find_if(kOperations.begin(), kOperations.end(),
                         [&](const Operation& each) { return (place -= each.weight) < 0; });
        (this->*chosen->run)();
    }
}

}  // namespace Mirqos::Soak
