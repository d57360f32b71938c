// TautoArrayBase: the core of the arrays that own the objects they point to. It keeps the
// pointers in a Tarray and destroys each object, through the destroy function it was given,
// when the object is removed, replaced or the array dies. TobjArray and TcharPtrArray put a
// typed face on it; use those rather than this class.
#ifndef OBRIX_AUTO_CONTAINERS_TAUTOARRAYBASE_H
#define OBRIX_AUTO_CONTAINERS_TAUTOARRAYBASE_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/auto/containers/Tarray.h"

/// An array of pointers that owns the objects pointed to: every object handed to it is
/// destroyed exactly once, by the destroy function, unless release() hands it back first.
/// Null pointers may be stored and are never destroyed. Not copyable (two owners would
/// destroy twice); movable. Adding when memory runs out destroys the object being added
/// before std::bad_alloc propagates, so no object is ever left without an owner.
class OBRIX_API TautoArrayBase {
public:
    /// Destroys one object; never called with null.
    using Destroy = void (*)(void* object);

    TautoArrayBase(const TautoArrayBase&) = delete;
    TautoArrayBase& operator=(const TautoArrayBase&) = delete;
    /// Takes a's objects; a is left empty.
    TautoArrayBase(TautoArrayBase&& a) noexcept;
    /// Destroys this array's objects, then takes a's.
    TautoArrayBase& operator=(TautoArrayBase&& a) noexcept;
    /// Destroys every object still held, from the last to the first.
    virtual ~TautoArrayBase();

    /// The number of pointers held.
    int length() const noexcept { return items_.length(); }
    /// 1 when no pointer is held.
    int isEmpty() const noexcept { return items_.isEmpty(); }
    /// Destroys every object, from the last to the first; the array becomes empty.
    void clear() noexcept;
    /// Destroys object i and removes its slot, keeping the order of the rest. O(n - i).
    void remove(int i) noexcept;

protected:
    /// An empty array whose objects `destroy` destroys.
    explicit TautoArrayBase(Destroy destroy) noexcept : destroy_(destroy) {}

    /// Pointer i, unchecked; the array keeps owning the object.
    void* item(int i) const noexcept { return items_[i]; }
    /// The index of the first slot holding `object` (the same pointer), or -1. O(n).
    int findItem(const void* object) const noexcept;
    /// Takes ownership of `object` and appends it. Amortised O(1).
    void appendItem(void* object);
    /// Takes ownership of `object` and inserts it in front of slot i (0 <= i <= length()).
    void insertItem(int i, void* object);
    /// Destroys object i and puts `object` (now owned) in its slot. Replacing an object by
    /// itself keeps it.
    void replaceItem(int i, void* object) noexcept;
    /// Removes slot i without destroying its object and returns it: the caller owns it now.
    void* releaseItem(int i) noexcept;

private:
    void destroyObject(void* object) const noexcept {
        if (object)
            destroy_(object);
    }

    Tarray<void*> items_;
    Destroy destroy_;
};

#endif
