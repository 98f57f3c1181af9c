#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "sdk/core/crypto/Hash.h"

namespace {

using namespace Mirqos::Crypto;

template <typename Hash>
std::string HexOf(std::string_view data) {
    Hash hash;
    hash.Update(data.data(), data.size());
    return ToHex(hash.Finish());
}

std::string HmacHex(std::string_view key, std::string_view data) {
    return ToHex(HmacSha256(key.data(), key.size(), data.data(), data.size()));
}

std::string Base64Of(std::string_view text) {
    return ToBase64(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

TEST(SdkHash, Md5MatchesRfc1321) {
    EXPECT_EQ(HexOf<Md5>(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(HexOf<Md5>("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(HexOf<Md5>("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(HexOf<Md5>("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(HexOf<Md5>("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(HexOf<Md5>("1234567890123456789012345678901234567890"
                         "1234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(SdkHash, Sha256MatchesFips180) {
    EXPECT_EQ(HexOf<Sha256>(""),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(HexOf<Sha256>("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(HexOf<Sha256>("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(HexOf<Sha256>(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(SdkHash, HmacSha256MatchesRfc4231) {
    EXPECT_EQ(HmacHex(std::string(20, '\x0b'), "Hi There"),
              "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
    EXPECT_EQ(HmacHex("Jefe", "what do ya want for nothing?"),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_EQ(HmacHex(std::string(20, '\xaa'), std::string(50, '\xdd')),
              "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe");
    EXPECT_EQ(
        HmacHex(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
        "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
    EXPECT_EQ(HmacHex(std::string(131, '\xaa'),
                      "This is a test using a larger than block-size key and a larger than "
                      "block-size data. The key needs to be hashed before being used by the HMAC "
                      "algorithm."),
              "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2");
}

TEST(SdkHash, EmptyHmacKeyIsAKeyOfItsOwn) {
    const std::string expected = "b613679a0814d9ec772f95d778c35fc5ff1697c493715653c6c712144292c5ad";
    HmacHex("another key", "between");
    EXPECT_EQ(ToHex(HmacSha256(nullptr, 0, nullptr, 0)), expected);
    EXPECT_EQ(HmacHex("", ""), expected);
}

TEST(SdkHash, AnySplitOfTheDataGivesTheSameDigest) {
    std::string data(3 * 1024 * 1024 + 17, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<char>(i * 31 >> 3);
    }
    const std::string whole = HexOf<Sha256>(data);
    for (const std::size_t piece : {std::size_t{1000}, std::size_t{65536}, data.size()}) {
        Sha256 hash;
        hash.Update(nullptr, 0);
        for (std::size_t at = 0; at < data.size(); at += piece) {
            hash.Update(data.data() + at, std::min(piece, data.size() - at));
        }
        EXPECT_EQ(ToHex(hash.Finish()), whole) << piece;
    }
}

TEST(SdkHash, ThreadsHashingAtOnceDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    std::vector<std::string> results(8);
    for (std::size_t n = 0; n < results.size(); ++n) {
        threads.emplace_back([n, &results] {
            const std::string data(1000 + n, static_cast<char>('a' + n));
            std::string all;
            for (int round = 0; round < 100; ++round) {
                const std::string once =
                    HexOf<Sha256>(data) + HexOf<Md5>(data) + HmacHex(data, "x");
                ASSERT_TRUE(all.empty() || all == once);
                all = once;
            }
            results[n] = all;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t n = 0; n < results.size(); ++n) {
        const std::string data(1000 + n, static_cast<char>('a' + n));
        EXPECT_EQ(results[n], HexOf<Sha256>(data) + HexOf<Md5>(data) + HmacHex(data, "x"));
    }
}

TEST(SdkHash, Base64MatchesRfc4648) {
    EXPECT_EQ(Base64Of(""), "");
    EXPECT_EQ(Base64Of("f"), "Zg==");
    EXPECT_EQ(Base64Of("fo"), "Zm8=");
    EXPECT_EQ(Base64Of("foo"), "Zm9v");
    EXPECT_EQ(Base64Of("foob"), "Zm9vYg==");
    EXPECT_EQ(Base64Of("fooba"), "Zm9vYmE=");
    EXPECT_EQ(Base64Of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(Base64Of("\xff\xfe\xfb"), "//77");
}

}  // namespace
