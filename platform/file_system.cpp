#include "platform/file_system.h"

namespace Mirqos {
namespace {

FileSystem* g_pReplacement = nullptr;

}  // namespace

FileSystem& TheFileSystem() {
    return g_pReplacement != nullptr ? *g_pReplacement : SystemFiles();
}

void ReplaceFileSystem(FileSystem* replacement) {
    g_pReplacement = replacement;
}

}  // namespace Mirqos
