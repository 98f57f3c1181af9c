#include "tools/mirqos/BackupPath.h"

#include <mirqos/mirqos.h>

#include <algorithm>
#include <array>

#include "tools/mirqos/Folder.h"
#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

namespace {

// listings hold keys with a NUL behind them, and end the process over a longer one
constexpr std::size_t kLongestKey = sizeof CloudStoreObjInfo::m_szKey - 1;

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return upper;
}

/// Names that mean a device, whatever stands behind a dot in them.
bool IsDevice(std::string_view name) {
    std::string stem = UpperCase(name.substr(0, name.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    constexpr std::array<std::string_view, 6> kNames = {"CON", "PRN",    "AUX",
                                                        "NUL", "CONIN$", "CONOUT$"};
    if (std::find(kNames.begin(), kNames.end(), stem) != kNames.end()) {
        return true;
    }
    const std::string_view front = std::string_view(stem).substr(0, 3);
    const std::string_view number = std::string_view(stem).substr(front.size());
    constexpr std::array<std::string_view, 3> kSuperscripts = {"\u00B9", "\u00B2", "\u00B3"};
    const bool digit = number.size() == 1 && number[0] >= '0' && number[0] <= '9';
    return (front == "COM" || front == "LPT") &&
           (digit ||
            std::find(kSuperscripts.begin(), kSuperscripts.end(), number) != kSuperscripts.end());
}

std::string FaultForWindows(std::string_view part) {
    const bool foreign = std::any_of(part.begin(), part.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("<>:\"\\|?*").find(c) != std::string_view::npos;
    });
    if (foreign) {
        return "it holds a character that names of Windows files cannot have";
    }
    if (part.back() == '.' || part.back() == ' ') {
        return "a part of it ends with a dot or a blank, which Windows drops";
    }
    return IsDevice(part) ? "a part of it names a device of Windows" : "";
}

std::string FaultOfPart(std::string_view part, NameRules rules) {
    if (part.empty()) {
        return "a part of it is empty, or it begins with a slash";
    }
    if (part == "." || part == "..") {
        return "it holds \"" + std::string(part) + "\", which leads elsewhere";
    }
    return FaultOfName(part, rules);
}

}  // namespace

bool IsOwn(std::string_view path) {
    return UpperCase(path.substr(0, path.find('/'))) == UpperCase(kOwnFolder);
}

std::string KeyBase(const std::string& prefix) {
    return prefix.empty() || prefix.back() == '/' ? prefix : prefix + "/";
}

std::string ManifestKey(const std::string& base) {
    return base + std::string(kOwnFolder) + "/manifest";
}

std::string FaultOfSource(const std::string& base, const std::string& path) {
    if (IsOwn(path)) {
        return "the name " + std::string(kOwnFolder) + " is the program's own";
    }
    const std::string key = base + path;
    if (key.size() > kLongestKey) {
        return "its key would be longer than " + std::to_string(kLongestKey) + " bytes";
    }
    return FaultOfKey(key);
}

NameRules OwnNameRules() {
    return std::string_view(kFolderSeparators).size() > 1 ? NameRules::Windows : NameRules::Posix;
}

std::string FaultOfName(std::string_view name, NameRules rules) {
    return rules == NameRules::Windows ? FaultForWindows(name) : "";
}

std::string FaultOfTarget(std::string_view path, NameRules rules) {
    if (path.find('\0') != std::string_view::npos) {
        return "it holds a NUL";
    }
    if (IsOwn(path)) {
        return "the name " + std::string(kOwnFolder) + " is the program's own";
    }
    for (;;) {
        const std::size_t slash = path.find('/');
        if (std::string fault = FaultOfPart(path.substr(0, slash), rules); !fault.empty()) {
            return fault;
        }
        if (slash == std::string_view::npos) {
            return "";
        }
        path.remove_prefix(slash + 1);
    }
}

}  // namespace Mirqos::Tool
