#pragma once

#include <cstddef>
#include <string>

#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

/// A folder's own place for files that are not whole yet, so that their names meet no other's. It
/// is removed at the end with what is still in it, also when the user ends the program.
class PartFolder {
public:
    /// Makes FOLDER/.mirqos, or takes it over where it is empty. Throws Failure (LocalFile) also
    /// where something is in it.
    PartFolder(const std::string& folder, Interruption& interruption);
    PartFolder(const PartFolder&) = delete;
    PartFolder& operator=(const PartFolder&) = delete;
    ~PartFolder();

    /// A name in it for the file of this number.
    std::string NameOf(std::size_t number) const;

private:
    std::string m_name;
    /// Open as long as the folder is in use: without a part the folder would be empty, too.
    LocalFile m_sign;
    Interruption::Cleanup m_cleanup;
};

}  // namespace Mirqos::Tool
