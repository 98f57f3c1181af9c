#include <string>
#include <vector>

#include "tools/mirqos-logview/Program.h"
#include "tools/mirqos/win32/Wide.h"

extern "C" int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(Mirqos::Tool::ToUtf8(argv[i]));
    }
    return Mirqos::LogView::RunProgram(arguments);
}
