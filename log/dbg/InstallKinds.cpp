#include "log/dbg/InstallKinds.h"

#include <array>
#include <utility>

namespace LOGUTILS {
namespace {

constexpr WideChar kBackslash{'\\'};

struct Component {
    unsigned nKind = kNoComponent;
    WideView path;
};

// The component under whose install path the library lies: the first that matches.
Component ComponentOf(WideView libraryPath, const InstallPaths& paths) {
    const std::array<Component, 3> components = {{{kEngine, paths.m_engine},
                                                  {kManagement, paths.m_management},
                                                  {kUpdateManager, paths.m_updateManager}}};
    for (const Component& component : components) {
        if (!component.path.empty() && BeginsWithIgnoringCase(libraryPath, component.path)) {
            return component;
        }
    }
    return {};
}

WideString Below(WideView folder, const WideString& name) {
    WideString path(folder);
    if (path.empty() || path.back() != kBackslash) {
        path += kBackslash;
    }
    return path + name;
}

}  // namespace

WideString UpdateManagerPath(WideView rootPath) {
    return rootPath.empty() ? WideString() : Below(rootPath, "Update Manager"_w);
}

unsigned ComponentKindOf(WideView libraryPath, unsigned nInstallKinds, const InstallPaths& paths) {
    if (nInstallKinds == kWindowsPe) {
        return kWindowsPe;
    }
    return ComponentOf(libraryPath, paths).nKind;
}

unsigned PromotedKind(unsigned nKind, unsigned nInstallKinds) {
    if (nKind != kNoComponent && nKind != kUpdateManager) {
        return nKind;
    }
    if ((nInstallKinds & kEngine) != 0) {
        return kEngine;
    }
    if ((nInstallKinds & kManagement) != 0) {
        return kManagement;
    }
    return nKind;
}

WideString LogRootOf(WideView libraryPath, WideView executableFolder, unsigned nInstallKinds,
                     const InstallPaths& paths) {
    if (nInstallKinds == kWindowsPe) {
        return Below(executableFolder, R"(Log\)"_w);
    }
    if (nInstallKinds != kNoComponent) {
        const Component component = ComponentOf(libraryPath, paths);
        if (component.nKind != kNoComponent) {
            return Below(component.path, R"(Logs\)"_w);
        }
    }
    return Below(executableFolder, R"(Logs\)"_w);
}

std::vector<WideString> SplitAtBlanks(WideView value) {
    std::vector<WideString> names;
    while (!value.empty()) {
        const std::size_t nEnd = value.find(WideChar{' '});
        if (nEnd != 0) {
            names.emplace_back(value.substr(0, nEnd));
        }
        value.remove_prefix(nEnd == WideView::npos ? value.size() : nEnd + 1);
    }
    return names;
}

}  // namespace LOGUTILS
