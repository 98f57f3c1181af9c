#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;
using Names = std::vector<std::string>;

/// Lets Windows answer, and keeps the order of the calls.
template <auto kPlace>
class Ordered : public CallSpy<kPlace> {
public:
    Ordered(Names& names, std::string name)
        : CallSpy<kPlace>([this, &names, name = std::move(name)](auto... arguments) {
              names.push_back(name);
              return this->Real(arguments...);
          }) {}
};

/// Which calls to Windows a line makes. Each costs a user of the log time, so none is made twice.
class FileCalls : public FileOutputTest {
protected:
    CFileOutput m_output;
    Names m_names;
    const Ordered<&WindowsCalls::createMutex> m_createMutex{m_names, "create mutex"};
    const Ordered<&WindowsCalls::releaseMutex> m_release{m_names, "release"};
    const Ordered<&WindowsCalls::waitForSingleObject> m_wait{m_names, "wait"};
    const Ordered<&WindowsCalls::createFileMapping> m_createMapping{m_names, "create mapping"};
    const Ordered<&WindowsCalls::mapViewOfFile> m_map{m_names, "map"};
    const Ordered<&WindowsCalls::createFile> m_createFile{m_names, "create file"};
    const Ordered<&WindowsCalls::readFile> m_read{m_names, "read"};
    const Ordered<&WindowsCalls::writeFile> m_write{m_names, "write"};
    const Ordered<&WindowsCalls::setFilePointer> m_seek{m_names, "seek"};
    const Ordered<&WindowsCalls::getFileSizeEx> m_size{m_names, "size"};
    const Ordered<&WindowsCalls::flushFileBuffers> m_flush{m_names, "flush"};
    const Ordered<&WindowsCalls::createDirectory> m_createDirectory{m_names, "create folder"};
    const Ordered<&WindowsCalls::getFileAttributes> m_attributes{m_names, "attributes"};
    const Ordered<&WindowsCalls::getFileAttributesEx> m_sizeByName{m_names, "size by name"};
    const Ordered<&WindowsCalls::getNamedSecurityInfo> m_security{m_names, "security"};
    const Ordered<&WindowsCalls::setEntriesInAcl> m_entries{m_names, "merge"};
    const Ordered<&WindowsCalls::setNamedSecurityInfo> m_setSecurity{m_names, "set security"};
    const Ordered<&WindowsCalls::regOpenKey> m_registry{m_names, "registry"};
};

const Names kLevel = {"wait", "release"};
const Names kPath = {"wait", "release"};
const Names kAppend = {"seek", "write", "write", "write", "write"};

Names operator+(Names left, const Names& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST_F(FileCalls, ALineOfAnOpenFileMakesThese) {
    m_output.Write(1, 0, "first");
    const Names line =
        kLevel + kPath + Names{"size", "wait", "size", "read"} + kAppend + Names{"release"};
    m_names.clear();
    m_output.Write(1, 0, "narrow");
    EXPECT_EQ(m_names, line);
    m_names.clear();
    m_output.Write(1, 5, L"wide");
    EXPECT_EQ(m_names, line);
}

TEST_F(FileCalls, ALineAboveTheLevelMakesNothingButTheQueryOfTheLevel) {
    m_output.Write(3, 0, "dropped");
    EXPECT_EQ(m_names, kLevel);
    m_names.clear();
    m_output.Write(3, 0, L"dropped");
    EXPECT_EQ(m_names, kLevel);
}

TEST_F(FileCalls, AQueryOfTheLevelMakesThese) {
    m_output.GetLevel();
    EXPECT_EQ(m_names, kLevel);
}

TEST_F(FileCalls, TheFirstLineOpensTheFilePreparesItsFolderAndBeginsIt) {
    m_output.Write(1, 0, "first");
    Names expected =
        kLevel + kPath + Names{"size by name", "create folder", "attributes",  "security",
                               "merge",        "set security",  "create file", "create mutex",
                               "wait",         "size",          "write",       "flush"};
    expected = expected + Names{"seek", "write", "write"};  // of the columns, without a prefix
    for (int nLine = 1; nLine < kHeaderLines; ++nLine) {
        expected = expected + Names{"seek", "write", "write", "write"};  // without a source tag
    }
    expected = expected + kAppend + Names{"release"};
    // what the header reads of the product is tested where that is read
    m_names.erase(std::remove(m_names.begin(), m_names.end(), "registry"), m_names.end());
    EXPECT_EQ(m_names, expected);
}

}  // namespace
}  // namespace Mirqos::Test
