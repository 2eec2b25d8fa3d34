// SPDX-License-Identifier: MIT
//
// A page with objects of the fake bundle.
#pragma once

#include "tests/viewer/FakePlugins.h"
#include "tests/viewer/NoTime.h"
#include "tests/viewer/TestFiles.h"
#include "toolbox/threads/Threads.h"
#include "viewer/Page.h"
#include "viewer/PageClock.h"

#include <gtest/gtest.h>

// The first component of a pixel, which is all of a grey.
inline int GreyOf(const viewer::Page& page, int v, int h)
{
    SInt32 rowBytes = 0;
    const UInt8* pixels = GetPortPixels(page.Port(), &rowBytes);
    return pixels[v * rowBytes + h * 4 + 1];
}

class PageFixture : public testing::Test
{
protected:
    ~PageFixture() override { page.FreeObjects(); }

    // Adds an object that does what its name says.
    viewer::EmbeddedObject& Add(const std::string& name)
    {
        const std::string path = folder.Write(name, Pattern(1000));
        return page.Add(std::make_unique<viewer::EmbeddedObject>(
            viewer::ObjectDescription{name, name, viewer::ObjectType{"video/x-fake"}, 0x1F},
            std::make_unique<viewer::ObjectBytes>(viewer::OpenSource(path), viewer::ArrivalPace(),
                                                  time)));
    }
    viewer::EmbeddedObject& AddStarted(const std::string& name)
    {
        viewer::EmbeddedObject& object = Add(name);
        object.Start(*plugins.Folder().Bundles()[0]);
        page.DrawChanges();
        return object;
    }
    void RunToEnd()
    {
        for (int i = 0; i < 10; ++i) {
            YieldToAnyThread();
            page.IdleObjects();
            page.DrawChanges();
        }
    }
    int GreyAt(int v, int h) const { return GreyOf(page, v, h); }

    TestFolder folder;
    NoTime time;
    viewer::PageClock clock;
    FakePlugins plugins;
    viewer::Page page{300, 200};
};
