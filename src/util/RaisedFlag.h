// SPDX-License-Identifier: MIT
#pragma once

// Raises a flag for the length of a scope; the value it had comes back on every way out.
class RaisedFlag
{
public:
    explicit RaisedFlag(unsigned char& flag) : flag_(flag), former_(flag) { flag_ = 1; }
    ~RaisedFlag() { flag_ = former_; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

private:
    unsigned char& flag_;
    const unsigned char former_;
};
