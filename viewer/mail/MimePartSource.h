// SPDX-License-Identifier: MIT
//
// An object that is a part of a MIME document: decoded as far as it is wanted.
#pragma once

#include "viewer/SpooledSource.h"
#include "viewer/mail/GMimePointer.h"

namespace viewer
{

class MimePartSource : public SpooledSource
{
public:
    // `stream` gives the decoded bytes; nobody else reads it. Throws SourceFailure.
    MimePartSource(GMimePointer<GMimeStream> stream, std::string declaredType);

    void Pump(SInt32 end) override;
    std::string DeclaredType() const override { return declaredType_; }
    void StopReceiving() override { stream_ = nullptr; }

private:
    GMimePointer<GMimeStream> stream_;
    std::string declaredType_;
};

} // namespace viewer
