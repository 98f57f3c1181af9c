// The floor: a client with the same libcurl, OpenSSL and expat that does what every client has to
// do and nothing else. It keeps one connection for each thread, hashes each body, because plain
// HTTP asks for that, signs, sends from where the bytes are and receives to where they belong. It
// tries nothing twice, has no limits of time, and takes anything but status 200 or 206 for the end.
//
// The library's interface promises its hosts copies: what is written is copied before it is sent,
// the parts of an upload are kept until its end, what is read is handed over when all of it is
// there. A floor with copies makes them too, with what its language offers, and so shows what they
// cost.

#include <curl/curl.h>
#include <expat.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "bench/s3/ForEach.h"
#include "bench/s3/Session.h"

namespace Mirqos::Bench {
namespace {

// what was fastest here
constexpr long kSendBuffer = 1024 * 1024;
constexpr long kReceiveBuffer = 512 * 1024;

using Digest = std::array<unsigned char, 32>;
using Text = std::string_view;

std::string Hex(const Digest& digest) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : digest) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string Sha256Hex(const void* data, std::size_t size) {
    static const EVP_MD* const sha256 = EVP_MD_fetch(nullptr, "SHA2-256", nullptr);
    Digest digest;
    EVP_Digest(data, size, digest.data(), nullptr, sha256, nullptr);
    return Hex(digest);
}

Digest Hmac(const void* key, std::size_t size, Text text) {
    Digest digest;
    HMAC(EVP_sha256(), key, static_cast<int>(size),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), nullptr);
    return digest;
}

/// Signature V4, with the key of the day made once.
class Signer {
public:
    explicit Signer(const Service& service) : m_service(service) {
        const std::string day = Now().substr(0, 8);
        m_scope = day + '/' + service.region + "/s3/aws4_request";
        const std::string secret = "AWS4" + service.secretKey;
        m_key = Hmac(secret.data(), secret.size(), day);
        for (const Text part : {Text(service.region), Text("s3"), Text("aws4_request")}) {
            m_key = Hmac(m_key.data(), m_key.size(), part);
        }
    }

    static std::string Now() {
        const std::time_t now = std::time(nullptr);
        std::tm utc{};
        gmtime_r(&now, &utc);
        char text[20];
        return {text, std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc)};
    }

    std::string Authorization(Text method, Text path, Text query, const std::string& bodyHash,
                              const std::string& time) const {
        constexpr Text names = "host;x-amz-content-sha256;x-amz-date";
        std::string request;
        request.append(method).append("\n").append(path).append("\n").append(query);
        request.append("\nhost:").append(m_service.endpoint);
        request.append("\nx-amz-content-sha256:").append(bodyHash);
        request.append("\nx-amz-date:").append(time).append("\n\n").append(names);
        request.append("\n").append(bodyHash);
        const std::string toSign = "AWS4-HMAC-SHA256\n" + time + '\n' + m_scope + '\n' +
                                   Sha256Hex(request.data(), request.size());
        return "AWS4-HMAC-SHA256 Credential=" + m_service.accessKey + '/' + m_scope +
               ", SignedHeaders=" + std::string(names) +
               ", Signature=" + Hex(Hmac(m_key.data(), m_key.size(), toSign));
    }

private:
    const Service& m_service;
    std::string m_scope;
    Digest m_key{};
};

struct Request {
    const char* method;
    std::string path;
    std::string query;  ///< encoded and in order
    std::string range;
    Text body;
    bool hasBody = false;
};

/// One connection. Where an answer's body goes is the caller's to say.
class Connection {
public:
    explicit Connection(const Service& service)
        : m_service(service), m_signer(service), m_easy(curl_easy_init()) {
        curl_easy_setopt(m_easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_easy, CURLOPT_PROXY, "");
        curl_easy_setopt(m_easy, CURLOPT_BUFFERSIZE, kReceiveBuffer);
        curl_easy_setopt(m_easy, CURLOPT_UPLOAD_BUFFERSIZE, kSendBuffer);
        curl_easy_setopt(m_easy, CURLOPT_WRITEFUNCTION, &Connection::OnData);
        curl_easy_setopt(m_easy, CURLOPT_WRITEDATA, this);
        curl_easy_setopt(m_easy, CURLOPT_READFUNCTION, &Connection::OnSend);
        curl_easy_setopt(m_easy, CURLOPT_READDATA, this);
        curl_easy_setopt(m_easy, CURLOPT_HEADERFUNCTION, &Connection::OnHeader);
        curl_easy_setopt(m_easy, CURLOPT_HEADERDATA, this);
    }
    ~Connection() { curl_easy_cleanup(m_easy); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Receives at most `size` bytes to `place` and returns their number.
    std::size_t Run(const Request& request, void* place, std::size_t size) {
        m_place = static_cast<char*>(place);
        m_room = size;
        Exchange(request);
        return size - m_room;
    }

    /// Receives a text of any length.
    const std::string& Run(const Request& request) {
        m_place = nullptr;
        m_text.clear();
        Exchange(request);
        return m_text;
    }

    /// Of the last answer.
    const std::string& Etag() const { return m_etag; }

private:
    void Exchange(const Request& request) {
        m_body = request.body;
        const std::string time = Signer::Now();
        static const std::string noBody = Sha256Hex("", 0);
        const std::string hash =
            request.hasBody ? Sha256Hex(request.body.data(), request.body.size()) : noBody;
        curl_slist* headers = nullptr;
        const auto add = [&headers](const std::string& line) {
            headers = curl_slist_append(headers, line.c_str());
        };
        add("Authorization: " +
            m_signer.Authorization(request.method, request.path, request.query, hash, time));
        add("x-amz-content-sha256: " + hash);
        add("x-amz-date: " + time);
        add("Accept:");
        add("Expect:");
        if (!request.range.empty()) {
            add("Range: bytes=" + request.range);
        }
        const std::string url = "http://" + m_service.endpoint + request.path +
                                (request.query.empty() ? "" : '?' + request.query);
        curl_easy_setopt(m_easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(m_easy, CURLOPT_HTTPHEADER, headers);
        if (request.hasBody) {
            curl_easy_setopt(m_easy, CURLOPT_UPLOAD, 1L);
            curl_easy_setopt(m_easy, CURLOPT_INFILESIZE_LARGE,
                             static_cast<curl_off_t>(request.body.size()));
        } else {
            curl_easy_setopt(m_easy, CURLOPT_HTTPGET, 1L);
        }
        curl_easy_setopt(m_easy, CURLOPT_CUSTOMREQUEST, request.method);
        const CURLcode code = curl_easy_perform(m_easy);
        curl_slist_free_all(headers);
        long status = 0;
        curl_easy_getinfo(m_easy, CURLINFO_RESPONSE_CODE, &status);
        if (code != CURLE_OK || (status != 200 && status != 206)) {
            throw std::runtime_error("floor: " + url + " ended with status " +
                                     std::to_string(status) + ", " + curl_easy_strerror(code));
        }
    }

    static std::size_t OnSend(char* buffer, std::size_t unit, std::size_t count, void* self) {
        Text& left = static_cast<Connection*>(self)->m_body;
        const std::size_t size = std::min(unit * count, left.size());
        std::memcpy(buffer, left.data(), size);
        left.remove_prefix(size);
        return size;
    }

    static std::size_t OnData(char* data, std::size_t, std::size_t size, void* self) {
        auto* const me = static_cast<Connection*>(self);
        if (me->m_place == nullptr) {
            me->m_text.append(data, size);
            return size;
        }
        const std::size_t taken = std::min(size, me->m_room);
        std::memcpy(me->m_place, data, taken);
        me->m_place += taken;
        me->m_room -= taken;
        return taken;
    }

    static std::size_t OnHeader(char* data, std::size_t, std::size_t size, void* self) {
        constexpr Text name = "ETag: ";
        const Text line(data, size);
        if (line.substr(0, name.size()) == name) {
            static_cast<Connection*>(self)->m_etag =
                line.substr(name.size(), line.find_last_not_of("\r\n") + 1 - name.size());
        }
        return size;
    }

    const Service& m_service;
    const Signer m_signer;
    CURL* const m_easy;
    Text m_body;
    char* m_place = nullptr;
    std::size_t m_room = 0;
    std::string m_text;
    std::string m_etag;
};

/// What a page of a listing says.
struct Page {
    struct Entry {
        std::string key;
        std::uint64_t size = 0;
    };

    explicit Page(const std::string& document) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &Page::OnStart, &Page::OnEnd);
        XML_SetCharacterDataHandler(parser, &Page::OnText);
        const bool good = XML_Parse(parser, document.data(), static_cast<int>(document.size()),
                                    XML_TRUE) == XML_STATUS_OK;
        XML_ParserFree(parser);
        if (!good) {
            throw std::runtime_error("floor: a listing's page is no XML");
        }
    }

    std::vector<Entry> entries;
    std::string next;

private:
    static void OnStart(void* self, const char* name, const char**) {
        auto* const me = static_cast<Page*>(self);
        me->m_text.clear();
        if (std::strcmp(name, "Contents") == 0) {
            me->entries.emplace_back();
        }
    }
    static void OnEnd(void* self, const char* name) {
        auto* const me = static_cast<Page*>(self);
        if (std::strcmp(name, "Key") == 0) {
            me->entries.back().key = me->m_text;
        } else if (std::strcmp(name, "Size") == 0) {
            std::from_chars(me->m_text.data(), me->m_text.data() + me->m_text.size(),
                            me->entries.back().size);
        } else if (std::strcmp(name, "NextContinuationToken") == 0) {
            me->next = me->m_text;
        }
    }
    static void OnText(void* self, const char* text, int size) {
        static_cast<Page*>(self)->m_text.append(text, static_cast<std::size_t>(size));
    }

    std::string m_text;
};

class FloorSession final : public Session {
public:
    FloorSession(const Service& service, int threads, bool copies)
        : m_service(service), m_copies(copies) {
        for (int n = 0; n < std::max(threads, 1); ++n) {
            m_connections.push_back(std::make_unique<Connection>(m_service));
        }
    }

    void Put(const std::string& key, const Bytes& object) override {
        Send(First(), key, {}, object);
    }

    void Get(const std::string& key, Bytes& into) override {
        Receive(First(), key, 0, into, m_received);
    }

    void Upload(const std::string& key, const Bytes& part, int count) override {
        const std::string answer = First().Run(Sending("POST", key, "uploads=", {}));
        const std::string id = Between(answer, "<UploadId>", "</UploadId>");
        std::vector<std::string> etags(static_cast<std::size_t>(count));
        std::vector<Bytes> kept(etags.size());
        ForEach(m_connections, count, [&](const auto& connection, int index) {
            const auto place = static_cast<std::size_t>(index);
            const std::string query =
                "partNumber=" + std::to_string(index + 1) + "&uploadId=" + Encoded(id);
            kept[place] = Send(*connection, key, query, part);
            etags[place] = connection->Etag();
        });
        std::string parts = "<CompleteMultipartUpload>";
        for (int number = 1; number <= count; ++number) {
            parts.append("<Part><PartNumber>").append(std::to_string(number));
            parts.append("</PartNumber><ETag>").append(etags[static_cast<std::size_t>(number - 1)]);
            parts.append("</ETag></Part>");
        }
        parts.append("</CompleteMultipartUpload>");
        First().Run(Sending("POST", key, "uploadId=" + Encoded(id), parts));
    }

    const Bytes& ReadRanges(const std::string& key, std::vector<Bytes>& buffers,
                            int count) override {
        const Bytes* last = nullptr;
        std::vector<Reader> readers;
        for (const auto& connection : m_connections) {
            readers.push_back({*connection, readers.size(), {}});
        }
        ForEach(readers, count, [&](Reader& reader, int index) {
            // each has buffers of its own
            Bytes& into = buffers[reader.place];
            reader.place += readers.size();
            if (reader.place >= buffers.size()) {
                reader.place %= readers.size();
            }
            Receive(reader.connection, key, static_cast<std::uint64_t>(index) * into.size(), into,
                    reader.received);
            if (index == count - 1) {
                last = &into;  // who reads the last one reads no more
            }
        });
        return *last;
    }

    std::size_t List(const std::string& prefix) override {
        std::size_t count = 0;
        std::string token;
        do {
            Request request{"GET", '/' + m_service.bucket, {}, {}, {}, false};
            request.query = (token.empty() ? "" : "continuation-token=" + Encoded(token) + '&') +
                            "list-type=2&prefix=" + Encoded(prefix);
            const Page page(First().Run(request));
            count += page.entries.size();
            token = page.next;
        } while (!token.empty());
        return count;
    }

private:
    Connection& First() const { return *m_connections.front(); }

    struct Reader {
        Connection& connection;
        std::size_t place;  ///< of the buffer for its next range
        Bytes received;
    };

    static Text View(const Bytes& bytes) {
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    static std::string Encoded(const std::string& text) {
        char* const encoded = curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size()));
        std::string result = encoded;
        curl_free(encoded);
        return result;
    }

    static std::string Between(const std::string& text, Text begin, Text end) {
        const std::size_t from = text.find(begin) + begin.size();
        return text.substr(from, text.find(end) - from);
    }

    Request Sending(const char* method, const std::string& key, const std::string& query,
                    Text body) const {
        return {method, '/' + m_service.bucket + '/' + key, query, {}, body, true};
    }

    /// Returns the copy that was sent, if one was.
    Bytes Send(Connection& connection, const std::string& key, const std::string& query,
               const Bytes& bytes) const {
        Bytes copy = m_copies ? bytes : Bytes();
        static_cast<void>(
            connection.Run(Sending("PUT", key, query, View(m_copies ? copy : bytes))));
        return copy;
    }

    /// `received` is where a floor with copies has the bytes before they are complete.
    void Receive(Connection& connection, const std::string& key, std::uint64_t first, Bytes& into,
                 Bytes& received) const {
        const std::string range =
            std::to_string(first) + '-' + std::to_string(first + into.size() - 1);
        if (m_copies) {
            received.resize(into.size());
        }
        const std::size_t size =
            connection.Run({"GET", '/' + m_service.bucket + '/' + key, {}, range, {}, false},
                           m_copies ? received.data() : into.data(), into.size());
        if (size != into.size()) {
            throw std::runtime_error("floor: the object is shorter than asked for");
        }
        if (m_copies) {
            std::memcpy(into.data(), received.data(), size);
        }
    }

    const Service m_service;
    const bool m_copies;
    std::vector<std::unique_ptr<Connection>> m_connections;
    Bytes m_received;
};

}  // namespace

std::unique_ptr<Session> OpenFloor(const Service& service, int threads, bool copies) {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    static_cast<void>(started);
    return std::make_unique<FloorSession>(service, threads, copies);
}

}  // namespace Mirqos::Bench
