#pragma once

#include "tests/support/RecordingOutput.h"

namespace Mirqos::Test {

/// The recording of what the library itself writes while a test uses it. Every line, whether the
/// test looks at it or not, is expected to be written at its level: a line that moved to a higher
/// one would be missing from the log files of hosts that keep only the lower.
class LibraryLogRecording : public LogRecording {
public:
    ~LibraryLogRecording() { ExpectLevels(); }

    void Clear() {
        ExpectLevels();
        LogRecording::Clear();
    }

private:
    void ExpectLevels();
};

}  // namespace Mirqos::Test
