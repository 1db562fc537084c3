#include "Lock.h"

#include <pthread.h>

namespace quarry::python {

namespace {
int forks = 0;
}

int Lock::Generation() {
    static const int kRegistered = pthread_atfork(nullptr, nullptr, [] { ++forks; });
    static_cast<void>(kRegistered);
    return forks;
}

}  // namespace quarry::python
