/* SPDX-License-Identifier: MIT
 *
 * Drag Manager: what is dragged, in which flavours, and the image that follows the pointer.
 */
#ifndef VORN_TOOLBOX_DRAG_H
#define VORN_TOOLBOX_DRAG_H

#include "toolbox/quickdraw/Copying.h"

TOOLBOX_BEGIN_DECLS

typedef struct OpaqueDragRef* DragRef;
typedef DragRef DragReference;
typedef UInt32 DragItemRef; /* the dragger's own number for an item */
typedef OSType FlavorType;
typedef UInt32 FlavorFlags;
typedef UInt32 DragImageFlags;

enum { kDragDarkTranslucency = 1, kDragRegionAndImage = 1 << 4 };

/* Adds a flavour of an item to the drag, and the item if it is new. Null data promises it: the
 * receiver asks the object for it, and the size is not looked at. The data is copied. paramErr for
 * a null drag or a negative size, duplicateFlavorErr for a flavour that the item has,
 * memFullErr. */
TOOLBOX_EXPORT OSErr AddDragItemFlavor(DragRef drag, DragItemRef item, FlavorType type,
                                       const void* data, Size size, FlavorFlags flags);
/* Gives the drag an image instead of the one it had: a copy of the pixels, as far as they lie in
 * `region` (of the map's coordinates; null: all) and white elsewhere, whose top left stands at
 * `offset` on the screen. The map may be disposed of afterwards. paramErr for a null drag or pixel
 * map, else what NewGWorld answers; the drag then keeps the image it had. */
TOOLBOX_EXPORT OSErr SetDragImage(DragRef drag, PixMapHandle pixels, RgnHandle region, Point offset,
                                  DragImageFlags flags);

/* For hosts ------------------------------------------------------------------------------- */

/* An empty drag, owned by the caller; memFullErr. */
TOOLBOX_EXPORT OSErr NewDrag(DragRef* drag);
/* Null is allowed. */
TOOLBOX_EXPORT OSErr DisposeDrag(DragRef drag);
/* What is dragged, in the order in which it was added. Indices begin with 1; badDragItemErr,
 * badDragFlavorErr for what there is not, paramErr for a null drag. Nothing is written then. */
TOOLBOX_EXPORT OSErr CountDragItems(DragRef drag, UInt16* count);
TOOLBOX_EXPORT OSErr GetDragItemReferenceNumber(DragRef drag, UInt16 index, DragItemRef* item);
TOOLBOX_EXPORT OSErr CountDragItemFlavors(DragRef drag, DragItemRef item, UInt16* count);
TOOLBOX_EXPORT OSErr GetFlavorType(DragRef drag, DragItemRef item, UInt16 index, FlavorType* type);
TOOLBOX_EXPORT OSErr GetFlavorFlags(DragRef drag, DragItemRef item, FlavorType type,
                                    FlavorFlags* flags);
/* The size of a flavour's data, 0 for a promised one. */
TOOLBOX_EXPORT OSErr GetFlavorDataSize(DragRef drag, DragItemRef item, FlavorType type, Size* size);
/* Copies up to *size bytes of a flavour's data, from `offset` on; *size becomes the number copied.
 * cantGetFlavorErr for a promised flavour, paramErr for a negative size. */
TOOLBOX_EXPORT OSErr GetFlavorData(DragRef drag, DragItemRef item, FlavorType type, void* data,
                                   Size* size, UInt32 offset);
/* The image, a graphics world of the map's depth that belongs to the drag, and where its top left
 * stands; null if none was set. */
TOOLBOX_EXPORT OSErr GetDragImage(DragRef drag, CGrafPtr* image, Point* offset,
                                  DragImageFlags* flags);

TOOLBOX_END_DECLS

#endif
