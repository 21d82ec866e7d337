#pragma once

// The whole library.

#include "vx/BitString.h"
#include "vx/CString.h"
#include "vx/CharBuffer.h"
#include "vx/CountedDataBuffer.h"
#include "vx/DataBuffer.h"
#include "vx/GrowingBuffer.h"
#include "vx/List.h"
#include "vx/Rect.h"
#include "vx/Ref.h"
#include "vx/UInt64.h"
