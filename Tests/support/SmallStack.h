#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

namespace vxtest {

/// Runs a function in a thread whose stack is 128 KiB, the smallest that programs use.
inline void OnSmallStack(std::function<void()> aFunction) {
    pthread_attr_t theAttributes;
    ASSERT_EQ(pthread_attr_init(&theAttributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&theAttributes, 128 * 1024), 0);
    pthread_t theThread;
    const auto theMain = [](void* aContext) -> void* {
        (*static_cast<std::function<void()>*>(aContext))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&theThread, &theAttributes, theMain, &aFunction), 0);
    pthread_join(theThread, nullptr);
    pthread_attr_destroy(&theAttributes);
}

}  // namespace vxtest
