#pragma once
// Runs functions on a stack of a given size.

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

/// Runs `work` in a thread with a stack of this size and waits until it ends.
inline void run_on_stack(std::size_t bytes, std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t  thread;
    auto const run = [](void* given) -> void* {
        (*static_cast<std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}
