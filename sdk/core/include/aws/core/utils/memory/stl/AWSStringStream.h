#pragma once

#include <aws/core/utils/memory/stl/AWSStreamFwd.h>

#include <iostream>
#include <sstream>
