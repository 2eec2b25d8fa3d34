// SPDX-License-Identifier: MIT
//
// A singly linked list of item pointers with one built-in cursor.
#pragma once

#include "toolbox/Types.h"

// The list never owns its items. One iteration at a time: ResetToFirst(), then NextItem() until it
// returns null, so a stored null item ends an iteration early. Items may be added and removed
// during an iteration. Allocation failures of the two adding operations pass on as they are.
class CLinkedList
{
public:
    CLinkedList() = default;
    ~CLinkedList() { Clear(); }
    CLinkedList(const CLinkedList&) = delete;
    CLinkedList& operator=(const CLinkedList&) = delete;

    // Empties the list and frees its nodes, never the items. Iterating must start anew.
    void Clear();
    // Adds `item` at the front; a running iteration does not see it.
    void PrependItem(void* item);
    // Adds `item` at the end; walks the whole list.
    void AppendItem(void* item);
    // Unlinks the first node that holds `item`; false if there is none. If it was next in the
    // iteration, the one after it is now. The node's storage is kept until Clear().
    Boolean RemoveItem(void* item);
    Boolean ItemInList(void* item) const;
    void ResetToFirst();
    // The item at the cursor, which moves on; null at the end.
    void* NextItem();

private:
    struct Node {
        Node* next;
        void* item;
    };
    static void FreeChain(Node*& first);

    Node* head = nullptr;
    Node* cursor = nullptr;
    Node* unlinked = nullptr; // removed nodes, kept until Clear()
};
