#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "log/IDBGLogOutput.h"

namespace Mirqos {

/// Development builds only: appends lines in the product's layout, ended by CR LF, to one text file
/// in UTF-8. The file is opened by the first line; a line that cannot be written is lost, and the
/// next one tries again. Each line is one append, so lines of several threads and processes stay
/// whole.
class TextFileOutput : public IDBGLogOutput {
public:
    explicit TextFileOutput(std::string path);
    ~TextFileOutput() override;
    TextFileOutput(const TextFileOutput&) = delete;
    TextFileOutput& operator=(const TextFileOutput&) = delete;

    void Write(int nLevel, int nErrorCode, const char* pszMessage) override;
    void Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) override;
    int GetLevel() override;

private:
    /// The open file, or -1.
    int Open();
    void WriteLine(int level, int errorCode, std::string_view message);

    const std::string m_path;
    std::mutex m_mutex;  ///< guards m_file
    int m_file = -1;
};

}  // namespace Mirqos
