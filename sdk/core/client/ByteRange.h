#pragma once

#include "sdk/core/http/Transport.h"

namespace Mirqos::Client {

/// Whether a successful answer holds bytes from another place than the request's Range header asks
/// for: its Content-Range says so, or it is the whole object, as from a service or a proxy that
/// passes ranges over. A head that does not tell is believed, and an empty object is the same from
/// any place.
bool BeginsElsewhere(const Http::HeaderList& asked, const Http::ResponseHead& answered);

}  // namespace Mirqos::Client
