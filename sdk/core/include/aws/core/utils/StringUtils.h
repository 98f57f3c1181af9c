#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

namespace Aws::Utils {

class StringUtils {
public:
    /// Replaces every occurrence of `search` in `s`, from left to right; what was put in is not
    /// searched again. An empty or null `search` changes nothing; a null `replace` is an empty
    /// text.
    static void Replace(Aws::String& s, const char* search, const char* replace);
};

}  // namespace Aws::Utils
