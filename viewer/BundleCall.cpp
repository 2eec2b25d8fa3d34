// SPDX-License-Identifier: MIT
#include "viewer/BundleCall.h"

#include "toolbox/threads/Threads.h"

namespace viewer
{
namespace
{

int gDepth = 0;

} // namespace

BundleCall::BundleCall(void* owner) : formerOwner_(GetStatisticsOwner())
{
    SetStatisticsOwner(owner);
    ++gDepth;
}

BundleCall::~BundleCall()
{
    --gDepth;
    SetStatisticsOwner(formerOwner_);
}

bool BundleCall::IsApplicationInside()
{
    return gDepth > 0;
}

} // namespace viewer
