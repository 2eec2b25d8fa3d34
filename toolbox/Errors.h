/* SPDX-License-Identifier: MIT
 *
 * Result codes of the toolbox, by the platform's names. 0 is success, failures are negative.
 */
#ifndef VORN_TOOLBOX_ERRORS_H
#define VORN_TOOLBOX_ERRORS_H

enum {
    noErr = 0,
    dirFulErr = -33,          /* directory full */
    dskFulErr = -34,          /* no space left on the volume */
    ioErr = -36,              /* any other input or output failure */
    bdNamErr = -37,           /* bad file name */
    eofErr = -39,             /* the end of the file was reached before the count */
    posErr = -40,             /* position before the start of the file */
    tmfoErr = -42,            /* too many files open */
    fnfErr = -43,             /* file or folder not found */
    wPrErr = -44,             /* the volume is write-protected */
    dupFNErr = -48,           /* a file of that name exists */
    opWrErr = -49,            /* already open for writing */
    paramErr = -50,           /* bad parameter */
    rfNumErr = -51,           /* no such open path */
    permErr = -54,            /* not permitted */
    wrPermErr = -61,          /* the path is not open for writing */
    memFullErr = -108,        /* not enough memory */
    nilHandleErr = -109,      /* null handle */
    dirNFErr = -120,          /* directory not found */
    threadNotFoundErr = -618, /* no thread of that id */
    threadProtocolErr = -619, /* the call does not fit the thread's state */
    badDragItemErr = -1851,   /* the drag has no such item */
    badDragFlavorErr = -1852, /* the item has no such flavour */
    duplicateFlavorErr = -1853,
    cantGetFlavorErr = -1854, /* the flavour's data is not there */
    noMovieFound = -2048,     /* the data holds no movie */
    notEnoughDataErr = -2149, /* the data has not arrived yet */
    couldNotResolveDataRef = -2000,
    invalidMovie = -2010,
    cantOpenHandler = -2017, /* no data handler component for that type */
    gestaltUndefSelectorErr = -5551,
    noCodecErr = -8961, /* no library here decodes it */
    badComponentInstance = (int)0x80008001,
    badComponentSelector = (int)0x80008002
};

#endif
