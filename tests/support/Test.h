#pragma once

// Most tests use this of the folder, of GoogleTest and of the standard library: each test file includes it,
// or a header of its folder that does.
#include "tests/support/Await.h"
#include "tests/support/Child.h"
#include "tests/support/Host.h"
#include "tests/support/Standard.h"
#include "tests/support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
