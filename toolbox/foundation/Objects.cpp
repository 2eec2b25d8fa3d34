// SPDX-License-Identifier: MIT
#include "toolbox/foundation/Objects.h"

#include "toolbox/probe/Announce.h"

toolbox::Object::Object(ObjectType type) : type_(type)
{
    CountInLedger(kLiveFoundationObjects, 1);
}

toolbox::Object::~Object()
{
    CountInLedger(kLiveFoundationObjects, -1);
}

void toolbox::Object::Release() const
{
    if (--references_ == 0) {
        delete this;
    }
}
