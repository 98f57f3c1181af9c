#include "log/LogOutputs.h"

#include "log/dbg/win32/CFileOutput.h"
#include "log/dbg/win32/CSMOutput.h"

namespace Mirqos {

std::unique_ptr<IDBGLogOutput> CreateFileLogOutput() {
    return std::make_unique<NSDBG::CFileOutput>();
}

std::unique_ptr<IDBGLogOutput> CreateChannelLogOutput() {
    return std::make_unique<NSDBG::CSMOutput>();
}

}  // namespace Mirqos
