// SPDX-License-Identifier: MIT
//
// A part of the viewer that has libraries of its own (the window, the web, e-mails): a file beside
// the viewer's library, loaded when it is first wanted, so that no page waits for libraries that it
// does not need.
#pragma once

#include <stdexcept>
#include <string>

namespace viewer
{

// The text, for the user, names the part and what is wrong with it.
class PartMissing : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Stays loaded for the life of the process, as the libraries it brings may not be unloaded.
class ViewerPart
{
public:
    // Where the parts are that belong to this program.
    static std::string DefaultFolder();

    // Throws PartMissing.
    explicit ViewerPart(const std::string& name, const std::string& folder = DefaultFolder());

    // One of its functions with C linkage, `Function` its type. Throws PartMissing.
    template <typename Function>
    Function* Find(const char* name) const
    {
        return reinterpret_cast<Function*>(FindSymbol(name));
    }

private:
    void* FindSymbol(const char* name) const;

    std::string name_;
    void* code_;
};

} // namespace viewer
