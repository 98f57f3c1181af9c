#pragma once

#include <vector>

#include "log/dbg/WideText.h"

/// Which components of the product are on this machine, which of them a library belongs to, and
/// what follows from that for its log. Pure rules; ProductInstall reads the facts.
namespace LOGUTILS {

/// The bits of a set of components; kWindowsPe stands alone.
inline constexpr unsigned kNoComponent = 0;
inline constexpr unsigned kEngine = 1;
inline constexpr unsigned kManagement = 2;
inline constexpr unsigned kUpdateManager = 4;
inline constexpr unsigned kWindowsPe = 8;

/// Where each component is installed; empty when it is not.
struct InstallPaths {
    WideString m_engine;
    WideString m_management;
    WideString m_updateManager;
};

/// The folder of the update manager under the product's root; empty where there is no root.
WideString UpdateManagerPath(WideView rootPath);

/// The one component that the library at `libraryPath` belongs to.
unsigned ComponentKindOf(WideView libraryPath, unsigned nInstallKinds, const InstallPaths& paths);
/// The component whose registry keys serve `nKind`: the update manager and libraries of no
/// component go with the engine or the management console where one is installed.
unsigned PromotedKind(unsigned nKind, unsigned nInstallKinds);

/// The folder of the log files, ended by "\".
WideString LogRootOf(WideView libraryPath, WideView executableFolder, unsigned nInstallKinds,
                     const InstallPaths& paths);

/// The executables of the option's value, which are separated by single blanks.
std::vector<WideString> SplitAtBlanks(WideView value);

}  // namespace LOGUTILS
