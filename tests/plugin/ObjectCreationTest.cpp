// SPDX-License-Identifier: MIT
//
// The type check and the making of objects: wiring, order and failures.
#include "src/datasource/VornPluginDataSource.h"
#include "src/datasource/VornPointerDataSource.h"
#include "src/plugin/HostCalls.h"
#include "tests/plugin/ScriptedFactory.h"
#include "tests/support/MockPlugin.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>

using test::MockPlugin;
using test::ScriptedFactory;
using testing::_;
using testing::NiceMock;
using testing::Return;
using testing::StrEq;
using testing::Throw;

namespace
{

class ObjectCreation : public testing::Test
{
protected:
    // The factory's next object, with the test's expectations. What the code under test leaves
    // behind is the test's to delete.
    NiceMock<MockPlugin>* NextObject()
    {
        next = new NiceMock<MockPlugin>(bundle.Get());
        return next;
    }
    OSErr Make() { return MakeWith(test::ScriptedHost::Calls()); }
    OSErr MakeWith(const VornPluginHostCalls& calls)
    {
        return VornPluginMakeNewObject(bundle.Get(), &calls, FOUR_CHARS('M', 'P', 'E', 'G'),
                                       FOUR_CHARS('T', 'V', 'O', 'D'), "clip.mpg", "video/mpeg",
                                       &made);
    }
    Boolean Check(const char* bytes, SInt32 length)
    {
        return VornPluginCanHandleData(bundle.Get(), bytes, length, "video/mpeg", "clip.mpg");
    }

    test::TestBundle bundle;
    test::ScriptedHost host{"the object's bytes"};
    CFBundleRef given = nullptr;
    int asked = 0;
    NiceMock<MockPlugin>* next = nullptr;
    ScriptedFactory factory{[this](CFBundleRef ref) {
        given = ref;
        ++asked;
        return next;
    }};
    VornPlugin* made = reinterpret_cast<VornPlugin*>(0x1000);
};

using TypeCheck = ObjectCreation;

} // namespace

TEST_F(ObjectCreation, HandsOutAnInitializedObject)
{
    NiceMock<MockPlugin>* object = NextObject();
    EXPECT_CALL(*object, Initialize(FOUR_CHARS('M', 'P', 'E', 'G'), FOUR_CHARS('T', 'V', 'O', 'D'),
                                    StrEq("clip.mpg"), StrEq("video/mpeg")));
    EXPECT_EQ(Make(), noErr);
    EXPECT_EQ(made, object);
    EXPECT_EQ(given, bundle.Get());
    VornPluginFreeObject(made);
}

TEST_F(ObjectCreation, AttachesTheHostsStream)
{
    NiceMock<MockPlugin>* object = NextObject();
    ASSERT_EQ(Make(), noErr);
    auto* source = dynamic_cast<VornPluginDataSource*>(object->dataSource);
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(&source->plugin, object);
    char buffer[7] = {};
    EXPECT_EQ(source->ReadBytes(6, buffer, true), noErr);
    EXPECT_STREQ(buffer, "the ob");
    EXPECT_EQ(host.objects, std::vector<VornPlugin*>{object});
    VornPluginFreeObject(made);
}

TEST_F(ObjectCreation, AttachesItBeforeItInitializes)
{
    NiceMock<MockPlugin>* object = NextObject();
    EXPECT_CALL(*object, Initialize).WillOnce([&](auto&&...) {
        EXPECT_NE(object->dataSource, nullptr);
        EXPECT_EQ(made, nullptr);
    });
    ASSERT_EQ(Make(), noErr);
    VornPluginFreeObject(made);
}

TEST_F(ObjectCreation, InstallsTheHostCallsForAllObjects)
{
    NextObject();
    gHostCalls = {};
    ASSERT_EQ(Make(), noErr);
    EXPECT_EQ(gHostCalls.getData, test::ScriptedHost::Calls().getData);
    VornPluginFreeObject(made);
}

TEST_F(ObjectCreation, RefusesATableWithoutItsFirstOrItsFifthSlot)
{
    VornPluginHostCalls withoutFirst = test::ScriptedHost::Calls();
    withoutFirst.gotRect = nullptr;
    VornPluginHostCalls withoutFifth = test::ScriptedHost::Calls();
    withoutFifth.getEstimatedObjectBytes = nullptr;
    for (const VornPluginHostCalls& table : {withoutFirst, withoutFifth}) {
        made = reinterpret_cast<VornPlugin*>(0x1000);
        EXPECT_EQ(MakeWith(table), paramErr);
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(asked, 0);
        EXPECT_EQ(gHostCalls.gotRect, table.gotRect);
        EXPECT_EQ(gHostCalls.getEstimatedObjectBytes, table.getEstimatedObjectBytes);
    }
}

TEST_F(ObjectCreation, FailsIfTheFactoryHasNoObject)
{
    EXPECT_EQ(Make(), paramErr);
    EXPECT_EQ(made, nullptr);
}

TEST_F(ObjectCreation, GivesTheFactorysErrorOut)
{
    const ScriptedFactory failing([](CFBundleRef) -> VornPlugin* { throw OSErr{-5551}; });
    EXPECT_EQ(Make(), -5551);
    EXPECT_EQ(made, nullptr);
}

TEST_F(ObjectCreation, GivesAnyOtherExceptionOutAsABadParameter)
{
    const ScriptedFactory failing([](CFBundleRef) -> VornPlugin* { throw std::bad_alloc(); });
    EXPECT_EQ(Make(), paramErr);
    EXPECT_EQ(made, nullptr);
}

TEST_F(ObjectCreation, LeavesAnObjectThatFailsToInitializeAsItIs)
{
    const std::unique_ptr<NiceMock<MockPlugin>> object(NextObject());
    EXPECT_CALL(*object, Initialize).WillOnce(Throw(OSErr{memFullErr}));
    EXPECT_EQ(Make(), memFullErr);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(MockPlugin::alive, 1);
    EXPECT_NE(object->dataSource, nullptr);
}

TEST_F(TypeCheck, AsksATemporaryObject)
{
    NiceMock<MockPlugin>* object = NextObject();
    EXPECT_CALL(*object, CanHandleData(StrEq("video/mpeg"), StrEq("clip.mpg")))
        .WillOnce(Return(true));
    EXPECT_TRUE(Check("bytes", 5));
    EXPECT_EQ(MockPlugin::alive, 0);
    EXPECT_EQ(given, bundle.Get());
}

TEST_F(TypeCheck, AnswersNoIfTheObjectDoes)
{
    NextObject();
    EXPECT_FALSE(Check("bytes", 5));
    EXPECT_EQ(MockPlugin::alive, 0);
}

TEST_F(TypeCheck, GivesTheObjectTheBytesWithoutCopyingThem)
{
    const char bytes[] = "bytes";
    NiceMock<MockPlugin>* object = NextObject();
    EXPECT_CALL(*object, CanHandleData).WillOnce([&](auto&&...) {
        auto* source = dynamic_cast<VornPointerDataSource*>(object->dataSource);
        return source && source->dataSize == 5 &&
               source->GetBytesDataPtr(0, 5) == reinterpret_cast<const UInt8*>(bytes);
    });
    EXPECT_TRUE(Check(bytes, 5));
}

TEST_F(TypeCheck, AsksAlsoWithoutBytes)
{
    NiceMock<MockPlugin>* object = NextObject();
    EXPECT_CALL(*object, CanHandleData).WillOnce(Return(true));
    EXPECT_TRUE(Check(nullptr, 0));
}

TEST_F(TypeCheck, AnObjectThatThrowsMeansNoAndIsLeftAsItIs)
{
    const std::unique_ptr<NiceMock<MockPlugin>> object(NextObject());
    EXPECT_CALL(*object, CanHandleData).WillOnce(Throw(OSErr{memFullErr}));
    EXPECT_FALSE(Check("bytes", 5));
    EXPECT_EQ(MockPlugin::alive, 1);
}

TEST_F(TypeCheck, AFactoryWithoutAnObjectMeansNo)
{
    EXPECT_FALSE(Check("bytes", 5));
    EXPECT_EQ(asked, 1);
}

TEST_F(TypeCheck, AFactoryThatThrowsMeansNo)
{
    const ScriptedFactory failing([](CFBundleRef) -> VornPlugin* { throw OSErr{paramErr}; });
    EXPECT_FALSE(Check("bytes", 5));
}

TEST_F(TypeCheck, AnyOtherExceptionMeansNoToo)
{
    const std::unique_ptr<NiceMock<MockPlugin>> object(NextObject());
    EXPECT_CALL(*object, CanHandleData).WillOnce(Throw(std::bad_alloc()));
    EXPECT_FALSE(Check("bytes", 5));
    EXPECT_EQ(MockPlugin::alive, 1);
    const ScriptedFactory failing([](CFBundleRef) -> VornPlugin* { throw std::bad_alloc(); });
    EXPECT_FALSE(Check("bytes", 5));
}

TEST_F(TypeCheck, DoesNotTouchTheHostCalls)
{
    gHostCalls = {};
    NextObject();
    Check("bytes", 5);
    EXPECT_EQ(gHostCalls.getData, nullptr);
}
