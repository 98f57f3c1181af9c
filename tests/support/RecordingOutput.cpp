#include "tests/support/RecordingOutput.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "log/ModuleLog.h"
#include "platform/text.h"
#include "tests/support/UsedSdk.h"

namespace Mirqos::Test {
namespace {

/// An installed SDK ends its messages with the server's address, some of them twice.
std::string WithoutAddress(std::string line) {
    constexpr std::string_view kAddress = " with address : 127.0.0.1";
    for (std::size_t at = 0; (at = line.find(kAddress, at)) != std::string::npos;) {
        line.erase(at, kAddress.size());
    }
    return line;
}

}  // namespace

void RecordingOutput::Write(int nLevel, int nErrorCode, const char* pszMessage) {
    Keep({nLevel, nErrorCode, kBundledSdk ? pszMessage : WithoutAddress(pszMessage), {}, false});
}

void RecordingOutput::Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) {
    Keep({nLevel, nErrorCode, NarrowText(pszMessage), pszMessage, true});
}

int RecordingOutput::GetLevel() {
    ++m_levelQueries;
    return m_level;
}

std::vector<RecordedLine> RecordingOutput::Lines() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

std::vector<std::string> RecordingOutput::Texts() const {
    std::vector<std::string> texts;
    for (RecordedLine& line : Lines()) {
        texts.push_back(std::move(line.text));
    }
    return texts;
}

std::size_t RecordingOutput::CountContaining(const std::string& part) const {
    const std::vector<std::string> texts = Texts();
    return static_cast<std::size_t>(std::count_if(
        texts.begin(), texts.end(),
        [&part](const std::string& text) { return text.find(part) != std::string::npos; }));
}

void RecordingOutput::Clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
}

void RecordingOutput::Keep(RecordedLine line) {
    if (onLine) {
        onLine(line.text);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.push_back(std::move(line));
}

LogRecording::LogRecording() : LogRecording(g_ModuleLog) {
}

LogRecording::LogRecording(CMIRQOSLog& log) : m_log(log) {
    auto pFile = std::make_unique<RecordingOutput>();
    auto pChannel = std::make_unique<RecordingOutput>();
    m_pFile = pFile.get();
    m_pChannel = pChannel.get();
    m_pFormerFile = std::exchange(m_log.m_pFileOutput, std::move(pFile));
    m_pFormerChannel = std::exchange(m_log.m_pSMOutput, std::move(pChannel));
}

LogRecording::~LogRecording() {
    m_log.m_pFileOutput = std::move(m_pFormerFile);
    m_log.m_pSMOutput = std::move(m_pFormerChannel);
}

void LogRecording::Clear() {
    m_pFile->Clear();
    m_pChannel->Clear();
}

}  // namespace Mirqos::Test
