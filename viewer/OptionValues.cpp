// SPDX-License-Identifier: MIT
#include "viewer/OptionValues.h"

#include "toolbox/events/Events.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace viewer
{
namespace
{

constexpr double kMicrosecondsPerSecond = 1e6;
constexpr double kMostSeconds = 1e9;

[[noreturn]] void Refuse(const std::string& option, const std::string& text, const char* wanted)
{
    throw UsageError(option + ": '" + text + "' is not " + wanted);
}

template <typename Number, typename... Base>
bool ReadAll(std::string_view text, Number& number, Base... base)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base...);
    return error == std::errc() && stop == end;
}

// Splits at the last `separator`; the second part starts behind it.
bool Split(std::string_view text, char separator, std::string_view& first, std::string_view& second)
{
    const size_t at = text.rfind(separator);
    if (at == std::string_view::npos) {
        return false;
    }
    first = text.substr(0, at);
    second = text.substr(at + 1);
    return true;
}

bool ReadTime(std::string_view text, SInt64& microseconds)
{
    double seconds = 0;
    if (!ReadAll(text, seconds) || !(seconds >= 0) || seconds > kMostSeconds) {
        return false;
    }
    microseconds = std::llround(seconds * kMicrosecondsPerSecond);
    return true;
}

// Takes a modifier key away from the front.
UInt16 ReadModifier(std::string_view& name)
{
    for (const auto& [known, bit] : {std::pair<std::string_view, int>{"shift+", shiftKey},
                                     std::pair<std::string_view, int>{"ctrl+", cmdKey}}) {
        if (name.starts_with(known) && name.size() > known.size()) {
            name.remove_prefix(known.size());
            return static_cast<UInt16>(bit);
        }
    }
    return 0;
}

bool ReadCharacter(std::string_view name, UInt8& character)
{
    static constexpr std::pair<std::string_view, UInt8> kNames[] = {
        {"space", kSpaceCharCode}, {"left", kLeftArrowCharCode}, {"right", kRightArrowCharCode},
        {"up", kUpArrowCharCode},  {"down", kDownArrowCharCode},
    };
    for (const auto& [known, code] : kNames) {
        if (name == known) {
            character = code;
            return true;
        }
    }
    character = name.empty() ? UInt8{0} : static_cast<UInt8>(name.front());
    return name.size() == 1 && character > kSpaceCharCode && character < 0x7F;
}

} // namespace

SInt64 ReadWholeNumber(const std::string& option, const std::string& text, SInt64 least,
                       SInt64 most)
{
    SInt64 number = 0;
    if (!ReadAll(text, number) || number < least || number > most) {
        const std::string wanted =
            "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
        Refuse(option, text, wanted.c_str());
    }
    return number;
}

UInt32 ReadFlags(const std::string& option, const std::string& text)
{
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    UInt32 flags = 0;
    const bool read = hexadecimal ? ReadAll(std::string_view(text).substr(2), flags, 16)
                                  : ReadAll(std::string_view(text), flags);
    if (!read) {
        Refuse(option, text, "a number of display flags, such as 31 or 0x1F");
    }
    return flags;
}

std::string ReadMimeType(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t";
    text = text.substr(0, text.find(';'));
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

SInt64 ReadSeconds(const std::string& option, const std::string& text)
{
    SInt64 microseconds = 0;
    if (!ReadTime(text, microseconds)) {
        Refuse(option, text, "a time in seconds, such as 2.5");
    }
    return microseconds;
}

void ReadSize(const std::string& option, const std::string& text, SInt16& width, SInt16& height)
{
    std::string_view first;
    std::string_view second;
    if (!Split(text, 'x', first, second) || !ReadAll(first, width) || !ReadAll(second, height) ||
        width <= 0 || height <= 0) {
        Refuse(option, text, "a size of WIDTHxHEIGHT, each from 1 to 32767, such as 800x600");
    }
}

UserEvent ReadClick(const std::string& option, const std::string& text)
{
    UserEvent event;
    event.kind = UserEvent::Kind::kClick;
    std::string_view place;
    std::string_view time;
    std::string_view x;
    std::string_view y;
    if (!Split(text, '@', place, time) || !Split(place, ',', x, y) || !ReadAll(x, event.where.h) ||
        !ReadAll(y, event.where.v) || !ReadTime(time, event.at)) {
        Refuse(option, text, "a place and time X,Y@SECONDS, such as 24,250@1.5");
    }
    return event;
}

void ReadDrag(const std::string& option, const std::string& text, DragRequest& drag)
{
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    drag.object.reset();
    drag.path = text;
    if (digits == 0 || digits == text.size() || text[digits] != ':') {
        return;
    }
    size_t number = 0;
    drag.path = text.substr(digits + 1);
    if (!ReadAll(std::string_view(text).substr(0, digits), number) || number == 0 ||
        drag.path.empty()) {
        Refuse(option, text,
               "a file, or an object's number from 1 on with a file, such as 2:a.pict");
    }
    drag.object = number;
}

UserEvent ReadKey(const std::string& option, const std::string& text)
{
    UserEvent event;
    event.kind = UserEvent::Kind::kKey;
    std::string_view name;
    std::string_view time;
    const bool isSplit = Split(text, '@', name, time);
    event.modifiers = ReadModifier(name);
    if (!isSplit || !ReadCharacter(name, event.character) || !ReadTime(time, event.at)) {
        Refuse(option, text,
               "a key and time NAME@SECONDS, where NAME is space, left, right, up, down or one "
               "character, maybe with shift+ or ctrl+ in front");
    }
    return event;
}

} // namespace viewer
