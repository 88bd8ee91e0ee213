#pragma once

#include "host/Export.h"

#include <atomic>
#include <memory>

/// The shared count of the SafePointers on one object.
class SENSORHOST_API ref_count {
public:
    explicit ref_count(void* pointer);
    ~ref_count();
    ref_count(const ref_count&) = delete;
    ref_count& operator=(const ref_count&) = delete;

    void inc_reference() { m_nCount.fetch_add(1, std::memory_order_relaxed); }
    /// The references that are left.
    int dec_reference() { return m_nCount.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    void* getPointer() const { return m_pPointer; }

    /// A lock for those who share the object.
    void lock();
    void unLock();

private:
    std::atomic<int> m_nCount{0};
    void* m_pPointer;
    struct Mutex;
    std::unique_ptr<Mutex> m_pMutex;
};

/// Hands counts out and takes them back. May be used from any thread.
class SENSORHOST_API RefCountManager {
public:
    /// A new count, at 0, for an object that no SafePointer holds yet.
    static ref_count* retrieveRefCount(void* pointer);
    /// Takes back a count that has reached 0.
    static void returnbackRefCount(ref_count* count);
    /// Counts that are handed out now: what a test of leaks looks at.
    static int getOutstandingCount();
};
