#include "frame/SystemTools.h"

#include "frame/Context.h"
#include "frame/Formatting.h"
#include "platform/Text.h"

namespace pw {

namespace {

/** The length of the names that old parts of the hosting provider's interface can take. */
constexpr std::size_t kNameLength = 255;

std::string Hex(std::uint64_t value) {
    int digits = 1;
    while (digits < 16 && (value >> (4 * digits)) != 0)
        ++digits;
    return "&H" + ToHex(value, digits);
}

/** Takes the digits at the start of `text` off it; "0" when there are none. */
std::string TakeNumber(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && text[length] >= '0' && text[length] <= '9')
        ++length;
    const std::string number(text.substr(0, length));
    text.remove_prefix(length);
    return number.empty() ? "0" : number;
}

}  // namespace

std::string GetComputerName(const SystemInfo& system) {
    return Trim(system.ComputerName().substr(0, kNameLength));
}

std::string GetUserName(const SystemInfo& system) {
    return Trim(system.UserName().substr(0, kNameLength));
}

std::string GetOSInfo(const SystemInfo& system) {
    const std::string name = system.OSName();
    const auto blank = std::min(name.find(' '), name.size());
    std::string_view release = std::string_view(name).substr(std::min(blank + 1, name.size()));
    std::string numbers[3];
    for (auto& number : numbers) {
        number = TakeNumber(release);
        if (release.starts_with('.')) release.remove_prefix(1);
    }
    if (release.starts_with('-')) release.remove_prefix(1);
    return name.substr(0, blank) + " " + numbers[0] + "." + numbers[1] + " Build " + numbers[2] +
           ", " + std::string(release);
}

std::string GetSystemInfo(const SystemInfo& system) {
    const MachineFacts facts = system.Machine();
    const std::string lines[] = {
        "Platform=" + facts.processor,
        "Page size=" + std::to_string(facts.pageSize) + " bytes",
        "Lowest memory address=" + Hex(facts.lowestAddress),
        "Highest memory address=" + Hex(facts.highestAddress),
        "Number of processors=" + std::to_string(facts.processors),
        "Processor=" + facts.processorModel,
        "Disk Free Space=" + std::to_string(facts.diskFree),
    };
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

bool IsOnline(const SystemInfo& system) {
    return system.IsOnline();
}

std::string GetSpecialFolder(const FrameContext& context, SpecialFolder folder) {
    if (folder != SpecialFolder::Temporary) return context.places.programFolder;
    return context.runFolder.empty() ? context.places.temporaryFolder : context.runFolder;
}

}  // namespace pw
