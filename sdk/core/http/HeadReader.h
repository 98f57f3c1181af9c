#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {

/// Builds the head of an answer from its lines and refuses what could make the two ends disagree
/// about where the body ends. Interim (1xx) heads are skipped, but count towards kMaxHeadBytes.
class HeadReader {
public:
    enum class State {
        reading,
        complete,  ///< the empty line of the final head was added
        refused    ///< Error() says why
    };

    /// Adds one line; its line end may be there or not.
    State AddLine(std::string_view line);
    /// Adds a whole head, lines ended by CR LF, the last one empty. A head without the empty line
    /// is refused: it was cut.
    State AddHead(std::string_view head);

    State GetState() const { return m_state; }
    /// Whether any line of any head has arrived.
    bool HasBegun() const { return m_bytes != 0; }
    const ResponseHead& Head() const { return m_head; }
    const std::string& Error() const { return m_error; }

private:
    State Refuse(std::string why);
    State AddStatusLine(std::string_view line);
    State AddHeader(std::string_view line);
    State Finish();

    State m_state = State::reading;
    std::size_t m_bytes = 0;
    bool m_statusRead = false;
    ResponseHead m_head;
    std::string m_error;
};

}  // namespace Mirqos::Http
