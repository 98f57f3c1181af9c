#include "tools/mirqos/FileSender.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/PartUpload.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/SteadyFile.h"
#include "tools/mirqos/WorkCrew.h"

namespace Mirqos::Tool {

namespace {

std::size_t PartLength(const SteadyFile& file, const UploadWay& way, std::size_t index) {
    const std::uint64_t begin = std::uint64_t{way.partSize} * index;
    return static_cast<std::size_t>(std::min<std::uint64_t>(way.partSize, file.Size() - begin));
}

bool IsStored(const FileRecord& record, const std::optional<FileRecord>& stored) {
    return stored && stored->state.size == record.state.size && stored->sha256 == record.sha256;
}

}  // namespace

FileSender::FileSender(MIRQOSInterface& store, unsigned threads, std::uint64_t inFlight,
                       Interruption& interruption, Progress& progress)
    : m_store(store),
      m_threads(threads),
      m_inFlight(inFlight),
      m_interruption(interruption),
      m_progress(progress) {
}

FileSender::Result FileSender::Send(const std::string& file, const ObjectUrl& url,
                                    const std::optional<FileRecord>& stored,
                                    const AboutToStore& aboutToStore) const {
    SteadyFile source(file);
    const auto way = ChooseUpload(source.Size(), m_threads, m_inFlight);
    if (!way) {
        throw Failure(ExitCode::LocalFile, "is larger than an object can be");
    }
    if (way->kind == UploadWay::Kind::Whole) {
        return SendWhole(source, url, stored, aboutToStore);
    }
    // to read it twice costs less than to send what is there
    if (stored && stored->state.size == source.Size()) {
        const FileRecord record =
            DigestFile(file, [&](std::size_t) { m_interruption.CheckPoint(); });
        if (IsStored(record, stored)) {
            m_progress.Add(record.state.size);
            return {record, false};
        }
    }
    aboutToStore();
    const bool async = way->kind == UploadWay::Kind::AsyncParts;
    return {async ? SendAsync(source, url, *way) : SendParts(source, url, *way), true};
}

FileSender::Result FileSender::SendWhole(SteadyFile& source, const ObjectUrl& url,
                                         const std::optional<FileRecord>& stored,
                                         const AboutToStore& aboutToStore) const {
    m_interruption.CheckPoint();
    std::vector<unsigned char> contents(static_cast<std::size_t>(source.Size()));
    source.Read(contents.data(), contents.size());
    const FileRecord record = source.Finish();
    if (IsStored(record, stored)) {
        m_progress.Add(contents.size());
        return {record, false};
    }
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = url.bucket.c_str();
    write.m_pszKey = url.key.c_str();
    write.m_pBuf = contents.data();
    write.m_nBufLen = contents.size();
    aboutToStore();
    CheckStatus(m_store.WriteObject(&write), "WriteObject", url, m_store);
    m_progress.Add(contents.size());
    return {record, true};
}

FileRecord FileSender::SendAsync(SteadyFile& source, const ObjectUrl& url,
                                 const UploadWay& way) const {
    PartUpload upload(m_store, url, way.partSize, m_interruption);
    std::vector<unsigned char> part(way.partSize);
    for (std::int32_t number = 1; number <= way.parts; ++number) {
        m_interruption.CheckPoint();
        const std::size_t length = PartLength(source, way, static_cast<std::size_t>(number - 1));
        source.Read(part.data(), length);
        upload.HandOver(number, part.data(), length, number == way.parts);
        m_progress.Add(length);
    }
    FileRecord record = source.Finish();
    m_interruption.CheckPoint();
    upload.CompleteHandedOver(way.parts);
    return record;
}

FileRecord FileSender::SendParts(SteadyFile& source, const ObjectUrl& url,
                                 const UploadWay& way) const {
    PartUpload upload(m_store, url, way.partSize, m_interruption);
    std::mutex reading;
    std::int32_t next = 0;
    DoAll(static_cast<std::size_t>(way.parts), way.threads, [&]() -> Worker {
        const auto part = std::make_shared<std::vector<unsigned char>>(way.partSize);
        return [&, part](std::size_t) {
            m_interruption.CheckPoint();
            std::size_t length = 0;
            std::int32_t number = 0;
            {
                // The digest wants the bytes in their order; so parts are numbered as they are
                // read.
                const std::lock_guard<std::mutex> lock(reading);
                length = PartLength(source, way, static_cast<std::size_t>(next));
                source.Read(part->data(), length);
                number = ++next;
            }
            upload.Send(number, part->data(), length);
            m_progress.Add(length);
        };
    });
    FileRecord record = source.Finish();
    m_interruption.CheckPoint();
    upload.Complete(way.parts);
    return record;
}

}  // namespace Mirqos::Tool
