#pragma once

#include "host/BRRuntimeError.h"
#include "host/RefCountManager.h"

#include <type_traits>
#include <utility>

/// The part of a SafePointer that does not know the type.
class BaseSafePointer {
public:
    bool isNull() const { return m_pRefCount == nullptr; }
    explicit operator bool() const { return !isNull(); }

protected:
    BaseSafePointer() = default;
    ~BaseSafePointer() = default;

    ref_count* m_pRefCount = nullptr;
};

/// Reference-counted pointer. The last one deletes the object. Copies may be made and destroyed on any thread; one
/// SafePointer object itself must not be assigned on one thread while another reads it.
template <class T>
class SafePointer : public BaseSafePointer {
public:
    SafePointer() = default;

    /// Takes ownership. Throws BRRuntimeError for a null pointer.
    explicit SafePointer(T* pointer) : m_pPointer(pointer) {
        if (pointer == nullptr)
            throw BRRuntimeError("Construct from NULL original pointer");
        m_pRefCount = RefCountManager::retrieveRefCount(pointer);
        m_pRefCount->inc_reference();
    }

    SafePointer(const SafePointer& other) : m_pPointer(other.m_pPointer) { share(other.m_pRefCount); }
    SafePointer(SafePointer&& other) noexcept { swap(other); }

    /// A pointer to a derived class is a pointer to its base.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    SafePointer(const SafePointer<U>& other) : m_pPointer(other.m_pPointer) { // NOLINT(google-explicit-constructor)
        share(other.m_pRefCount);
    }

    ~SafePointer() { release(); }

    SafePointer& operator=(SafePointer other) noexcept {
        swap(other);
        return *this;
    }

    /// Throws BRRuntimeError when null.
    T* operator->() const {
        if (m_pPointer == nullptr)
            throw BRRuntimeError("Use NULL pointer ->");
        return m_pPointer;
    }
    T& operator*() const { return *operator->(); }

    /// The plain pointer, null if there is none. This pointer keeps owning it.
    T* get() const { return m_pPointer; }

    void swap(SafePointer& other) noexcept {
        std::swap(m_pRefCount, other.m_pRefCount);
        std::swap(m_pPointer, other.m_pPointer);
    }

private:
    template <class U>
    friend class SafePointer;

    void share(ref_count* count) {
        m_pRefCount = count;
        if (m_pRefCount != nullptr)
            m_pRefCount->inc_reference();
    }

    void release() {
        if (m_pRefCount != nullptr && m_pRefCount->dec_reference() == 0) {
            RefCountManager::returnbackRefCount(m_pRefCount);
            delete m_pPointer;
        }
        m_pRefCount = nullptr;
        m_pPointer = nullptr;
    }

    T* m_pPointer = nullptr;
};
