#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/StoreTestAccess.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {

/// Uploads of the key "k", their parts sent asynchronously.
class AsyncUpload : public WireTest {
protected:
    static std::string PartTarget(int number, const std::string& upload = "u1");
    static Answer Opened(const std::string& upload);
    static Answer Tagged(const std::string& eTag);
    static Answer Completed();

    /// Opens an upload; its id, or an empty text when that failed.
    static std::string Init(MIRQOSInterface& store);
    static std::int32_t Submit(MIRQOSInterface& store, std::int64_t number,
                               const std::string& bytes, bool last,
                               const std::string& upload = "u1");
    static std::int32_t Finish(MIRQOSInterface& store, std::int32_t parts,
                               const std::string& upload = "u1");
    static std::int32_t Abort(MIRQOSInterface& store, const std::string& upload = "u1");
    /// Returns once `count` parts of an open upload have been answered and their answers handled.
    static void AwaitAnswers(AwsS3Store& store, std::uint32_t count,
                             const std::string& upload = "u1");

    /// Has the server open an upload with that id, and opens it.
    void Open(MIRQOSInterface& store, const std::string& upload = "u1");
    ScriptedServer::Rule Part(int number, Answer answer, const std::string& upload = "u1");
    void CompleteWith(const Answer& answer = Completed());

    /// The requests so far that sent this part, that completed an upload, that aborted one.
    std::vector<RecordedRequest> Sent(int number, const std::string& upload = "u1") const;
    std::vector<RecordedRequest> Completions() const;
    std::size_t Aborts() const;
    /// The tags of all completions in order, each followed by a semicolon.
    std::string TagsSent() const;
    /// The lines about parts that failed.
    std::vector<std::string> PartLines() const;

private:
    std::vector<RecordedRequest> Requests(const std::string& method,
                                          const std::string& targetPart) const;
};

}  // namespace Mirqos::Test
