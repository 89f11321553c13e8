// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxMultiThreadSuite: threads and mutexes.

#include <algorithm>
#include <mutex>
#include <thread>

#include "tests/openfx/host/handed_over.h"
#include "tests/openfx/host/host.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

constexpr unsigned kThreads = 4;
thread_local bool spawned = false;
thread_local unsigned ownIndex = 0;

/// Recursive, as plug-ins may lock a mutex again on the same thread.
class Mutex : public Object {
 public:
    using Object::Object;
    std::recursive_mutex lock;
};

OfxStatus MultiThread(OfxThreadFunctionV1* function, unsigned int count, void* argument) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("multiThread")) return status;
    if (spawned) {
        host.record.Violation("multiThread was called from one of its own threads");
        return kOfxStatErrExists;
    }
    const unsigned threads = std::clamp(count, 1u, kThreads);
    const RunningAction action = Host::Action() == nullptr ? RunningAction{"multiThread"} : *Host::Action();
    std::vector<std::thread> running;
    for (unsigned index = 0; index < threads; ++index) {
        running.emplace_back([&, index] {
            const ActionScope scope(host, action);
            spawned = true;
            ownIndex = index;
            function(index, threads, argument);
        });
    }
    for (std::thread& thread : running) thread.join();
    return kOfxStatOK;
}

OfxStatus NumCpus(unsigned int* count) {
    if (const OfxStatus status = Host::Current()->Enter("multiThreadNumCPUs")) return status;
    *count = kThreads;
    return kOfxStatOK;
}

OfxStatus Index(unsigned int* index) {
    if (const OfxStatus status = Host::Current()->Enter("multiThreadIndex")) return status;
    *index = ownIndex;
    return kOfxStatOK;
}

int IsSpawned() {
    Host::Current()->Enter("multiThreadIsSpawnedThread");
    return spawned ? 1 : 0;
}

OfxStatus Create(OfxMutexHandle* mutex, int count) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("mutexCreate")) return status;
    auto* made = new Mutex(host);
    for (int i = 0; i < count; ++i) made->lock.lock();
    host.record.Open("mutexCreate", 1);
    HandedOver::Add(made);
    *mutex = made->As<OfxMutexHandle>();
    return kOfxStatOK;
}

OfxStatus Destroy(const OfxMutexHandle handle) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("mutexDestroy");
    auto* mutex = host.Find<Mutex>(handle, "mutexDestroy", "a mutex");
    if (mutex == nullptr) return kOfxStatErrBadHandle;
    host.record.Open("mutexCreate", -1);
    HandedOver::Remove(mutex);
    delete mutex;
    return fault;
}

Mutex* Begin(const char* function, OfxMutexHandle handle, OfxStatus& status) {
    Host& host = *Host::Current();
    status = host.Enter(function);
    if (status != kOfxStatOK) return nullptr;
    auto* mutex = host.Find<Mutex>(handle, function, "a mutex");
    if (mutex == nullptr) status = kOfxStatErrBadHandle;
    return mutex;
}

OfxStatus Lock(const OfxMutexHandle handle) {
    OfxStatus status = kOfxStatOK;
    if (Mutex* mutex = Begin("mutexLock", handle, status)) mutex->lock.lock();
    return status;
}

OfxStatus UnLock(const OfxMutexHandle handle) {
    OfxStatus status = kOfxStatOK;
    if (Mutex* mutex = Begin("mutexUnLock", handle, status)) mutex->lock.unlock();
    return status;
}

OfxStatus TryLock(const OfxMutexHandle handle) {
    OfxStatus status = kOfxStatOK;
    Mutex* mutex = Begin("mutexTryLock", handle, status);
    if (mutex == nullptr) return status;
    return mutex->lock.try_lock() ? OfxStatus(kOfxStatOK) : OfxStatus(kOfxStatFailed);
}

}  // namespace

const OfxMultiThreadSuiteV1& MultiThreadSuite() {
    static const OfxMultiThreadSuiteV1 suite = {MultiThread, NumCpus, Index,  IsSpawned, Create,
                                                Destroy,     Lock,    UnLock, TryLock};
    return suite;
}

}  // namespace umbrant::ofx
