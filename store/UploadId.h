#pragma once

namespace Mirqos {

/// Names the upload of a request. Without one the SDK refuses a request; with an empty one services
/// take an abort for the deletion of the object, and a part for the whole of it.
template <class Request>
void SetUploadId(Request& request, const char* pszUploadId) {
    if (*pszUploadId != '\0') {
        request.SetUploadId(pszUploadId);
    }
}

}  // namespace Mirqos
