#pragma once

#include <string>
#include <vector>

#include "tests/support/ScriptedAnswer.h"

namespace Mirqos::Test {

/// "k0000", "k0001" and so on, `count` keys from `first` on.
std::vector<std::string> NumberedKeys(std::size_t count, std::size_t first = 0);

/// A page of a listing. The size of an entry is the length of its key. `nextToken` empty: the page
/// is the last.
Answer ListingPage(const std::vector<std::string>& keys, const std::string& nextToken = {});

/// A page of unfinished uploads.
struct Upload {
    std::string key;
    std::string id;
};
Answer UploadsPage(const std::vector<Upload>& uploads, bool truncated = false,
                   const std::string& nextKeyMarker = {});

}  // namespace Mirqos::Test
