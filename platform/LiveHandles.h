#pragma once

#include "platform/Handles.h"
