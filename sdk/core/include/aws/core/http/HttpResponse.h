#pragma once

namespace Aws::Http {

/// Status codes. Any other code of an answer is kept as its number.
enum class HttpResponseCode : int {
    REQUEST_NOT_MADE = -1,
    OK = 200,
    NO_CONTENT = 204,
    PARTIAL_CONTENT = 206,
    MOVED_PERMANENTLY = 301,
    TEMPORARY_REDIRECT = 307,
    BAD_REQUEST = 400,
    UNAUTHORIZED = 401,
    FORBIDDEN = 403,
    NOT_FOUND = 404,
    METHOD_NOT_ALLOWED = 405,
    REQUEST_TIMEOUT = 408,
    CONFLICT = 409,
    PRECONDITION_FAILED = 412,
    REQUESTED_RANGE_NOT_SATISFIABLE = 416,
    TOO_MANY_REQUESTS = 429,
    INTERNAL_SERVER_ERROR = 500,
    NOT_IMPLEMENTED = 501,
    BAD_GATEWAY = 502,
    SERVICE_UNAVAILABLE = 503,
    GATEWAY_TIMEOUT = 504
};

}  // namespace Aws::Http
