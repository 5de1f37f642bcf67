#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

namespace zeltest {

/// While alive, no thread of this process can be started: each would get a stack that fits no address space.
class NoThreads {
public:
    NoThreads() {
        EXPECT_EQ(pthread_getattr_default_np(&m_before), 0);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        EXPECT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 60), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    pthread_attr_t m_before;
};

}  // namespace zeltest
