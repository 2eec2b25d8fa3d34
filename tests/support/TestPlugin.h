// SPDX-License-Identifier: MIT
//
// A plug-in object that is the base class and nothing else, but for its rendering.
#pragma once

#include "src/plugin/VornPlugin.h"

#include <functional>

namespace test
{

class TestPlugin : public VornPlugin
{
public:
    using VornPlugin::VornPlugin;

    Boolean CanHandleData(const char* mimeTypeText, const char* name) override
    {
        return VornPlugin::CanHandleData(mimeTypeText, name);
    }
    void Display(const Rect&, unsigned char) override {}
    void PrepareDrag(DragRef drag, UInt32 itemRef, const Rect& area,
                     unsigned char& outFlag) override
    {
        VornPlugin::PrepareDrag(drag, itemRef, area, outFlag);
    }
    void CleanupDrag() override {}
    void GetData(UInt32& dataType, Handle* outData) override
    {
        VornPlugin::GetData(dataType, outData);
    }
    void GetDisplayRect(const Rect& bounds, Rect& outRect) override
    {
        VornPlugin::GetDisplayRect(bounds, outRect);
    }
    void Render() override { render(); }

    std::function<void()> render = [] {};
};

} // namespace test
