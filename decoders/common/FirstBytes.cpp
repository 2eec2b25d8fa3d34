// SPDX-License-Identifier: MIT
#include "decoders/common/FirstBytes.h"

#include "src/datasource/ReadingFunctions.h"

#include <algorithm>

bool BeginsWith(VornPlugin& object, std::span<const UInt8> signature)
{
    if (object.dataSource == nullptr)
        return false;
    const SInt32 place = GetReadOffset(&object);
    bool begins = false;
    try {
        SkipToOffset(&object, 0);
        // One by one: a block read cuts a request that is longer than what lies behind it.
        begins = std::all_of(signature.begin(), signature.end(), [&object](UInt8 expected) {
            UInt8 byte = 0;
            ReadUChar(&object, &byte, true);
            return byte == expected;
        });
    } catch (OSErr) {
        begins = false;
    }
    SkipToOffset(&object, place);
    return begins;
}
