// SPDX-License-Identifier: MIT
//
// Every entry point that works on an object: what it forwards, and what becomes of an exception.
#include "src/plugin/VornPluginABI.h"
#include "tests/support/MockPlugin.h"
#include "tests/support/TestBundle.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <vector>

using testing::_;
using testing::Eq;
using testing::Ref;
using testing::Return;
using testing::SetArgReferee;

namespace
{

class EntryPoints : public testing::Test
{
protected:
    test::TestBundle bundle;
    testing::StrictMock<test::MockPlugin> object{bundle.Get()};
    Rect rect{1, 2, 3, 4};
};

DragRef const kDrag = reinterpret_cast<DragRef>(0x2000);

} // namespace

TEST_F(EntryPoints, Decode)
{
    EXPECT_CALL(object, Decode);
    EXPECT_EQ(VornPluginDecodeObject(&object), noErr);
}

TEST_F(EntryPoints, Display)
{
    EXPECT_CALL(object, Display(Ref(rect), 7));
    EXPECT_EQ(VornPluginDisplayObject(&object, &rect, 7), noErr);
}

TEST_F(EntryPoints, Idle)
{
    EXPECT_CALL(object, Idle(Ref(rect), 7));
    EXPECT_EQ(VornPluginIdleObject(&object, &rect, 7), noErr);
}

TEST_F(EntryPoints, ClickTellsWhetherItWasHandled)
{
    const EventRecord event{};
    EXPECT_CALL(object, HandleClick(Ref(rect), Ref(event)))
        .WillOnce(Return(true))
        .WillOnce(Return(false));
    EXPECT_TRUE(VornPluginHandleObjectClick(&object, &rect, &event));
    EXPECT_FALSE(VornPluginHandleObjectClick(&object, &rect, &event));
}

TEST_F(EntryPoints, PrepareDragPassesTheFlagOut)
{
    unsigned char flag = 9;
    EXPECT_CALL(object, PrepareDrag(kDrag, 0x12345678, Ref(rect), Eq(0)))
        .WillOnce(SetArgReferee<3>(1));
    EXPECT_EQ(VornPluginPrepareDrag(&object, kDrag, 0x12345678, &rect, &flag), noErr);
    EXPECT_EQ(flag, 1);
}

TEST_F(EntryPoints, PrepareDragStartsFromNoWhateverTheHostsFlagIs)
{
    unsigned char flag = 9;
    EXPECT_CALL(object, PrepareDrag(_, _, _, Eq(0)));
    EXPECT_EQ(VornPluginPrepareDrag(&object, kDrag, 1, &rect, &flag), noErr);
    EXPECT_EQ(flag, 0);
}

TEST_F(EntryPoints, PrepareDragNeedsNoFlag)
{
    EXPECT_CALL(object, PrepareDrag).WillOnce(SetArgReferee<3>(1));
    EXPECT_EQ(VornPluginPrepareDrag(&object, kDrag, 1, &rect, nullptr), noErr);
}

TEST_F(EntryPoints, CleanupDrag)
{
    EXPECT_CALL(object, CleanupDrag);
    EXPECT_EQ(VornPluginCleanupDrag(&object), noErr);
}

TEST_F(EntryPoints, DataGoStraightToTheHost)
{
    UInt32 type = 0;
    char block[1] = {};
    char* master = block;
    Handle data = nullptr;
    EXPECT_CALL(object, GetData(Ref(type), &data)).WillOnce([&](UInt32& outType, Handle* outData) {
        outType = FOUR_CHARS('P', 'I', 'C', 'T');
        *outData = &master;
    });
    EXPECT_EQ(VornPluginGetObjectData(&object, &type, &data), noErr);
    EXPECT_EQ(type, FOUR_CHARS('P', 'I', 'C', 'T'));
    EXPECT_EQ(data, &master);
}

TEST_F(EntryPoints, DataCanBeAskedForTheirTypeAlone)
{
    UInt32 type = 0;
    EXPECT_CALL(object, GetData(Ref(type), nullptr));
    EXPECT_EQ(VornPluginGetObjectData(&object, &type, nullptr), noErr);
}

TEST_F(EntryPoints, DisplayRect)
{
    Rect out{};
    EXPECT_CALL(object, GetDisplayRect(Ref(rect), Ref(out)))
        .WillOnce(SetArgReferee<1>(Rect{5, 6, 7, 8}));
    VornPluginGetObjectDisplayRect(&object, &rect, &out);
    EXPECT_EQ(out.bottom, 7);
}

TEST_F(EntryPoints, DisplayFlags)
{
    EXPECT_CALL(object, GetDisplayFlags).WillOnce(Return(0x80000001));
    EXPECT_EQ(VornPluginGetObjectDisplayFlags(&object), 0x80000001);
    EXPECT_CALL(object, SetDisplayFlags(0x1F));
    VornPluginSetObjectDisplayFlags(&object, 0x1F);
}

TEST_F(EntryPoints, Dimensions)
{
    EXPECT_CALL(object, GetHaveDimensions).WillOnce(Return(true)).WillOnce(Return(false));
    EXPECT_TRUE(VornPluginHaveObjectDimensions(&object));
    EXPECT_FALSE(VornPluginHaveObjectDimensions(&object));
}

TEST_F(EntryPoints, RenderingError)
{
    OSErr err = 0;
    EXPECT_CALL(object, GetRenderingError).WillOnce(Return(kVornErrStillRendering));
    VornPluginGetObjectRenderingError(&object, &err);
    EXPECT_EQ(err, kVornErrStillRendering);
}

TEST_F(EntryPoints, Comment)
{
    char buffer[8] = {};
    EXPECT_CALL(object, GetComment(buffer, 7)).WillOnce([](char* text, UInt32) {
        std::strcpy(text, "comment");
    });
    VornPluginGetObjectComment(&object, buffer, 7);
    EXPECT_STREQ(buffer, "comment");
}

TEST(FreeObject, DestroysIt)
{
    const test::TestBundle bundle;
    VornPlugin* object = new test::MockPlugin(bundle.Get());
    ASSERT_EQ(test::MockPlugin::alive, 1);
    VornPluginFreeObject(object);
    EXPECT_EQ(test::MockPlugin::alive, 0);
}

TEST(FreeObject, NoneLeavesAllOthers)
{
    const test::TestBundle bundle;
    const test::MockPlugin other(bundle.Get());
    VornPluginFreeObject(nullptr);
    EXPECT_EQ(test::MockPlugin::alive, 1);
}

namespace
{

// What an operation may throw and what an entry point with a result makes of it.
struct Thrown {
    const char* name;
    std::function<void()> throwIt;
    OSErr result;
};

const Thrown kThrown[] = {
    {"DataNotAvailable", [] { throw OSErr{kDataNotAvailableErr}; }, kDataNotAvailableErr},
    {"MemoryFull", [] { throw OSErr{memFullErr}; }, memFullErr},
    {"UnknownPositive", [] { throw OSErr{5}; }, 5},
    {"LongInteger", [] { throw SInt32{-39}; }, paramErr},
    {"UnsignedShort", [] { throw UInt16{1207}; }, paramErr},
    {"StandardException", [] { throw std::runtime_error("failed"); }, paramErr},
    {"Text", [] { throw "failed"; }, paramErr},
};

void PrintTo(const Thrown& thrown, std::ostream* out)
{
    *out << thrown.name;
}

class Barrier : public testing::TestWithParam<Thrown>
{
protected:
    // For any of the mock's operations: throws.
    template <class Result = void, class... Arguments>
    static Result Throwing(Arguments...)
    {
        GetParam().throwIt();
        throw std::logic_error("the parameter throws nothing");
    }

    test::TestBundle bundle;
    testing::StrictMock<test::MockPlugin> object{bundle.Get()};
    Rect rect{1, 2, 3, 4};
};

} // namespace

TEST_P(Barrier, TurnsExceptionsIntoResults)
{
    const auto throwIt = [](auto&&...) { Throwing(); };
    unsigned char flag = 9;
    UInt32 type = 0;
    EXPECT_CALL(object, Decode).WillOnce(throwIt);
    EXPECT_CALL(object, Display).WillOnce(throwIt);
    EXPECT_CALL(object, Idle).WillOnce(throwIt);
    EXPECT_CALL(object, PrepareDrag).WillOnce([](auto&&, auto&&, auto&&, unsigned char& out) {
        out = 1;
        Throwing();
    });
    EXPECT_CALL(object, CleanupDrag).WillOnce(throwIt);
    EXPECT_CALL(object, GetData).WillOnce(throwIt);

    const OSErr expected = GetParam().result;
    EXPECT_EQ(VornPluginDecodeObject(&object), expected);
    EXPECT_EQ(VornPluginDisplayObject(&object, &rect, 0), expected);
    EXPECT_EQ(VornPluginIdleObject(&object, &rect, 0), expected);
    EXPECT_EQ(VornPluginPrepareDrag(&object, kDrag, 1, &rect, &flag), expected);
    EXPECT_EQ(flag, 9);
    EXPECT_EQ(VornPluginCleanupDrag(&object), expected);
    EXPECT_EQ(VornPluginGetObjectData(&object, &type, nullptr), expected);
}

TEST_P(Barrier, QueriesAnswerZeroOrNothing)
{
    const EventRecord event{};
    EXPECT_CALL(object, HandleClick).WillOnce([](auto&&...) { return Throwing<Boolean>(); });
    EXPECT_CALL(object, GetDisplayFlags).WillOnce([] { return Throwing<UInt32>(); });
    EXPECT_CALL(object, GetHaveDimensions).WillOnce([] { return Throwing<Boolean>(); });
    EXPECT_CALL(object, GetRenderingError).WillOnce([] { return Throwing<OSErr>(); });
    EXPECT_CALL(object, GetDisplayRect).WillOnce([](auto&&...) { Throwing(); });
    EXPECT_CALL(object, SetDisplayFlags).WillOnce([](auto&&...) { Throwing(); });
    EXPECT_CALL(object, GetComment).WillOnce([](auto&&...) { Throwing(); });

    EXPECT_FALSE(VornPluginHandleObjectClick(&object, &rect, &event));
    EXPECT_EQ(VornPluginGetObjectDisplayFlags(&object), 0U);
    EXPECT_FALSE(VornPluginHaveObjectDimensions(&object));
    OSErr err = 77;
    VornPluginGetObjectRenderingError(&object, &err);
    EXPECT_EQ(err, 77);
    Rect out{9, 9, 9, 9};
    VornPluginGetObjectDisplayRect(&object, &rect, &out);
    EXPECT_EQ(out.top, 9);
    VornPluginSetObjectDisplayFlags(&object, 1);
    char buffer[] = "untouched";
    VornPluginGetObjectComment(&object, buffer, 9);
    EXPECT_STREQ(buffer, "untouched");
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, Barrier, testing::ValuesIn(kThrown),
                         [](const auto& given) { return given.param.name; });
