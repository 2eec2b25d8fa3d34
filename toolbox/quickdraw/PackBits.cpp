// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PackBits.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr size_t kMaxUnitsInPacket = 128;
// A shorter run would cost more than it saves where it parts units that are no run.
constexpr size_t kMinRun = 3;
constexpr int kRepeatOnce = 257; // the flag of a run is this minus its length

template <size_t kUnit>
class Packer
{
public:
    Packer(const UInt8* bytes, size_t size, UInt8* packed)
        : bytes_(bytes), units_(size / kUnit), begin_(packed), end_(packed)
    {
    }

    size_t Pack()
    {
        size_t unit = 0;
        while (unit < units_) {
            const size_t run = RunAt(unit);
            const size_t count = run >= kMinRun ? run : UnitsBeforeNextRun(unit);
            if (run >= kMinRun) {
                Write(static_cast<UInt8>(kRepeatOnce - static_cast<int>(run)), unit, 1);
            } else {
                Write(static_cast<UInt8>(count - 1), unit, count);
            }
            unit += count;
        }
        return static_cast<size_t>(end_ - begin_);
    }

private:
    // How many equal units stand at `first`, as far as one packet can tell.
    size_t RunAt(size_t first) const
    {
        const size_t limit = std::min(units_ - first, kMaxUnitsInPacket);
        size_t length = 1;
        while (length < limit && Equal(first, first + length)) {
            ++length;
        }
        return length;
    }

    size_t UnitsBeforeNextRun(size_t first) const
    {
        const size_t limit = std::min(units_ - first, kMaxUnitsInPacket);
        size_t count = 1;
        while (count < limit && !RunStartsAt(first + count)) {
            ++count;
        }
        return count;
    }

    bool RunStartsAt(size_t unit) const
    {
        return units_ - unit >= kMinRun && Equal(unit, unit + 1) && Equal(unit, unit + 2);
    }

    bool Equal(size_t a, size_t b) const
    {
        return std::memcmp(bytes_ + a * kUnit, bytes_ + b * kUnit, kUnit) == 0;
    }

    void Write(UInt8 flag, size_t firstUnit, size_t count)
    {
        *end_ = flag;
        std::memcpy(end_ + 1, bytes_ + firstUnit * kUnit, count * kUnit);
        end_ += 1 + count * kUnit;
    }

    const UInt8* bytes_;
    size_t units_;
    UInt8* begin_;
    UInt8* end_;
};

} // namespace

size_t MaxPackedSize(size_t size)
{
    return size + (size + kMaxUnitsInPacket - 1) / kMaxUnitsInPacket;
}

size_t PackBytes(const UInt8* bytes, size_t size, UInt8* packed)
{
    return Packer<1>(bytes, size, packed).Pack();
}

size_t PackWords(const UInt8* bytes, size_t size, UInt8* packed)
{
    return Packer<2>(bytes, size, packed).Pack();
}

} // namespace toolbox
