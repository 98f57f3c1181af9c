#include <mirqos/store.h>

// Out of line, so that the virtual table and the special members live in the library alone.
MIRQOSInterface::MIRQOSInterface() = default;
MIRQOSInterface::MIRQOSInterface(const MIRQOSInterface&) = default;
MIRQOSInterface& MIRQOSInterface::operator=(const MIRQOSInterface&) = default;
MIRQOSInterface::~MIRQOSInterface() = default;
