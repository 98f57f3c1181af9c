#pragma once

namespace LOGUTILS {

/// Receives what the logging library says of itself: a log line cannot tell why it was not written.
using TraceSink = void (*)(const wchar_t* pszText);

/// Says something, in a format of platform/format.h. Without a sink it is discarded unformatted.
void Trace(const wchar_t* pszFormat, ...);

/// Sets the sink, null for none, as it is in the product; returns the former one. Any thread.
TraceSink SetTraceSink(TraceSink sink);

}  // namespace LOGUTILS
