#pragma once

#include <memory>

#include "log/IDBGLogOutput.h"

/// The outputs that this platform gives a new logger. Null means that there is none.
namespace Mirqos {

std::unique_ptr<IDBGLogOutput> CreateFileLogOutput();
std::unique_ptr<IDBGLogOutput> CreateChannelLogOutput();

}  // namespace Mirqos
