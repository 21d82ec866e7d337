#pragma once

#include <libteskTools/Types.h>
#include <libvxLog/Assert.h>

#include <atomic>

#include "vx/Api.h"

/// A 32-bit signed counter that threads change with sequentially consistent operations.
using vxAtomic_int = std::atomic<int32_t>;

/// Base of every object that several owners share: it lives until the last handle lets go.
///
/// A fresh object has a count of 0 and belongs to nobody; the first `vxRef` takes it. Objects may
/// also live outside any handle, on the stack or inside another object, as long as nobody retains
/// them. Copying an object starts the copy at 0; assigning leaves the target's count alone.
///
/// Owner:    its handles; the one that drops the last reference destroys the object.
/// Threads:  any, atomic.
class VX_EXPORT vxRefCounted {
public:
    /// Starts with no reference.
    vxRefCounted() noexcept : mRefCount(0) {}
    /// Starts with no reference, whatever the source has.
    vxRefCounted(const vxRefCounted&) noexcept : mRefCount(0) {}
    /// Leaves both counts alone.
    vxRefCounted& operator=(const vxRefCounted&) noexcept { return *this; }

    /// Called once, in the thread that dropped the last reference; deletes the object.
    ///
    /// A derived class may recycle the object or put its end off instead.
    virtual void NotifyRefCountIsNull();

    /// Asserts:  mRefCount == 0.
    virtual ~vxRefCounted();

    /// Adds a reference. `aPtr` is the address of the handle that takes it.
    void Retain(void* aPtr) {
        static_cast<void>(aPtr);
        if (this == sDebugReference) {
            DumpDebugReference(this, true);
        }
        mRefCount.fetch_add(1);
    }

    /// Adds a reference unless there is none; false then.
    ///
    /// For tables that know objects without holding them: an object whose last reference is gone, but
    /// which has not left the table yet, cannot come back to life. `aPtr` is as above.
    bool RetainIfHeld(void* aPtr) {
        int32_t theCount = mRefCount.load(std::memory_order_relaxed);
        while (theCount > 0) {
            if (mRefCount.compare_exchange_weak(theCount, theCount + 1)) {
                static_cast<void>(aPtr);
                if (this == sDebugReference) {
                    DumpDebugReference(this, true);
                }
                return true;
            }
        }
        return false;
    }

    /// Drops a reference; dropping the last one calls NotifyRefCountIsNull().
    void Release(void* aPtr) {
        static_cast<void>(aPtr);
        if (this == sDebugReference) {
            DumpDebugReference(this, false);
        }
        if (mRefCount.fetch_sub(1) == 1) {
            NotifyRefCountIsNull();
        }
    }

    /// Returns the number of references at some moment of the call; for diagnostics only.
    int _GetRefCount() const { return mRefCount.load(std::memory_order_relaxed); }

    /// Chooses the one object whose retains and releases are logged; null stops watching.
    ///
    /// Threads:  one at a time: set it before the threads of interest run.
    static void SetDebugReference(vxRefCounted* aObject);

    /// Logs a retain or a release of the watched object at error level with the running count, and
    /// prints the call stack of a retain: retains are what one hunts when an object leaks.
    static void DumpDebugReference(const vxRefCounted* aObject, bool afRetain);

    /// Logs that call stacks by handle are not kept in this build.
    static void DumpRemainingReferenceCallStack();

private:
    vxAtomic_int mRefCount;  // handles that hold the object

    static vxRefCounted* sDebugReference;  // null: nobody is watched
    static vxAtomic_int sDebugRefCount;    // retains minus releases seen while watching
};

/// Longest call-stack text, in bytes, that a build which keeps them holds for each handle.
#define VXREF_DEBUG_BACKTRACE_MAX_SIZE 4096

/// The call stack with which a handle took its reference, for builds that keep them.
///
/// Owner:    the record owns its copy of the text.
struct VX_EXPORT vxRefCountDebug {
    /// Keeps a copy of `aCallStack`; the record is in no list.
    vxRefCountDebug(void* aParentPtr, const char* aCallStack);
    /// Frees the copy.
    ~vxRefCountDebug();
    vxRefCountDebug(const vxRefCountDebug&) = delete;
    vxRefCountDebug& operator=(const vxRefCountDebug&) = delete;

    void* mParentPtr;        ///< the handle
    char* mCallStack;        ///< owned
    vxRefCountDebug* mNext;  ///< next record of the same object
};

/// An untyped handle: one pointer that holds a reference, or null.
///
/// It may be built from the literal 0, and from no other integer.
///
/// Threads:  one at a time for one handle; any for handles to one object.
class vxRefAny {
public:
    /// Is null.
    vxRefAny() noexcept : mPointer(NULL) {}

    /// Takes a reference, unless the pointer is null.
    vxRefAny(vxRefCounted* aPointer) : mPointer(aPointer) { RetainPointed(); }

    /// Builds a null handle.
    ///
    /// Asserts:  aZero is 0; the handle is null in either case.
    vxRefAny(int aZero) : mPointer(NULL) {
        VXASSERT_TEXT(aZero == 0, "vxRefAny: Only 0 (zero) can be used to build a vxRef");
    }

    /// Takes a reference of its own.
    vxRefAny(const vxRefAny& aRef) : mPointer(aRef.mPointer) { RetainPointed(); }

    /// Lets go of the object.
    ~vxRefAny() { ReleasePointed(); }

    /// Lets go of the old object first, then takes the new one; a handle assigned to itself does
    /// nothing.
    ///
    /// A handle that lives inside the old object dies with it before it is read. To step along a
    /// chain, copy it first: `vxRef<Node> theNext = theNode->mNext; theNode = theNext;`.
    vxRefAny& operator=(const vxRefAny& aRef) {
        if (this != &aRef) {
            ReleasePointed();
            mPointer = aRef.mPointer;
            RetainPointed();
        }
        return *this;
    }

    /// Asserts:  the handle is not null; the null pointer is handed out as it is.
    vxRefCounted* operator->() const {
        VXASSERT_TEXT(mPointer != NULL, "vxRefAny: NULL pointer access");
        return mPointer;
    }

    /// Returns the object, or null.
    vxRefCounted* Get() const { return mPointer; }

    /// Holds it no object?
    bool IsNull() const { return mPointer == NULL; }

    /// Compares identity, not contents.
    bool operator==(const vxRefAny& aRef) const { return mPointer == aRef.mPointer; }
    /// Compares identity, not contents.
    bool operator!=(const vxRefAny& aRef) const { return mPointer != aRef.mPointer; }

    /// Replaces the pointer without touching a count, where ownership moves by hand.
    void _SetPointedObject(vxRefCounted* aPointer) { mPointer = aPointer; }
    /// Returns the pointer without touching a count.
    vxRefCounted* _GetPointedObject() const { return mPointer; }

private:
    void RetainPointed() {
        if (mPointer != NULL) {
            mPointer->Retain(this);
        }
    }

    void ReleasePointed() {
        if (mPointer != NULL) {
            mPointer->Release(this);
        }
    }

    vxRefCounted* mPointer;  // null or held
};

/// A shared handle to a `T`, which derives from vxRefCounted: one pointer, no more.
///
///     vxRef<vxUserData> theData = new MyData;   // count 1
///     vxRef<vxUserData> theOther = theData;     // count 2
///     theData = 0;                              // count 1
///
/// Threads:  as vxRefAny.
/// Cost:     a copy is one atomic increment, a drop one atomic decrement.
template <typename T>
class vxRef : public vxRefAny {
public:
    /// Is null.
    vxRef() noexcept = default;
    /// Takes a reference, unless the pointer is null.
    vxRef(T* aPointer) : vxRefAny(static_cast<vxRefCounted*>(aPointer)) {}
    /// As vxRefAny: the argument must be 0.
    vxRef(int aZero) : vxRefAny(aZero) {}

    /// As vxRefAny: reports a null handle and hands the null pointer out.
    T* operator->() const { return Typed(vxRefAny::operator->()); }
    /// Returns the object, or null.
    T* Get() const { return Typed(vxRefAny::Get()); }

    /// Replaces the pointer without touching a count.
    void _SetPointedObject(T* aPointer) { vxRefAny::_SetPointedObject(aPointer); }
    /// Returns the pointer without touching a count.
    T* _GetPointedObject() const { return Typed(vxRefAny::_GetPointedObject()); }

private:
    static T* Typed(vxRefCounted* aPointer) { return static_cast<T*>(aPointer); }
};

/// Gives an object a fixed class name that can be asked for at run time.
class VX_EXPORT vxNamedClass {
public:
    /// Owner:    the caller; the text must outlive the object, as a literal does.
    explicit vxNamedClass(const char* aClassName) : mClassName(aClassName) {}
    virtual ~vxNamedClass();

    /// Returns the text that the object was built with.
    const char* GetClassName() const { return mClassName; }

    /// Compares byte for byte; null equals null only.
    bool IsClassName(const char* aName) const;

private:
    const char* mClassName;  // borrowed, static
};

/// Base of the data that a program hangs on objects of the library.
class VX_EXPORT vxUserData : public vxRefCounted {
public:
    ~vxUserData() override;
};
