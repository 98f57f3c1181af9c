#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/core/utils/stream/ResponseStream.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <utility>

namespace {

using Aws::Utils::Stream::DefaultUnderlyingStream;
using Aws::Utils::Stream::PreallocatedStreamBuf;
using Aws::Utils::Stream::ResponseStream;

/// Ten bytes "0123456789" in the middle of guard bytes.
struct Guarded {
    Guarded() {
        bytes.fill('#');
        std::memcpy(Start(), "0123456789", 10);
    }
    unsigned char* Start() { return bytes.data() + 8; }
    std::string Text() const { return std::string(bytes.begin() + 8, bytes.end() - 8); }
    bool Untouched() const {
        for (std::size_t i = 0; i < 8; ++i) {
            if (bytes[i] != '#' || bytes[bytes.size() - 1 - i] != '#') {
                return false;
            }
        }
        return true;
    }
    std::array<unsigned char, 26> bytes;
};

TEST(SdkPreallocatedStreamBuf, WholeBufferIsReadableAndReportedAsAvailable) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    Aws::IOStream stream(&buffer);
    EXPECT_EQ(buffer.GetBuffer(), memory.Start());
    EXPECT_EQ(buffer.in_avail(), 10);
    std::string text(10, '\0');
    stream.read(text.data(), 10);
    EXPECT_EQ(stream.gcount(), 10);
    EXPECT_EQ(text, "0123456789");
    EXPECT_EQ(stream.get(), std::char_traits<char>::eof());
}

TEST(SdkPreallocatedStreamBuf, LengthStaysAvailableAfterAShorterWrite) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    Aws::IOStream stream(&buffer);
    stream << "abc";
    EXPECT_EQ(buffer.in_avail(), 10);
    EXPECT_EQ(memory.Text(), "abc3456789");
}

TEST(SdkPreallocatedStreamBuf, WriteBeyondTheEndFailsAndTouchesNothing) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    Aws::IOStream stream(&buffer);
    stream.write("ABCDEFGHIJKLM", 13);
    EXPECT_FALSE(stream.good());
    stream.clear();
    stream.put('X');
    EXPECT_FALSE(stream.good());
    EXPECT_EQ(memory.Text(), "ABCDEFGHIJ");
    EXPECT_TRUE(memory.Untouched());
}

TEST(SdkPreallocatedStreamBuf, ReadAndWritePositionsMoveApart) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    Aws::IOStream stream(&buffer);
    stream.seekp(4);
    stream << "xy";
    EXPECT_EQ(stream.tellp(), 6);
    EXPECT_EQ(stream.tellg(), 0);
    stream.seekg(2);
    EXPECT_EQ(stream.get(), '2');
    EXPECT_EQ(stream.tellg(), 3);
    EXPECT_EQ(stream.tellp(), 6);
    stream.seekg(2, std::ios_base::cur);
    EXPECT_EQ(stream.get(), 'y');
    stream.seekp(-1, std::ios_base::cur);
    stream << 'z';
    EXPECT_EQ(memory.Text(), "0123xz6789");
    stream.seekp(-1, std::ios_base::end);
    stream << "Q";
    EXPECT_EQ(memory.Text(), "0123xz678Q");
}

TEST(SdkPreallocatedStreamBuf, LengthIsFoundBySeekingToTheEnd) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    Aws::IOStream stream(&buffer);
    stream.seekg(0, std::ios_base::end);
    EXPECT_EQ(stream.tellg(), 10);
    EXPECT_EQ(buffer.in_avail(), 0);
    stream.seekg(0, std::ios_base::beg);
    EXPECT_EQ(stream.get(), '0');
}

TEST(SdkPreallocatedStreamBuf, SeekOutsideTheBufferFails) {
    Guarded memory;
    PreallocatedStreamBuf buffer(memory.Start(), 10);
    const std::streampos failed(std::streamoff(-1));
    EXPECT_EQ(buffer.pubseekpos(11, std::ios_base::in), failed);
    EXPECT_EQ(buffer.pubseekpos(11, std::ios_base::out), failed);
    EXPECT_EQ(buffer.pubseekoff(-1, std::ios_base::beg), failed);
    EXPECT_EQ(buffer.pubseekoff(1, std::ios_base::end), failed);
    EXPECT_EQ(buffer.pubseekoff(0, std::ios_base::cur), failed);
    EXPECT_EQ(buffer.pubseekpos(10), std::streampos(10));
}

TEST(SdkPreallocatedStreamBuf, EmptyBufferHoldsNothing) {
    PreallocatedStreamBuf buffer(nullptr, 0);
    Aws::IOStream stream(&buffer);
    stream.put('x');
    EXPECT_FALSE(stream.good());
    stream.clear();
    EXPECT_EQ(stream.get(), std::char_traits<char>::eof());
}

/// Counts its destructions; the stream buffer is a base that does not stand at the front.
struct OtherBase {
    virtual ~OtherBase() = default;
    int value = 7;
};
class CountingBuffer : public OtherBase, public Aws::StringBuf {
public:
    explicit CountingBuffer(int& destroyed) : m_destroyed(destroyed) {}
    ~CountingBuffer() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

TEST(SdkResponseStream, UnderlyingStreamDestroysTheBufferItWasGiven) {
    int destroyed = 0;
    {
        DefaultUnderlyingStream stream(Aws::MakeUnique<CountingBuffer>("test", destroyed));
        stream << "text";
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(SdkResponseStream, DefaultStreamGrowsInMemory) {
    DefaultUnderlyingStream stream;
    const std::string text(100000, 'x');
    stream << text;
    std::string read;
    stream >> read;
    EXPECT_EQ(read, text);
}

TEST(SdkResponseStream, MoveHandsTheStreamOnAndDestroysItOnce) {
    int destroyed = 0;
    const auto factory = [&destroyed]() -> Aws::IOStream* {
        return Aws::New<DefaultUnderlyingStream>(
            "test", Aws::MakeUnique<CountingBuffer>("test", destroyed));
    };
    {
        ResponseStream first(factory);
        Aws::IOStream* const stream = &first.GetUnderlyingStream();
        ResponseStream second(std::move(first));
        EXPECT_EQ(&second.GetUnderlyingStream(), stream);
        ResponseStream third(factory);
        third = std::move(second);
        EXPECT_EQ(destroyed, 1);
        EXPECT_EQ(&third.GetUnderlyingStream(), stream);
        ResponseStream& itself = third;
        third = std::move(itself);
        EXPECT_EQ(&third.GetUnderlyingStream(), stream);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(SdkResponseStream, StandardFactoryMakesAStreamInMemory) {
    ResponseStream stream(&Aws::Utils::Stream::DefaultResponseStreamFactoryMethod);
    stream.GetUnderlyingStream() << "abc";
    std::string read;
    stream.GetUnderlyingStream() >> read;
    EXPECT_EQ(read, "abc");
}

TEST(SdkMemory, NewAndDeleteRunConstructorAndDestructor) {
    int destroyed = 0;
    OtherBase* const object = Aws::New<CountingBuffer>("test", destroyed);
    EXPECT_EQ(object->value, 7);
    Aws::Delete(object);
    EXPECT_EQ(destroyed, 1);
    Aws::Delete(static_cast<OtherBase*>(nullptr));
    {
        const Aws::UniquePtr<Aws::StringBuf> owner =
            Aws::MakeUnique<CountingBuffer>("test", destroyed);
    }
    EXPECT_EQ(destroyed, 2);
    { const auto shared = Aws::MakeShared<CountingBuffer>("test", destroyed); }
    EXPECT_EQ(destroyed, 3);
}

TEST(SdkMemory, MemoryOfThrowingConstructorIsGivenBack) {
    struct Throwing {
        Throwing() { throw 1; }
        char room[64] = {};
    };
    // The leak checker of the sanitizer build looks at the rest.
    EXPECT_THROW(Aws::New<Throwing>("test"), int);
}

TEST(SdkMemory, MallocOfNothingIsNoFailure) {
    void* const memory = Aws::Malloc("test", 0);
    EXPECT_NE(memory, nullptr);
    Aws::Free(memory);
    Aws::Free(nullptr);
}

}  // namespace
