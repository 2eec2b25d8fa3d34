// SPDX-License-Identifier: MIT
//
// What stands behind the references of Foundation.h.
#pragma once

#include "toolbox/foundation/Foundation.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace toolbox
{

enum ObjectType : CFTypeID {
    kPlainType = 1, // numbers, dates and so on: nothing is asked of them but their type
    kStringType,
    kArrayType,
    kDictionaryType,
    kUrlType,
    kBundleType
};

// Counted: born with one reference, which its maker owns.
class Object
{
public:
    explicit Object(ObjectType type);
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    ObjectType Type() const { return type_; }
    void Retain() const { ++references_; }
    void Release() const; // the last one destroys it
    virtual ~Object();    // for Release alone

private:
    const ObjectType type_;
    mutable SInt32 references_ = 1;
};

struct Releaser {
    void operator()(const Object* object) const { object->Release(); }
};
using Owned = std::unique_ptr<const Object, Releaser>; // one reference

struct PlainObject : Object {
    PlainObject() : Object(kPlainType) {}
};

struct StringObject : Object {
    static constexpr ObjectType kType = kStringType;
    explicit StringObject(std::string utf8) : Object(kType), text(std::move(utf8)) {}
    const std::string text;
};

struct ArrayObject : Object {
    static constexpr ObjectType kType = kArrayType;
    explicit ArrayObject(std::vector<Owned> items) : Object(kType), values(std::move(items)) {}
    const std::vector<Owned> values;
};

struct DictionaryObject : Object {
    static constexpr ObjectType kType = kDictionaryType;
    explicit DictionaryObject(std::map<std::string, Owned> items)
        : Object(kType), values(std::move(items))
    {
    }
    const std::map<std::string, Owned> values;
};

struct UrlObject : Object {
    static constexpr ObjectType kType = kUrlType;
    explicit UrlObject(std::string file) : Object(kType), path(std::move(file)) {}
    const std::string path;
};

struct BundleObject : Object {
    static constexpr ObjectType kType = kBundleType;
    explicit BundleObject(Owned dictionary) : Object(kType), info(std::move(dictionary)) {}
    const Owned info; // a DictionaryObject
};

// The object as what it is to be; null if it is something else or null.
template <class Wanted>
const Wanted* As(const Object* object)
{
    return object != nullptr && object->Type() == Wanted::kType ? static_cast<const Wanted*>(object)
                                                                : nullptr;
}

} // namespace toolbox
