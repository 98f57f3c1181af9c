#include "tools/mirqos/Manifest.h"

#include <algorithm>
#include <utility>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Json.h"
#include "tools/mirqos/Sha256.h"

namespace Mirqos::Tool {

namespace {

constexpr const char* kFormat = "mirqos-manifest";
constexpr int kVersion = 1;
constexpr std::size_t kDigestLength = 64;

[[noreturn]] void Damaged(const std::string& what) {
    throw Failure(ExitCode::OperationFailed, "the backup's manifest is damaged: " + what);
}

Json Describe(const std::string& path, const FileRecord& record) {
    Json line = {{"path", path},
                 {"size", record.state.size},
                 {"modified", record.state.modified},
                 {"sha256", record.sha256}};
    if (record.recent) {
        line["recent"] = true;
    }
    if (record.deleted) {
        line["deleted"] = true;
    }
    if (record.unsure) {
        line["unsure"] = true;
    }
    return line;
}

Json EndOf(std::size_t lines, std::string_view text) {
    return {{"lines", lines}, {"sha256", Sha256Of(text)}};
}

/// The member, where it has this type.
template <typename Value>
Value Take(const Json& line, const char* name, bool (Json::*isType)() const noexcept) {
    const auto member = line.find(name);
    if (member == line.end() || !((*member).*isType)()) {
        Damaged("a line lacks \"" + std::string(name) + "\"");
    }
    return member->get<Value>();
}

bool IsDigest(const std::string& text) {
    return text.size() == kDigestLength &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

FileRecord RecordOf(const Json& line) {
    FileRecord record;
    record.state.size = Take<std::uint64_t>(line, "size", &Json::is_number_unsigned);
    record.state.modified = Take<FileTime>(line, "modified", &Json::is_number_integer);
    record.sha256 = Take<std::string>(line, "sha256", &Json::is_string);
    record.recent = line.value("recent", false);
    record.deleted = line.value("deleted", false);
    record.unsure = line.value("unsure", false);
    if (!IsDigest(record.sha256)) {
        Damaged("a digest is none");
    }
    return record;
}

Json ParseLine(std::string_view text) {
    Json line = Json::parse(text.begin(), text.end(), nullptr, false);
    if (!line.is_object()) {
        Damaged("a line is no JSON object");
    }
    return line;
}

void AddLine(Manifest& manifest, const Json& line) {
    if (line.contains("emptyFolder")) {
        manifest.emptyFolders.insert(Take<std::string>(line, "emptyFolder", &Json::is_string));
    } else {
        manifest.files[Take<std::string>(line, "path", &Json::is_string)] = RecordOf(line);
    }
}

/// Cuts the last line off and returns it.
std::string_view TakeLastLine(std::string_view& text) {
    if (text.empty() || text.back() != '\n') {
        Damaged("it has no end");
    }
    const std::size_t before = text.substr(0, text.size() - 1).rfind('\n');
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::string_view last = text.substr(begin);
    text = text.substr(0, begin);
    return last;
}

void TakeHead(Manifest& manifest, const Json& head) {
    if (head.value("format", "") != kFormat) {
        Damaged("it is none");
    }
    if (head.value("version", 0) != kVersion) {
        throw Failure(ExitCode::OperationFailed,
                      "the backup's manifest was written by another version of this program, whose "
                      "form this one does not know");
    }
    manifest.runEnded = Take<bool>(head, "runEnded", &Json::is_boolean);
}

}  // namespace

std::string FormatManifest(const Manifest& manifest) {
    std::string text =
        Dump({{"format", kFormat}, {"version", kVersion}, {"runEnded", manifest.runEnded}});
    for (const auto& [path, record] : manifest.files) {
        text += Dump(Describe(path, record));
    }
    for (const std::string& folder : manifest.emptyFolders) {
        text += Dump({{"emptyFolder", folder}});
    }
    return text + Dump(EndOf(manifest.files.size() + manifest.emptyFolders.size(), text));
}

Manifest ParseManifest(std::string_view text) {
    const std::string_view end = TakeLastLine(text);
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    if (lines == 0 || end != Dump(EndOf(lines - 1, text))) {
        Damaged("its digest differs");
    }
    Manifest manifest;
    try {
        for (std::size_t number = 0; number < lines; ++number) {
            const std::size_t length = text.find('\n') + 1;
            const Json line = ParseLine(text.substr(0, length));
            number == 0 ? TakeHead(manifest, line) : AddLine(manifest, line);
            text.remove_prefix(length);
        }
    } catch (const Json::exception&) {
        Damaged("a value has another type than it should");
    }
    if (manifest.files.size() + manifest.emptyFolders.size() != lines - 1) {
        Damaged("a path stands in it twice");
    }
    return manifest;
}

}  // namespace Mirqos::Tool
