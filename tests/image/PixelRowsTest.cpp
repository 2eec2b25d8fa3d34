// SPDX-License-Identifier: MIT
//
// What all functions that write a row share: when it is written, where, and that nothing else is.
#include "src/image/PixelWriting.h"
#include "tests/image/PixelMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>
#include <random>
#include <string>

namespace
{

using test::Bytes;
using test::PixelMemory;

struct RowCall {
    Rect clip;
    Point start;
    SInt16 count;
    SInt16 transparent;
    const UInt8* source; // four bytes for every pixel, more than most functions read
};

// A pixel of the source, as the number that is to be written.
using PixelOfSource = std::function<UInt32(const RowCall&, int)>;

struct RowFunction {
    std::string name;
    std::vector<int> depths; // that it writes
    std::function<void(PixelWriteState*, const RowCall&)> call;
    // Writes the same into a model's memory, pixel by pixel or byte by byte.
    std::function<void(PixelMemory&, const RowCall&)> expect;
};

void PrintTo(const RowFunction& function, std::ostream* out)
{
    *out << function.name;
}

// The model --------------------------------------------------------------------------------------

// Pixel `x` of a row, by the bits' positions in the row rather than by shifts within a byte.
void ModelPixel(PixelMemory& memory, int depth, ptrdiff_t row, int x, UInt32 value)
{
    const ptrdiff_t firstBit = ptrdiff_t{x} * depth;
    const auto floorByte = [](ptrdiff_t bit) { return bit >= 0 ? bit / 8 : -((7 - bit) / 8); };
    if (depth >= 8) {
        for (int k = 0; k < depth / 8; ++k)
            memory.At(row + firstBit / 8 + k) = static_cast<UInt8>(value >> (depth - 8 - 8 * k));
        return;
    }
    if (depth == 1)
        value = value != 0 ? 1 : 0;
    const ptrdiff_t byte = floorByte(firstBit);
    const ptrdiff_t lastBit = firstBit + depth - 1;
    for (int k = 0; k < 32; ++k) {
        const ptrdiff_t bit = lastBit - k; // of the value's k-th lowest bit
        if (bit < byte * 8)
            break;
        const auto mask = static_cast<UInt8>(0x80 >> (bit - byte * 8));
        const bool isSet = (value >> k & 1) != 0;
        if (isSet)
            memory.At(row + byte) = static_cast<UInt8>(memory.At(row + byte) | mask);
        else if (k < depth)
            memory.At(row + byte) = static_cast<UInt8>(memory.At(row + byte) & ~mask);
    }
}

struct ModelPlace {
    ptrdiff_t row;
    int x;
};

ModelPlace Place(const PixelWriteState& state, Point start)
{
    int x = start.h + state.columnOffset;
    if (x > 32767)
        x -= 65536;
    if (x < -32768)
        x += 65536;
    return {(ptrdiff_t{start.v} + state.rowOffset) * state.rowBytes, x};
}

bool Passes(const RowCall& call)
{
    const long v = call.start.v;
    const long h = call.start.h;
    return call.count > 0 && v >= call.clip.top && v < call.clip.bottom && h >= call.clip.left &&
           h + call.count <= call.clip.right;
}

void ModelRow(PixelMemory& memory, const RowCall& call, int depth, const PixelOfSource& pixel)
{
    const ModelPlace place = Place(memory.state, call.start);
    for (int i = 0; i < call.count; ++i)
        ModelPixel(memory, depth, place.row, place.x + i, pixel(call, i));
}

void ModelIndices(PixelMemory& memory, const RowCall& call)
{
    const ModelPlace place = Place(memory.state, call.start);
    const int perByte = 8 / memory.state.depth;
    ptrdiff_t first = place.x / perByte;
    if (first * perByte > place.x)
        --first;
    int bytes = call.count / perByte;
    if (call.count % perByte != 0)
        ++bytes;
    for (int i = 0; i < bytes; ++i)
        memory.At(place.row + first + i) = call.source[i];
}

UInt32 ByteOfSource(const RowCall& call, int i)
{
    return call.source[i];
}

UInt32 OpaqueBit(const RowCall& call, int i)
{
    return call.source[i] == call.transparent ? 0 : 1;
}

UInt32 WordOfSource(const RowCall& call, int i)
{
    UInt32 value = 0;
    for (int k = 0; k < 4; ++k)
        value = value * 256 + call.source[4 * i + k];
    return value;
}

const std::vector<RowFunction>& RowFunctions()
{
    static const std::vector<RowFunction> functions = {
        {"SetPixMapRowPixels",
         {1, 2, 4, 8},
         [](PixelWriteState* state, const RowCall& call) {
             SetPixMapRowPixels(state, &call.clip, call.start, call.count, call.source);
         },
         [](PixelMemory& memory, const RowCall& call) {
             ModelRow(memory, call, memory.state.depth, ByteOfSource);
         }},
        {"SetMaskPixMapRowPixels",
         {1, 2, 4, 8, 16, 32, 0, 5},
         [](PixelWriteState* state, const RowCall& call) {
             SetMaskPixMapRowPixels(state, &call.clip, call.start, call.count, call.transparent,
                                    call.source);
         },
         [](PixelMemory& memory, const RowCall& call) { ModelRow(memory, call, 1, OpaqueBit); }},
        {"SetPixMapRowValues",
         {1, 2, 4, 8, 16, 32},
         [](PixelWriteState* state, const RowCall& call) {
             SetPixMapRowValues(state, &call.clip, call.start, call.count,
                                reinterpret_cast<const SInt32*>(call.source));
         },
         [](PixelMemory& memory, const RowCall& call) {
             ModelRow(memory, call, memory.state.depth, WordOfSource);
         }},
        {"SetPixMapRowIndices",
         {1, 2, 4, 8},
         [](PixelWriteState* state, const RowCall& call) {
             SetPixMapRowIndices(state, &call.clip, call.start, call.count, call.source);
         },
         ModelIndices},
    };
    return functions;
}

bool Writes(const RowFunction& function, int depth)
{
    return std::find(function.depths.begin(), function.depths.end(), depth) !=
           function.depths.end();
}

// A source of pixels, words of it aligned as the functions may expect.
struct Source {
    explicit Source(std::mt19937& random) : words(256)
    {
        std::generate(words.begin(), words.end(), [&] {
            // Small values and zeros often, so that bits and matches of an index are not all one.
            return static_cast<SInt32>(random() % 3 == 0 ? random() & 0x01030F07 : random());
        });
    }
    const UInt8* Start() const { return reinterpret_cast<const UInt8*>(words.data()); }
    std::vector<SInt32> words;
};

class PixelRowTest : public testing::TestWithParam<RowFunction>
{
protected:
    // Calls the function with a clip of rows 2 and 3, columns 4 to 7.
    static bool IsWritten(Point start, SInt16 count)
    {
        static const std::vector<SInt32> source(64, -1);
        PixelMemory memory(1, 8);
        const RowCall call = {
            {2, 4, 4, 8}, start, count, 0, reinterpret_cast<const UInt8*>(source.data())};
        GetParam().call(&memory.state, call);
        return !memory.IsAll(0);
    }
};

INSTANTIATE_TEST_SUITE_P(All, PixelRowTest, testing::ValuesIn(RowFunctions()),
                         [](const auto& function) { return function.param.name; });

} // namespace

TEST_P(PixelRowTest, IsWrittenInRowsOfTheClipOnly)
{
    EXPECT_FALSE(IsWritten({1, 4}, 4));
    EXPECT_TRUE(IsWritten({2, 4}, 4));
    EXPECT_TRUE(IsWritten({3, 4}, 4));
    EXPECT_FALSE(IsWritten({4, 4}, 4));
}

TEST_P(PixelRowTest, IsNotWrittenAtAllWhereItBeginsLeftOfTheClip)
{
    EXPECT_FALSE(IsWritten({2, 3}, 2));
}

TEST_P(PixelRowTest, IsNotWrittenAtAllWhereItEndsRightOfTheClip)
{
    EXPECT_TRUE(IsWritten({2, 5}, 3));
    EXPECT_FALSE(IsWritten({2, 5}, 4));
}

TEST_P(PixelRowTest, IsNotWrittenWithoutPixels)
{
    EXPECT_FALSE(IsWritten({2, 4}, 0));
}

TEST_P(PixelRowTest, IsMeasuredInMoreThan16Bits)
{
    static const std::vector<SInt32> source(256, -1);
    PixelMemory memory(1);
    memory.state.columnOffset = -32000; // What were written would lie in the memory.
    GetParam().call(
        &memory.state,
        {{0, 0, 1, 32767}, {0, 32700}, 100, 0, reinterpret_cast<const UInt8*>(source.data())});
    EXPECT_TRUE(memory.IsAll(0));
}

TEST_P(PixelRowTest, WritesWhatAPixelByPixelModelWrites)
{
    std::mt19937 random(20);
    const auto draw = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const std::vector<int> depths = {1, 2, 4, 8, 16, 32, 0, 5};
    int written = 0;
    for (int round = 0; round < 20000; ++round) {
        const int depth = depths[static_cast<size_t>(draw(0, 7))];
        PixelMemory actual(depth, draw(0, 64), static_cast<UInt8>(draw(0, 255)));
        actual.state.rowOffset = static_cast<SInt16>(draw(-8, 8));
        actual.state.columnOffset = static_cast<SInt16>(draw(-40, 40));
        PixelMemory expected(depth, actual.state.rowBytes, actual.bytes[0]);
        expected.state.rowOffset = actual.state.rowOffset;
        expected.state.columnOffset = actual.state.columnOffset;
        const Source source(random);
        const RowCall call = {
            {static_cast<SInt16>(draw(-6, 2)), static_cast<SInt16>(draw(-50, 0)),
             static_cast<SInt16>(draw(2, 9)), static_cast<SInt16>(draw(60, 200))},
            {static_cast<SInt16>(draw(-7, 9)), static_cast<SInt16>(draw(-50, 50))},
            static_cast<SInt16>(draw(-2, 150)),
            static_cast<SInt16>(draw(-2, 8)),
            source.Start()};
        GetParam().call(&actual.state, call);
        if (Passes(call) && Writes(GetParam(), depth)) {
            GetParam().expect(expected, call);
            ++written;
        }
        ASSERT_TRUE(actual.bytes == expected.bytes)
            << "round " << round << " depth " << depth << " count " << call.count << " column "
            << call.start.h << " + " << actual.state.columnOffset;
    }
    EXPECT_GT(written, 2000); // The draw is of any use.
}

TEST(PixelModel, IsWhatSinglePixelsWriteToo)
{
    std::mt19937 random(21);
    const auto draw = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const std::vector<int> depths = {1, 2, 4, 8, 16, 32, 0, 24};
    for (int round = 0; round < 20000; ++round) {
        const int depth = depths[static_cast<size_t>(draw(0, 7))];
        const auto fill = static_cast<UInt8>(draw(0, 255));
        PixelMemory actual(depth, draw(0, 64), fill);
        actual.state.rowOffset = static_cast<SInt16>(draw(-8, 8));
        actual.state.columnOffset = static_cast<SInt16>(draw(-40, 40));
        PixelMemory expected(depth, actual.state.rowBytes, fill);
        const RowCall call = {
            {-3, -20, 5, 30},
            {static_cast<SInt16>(draw(-5, 6)), static_cast<SInt16>(draw(-22, 32))},
            1,
            0,
            nullptr};
        const auto value = static_cast<UInt32>(random() % 2 == 0 ? random() : random() % 4);
        SetPixMapPixel(&actual.state, &call.clip, call.start, value);
        const bool hasDepth = depth != 0 && depth != 24;
        if (Passes(call) && hasDepth) {
            const ModelPlace place = Place(actual.state, call.start);
            ModelPixel(expected, depth, place.row, place.x, value);
        }
        ASSERT_TRUE(actual.bytes == expected.bytes) << "round " << round << " depth " << depth;
    }
}
