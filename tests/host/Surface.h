#pragma once

#include "Check.h"

/// Size of every record; type and place of every member; that values survive a trip through the
/// library's assignments.
void CheckRecords(Checks& checks);

/// The four functions and the guard.
void CheckLifecycle(Checks& checks);

/// Every operation of a real store, by its name and by its place in the virtual table.
void CheckOperations(Checks& checks);
