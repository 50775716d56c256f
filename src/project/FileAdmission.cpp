#include "project/FileAdmission.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/FileKinds.h"
#include "project/References.h"

namespace pw {

namespace {

/** Begins what a program on the server replaces before anybody sees the page. */
constexpr std::string_view kCodeMarks[] = {"<?", "<%", "<#", "<!", "<cf", "{{", "{%",
                                           "{#", "${", "#{", "@{", "[%",  "[["};
constexpr std::string_view kScriptKinds[] = {"php",  "php3", "php4", "php5", "phtml", "asp", "aspx",
                                             "ashx", "cgi",  "pl",   "py",   "rb",    "jsp", "jspx",
                                             "do",   "cfm",  "fcgi", "dll",  "exe"};
/** Where the system shows itself as files. */
constexpr std::string_view kSystemFolders[] = {"\\proc", "\\sys", "\\dev"};

bool IsAbove(std::string_view folder, std::string_view path) {
    if (folder == "\\") return path.size() > 1;
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '\\';
}

bool HasHiddenPart(std::string_view path) {
    return path.find("\\.") != path.npos;
}

std::string_view Below(std::string_view folder, std::string_view path) {
    return path.substr(folder == "\\" ? 0 : folder.size());
}

/** The way from a folder to a file, from the last folder that both lie in. */
std::string_view WayTo(std::string_view folder, std::string_view file) {
    while (!folder.empty() && !IsAbove(folder, file))
        folder = folder.substr(0, folder.rfind('\\'));
    return file.substr(folder.size());
}

const char* ReasonText(Verdict why) {
    switch (why) {
        case Verdict::Outside:
            return "it lies outside of the folder";
        case Verdict::Hidden:
            return "it is hidden";
        case Verdict::NoFile:
            return "it is a device or a pipe";
        default:
            return "it is not of the kind that comes along with a page";
    }
}

}  // namespace

struct FileAdmission::Looks {
    struct Look {
        std::string real;  ///< "" when there is no such file
        bool isRegular = false;
        std::uint64_t size = 0;
    };
    const Look& At(const FileSystem& files, const std::string& path) {
        const auto [at, isNew] = looks.try_emplace(path);
        if (!isNew) return at->second;
        FileInfo info = files.Stat(path);
        if (!info.exists || info.isFolder) return at->second;
        const std::string real = files.Canonical(path);
        if (real.empty()) return at->second;
        if (real != path) info = files.Stat(real);
        if (info.exists && !info.isFolder) at->second = {real, info.isRegular, info.size};
        return at->second;
    }

    std::unordered_map<std::string, Look> looks;
    std::map<std::pair<std::string, FileUse>, bool> kinds;
};

std::string Describe(const LeftOutFile& file) {
    return "'" + file.reference + "' in '" + GetFileName(file.page) +
           "' was left out: " + ReasonText(file.why) + ".";
}

FileAdmission::FileAdmission(const FileSystem& files)
    : files_(&files),
      chosen_(std::make_shared<std::unordered_set<std::string>>()),
      looks_(std::make_shared<Looks>()) {}

void FileAdmission::AllowFolder(std::string_view folder, Taking taking) {
    const std::string real = files_->Canonical(folder);
    if (!real.empty()) folders_.push_back({real, taking});
}

void FileAdmission::AllowFile(std::string_view path) {
    const std::string real = files_->Canonical(path);
    if (real.empty()) return;
    if (chosen_.use_count() > 1)
        chosen_ = std::make_shared<std::unordered_set<std::string>>(*chosen_);
    chosen_->insert(real);
}

void FileAdmission::AllowPicturesByAddress() {
    picturesByAddress_ = true;
}

bool FileAdmission::IsFor(const std::string& real, FileUse use) const {
    const auto known = looks_->kinds.find({real, use});
    if (known != looks_->kinds.end()) return known->second;
    const std::string extension = ToLower(GetExtension(real));
    std::string bytes;
    bool is = false;
    if (use != FileUse::Linked &&
        files_->ReadResolved(real, bytes, kKindPrefix) == FileError::None) {
        const bool isText = bytes.find('\0') == bytes.npos;
        const bool isStyle = extension == "css" && isText;
        switch (use) {
            case FileUse::Picture:
                is = IsPictureContent(bytes);
                break;
            case FileUse::StyleSheet:
                is = isStyle;
                break;
            case FileUse::Script:
                is = ((extension == "js" || extension == "mjs" || extension == "vbs") && isText) ||
                     IsJavaContent(bytes);
                break;
            case FileUse::Styled:
                is = isStyle || IsPictureContent(bytes) || IsFontContent(bytes);
                break;
            case FileUse::Embedded:
                is = IsPictureContent(bytes) || IsMediaContent(bytes);
                break;
            case FileUse::Linked:
                break;
        }
    }
    looks_->kinds[{real, use}] = is;
    return is;
}

Verdict FileAdmission::Judge(std::string_view path, FileUse use, std::string* real) const {
    const Looks::Look look = looks_->At(*files_, std::string(path));
    if (real) *real = look.real;
    if (look.real.empty()) return Verdict::Missing;
    if (!look.isRegular) return Verdict::NoFile;
    if (chosen_->count(look.real) > 0) return Verdict::Admitted;
    Verdict verdict = Verdict::Outside;
    for (const NamedFolder& folder : folders_) {
        if (!IsAbove(folder.path, look.real)) continue;
        if (folder.taking == Taking::HiddenToo) return Verdict::Admitted;
        if (HasHiddenPart(Below(folder.path, look.real))) {
            verdict = Verdict::Hidden;
        } else if (folder.taking == Taking::Everything || IsFor(look.real, use)) {
            return Verdict::Admitted;
        } else {
            verdict = Verdict::WrongKind;
        }
    }
    return verdict;
}

bool FileAdmission::AdmitsFolder(std::string_view folder) const {
    const std::string real = files_->Canonical(folder);
    return std::any_of(folders_.begin(), folders_.end(), [&](const NamedFolder& named) {
        return real == named.path ||
               (IsAbove(named.path, real) &&
                (named.taking == Taking::HiddenToo || !HasHiddenPart(Below(named.path, real))));
    });
}

std::vector<std::string> FileAdmission::Roots(std::string_view folder) const {
    std::vector<std::string> roots;
    const std::string real = files_->Canonical(folder);
    for (const bool isAbove : {true, false})
        for (const NamedFolder& named : folders_)
            if ((named.path == real || IsAbove(named.path, real)) == isAbove)
                roots.push_back(named.path);
    return roots;
}

void FileAdmission::Note(std::string_view value, const std::string& from, const std::string& real,
                         Verdict why) {
    const auto isSame = [&](const LeftOutFile& known) {
        return known.page == page && known.reference == value;
    };
    if (std::any_of(leftOut.begin(), leftOut.end(), isSame)) return;
    const bool isOfSystem = std::any_of(std::begin(kSystemFolders), std::end(kSystemFolders),
                                        [&](auto folder) { return IsAbove(folder, real); });
    const bool mayBeOffered = (why == Verdict::Outside || why == Verdict::WrongKind) &&
                              !isOfSystem && !HasHiddenPart(WayTo(from, real));
    leftOut.push_back({page, std::string(value), real, why, mayBeOffered});
}

std::optional<AdmittedFile> FileAdmission::Find(const std::vector<std::string>& folders,
                                                std::string_view value, FileUse use,
                                                Verdict* reason) {
    if (!IsLocalReference(value) || IsMadeByServer(value)) return std::nullopt;
    std::string text = Trim(value);
    const bool isFromRoot = text.starts_with('/') || text.starts_with('\\');
    if (isFromRoot) text.erase(0, std::min(text.find_first_not_of("/\\"), text.size()));
    const bool isPictureByAddress =
        picturesByAddress_ && use == FileUse::Picture && StartsWithNoCase(text, "file:");

    std::string refused;
    Verdict why = Verdict::Missing;
    std::string from;
    for (const std::string& folder :
         isFromRoot && !folders.empty() ? Roots(folders.front()) : folders) {
        for (const ReferenceCandidate& candidate : ReferenceCandidates(folder, text)) {
            std::string real;
            Verdict verdict = Judge(candidate.path, use, &real);
            if (verdict == Verdict::Outside && isPictureByAddress && !HasHiddenPart(real) &&
                IsFor(real, use))
                verdict = Verdict::Admitted;
            if (verdict == Verdict::Admitted)
                return AdmittedFile{candidate.path, real, candidate.suffix};
            if (verdict == Verdict::Missing || why != Verdict::Missing) continue;
            why = verdict;
            refused = real;
            from = files_->Canonical(folder);
        }
    }
    if (why != Verdict::Missing) Note(value, from, refused, why);
    if (reason) *reason = why;
    return std::nullopt;
}

void FileAdmission::NoteFolder(std::string_view address, const std::string& folder) {
    const std::string real = files_->Canonical(folder);
    if (!real.empty()) leftOut.push_back({page, std::string(address), real, Verdict::Outside});
}

bool HoldsServerCode(std::string_view text) {
    return std::any_of(std::begin(kCodeMarks), std::end(kCodeMarks),
                       [&](auto mark) { return text.find(mark) != text.npos; });
}

bool IsMadeByServer(std::string_view value) {
    if (HoldsServerCode(value)) return true;
    const SplitReference parts = SplitSuffix(value);
    if (!parts.suffix.starts_with('?')) return false;
    // "picture.gif?v=2" is a picture; what takes a query to make one is a program.
    const std::string extension = GetExtension(ReplaceAll(parts.path, "/", "\\"));
    return extension.empty() || IsServerScript(parts.path);
}

bool IsServerScript(std::string_view path) {
    const std::string extension = ToLower(GetExtension(ReplaceAll(Trim(path), "/", "\\")));
    return std::find(std::begin(kScriptKinds), std::end(kScriptKinds), extension) !=
           std::end(kScriptKinds);
}

}  // namespace pw
