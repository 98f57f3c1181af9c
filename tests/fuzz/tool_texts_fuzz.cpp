// What the programs read: manifests of backups, lists of keys, addresses, tags, numbers, and keys
// that become paths of this machine.
//
// An input's first byte chooses what the others are.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/Require.h"
#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/Endpoint.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/KeyList.h"
#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Sha256.h"
#include "tools/mirqos/Tags.h"
#include "tools/mirqos/Text.h"

namespace {

using Mirqos::Test::Require;
using namespace Mirqos::Tool;

/// Calls `read`, which may refuse the text with this code and with a line for people.
template <class Read>
void Try(ExitCode refusal, Read&& read) {
    try {
        read();
    } catch (const Failure& failure) {
        const std::string_view message = failure.what();
        Require(failure.Code() == refusal, "a text is refused with its own code");
        Require(!message.empty() && IsUtf8(message) && Printable(message) == message,
                "a refusal is one line to show");
    }
}

void ReadManifest(std::string_view text) {
    Try(ExitCode::OperationFailed, [text] {
        Require(FormatManifest(ParseManifest(text)) == text, "a manifest is read to the byte");
    });
}

/// With the last line that a manifest of these lines has, which nobody guesses.
void ReadSealedManifest(const std::string& lines) {
    std::size_t count = 0;
    for (const char c : lines) {
        count += c == '\n' ? 1 : 0;
    }
    ReadManifest(lines + "{\"lines\":" + std::to_string(count) + ",\"sha256\":\"" +
                 Sha256Of(lines) + "\"}\n");
}

void ReadKeyLines(std::string_view text) {
    Try(ExitCode::Usage, [text] {
        for (const std::string& key : ParseKeyLines(text)) {
            Require(!key.empty() && FaultOfKey(key).empty(), "a key of a list is one");
            Require(text.find(key) != text.npos, "a key stands in the list");
        }
    });
}

void ReadUrls(std::string_view text) {
    Try(ExitCode::Usage, [text] {
        const ObjectUrl url = ParseObjectUrl(text);
        Require("s3://" + url.bucket + "/" + url.key == text, "an address is its parts");
        Require(!url.bucket.empty() && !url.key.empty() && url.key.size() <= 1024,
                "an object has a bucket and a key");
    });
    Try(ExitCode::Usage,
        [text] { Require(ParseBucketUrl(text).key.empty(), "a bucket's address has no key"); });
    Try(ExitCode::Usage, [text] {
        const ObjectUrl url = ParsePrefixUrl(text);
        Require(("s3://" + url.bucket + "/" + url.key).find(text) == 0, "a prefix is its parts");
    });
    Try(ExitCode::Usage, [text] {
        const Endpoint endpoint = ParseEndpoint(text);
        Require(!endpoint.host.empty() && text.find(endpoint.host) != text.npos,
                "an endpoint stands in the text");
    });
}

void ReadTag(std::string_view text) {
    Try(ExitCode::Usage, [text] {
        const Tag tag = ParseTag(text);
        Require(!tag.name.empty() && tag.Packed().size() == text.size(), "a tag is its parts");
        const Tag again = UnpackTag(tag.Packed());
        Require(again.name == tag.name && again.value == tag.value, "a tag comes back");
    });
}

void ReadNumber(std::string_view text) {
    for (const std::uint64_t most : {std::uint64_t{64}, UINT64_MAX}) {
        const auto number = ParseNumber(text, 1, most);
        Require(!number || (*number >= 1 && *number <= most), "a number is in its bounds");
        Require(!number || std::to_string(*number) ==
                               text.substr(std::min(text.find_first_not_of('0'), text.size())),
                "a number is its digits");
    }
}

/// A path that may be restored, joined to a folder, stays in it.
void ReadTarget(std::string_view path) {
    for (const NameRules rules : {NameRules::Posix, NameRules::Windows}) {
        if (!FaultOfTarget(path, rules).empty()) {
            continue;
        }
        const char* const separators = rules == NameRules::Windows ? "/\\" : "/";
        Require(path.find('\0') == path.npos, "a path is a text");
        Require(rules == NameRules::Posix || path.find(':') == path.npos, "a path has no drive");
        for (std::size_t begin = 0; begin <= path.size();) {
            const std::size_t end = std::min(path.find_first_of(separators, begin), path.size());
            const std::string_view part = path.substr(begin, end - begin);
            Require(!part.empty() && part != "." && part != "..", "each part of a path is a name");
            begin = end + 1;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(data + 1, data + size);
    switch (data[0] % 7) {
        case 0:
            ReadManifest(text);
            break;
        case 1:
            ReadSealedManifest(text);
            break;
        case 2:
            ReadKeyLines(text);
            break;
        case 3:
            ReadUrls(text);
            break;
        case 4:
            ReadTag(text);
            break;
        case 5:
            ReadNumber(text);
            break;
        default:
            ReadTarget(text);
            break;
    }
    return 0;
}
