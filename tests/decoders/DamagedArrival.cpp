// SPDX-License-Identifier: MIT
#include "tests/decoders/DamagedArrival.h"

#include "tests/support/ManualClock.h"

#include <gtest/gtest.h>

namespace test
{

End EndOf(const DamagedFile& file, const std::deque<SInt32>& pieces)
{
    ManualClock clock;
    HostedImage image(file.bundle, file.bytes);
    image.host.arrivals = pieces;
    UInt32 now = 1;
    image.host.onGetData = [&] { clock.GoToTick(now += 5); };
    End end;
    end.result = image.Decode();
    if (image.Depth() != 0)
        end.picture =
            image.Display(static_cast<SInt32>(file.width), static_cast<SInt32>(file.height));
    return end;
}

std::deque<SInt32> Pieces(size_t size, UInt32 largest, std::minstd_rand& random)
{
    std::deque<SInt32> pieces;
    for (size_t given = 0; given < size; given += static_cast<size_t>(pieces.back()))
        pieces.push_back(static_cast<SInt32>(1 + random() % largest));
    return pieces;
}

void ExpectTheSameInPieces(const DamagedFile& file, std::minstd_rand& random)
{
    const size_t size = file.bytes.size();
    const End atOnce = EndOf(file, {static_cast<SInt32>(size)});
    for (const UInt32 largest : {1U, 30U, 1000U})
        EXPECT_EQ(EndOf(file, Pieces(size, largest, random)), atOnce)
            << "in pieces of up to " << largest << " bytes";
}

} // namespace test
