#pragma once
// Intrusive, thread-safe reference counting for objects shared between the
// station and the image library: every copy of a UT_SharePtr adds one to the
// object's count, every release takes one off, and the last one deletes.
#include <atomic>
#include <cstdint>
#include <utility>

class UT_ShareBaseSafe {
public:
    UT_ShareBaseSafe() = default;
    // A copied object starts its own life with no owners.
    UT_ShareBaseSafe(const UT_ShareBaseSafe &) : count_(0) {}
    UT_ShareBaseSafe &operator=(const UT_ShareBaseSafe &) { return *this; }
    virtual ~UT_ShareBaseSafe() = default;

    void addRef() const { count_.fetch_add(1, std::memory_order_relaxed); }
    void releaseRef() const
    {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
    int32_t refCount() const { return count_.load(std::memory_order_acquire); }

private:
    mutable std::atomic<int32_t> count_{0};
};

template <class T>
class UT_SharePtr {
public:
    UT_SharePtr() = default;
    UT_SharePtr(std::nullptr_t) {}
    // Takes a new reference to `p` (which may be freshly made with count 0).
    explicit UT_SharePtr(T *p) : p_(p) { if (p_) p_->addRef(); }
    UT_SharePtr(const UT_SharePtr &o) : p_(o.p_) { if (p_) p_->addRef(); }
    UT_SharePtr(UT_SharePtr &&o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    template <class U>
    UT_SharePtr(const UT_SharePtr<U> &o) : p_(o.get()) { if (p_) p_->addRef(); }
    ~UT_SharePtr() { if (p_) p_->releaseRef(); }

    UT_SharePtr &operator=(UT_SharePtr o) noexcept
    {
        std::swap(p_, o.p_);
        return *this;
    }
    void reset() { UT_SharePtr().swap(*this); }
    void swap(UT_SharePtr &o) noexcept { std::swap(p_, o.p_); }

    T *get() const { return p_; }
    T *operator->() const { return p_; }
    T &operator*() const { return *p_; }
    explicit operator bool() const { return p_ != nullptr; }
    bool operator==(const UT_SharePtr &o) const { return p_ == o.p_; }

private:
    T *p_ = nullptr;
};

template <class T, class... Args>
UT_SharePtr<T> UT_makeShared(Args &&...args)
{
    return UT_SharePtr<T>(new T(std::forward<Args>(args)...));
}

// A checked downcast that keeps the reference: null when `p` is not a T.
template <class T, class U>
UT_SharePtr<T> UT_dynamicCast(const UT_SharePtr<U> &p)
{
    return UT_SharePtr<T>(dynamic_cast<T *>(p.get()));
}
