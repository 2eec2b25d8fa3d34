// SPDX-License-Identifier: MIT
//
// A growable array of pointers that deletes what it holds only when told to.
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/Types.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

// `T` is a pointer type. The fields are open: owners append in place, or with Append. The
// destructor frees the slots, never the items.
template <class T>
class CPointerList
{
    static_assert(std::is_pointer_v<T>, "a list of pointers");

public:
    CPointerList() = default;
    ~CPointerList() { std::free(items); }
    CPointerList(const CPointerList&) = delete;
    CPointerList& operator=(const CPointerList&) = delete;

    // Makes the capacity the multiple of four next above `n`, be it more or less than now. Items
    // beyond a smaller capacity are lost, new slots are null. Throws memFullErr, the list
    // unchanged, if there is no memory for that.
    void EnsureSpace(SInt32 n);
    // Empties the list, deleting the items (null ones excepted) if asked; keeps the slots.
    void Clear(unsigned char deleteItems);
    // Adds `item` at the end. Throws memFullErr, the list unchanged.
    void Append(T item);
    // The item at `index`; throws paramErr if there is no such item.
    T& operator[](SInt32 index);

    T* items = nullptr;  // `capacity` slots from realloc
    SInt32 count = 0;    // slots in use
    SInt32 capacity = 0; // slots there are

private:
    static constexpr SInt64 kSlotSize = sizeof(void*); // bytes; of any pointer to an object

    // EnsureSpace does not look at `count`, so it may exceed the slots there are.
    SInt32 UsedSlots() const { return std::min(count, capacity); }
};

template <class T>
void CPointerList<T>::EnsureSpace(SInt32 n)
{
    const SInt64 newCapacity = SInt64{n} / 4 * 4 + 4;
    if (newCapacity == capacity)
        return;
    constexpr SInt64 most = std::min<SInt64>(INT32_MAX, PTRDIFF_MAX / kSlotSize);
    if (newCapacity <= 0 || newCapacity > most)
        throw OSErr{memFullErr};
    void* block = std::realloc(items, static_cast<std::size_t>(newCapacity * kSlotSize));
    if (!block)
        throw OSErr{memFullErr};
    items = static_cast<T*>(block);
    if (newCapacity > capacity)
        std::fill(items + capacity, items + newCapacity, nullptr);
    capacity = static_cast<SInt32>(newCapacity);
}

template <class T>
void CPointerList<T>::Clear(unsigned char deleteItems)
{
    for (SInt32 index = 0; index < UsedSlots(); ++index) {
        if (deleteItems)
            delete items[index];
        items[index] = nullptr;
    }
    count = 0;
}

template <class T>
void CPointerList<T>::Append(T item)
{
    if (count >= capacity)
        EnsureSpace(count + 1);
    items[count] = item;
    ++count;
}

template <class T>
T& CPointerList<T>::operator[](SInt32 index)
{
    if (index < 0 || index >= UsedSlots())
        throw OSErr{paramErr};
    return items[index];
}
