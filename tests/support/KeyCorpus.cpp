#include "tests/support/KeyCorpus.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string_view>

namespace Mirqos::Test {
namespace {

std::string Repeat(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

void Append(std::vector<std::string>& keys, const std::vector<std::string>& more) {
    keys.insert(keys.end(), more.begin(), more.end());
}

std::vector<std::string> ControlCharacters() {
    std::vector<std::string> keys;
    for (char c = 1; c < ' '; ++c) {
        keys.push_back(std::string("control") + c + "character");
    }
    keys.emplace_back(
        "control\x7F"
        "character");
    Append(keys, {"\x01", "\x1F", "\x7F", "tab\tnew\nline\r\x7F\x01"});
    return keys;
}

std::vector<std::string> Blanks() {
    return {" ",
            "  ",
            "\t",
            "\n",
            "\r",
            "\r\n",
            " leading",
            "  leading",
            "trailing ",
            "trailing  ",
            " both ",
            "in side",
            "in  side",
            "\tleading",
            "trailing\t",
            "\nleading",
            "trailing\n",
            "\rleading",
            "trailing\r",
            "\r\nleading",
            "trailing\r\n",
            "in\nside",
            "in\rside",
            "in\r\nside",
            "in\n\rside",
            " /blank/ ",
            "folder /file",
            "folder/ file",
            "trailing\x0B",
            "trailing\x0C"};
}

std::vector<std::string> Slashes() {
    return {"/",         "//",         "///",   "/leading", "//leading", "///leading",
            "trailing/", "trailing//", "a/b/c", "a//b",     "a///b",     "a/b//c///d",
            "/a/",       "//a//",      "a/ /b", "a/",       "a"};
}

std::vector<std::string> Dots() {
    return {".",        "..",       "...",    "./a",     "../a",      "../../a",      "a/.",
            "a/..",     "a/./b",    "a/../b", "a/.../b", "a/../../b", "a/../../../b", "/.",
            "/..",      "/./",      "/../",   "/./a",    "/../a",     "./",           "../",
            ".a",       "..a",      "a.",     "a..",     ". .",       ".//.",         "..//..",
            "%2e%2e/a", "%2E%2E/a", "..%2Fa", "a/%2e/b", "a/..;/b",   "..\\a",        ".\\a"};
}

std::vector<std::string> Punctuation() {
    std::vector<std::string> keys;
    for (const char c : std::string_view("!\"#$%&'()*+,-.:;<=>?[\\]^_`{|}~@")) {
        keys.push_back(std::string("left") + c + "right");
        keys.emplace_back(2, c);
    }
    // two dots are among the dots
    keys.erase(std::remove(keys.begin(), keys.end(), ".."), keys.end());
    return keys;
}

std::vector<std::string> Escapes() {
    return {"%",       "%2",        "%2F",          "%2f",       "a%2Fb",         "a%2fb",
            "%25",     "%2525",     "%%%",          "%00",       "%0A",           "%0D%0A",
            "%20",     "a%20b",     "a b",          "%C3%A4",    "%c3%a4",        "%FF",
            "%zz",     "%u0041",    "100%",         "100% sure", "%41",           "A",
            "%2B",     "a%2Bb",     "%40",          "a%40b",     "\\n",           "\\x41",
            "\\u0041", "\\0",       "&amp;",        "&lt;x&gt;", "&#1;",          "&#x1;",
            "&#x41;",  "&amp;amp;", "&unknown;",    "]]>",       "<![CDATA[x]]>", "<Key>x</Key>",
            "</Key>",  "<!--x-->",  "<?pi x?>",     "${HOME}",   "$(id)",         "`id`",
            "{0}",     "%s%n%d",    "=?UTF-8?Q?x?="};
}

std::vector<std::string> RequestParts() {
    return {"?",
            "?a=b",
            "a?b=c&d=e",
            "#fragment",
            "a#b",
            "a?b#c",
            "?uploads",
            "?uploadId=1&partNumber=2",
            "?versionId=null",
            "key?versionId=null",
            "?delete",
            "?tagging",
            "?list-type=2",
            "key=value",
            "a=b&c;d,e:f!g*h'i(j)k$l",
            "\"<>[]{}|\\^`",
            "x-amz-acl:private",
            "http://host/path?x",
            "//host/path",
            "s3://bucket/key",
            "arn:aws:s3:::bucket/key",
            "HTTP/1.1",
            "GET / HTTP/1.1\r\nHost: other\r\n\r\n",
            "C:\\folder\\file",
            "\\\\host\\share",
            "\\",
            "NUL",
            "aux.txt",
            "name:stream",
            "~/file",
            "-",
            "--option",
            "-._~"};
}

std::vector<std::string> Substitutions() {
    return {"@",   "+",    "@@@",   "+++",   "@+",   "+@", "a@b", "a+b", "@a+b@@", "user@host/x+y",
            "+/@", "%40@", "@%2B+", "a + b", "a @ b"};
}

std::vector<std::string> NamesOfTheServices() {
    return {".mirqos/manifest", ".mirqos", "_",          "_x", "__x", "_multipart_x",
            "__shadow_x.1",     ".meta",   ":",          ":x", "x:",  "null",
            "index.html",       "soap",    "favicon.ico"};
}

std::vector<std::string> BeyondAscii() {
    return {
        "\xC3\xBC\x62\x65r/gr\xC3\xB6\xC3\x9F\x65",
        "composed \xC3\xA9",
        "composed e\xCC\x81",  // the same letter to readers, another key
        "\xCC\x81",            // a combining character alone
        "o\xCC\x88\xCC\x81\xCC\xA7\xCC\xA3",
        "o\xCC\xA3\xCC\xA7\xCC\x81\xCC\x88",  // the marks in another order
        "\xE2\x84\xAB",                       // Angstrom
        "\xC3\x85",                           // A with a ring, which it decomposes to
        "\xEA\xB0\x80",                       // a syllable of Hangul
        "\xE1\x84\x80\xE1\x85\xA1",           // and its letters
        "\xEF\xAC\x81",                       // the ligature fi
        "\xC4\xB1 \xC4\xB0 i I",              // i with and without dots
        "\xC3\x9F \xE1\xBA\x9E ss SS",        // sharp s
        "\xD0\xBA\xD0\xBB\xD1\x8E\xD1\x87",
        "\xCE\xBA\xCE\xBB\xCE\xB5\xCE\xB9\xCE\xB4\xCE\xAF",
        "\xD7\xA7\xD7\x95\xD7\x91\xD7\xA5/\xD8\xB9\xD8\xB1\xD8\xA8",
        "\xE0\xA4\x95\xE0\xA5\x8D\xE0\xA4\xB7",
        "\xE0\xB8\x99\xE0\xB9\x89\xE0\xB8\xB3",
        "\xE6\x97\xA5\xE6\x9C\xAC",
        "\xE6\x97\xA5\xE6\x9C\xAC/\xF0\x9F\x97\x84",
        "\xF0\x9F\x97\x84",
        "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB",  // joined of two
        "\xF0\x9F\x87\xAA\xF0\x9F\x87\xBA",              // a flag of two
        "\xF0\x90\x80\x80",                              // U+10000
        "\xF0\x9D\x90\x80",                              // a mathematical A
        "\xF3\xA0\x81\x81",                              // a tag character
        "\xF3\xB0\x80\x80",                              // private use, beyond the basic plane
        "\xF4\x8F\xBF\xBD",                              // U+10FFFD
        "\xC2\x80",                                      // U+0080
        "\xC2\x85",                                      // next line
        "\xC2\xA0no-break\xC2\xA0",
        "soft\xC2\xADhyphen",
        "\xDF\xBF",      // the last of two bytes
        "\xE0\xA0\x80",  // the first of three
        "zero\xE2\x80\x8Bwidth",
        "\xE2\x80\xAEtxt.exe",  // written from right to left
        "\xE2\x80\xA8line\xE2\x80\xA9paragraph",
        "\xE3\x80\x80wide blank\xE3\x80\x80",
        "\xED\x9F\xBF",  // before the surrogates
        "\xEE\x80\x80",  // behind them
        "\xEF\xA3\xBF",  // the last for private use
        "\xEF\xA3\xBFx\xEF\xA3\xBF",
        "\xEF\xBB\xBFmarked",  // a byte-order mark
        "\xEF\xBB\xBF",
        "\xEF\xBC\x8F\xEF\xBC\xA0\xEF\xBC\x8B",  // wide slash, at and plus
        "\xEF\xBF\xBD",                          // what stands for what cannot be read
        "\xEF\xBF\xBE",                          // no characters to XML
        "\xEF\xBF\xBF",
    };
}

std::vector<std::string> Lengths() {
    std::vector<std::string> keys;
    for (const std::size_t length :
         {127u, 128u, 255u, 256u, 259u, 260u, 261u, 1000u, 1022u, 1023u}) {
        keys.push_back(Repeat("k", length));
    }
    keys.push_back(Repeat("k", kLongestKey));
    keys.push_back(Repeat("\xC3\xA9", kLongestKey / 2));
    keys.push_back(Repeat("\xE2\x82\xAC", kLongestKey / 3));  // 1,023 bytes
    keys.push_back(Repeat("\xE2\x82\xAC", kLongestKey / 3) + "e");
    keys.push_back("e" + Repeat("\xE2\x82\xAC", kLongestKey / 3));
    keys.push_back(Repeat("\xF0\x9F\x97\x84", kLongestKey / 4));
    keys.push_back(Repeat("e\xCC\x81", kLongestKey / 3));
    keys.push_back(Repeat(" ", kLongestKey));
    keys.push_back(Repeat("a/", kLongestKey / 2));
    keys.push_back(Repeat("../", kLongestKey / 3));
    keys.push_back(Repeat("%", kLongestKey - 1));
    keys.push_back(Repeat("&", kLongestKey - 1));
    keys.push_back("dir/" + Repeat("+", kLongestKey - 8) + "/end");
    keys.push_back("dir/" + Repeat("=", kLongestKey - 5) + "@");
    return keys;
}

std::vector<std::string> KeysOfEveryShape() {
    std::vector<std::string> keys = {"plain", "plain.txt", "Plain", "PLAIN"};
    for (const auto& group :
         {ControlCharacters(), Blanks(), Slashes(), Dots(), Punctuation(), Escapes(),
          RequestParts(), Substitutions(), NamesOfTheServices(), BeyondAscii(), Lengths()}) {
        Append(keys, group);
    }
    return keys;
}

}  // namespace

std::vector<std::string> KeyCorpus() {
    std::vector<std::string> keys = KeysOfEveryShape();
    keys.erase(std::remove_if(keys.begin(), keys.end(), std::not_fn(IsKeptBySdk)), keys.end());
    return keys;
}

std::vector<std::string> KeysNotKeptBySdk() {
    std::vector<std::string> keys = KeysOfEveryShape();
    keys.erase(std::remove_if(keys.begin(), keys.end(), IsKeptBySdk), keys.end());
    return keys;
}

std::vector<std::string> DistinctWhenSubstituted(const std::vector<std::string>& keys) {
    std::set<std::string> sent;
    std::vector<std::string> distinct;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(distinct),
                 [&](const std::string& key) { return sent.insert(WithPlusForAt(key)).second; });
    return distinct;
}

std::vector<std::string> ImproperKeys() {
    return {
        Repeat("k", kLongestKey + 1),
        Repeat("\xE2\x82\xAC", kLongestKey / 3) + "ee",  // 1,025 bytes, fewer characters
        Repeat("\xF0\x9F\x97\x84", kLongestKey / 4) + "e",
        Repeat("k", 2 * kLongestKey),
        "\x80",  // begins in the middle of a character
        "\xFF",
        "not UTF-8 \xFF\xFE",
        "folder\xFF/file",
        "cut \xC3",
        "cut \xE2\x82",
        "cut \xF0\x9F\x97",
        "cut \xC3/inside",
        "\xC0\xAF",                  // a slash in two bytes
        "\xE0\x80\xAF",              // in three
        "\xED\xA0\x80",              // half of a surrogate pair
        "\xED\xA0\xBD\xED\xB7\x84",  // a pair of them, as another encoding has it
        "\xF4\x90\x80\x80",          // U+110000
        "caf\xE9",                   // Latin-1
    };
}

std::string WithPlusForAt(std::string key) {
    std::replace(key.begin(), key.end(), '@', '+');
    return key;
}

bool FitsXml(const std::string& key) {
    return IsKeptInDocumentsBySdk(key) && key.find("\xEF\xBF\xBE") == key.npos &&
           key.find("\xEF\xBF\xBF") == key.npos && std::none_of(key.begin(), key.end(), [](char c) {
               return c > 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r';
           });
}

}  // namespace Mirqos::Test
