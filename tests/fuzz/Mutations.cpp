// SPDX-License-Identifier: MIT
#include "tests/fuzz/Mutations.h"

#include <algorithm>

namespace
{

class Mutation
{
public:
    Mutation(FuzzInput& changed, std::mt19937& source) : input_(changed), random_(source) {}

    void ChangeOnce(const FuzzInput& other)
    {
        switch (Below(8)) {
        case 0:
            return FlipBit();
        case 1:
            return SetByte(static_cast<UInt8>(random_()));
        case 2:
            return SetByte(Below(2) == 0 ? 0 : 0xFF);
        case 3:
            return Remove();
        case 4:
            return Insert(PartOf(input_));
        case 5:
            return Insert(PartOf(other));
        case 6:
            return Insert(RandomBytes());
        default:
            return CutOff();
        }
    }

private:
    size_t Below(size_t end) { return random_() % std::max<size_t>(end, 1); }
    auto Place() { return input_.begin() + static_cast<ptrdiff_t>(Below(input_.size() + 1)); }

    void FlipBit()
    {
        if (!input_.empty())
            input_[Below(input_.size())] ^= static_cast<UInt8>(1U << Below(8));
    }
    void SetByte(UInt8 byte)
    {
        if (!input_.empty())
            input_[Below(input_.size())] = byte;
    }
    void Remove()
    {
        const auto from = Place();
        const auto most = static_cast<size_t>(input_.end() - from);
        input_.erase(from, from + static_cast<ptrdiff_t>(Below(std::min<size_t>(most, 16) + 1)));
    }
    FuzzInput PartOf(const FuzzInput& input)
    {
        const size_t from = Below(input.size() + 1);
        const size_t count = Below(std::min<size_t>(input.size() - from, 64) + 1);
        const auto start = input.begin() + static_cast<ptrdiff_t>(from);
        return {start, start + static_cast<ptrdiff_t>(count)};
    }
    FuzzInput RandomBytes()
    {
        FuzzInput bytes(1 + Below(8));
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<UInt8>(random_()); });
        return bytes;
    }
    void Insert(const FuzzInput& part) { input_.insert(Place(), part.begin(), part.end()); }
    void CutOff()
    {
        if (Below(4) == 0)
            input_.erase(Place(), input_.end());
    }

    FuzzInput& input_;
    std::mt19937& random_;
};

} // namespace

FuzzInput Mutated(const std::vector<FuzzInput>& seeds, std::mt19937& random)
{
    FuzzInput input = seeds[random() % seeds.size()];
    const FuzzInput& other = seeds[random() % seeds.size()];
    Mutation mutation(input, random);
    for (size_t changes = 1 + random() % 6; changes > 0; --changes)
        mutation.ChangeOnce(other);
    return input;
}
