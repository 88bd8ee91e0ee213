#include "host/RefCountManager.h"

#include "host/BRMutex.h"
#include "host/BRRuntimeError.h"

namespace {
constinit std::atomic<int> g_nOutstanding{0};
}

BRRuntimeError::BRRuntimeError(const char* text) : m_strText(text != nullptr ? text : "") {}

BRRuntimeError::~BRRuntimeError() = default;

const char* BRRuntimeError::what() const noexcept { return m_strText.c_str(); }

struct ref_count::Mutex {
    BRMutex mutex;
};

ref_count::ref_count(void* pointer) : m_pPointer(pointer), m_pMutex(std::make_unique<Mutex>()) {}

ref_count::~ref_count() = default;

void ref_count::lock() SENSOR_UNCHECKED { m_pMutex->mutex.Lock(); }

void ref_count::unLock() SENSOR_UNCHECKED { m_pMutex->mutex.Unlock(); }

ref_count* RefCountManager::retrieveRefCount(void* pointer) {
    auto count = std::make_unique<ref_count>(pointer);
    ++g_nOutstanding;
    return count.release();
}

void RefCountManager::returnbackRefCount(ref_count* count) {
    if (count == nullptr)
        return;
    const std::unique_ptr<ref_count> owned(count);
    --g_nOutstanding;
}

int RefCountManager::getOutstandingCount() { return g_nOutstanding; }
