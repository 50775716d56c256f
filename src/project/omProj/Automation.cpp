#include "project/omProj/Automation.h"

#include "platform/Text.h"

namespace pw {
namespace {

using Arguments = std::vector<AutomationValue>;

struct Member {
    std::string_view name;
    bool (*has)(const AutomationObject& object);
    bool (*call)(const AutomationObject& object, const Arguments& arguments,
                 AutomationValue& result);
    bool (*let)(const AutomationObject& object, const AutomationValue& value);
};

AutomationValue Wrap(const std::string& text) {
    return text;
}
AutomationValue Wrap(bool flag) {
    return flag;
}
AutomationValue Wrap(int number) {
    return std::int64_t{number};
}
template <class T>
AutomationValue Wrap(T* object) {
    return AutomationObject(object);
}

/** Runs `use` on the object where its type allows that; false where it does not. */
template <class Use>
bool Visit(const AutomationObject& object, Use use) {
    return std::visit(
        [&](auto held) {
            if constexpr (requires { use(*held); })
                return held && use(*held);
            else
                return false;
        },
        object);
}

template <auto Read>
bool Has(const AutomationObject& object) {
    return Visit(object, [](auto& held) -> decltype(Read(held), true) { return true; });
}

template <auto Read>
bool Get(const AutomationObject& object, const Arguments& arguments, AutomationValue& result) {
    return arguments.empty() && Visit(object, [&](auto& held) -> decltype(Read(held), true) {
               result = Wrap(Read(held));
               return true;
           });
}

template <class Value, auto Write>
bool Let(const AutomationObject& object, const AutomationValue& value) {
    const Value* given = std::get_if<Value>(&value);
    return given && Visit(object, [&](auto& held) -> decltype(Write(held, *given), true) {
               return Write(held, *given);
           });
}

template <auto Read>
constexpr Member Property(std::string_view name) {
    return {name, Has<Read>, Get<Read>, nullptr};
}
template <auto Read, class Value, auto Write>
constexpr Member Property(std::string_view name) {
    return {name, Has<Read>, Get<Read>, Let<Value, Write>};
}

constexpr auto kIndexOf = [](auto& held) -> decltype(held.IndexOf("")) { return 1; };

/** The item that the one argument means, an index from 1 or a key, handed to `Use`. */
template <auto Use>
bool UseItem(const AutomationObject& object, const Arguments& arguments, AutomationValue& result) {
    if (arguments.size() != 1) return false;
    return Visit(object, [&](auto& held) -> decltype(kIndexOf(held), true) {
        int index = 0;
        if (const auto* key = std::get_if<std::string>(&arguments[0])) index = held.IndexOf(*key);
        if (const auto* number = std::get_if<std::int64_t>(&arguments[0]))
            index = *number >= 1 && *number <= held.Count() ? static_cast<int>(*number) : 0;
        return index > 0 && Use(held, index, result);
    });
}

constexpr auto kItem = [](auto& collection, int index, AutomationValue& result) {
    result = Wrap(collection.Item(index));
    return true;
};
constexpr auto kRemove = [](auto& collection, int index, AutomationValue&) {
    return collection.Remove(index) != nullptr;
};

constexpr auto kMetaTags = [](auto& held) -> decltype(&held.MetaTags()) { return nullptr; };

bool RemoveMetaTag(const AutomationObject& object, const Arguments& arguments, AutomationValue&) {
    const auto* name = arguments.size() == 1 ? std::get_if<std::string>(&arguments[0]) : nullptr;
    return name && Visit(object, [&](auto& held) -> decltype(held.MetaTags(), true) {
               return held.MetaTags().RemoveNamed(*name);
           });
}

using Text = const std::string&;

/** The first row of a name whose type fits is meant; file names are plain on a page alone. */
constexpr Member kMembers[] = {
    Property<[](auto& held) -> decltype(&held.WebSites()) { return &held.WebSites(); }>("WebSites"),
    Property<[](auto& held) -> decltype(&held.Sections()) { return &held.Sections(); }>("Sections"),
    Property<[](auto& held) -> decltype(held.Sections().Add()) { return held.Sections().Add(); }>(
        "AddSection"),
    Property<[](auto& held) -> decltype(&held.Pages()) { return &held.Pages(); }>("Pages"),
    Property<[](auto& held) -> decltype(&held.Attachments()) { return &held.Attachments(); }>(
        "Attachments"),
    Property<[](auto& held) -> decltype(held.Count()) { return held.Count(); }>("Count"),
    {"Item", Has<kIndexOf>, UseItem<kItem>, nullptr},
    {"Remove", Has<kIndexOf>, UseItem<kRemove>, nullptr},
    Property<[](auto& held) -> decltype(held.Id()) { return held.Id(); }>("Id"),
    Property<[](auto& held) -> decltype((held.Filename)) { return held.Filename; }, std::string,
             [](auto& held, Text path) -> decltype(held.Filename = path, true) {
                 held.Filename = path;
                 return true;
             }>("Filename"),
    Property<[](auto& held) -> decltype(held.Filename()) { return held.Filename(); }, std::string,
             [](auto& held, Text path) -> decltype(held.SetFilename(path)) {
                 return held.SetFilename(path);
             }>("Filename"),
    Property<[](auto& held) -> decltype((held.Expanded)) { return held.Expanded; }, bool,
             [](auto& held, bool expanded) -> decltype(held.Expanded = expanded, true) {
                 held.Expanded = expanded;
                 return true;
             }>("Expanded"),
    Property<[](auto& held) -> decltype((held.WorkingFolder)) { return held.WorkingFolder; },
             std::string,
             [](auto& held, Text path) -> decltype(held.WorkingFolder = path, true) {
                 held.WorkingFolder = path;
                 return true;
             }>("WorkingFolder"),
    Property<[](auto& held) -> decltype((held.Name)) { return held.Name; }, std::string,
             [](auto& held, Text name) -> decltype(held.Name = name, true) {
                 held.Name = name;
                 return true;
             }>("Name"),
    {"RemoveMetaTag", Has<kMetaTags>, RemoveMetaTag, nullptr},
};

const Member* FindMember(const AutomationObject& object, std::string_view name) {
    for (const Member& member : kMembers)
        if (EqualsNoCase(member.name, name) && member.has(object)) return &member;
    return nullptr;
}

}  // namespace

bool HasMember(const AutomationObject& object, std::string_view name) {
    return FindMember(object, name) != nullptr;
}

AutomationReply CallMember(const AutomationObject& object, std::string_view name,
                           const std::vector<AutomationValue>& arguments) {
    AutomationReply reply;
    const Member* member = FindMember(object, name);
    reply.worked = member && member->call(object, arguments, reply.value);
    return reply;
}

bool LetMember(const AutomationObject& object, std::string_view name,
               const AutomationValue& value) {
    const Member* member = FindMember(object, name);
    return member && member->let && member->let(object, value);
}

}  // namespace pw
