#pragma once

// The whole library.

#include "vx/ActivityManager.h"
#include "vx/Applet.h"
#include "vx/BitString.h"
#include "vx/CString.h"
#include "vx/CharBuffer.h"
#include "vx/Condition.h"
#include "vx/ConditionExt.h"
#include "vx/CountedDataBuffer.h"
#include "vx/CriticalSection.h"
#include "vx/DataBuffer.h"
#include "vx/GrowingBuffer.h"
#include "vx/List.h"
#include "vx/Mutex.h"
#include "vx/PathName.h"
#include "vx/Rect.h"
#include "vx/Ref.h"
#include "vx/Select.h"
#include "vx/Semaphore.h"
#include "vx/Timeout.h"
#include "vx/UInt64.h"
