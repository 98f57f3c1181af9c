#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/ScriptedServer.h"

namespace Mirqos::Test {

/// What an object service keeps and answers, as far as the store's operations ask: enough for
/// several requests of one operation to meet what the earlier ones left. Not for several threads at
/// once.
class ModelService {
public:
    /// How many keys a page of a listing holds.
    static constexpr std::size_t kPage = 2;

    /// Carries the request out and answers it.
    Answer Take(const RecordedRequest& request);

    std::set<std::string> buckets;
    std::map<std::string, std::string> objects;  ///< bytes by "BUCKET/KEY"

private:
    struct Part {
        std::string eTag;
        std::string bytes;
    };
    struct Upload {
        std::string object;  ///< "BUCKET/KEY"
        std::map<int, Part> parts;
        bool completed = false;
    };

    Answer OnService() const;
    Answer OnBucket(const RecordedRequest& request, const std::string& bucket);
    Answer OnObject(const RecordedRequest& request, const std::string& object);
    Answer Get(const RecordedRequest& request, const std::string& object) const;
    Answer Put(const RecordedRequest& request, const std::string& object);
    Answer List(const RecordedRequest& request, const std::string& bucket) const;
    Answer DeleteAll(const RecordedRequest& request, const std::string& bucket);
    Answer PutPart(const RecordedRequest& request, Upload& upload);
    Answer Complete(const RecordedRequest& request, Upload& upload);
    std::string NewTag();

    std::map<std::string, Upload> m_uploads;  ///< by id; those completed too, those aborted not
    int m_tags = 0;
};

}  // namespace Mirqos::Test
