#pragma once

// The whole library.

#include "vx/Ref.h"
