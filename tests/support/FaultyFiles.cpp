#include "tests/support/FaultyFiles.h"

#include <utility>

namespace Mirqos::Test {

class FaultyFiles::File : public SystemFile {
public:
    File(FaultyFiles& files, std::unique_ptr<SystemFile> file)
        : m_files(files), m_file(std::move(file)) {
        ++m_files.m_open;
    }
    ~File() override { --m_files.m_open; }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    SystemResult Seek(std::uint64_t offset) override {
        SystemResult result;
        return m_files.Fails(Call::seek, result) ? result : m_file->Seek(offset);
    }
    SystemResult EndHere() override {
        SystemResult result;
        return m_files.Fails(Call::end, result) ? result : m_file->EndHere();
    }
    SystemResult Read(void* bytes, std::uint32_t size, std::uint32_t& got) override {
        SystemResult result;
        if (m_files.Fails(Call::read, result)) {
            return result;
        }
        result = m_file->Read(bytes, size, got);
        if (got > 0 && --m_files.m_shortRead == 0) {
            --got;
        }
        return result;
    }
    SystemResult Write(const void* bytes, std::uint32_t size, std::uint32_t& written) override {
        SystemResult result;
        if (m_files.Fails(Call::write, result)) {
            return result;
        }
        return m_file->Write(bytes, m_files.m_shortWrite.exchange(false) ? size - 1 : size,
                             written);
    }
    SystemResult Size(std::uint64_t& size) override {
        SystemResult result;
        if (m_files.Fails(Call::size, result)) {
            return result;
        }
        result = m_file->Size(size);
        size = m_files.emptied ? 0 : size;
        return result;
    }

private:
    FaultyFiles& m_files;
    std::unique_ptr<SystemFile> m_file;
};

void FaultyFiles::Fail(Call call, std::uint32_t error, int turn) {
    m_call = call;
    m_error = error;
    m_turn = turn;
}

bool FaultyFiles::Fails(Call call, SystemResult& result) {
    if (call != m_call || --m_turn != 0) {
        return false;
    }
    result = {false, m_error};
    return true;
}

std::wstring FaultyFiles::Name() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_names.empty() ? std::wstring() : m_names.back();
}

std::vector<std::wstring> FaultyFiles::Names() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_names;
}

std::unique_ptr<SystemFile> FaultyFiles::Watch(std::unique_ptr<SystemFile> file) {
    return file != nullptr ? std::make_unique<File>(*this, std::move(file)) : nullptr;
}

SystemResult FaultyFiles::TemporaryFolder(std::wstring& folder) {
    SystemResult result;
    return Fails(Call::folder, result) ? result : SystemFiles().TemporaryFolder(folder);
}

SystemResult FaultyFiles::NewTemporaryFile(const std::wstring& folder, const wchar_t* prefix,
                                           std::wstring& name) {
    SystemResult result;
    if (Fails(Call::name, result)) {
        return result;
    }
    result = SystemFiles().NewTemporaryFile(folder, prefix, name);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_names.push_back(name);
    }
    if (onNewFile) {
        onNewFile(name);
    }
    return result;
}

SystemResult FaultyFiles::Create(const std::wstring& name, std::unique_ptr<SystemFile>& file) {
    SystemResult result;
    if (Fails(Call::create, result)) {
        return result;
    }
    result = SystemFiles().Create(name, file);
    file = Watch(std::move(file));
    return result;
}

SystemResult FaultyFiles::Open(const std::wstring& name, std::unique_ptr<SystemFile>& file) {
    SystemResult result;
    if (Fails(Call::open, result)) {
        return result;
    }
    result = SystemFiles().Open(name, file);
    file = Watch(std::move(file));
    return result;
}

bool FaultyFiles::Exists(const std::wstring& name) {
    return !vanished && SystemFiles().Exists(name);
}

SystemResult FaultyFiles::Delete(const std::wstring& name) {
    SystemResult result;
    return Fails(Call::remove, result) ? result : SystemFiles().Delete(name);
}

}  // namespace Mirqos::Test
