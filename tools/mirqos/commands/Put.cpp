#include <algorithm>
#include <memory>
#include <new>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/LocalFile.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

// what S3 takes in one request
constexpr std::uint64_t kLargestObject = std::uint64_t{5} << 30U;
// between two looks at Ctrl-C and two steps of the bar
constexpr std::size_t kStep = std::size_t{4} << 20U;

struct Contents {
    std::unique_ptr<unsigned char[]> data;
    std::uint64_t size;
};

/// The whole file, because one request needs all of it.
Contents ReadAll(const std::string& name, const Interruption& interruption, Progress& progress) {
    LocalFile file = LocalFile::OpenForReading(name);
    const std::uint64_t size = file.Size();
    const std::string shown = "'" + Printable(name) + "'";
    if (size > kLargestObject) {
        throw Failure(ExitCode::LocalFile,
                      shown + " has " + FormatSize(size) + "; one request carries at most 5.0 GiB");
    }
    progress.Count("reading", name, size);
    Contents contents{nullptr, size};
    try {
        contents.data.reset(new unsigned char[static_cast<std::size_t>(size)]);
    } catch (const std::bad_alloc&) {
        throw Failure(ExitCode::LocalFile, shown + " has " + FormatSize(size) +
                                               ", for which the memory does not suffice");
    }
    std::uint64_t done = 0;
    while (done < size) {
        interruption.CheckPoint();
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size - done, kStep));
        const std::size_t count = file.Read(contents.data.get() + done, wanted);
        done += count;
        progress.Add(count);
        if (count < wanted) {
            break;
        }
    }
    unsigned char more = 0;
    if (done < size || file.Read(&more, 1) != 0) {
        throw Failure(ExitCode::LocalFile, shown + " changed its size while it was read");
    }
    return contents;
}

void Run(const Invocation& invocation) {
    const std::string& name = invocation.operands[0];
    const ObjectUrl url = ParseObjectUrl(invocation.operands[1]);
    const Stopwatch stopwatch;
    Contents contents;
    {
        Progress progress(invocation.settings.progress);
        contents = ReadAll(name, invocation.interruption, progress);
        const Session session(invocation.settings);
        const StorePointer store = session.OpenStore(url.bucket, 0);
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = url.bucket.c_str();
        write.m_pszKey = url.key.c_str();
        write.m_pBuf = contents.data.get();
        write.m_nBufLen = contents.size;
        progress.Wait("sending", name, contents.size);
        invocation.interruption.CheckPoint();
        CheckStatus(store->WriteObject(&write), "WriteObject", url, *store);
    }
    invocation.Report("put " + url.Shown() + ", " + stopwatch.Describe(contents.size));
}

}  // namespace

Command PutCommand() {
    return {"put",
            "FILE s3://BUCKET/KEY",
            "store a file as an object",
            "Stores the file with one request, which carries up to 5.0 GiB. The whole file is\n"
            "held in memory, twice while it is sent. An object that has the key already is\n"
            "replaced; until the service has all of the new one, the old one stays.\n"
            "\n"
            "Examples:\n"
            "  mirqos put holiday.jpg s3://photos/2024/holiday.jpg\n"
            "  mirqos put \"My file.txt\" \"s3://photos/My file.txt\"\n",
            2,
            2,
            {},
            &Run};
}

}  // namespace Mirqos::Tool
