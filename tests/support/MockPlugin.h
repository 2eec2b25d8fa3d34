// SPDX-License-Identifier: MIT
//
// A plug-in object whose every virtual operation is an expectation.
#pragma once

#include "src/plugin/VornPlugin.h"

#include <gmock/gmock.h>

namespace test
{

// Counts how many of it are alive.
class MockPlugin : public VornPlugin
{
public:
    explicit MockPlugin(CFBundleRef ownBundle) : VornPlugin(ownBundle) { ++alive; }
    ~MockPlugin() override { --alive; }

    MOCK_METHOD(Boolean, CanHandleData, (const char*, const char*), (override));
    MOCK_METHOD(void, Decode, (), (override));
    MOCK_METHOD(void, Display, (const Rect&, unsigned char), (override));
    MOCK_METHOD(void, Idle, (const Rect&, unsigned char), (override));
    MOCK_METHOD(Boolean, HandleClick, (const Rect&, const EventRecord&), (override));
    MOCK_METHOD(void, PrepareDrag, (DragRef, UInt32, const Rect&, unsigned char&), (override));
    MOCK_METHOD(void, CleanupDrag, (), (override));
    MOCK_METHOD(void, GetData, (UInt32&, Handle*), (override));
    MOCK_METHOD(void, GetDisplayRect, (const Rect&, Rect&), (override));
    MOCK_METHOD(UInt32, GetDisplayFlags, (), (override));
    MOCK_METHOD(void, SetDisplayFlags, (UInt32), (override));
    MOCK_METHOD(Boolean, GetHaveDimensions, (), (override));
    MOCK_METHOD(OSErr, GetRenderingError, (), (override));
    MOCK_METHOD(void, GetComment, (char*, UInt32), (override));
    MOCK_METHOD(void, SetDisplayRect, (const Rect&), (override));
    MOCK_METHOD(void, SetComment, (const char*), (override));
    MOCK_METHOD(void, Initialize, (OSType, OSType, const char*, const char*), (override));
    MOCK_METHOD(void, Render, (), (override));

    static inline int alive = 0;
};

} // namespace test
