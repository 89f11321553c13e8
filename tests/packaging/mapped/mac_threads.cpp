// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// macOS's pthread objects have other sizes, initial values and constants than this system's. Each is a mere address
// here, to which an object of this system is kept on the side. Objects that were never initialised but hold their
// static initial value get theirs at first use.

#include <pthread.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

#include "tests/packaging/mapped/mac_system.h"

namespace {

constexpr int kMacRecursive = 2;
/// The first word of a mutex with a static initial value.
constexpr std::uint64_t kMacMutexStatic = 0x32AAABA7;
/// The first word of a pthread_once_t: not yet run, and run.
constexpr std::uint64_t kMacOnceStatic = 0x30B1BCBA, kMacOnceDone = 0x4F6E6365;

struct MacMutexAttributes {
    std::int64_t signature;
    std::int64_t type;
};

struct SideTable {
    std::mutex mutex;
    std::map<const void*, std::unique_ptr<pthread_mutex_t>> mutexes;
    std::map<const void*, std::unique_ptr<pthread_cond_t>> conditions;
    std::map<const void*, std::unique_ptr<pthread_rwlock_t>> readWriteLocks;
};

/// Never destroyed: threads and destructors that run at exit still use it.
SideTable& Side() {
    static auto* table = new SideTable;
    return *table;
}

std::unique_ptr<pthread_mutex_t> MakeMutex(bool recursive) {
    auto mutex = std::make_unique<pthread_mutex_t>();
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
    pthread_mutex_init(mutex.get(), &attributes);
    pthread_mutexattr_destroy(&attributes);
    return mutex;
}

pthread_mutex_t* MutexOf(const void* mac) {
    const std::lock_guard lock(Side().mutex);
    std::unique_ptr<pthread_mutex_t>& mutex = Side().mutexes[mac];
    if (!mutex) {
        std::uint64_t first;
        std::memcpy(&first, mac, sizeof(first));
        if (first == kMacMutexStatic) mutex = MakeMutex(false);
    }
    return mutex.get();
}

pthread_cond_t* ConditionOf(const void* mac) {
    const std::lock_guard lock(Side().mutex);
    std::unique_ptr<pthread_cond_t>& condition = Side().conditions[mac];
    if (!condition) {
        condition = std::make_unique<pthread_cond_t>();
        pthread_cond_init(condition.get(), nullptr);
    }
    return condition.get();
}

pthread_rwlock_t* ReadWriteLockOf(const void* mac) {
    const std::lock_guard lock(Side().mutex);
    std::unique_ptr<pthread_rwlock_t>& readWriteLock = Side().readWriteLocks[mac];
    if (!readWriteLock) {
        readWriteLock = std::make_unique<pthread_rwlock_t>();
        pthread_rwlock_init(readWriteLock.get(), nullptr);
    }
    return readWriteLock.get();
}

int LockToRead(void* mac) {
    return pthread_rwlock_rdlock(ReadWriteLockOf(mac));
}

int LockToWrite(void* mac) {
    return pthread_rwlock_wrlock(ReadWriteLockOf(mac));
}

int UnlockReadWrite(void* mac) {
    return pthread_rwlock_unlock(ReadWriteLockOf(mac));
}

int MutexInit(void* mac, const MacMutexAttributes* attributes) {
    const std::lock_guard lock(Side().mutex);
    Side().mutexes[mac] = MakeMutex(attributes && attributes->type == kMacRecursive);
    return 0;
}

int MutexDestroy(void* mac) {
    const std::lock_guard lock(Side().mutex);
    const auto entry = Side().mutexes.find(mac);
    if (entry == Side().mutexes.end()) return 0;
    pthread_mutex_destroy(entry->second.get());
    Side().mutexes.erase(entry);
    return 0;
}

int MutexLock(void* mac) {
    pthread_mutex_t* mutex = MutexOf(mac);
    return mutex ? pthread_mutex_lock(mutex) : EINVAL;
}

int MutexUnlock(void* mac) {
    pthread_mutex_t* mutex = MutexOf(mac);
    return mutex ? pthread_mutex_unlock(mutex) : EINVAL;
}

int AttributesInit(MacMutexAttributes* attributes) {
    *attributes = {};
    return 0;
}

int AttributesSetType(MacMutexAttributes* attributes, int type) {
    attributes->type = type;
    return 0;
}

int AttributesDestroy(MacMutexAttributes*) {
    return 0;
}

int ConditionBroadcast(void* mac) {
    return pthread_cond_broadcast(ConditionOf(mac));
}

int ConditionWait(void* mac, void* macMutex) {
    return pthread_cond_wait(ConditionOf(mac), MutexOf(macMutex));
}

int Once(std::uint64_t* mac, void (*function)()) {
    static auto* mutex = new std::recursive_mutex;
    const std::lock_guard lock(*mutex);
    if (*mac != kMacOnceStatic) return *mac == kMacOnceDone ? 0 : EINVAL;
    *mac = kMacOnceDone;
    function();
    return 0;
}

int KeyCreate(unsigned long* macKey, void (*destructor)(void*)) {
    pthread_key_t key;
    const int error = pthread_key_create(&key, destructor);
    *macKey = key;
    return error;
}

void* GetSpecific(unsigned long key) {
    return pthread_getspecific(static_cast<pthread_key_t>(key));
}

int SetSpecific(unsigned long key, const void* value) {
    return pthread_setspecific(static_cast<pthread_key_t>(key), value);
}

unsigned ThreadPort(pthread_t) {
    return static_cast<unsigned>(gettid());
}

template <typename Function>
void* Address(Function* function) {
    return std::bit_cast<void*>(function);
}

}  // namespace

void* ThreadingSymbol(const std::string& name) {
    static const std::map<std::string, void*> names = {
        {"_pthread_atfork", Address(&pthread_atfork)},
        {"_pthread_cond_broadcast", Address(&ConditionBroadcast)},
        {"_pthread_cond_wait", Address(&ConditionWait)},
        {"_pthread_getspecific", Address(&GetSpecific)},
        {"_pthread_key_create", Address(&KeyCreate)},
        {"_pthread_mach_thread_np", Address(&ThreadPort)},
        {"_pthread_mutex_destroy", Address(&MutexDestroy)},
        {"_pthread_mutex_init", Address(&MutexInit)},
        {"_pthread_mutex_lock", Address(&MutexLock)},
        {"_pthread_mutex_unlock", Address(&MutexUnlock)},
        {"_pthread_mutexattr_destroy", Address(&AttributesDestroy)},
        {"_pthread_mutexattr_init", Address(&AttributesInit)},
        {"_pthread_mutexattr_settype", Address(&AttributesSetType)},
        {"_pthread_once", Address(&Once)},
        {"_pthread_rwlock_rdlock", Address(&LockToRead)},
        {"_pthread_rwlock_unlock", Address(&UnlockReadWrite)},
        {"_pthread_rwlock_wrlock", Address(&LockToWrite)},
        {"_pthread_self", Address(&pthread_self)},
        {"_pthread_setspecific", Address(&SetSpecific)},
    };
    const auto found = names.find(name);
    return found == names.end() ? nullptr : found->second;
}
