#pragma once

// Most tests use this of the folder, of GoogleTest and of the standard library: each test file includes it,
// or a header of its folder that does.
#include "tests/support/Await.h"
#include "tests/support/Child.h"
#include "tests/support/Host.h"
#include "tests/support/TempDir.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>
