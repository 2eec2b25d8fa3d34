// SPDX-License-Identifier: MIT
#include "src/util/CLinkedList.h"

void CLinkedList::FreeChain(Node*& first)
{
    while (first) {
        Node* next = first->next;
        delete first;
        first = next;
    }
}

void CLinkedList::Clear()
{
    FreeChain(head);
    FreeChain(unlinked);
    cursor = nullptr;
}

void CLinkedList::PrependItem(void* item)
{
    head = new Node{head, item};
}

void CLinkedList::AppendItem(void* item)
{
    Node** link = &head;
    while (*link)
        link = &(*link)->next;
    *link = new Node{nullptr, item};
}

Boolean CLinkedList::RemoveItem(void* item)
{
    Node** link = &head;
    while (*link && (*link)->item != item)
        link = &(*link)->next;
    Node* node = *link;
    if (!node)
        return false;
    if (cursor == node)
        cursor = node->next;
    *link = node->next;
    node->next = unlinked;
    unlinked = node;
    return true;
}

Boolean CLinkedList::ItemInList(void* item) const
{
    for (const Node* node = head; node; node = node->next)
        if (node->item == item)
            return true;
    return false;
}

void CLinkedList::ResetToFirst()
{
    cursor = head;
}

void* CLinkedList::NextItem()
{
    if (!cursor)
        return nullptr;
    void* item = cursor->item;
    cursor = cursor->next;
    return item;
}
