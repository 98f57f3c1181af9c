#ifndef MIRQOS_MIRQOS_H
#define MIRQOS_MIRQOS_H

/// Everything a host needs: the records, the store interface and the functions that start and stop
/// the library. Includes neither the AWS SDK nor <windows.h>.
///
///     CloudStoreContext context;
///     MIRQOSEngineStarter engine(true, context);
///     MIRQOSInterface* store = CreateCloudStoreInterface(&context);
///     CloudStoreConfigInfo config;
///     config.m_pszRegion = "eu-central-1";  // bucket, keys, endpoint likewise
///     store->Init(&config);
///     CloudStoreWriteObjectContext write;   // bucket, key, bytes
///     const std::int32_t status = store->WriteObject(&write);
///     ReleaseCloudStoreInterface(store);
///
/// A host has to be built with the same compiler family as the library, because it calls the
/// store's operations by their place in the virtual table.

#include <mirqos/api.h>
#include <mirqos/lifecycle.h>
#include <mirqos/records.h>
#include <mirqos/store.h>

#endif
