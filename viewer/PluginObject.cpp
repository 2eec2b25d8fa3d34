// SPDX-License-Identifier: MIT
#include "viewer/PluginObject.h"

#include "toolbox/Errors.h"
#include "viewer/BundleCall.h"
#include "viewer/HostCallbacks.h"

#include <array>
#include <cassert>

namespace viewer
{
namespace
{

// No object is made with these.
constexpr UInt32 kFlagsNotSet = 0xFFFFFFFF;
constexpr OSType kUnknownCreator = FOUR_CHARS('?', '?', '?', '?');

} // namespace

PluginObject::~PluginObject()
{
    assert(!IsMade());
}

OSErr PluginObject::Make(const PluginBundle& bundle, const ObjectDescription& description)
{
    bundle_ = &bundle;
    const BundleCall call(&owner_);
    const OSErr error = bundle.Calls().makeNewObject(
        bundle.Reference(), &ViewerHostCalls(), description.type.fileType, kUnknownCreator,
        description.fileName.c_str(), description.type.mimeType.c_str(), &plugin_);
    if (error == noErr) {
        RememberObject(plugin_, owner_);
        displayFlags_ = kFlagsNotSet;
        SetDisplayFlags(description.displayFlags);
    }
    return error;
}

OSErr PluginObject::Decode()
{
    return bundle_->Calls().decodeObject(plugin_);
}

// The page restores the background before it has anything drawn, so nothing may be missing.
void PluginObject::SetDisplayFlags(UInt32 flags)
{
    flags &= ~UInt32{kVornDisplayPartialRedraw};
    if (IsMade() && flags != displayFlags_) {
        displayFlags_ = flags;
        bundle_->Calls().setObjectDisplayFlags(plugin_, flags);
    }
}

void PluginObject::Display(const Rect& area)
{
    if (IsMade()) {
        const BundleCall call(&owner_);
        bundle_->Calls().displayObject(plugin_, &area, 0);
    }
}

OSErr PluginObject::Idle(const Rect& area)
{
    const BundleCall call(&owner_);
    return IsMade() ? bundle_->Calls().idleObject(plugin_, &area, 0) : OSErr{noErr};
}

bool PluginObject::Click(const Rect& area, const EventRecord& event)
{
    const BundleCall call(&owner_);
    return IsMade() && bundle_->Calls().handleObjectClick(plugin_, &area, &event) != 0;
}

OSErr PluginObject::PrepareDrag(const Rect& area, DragRef drag, UInt32 item)
{
    const BundleCall call(&owner_);
    return IsMade() ? bundle_->Calls().prepareDrag(plugin_, drag, item, &area, nullptr)
                    : OSErr{paramErr};
}

void PluginObject::CleanUpDrag()
{
    if (IsMade()) {
        const BundleCall call(&owner_);
        bundle_->Calls().cleanupDrag(plugin_);
    }
}

OSErr PluginObject::GetData(OSType& type, Handle& data)
{
    const BundleCall call(&owner_);
    return IsMade() ? bundle_->Calls().getObjectData(plugin_, &type, &data) : OSErr{paramErr};
}

Rect PluginObject::DrawnRect(const Rect& area) const
{
    Rect drawn = area;
    if (IsMade()) {
        bundle_->Calls().getObjectDisplayRect(plugin_, &area, &drawn);
    }
    return drawn;
}

std::string PluginObject::Comment() const
{
    std::array<char, 257> comment{};
    if (IsMade()) {
        bundle_->Calls().getObjectComment(plugin_, comment.data(), comment.size() - 1);
    }
    return comment.data();
}

void PluginObject::Free()
{
    if (!IsMade()) {
        return;
    }
    {
        const BundleCall call(&owner_);
        bundle_->Calls().freeObject(plugin_);
    }
    ForgetObject(plugin_);
    plugin_ = nullptr;
}

} // namespace viewer
