#include "project/DroppedFiles.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Base64.h"
#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "project/AddFiles.h"
#include "project/Attachments.h"
#include "project/Media.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/References.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr std::uint64_t kLargest = 100'000'000;  ///< bytes; visitors have to wait for each of them

/** Pictures that browsers show, by their extension, and what an address with data calls them. */
struct PictureKind {
    std::string_view extension;
    std::string_view mediaType;
};
constexpr PictureKind kPictures[] = {
    {"gif", "image/gif"}, {"jpg", "image/jpeg"}, {"jpeg", "image/jpeg"}, {"jpe", "image/jpeg"},
    {"png", "image/png"}, {"bmp", "image/bmp"},  {"webp", "image/webp"}, {"avif", "image/avif"},
    {"svg", ""},  // may hold scripts: as a file it is safe, in an address it is not
};

bool IsPicture(std::string_view path) {
    const std::string extension = GetExtension(path);
    return std::any_of(std::begin(kPictures), std::end(kPictures), [&](const PictureKind& kind) {
        return EqualsNoCase(extension, kind.extension);
    });
}

std::string Quoted(std::string_view value) {
    return '"' + dom::escapeAttribute(value, '"', " ") + '"';
}

std::string LinkTo(std::string_view address, std::string_view text) {
    return "<a href=" + Quoted(address) + ">" +
           dom::escapeText(text, dom::TextContext::Normal, " ") + "</a>";
}

/** Takes files in, one after the other. */
class Taking {
  public:
    Taking(ProjectContext& context, const std::string& pageKey)
        : context_(context),
          files_(context.frame.files),
          pageKey_(pageKey),
          folder_(GetPageFolder(context, pageKey)),
          puller_(context),
          admission_(files_) {}

    void Take(const std::string& file) {
        const std::string real = files_.Canonical(file);
        if (real.empty()) return Refuse(file, "does not exist", "");
        const FileInfo info = files_.Stat(real);
        if (info.isFolder)
            return Refuse(file, "is a folder", "Please open it and drop the files in it.");
        if (!info.isRegular) return Refuse(file, "is a device or a pipe", "");
        if (info.size == 0) return Refuse(file, "is empty", "");
        if (info.size > kLargest)
            return Refuse(file, "is larger than 100 MB, which is too much for a web site",
                          "Please use a smaller file.");
        if (IsPageFilename(real)) {
            pages_.push_back(real);
        } else if (IsPicture(real)) {
            // The name that the user knows, not that of what a link leads to.
            TakeImage(file, GetBaseName(file));
        } else {
            TakeDocument(file);
        }
    }
    void TakeImage(const std::string& file, const std::string& caption) {
        const std::string copy = Copy(file);
        if (copy.empty()) return;
        Keep(copy);
        std::string markup = "<img src=" + Quoted(RelativeLink(folder_, copy)) +
                             " alt=" + Quoted(MakeValidUtf8(caption));
        if (ImageInfo size; ReadImageInfo(files_, copy, size))
            markup += " width=" + Quoted(std::to_string(size.width)) +
                      " height=" + Quoted(std::to_string(size.height));
        Append(markup + ">", " ");
    }
    TakenFiles Finish() {
        TakePages();
        for (LeftOutFile& file : admission_.leftOut)
            result_.leftOut.push_back(std::move(file));
        return std::move(result_);
    }
    std::vector<std::string> TakeLeftOut(const std::vector<std::string>& files) {
        result_ = {};
        for (const std::string& file : files)
            admission_.AllowFile(file);
        puller_.StartAgain();
        for (const std::string& file : copied_)
            Keep(Copy(file));
        if (takeLeftOutOfPages_)
            for (const AddFilesProblem& problem : takeLeftOutOfPages_(files))
                result_.problems.push_back(problem.reason);
        return std::move(result_.problems);
    }

  private:
    void Refuse(const std::string& file, const std::string& what, const std::string& advice) {
        result_.problems.push_back("'" + MakeValidUtf8(GetFileName(file)) + "' " + what + "." +
                                   (advice.empty() ? "" : "\n\n" + advice));
    }
    void Append(const std::string& markup, std::string_view separator) {
        if (!result_.html.empty()) result_.html += separator;
        result_.html += markup;
    }

    /** The path of the copy; "", with a problem noted, when there is none. */
    std::string Copy(const std::string& file) {
        admission_.AllowFile(file);
        // What a style sheet brings along lies beside it.
        admission_.AllowFolder(GetParentFolder(file), FileAdmission::Taking::WhatTagsAreFor);
        AdmittedFile admitted{file, "", ""};
        std::vector<std::string> copied;
        if (admission_.Judge(file, FileUse::Linked, &admitted.real) == Verdict::Admitted)
            copied = puller_.PullFile(admitted, folder_, admission_);
        if (!copied.empty()) {
            others_.assign(copied.begin() + 1, copied.end());
            return copied.front();
        }
        std::string bytes;
        const FileError error = files_.Read(file, bytes);
        Refuse(
            file,
            error == FileError::None ? "can not be copied into the project"
                                     : "can not be read: " + Describe(error),
            error == FileError::None ? "Please see that the disk is not full and try again." : "");
        return {};
    }
    void TakeDocument(const std::string& file) {
        const std::string copy = Copy(file);
        if (copy.empty()) return;
        copied_.push_back(file);
        Keep(copy);
        Append(LinkTo(RelativeLink(folder_, copy), MakeValidUtf8(GetFileName(file))), "<br>");
    }
    /** No scan finds all that a page refers to. */
    void Keep(const std::string& copy) {
        Page* page = GetPage(context_, pageKey_);
        if (!page || copy.empty()) return;
        AddSystemAttachment(context_, copy, *page, AttachmentOrigin::Placed);
        for (const std::string& needed : others_)
            AddSystemAttachment(context_, needed, *page, AttachmentOrigin::Placed);
    }
    /** All at once, so that links among them go on working. */
    void TakePages() {
        if (pages_.empty()) return;
        AddFilesRequest request;
        request.paths = pages_;
        request.folderKey = GetContainer(context_, pageKey_).Key();
        const AddFilesResult added = AddFiles(context_, request);
        result_.leftOut = added.leftOut;
        takeLeftOutOfPages_ = added.takeLeftOut;
        for (const AddFilesProblem& problem : added.problems)
            result_.problems.push_back(problem.reason);
        for (const std::string& key : added.pageKeys) {
            const Page* page = GetPage(context_, key);
            if (!page) continue;
            result_.addedPages = true;
            const std::string title =
                Trim(page->Name).empty() ? GetFileName(page->Filename) : page->Name;
            Append(LinkTo(RelativeLink(folder_, page->Filename), title), "<br>");
        }
    }

    ProjectContext& context_;
    FileSystem& files_;
    const std::string pageKey_;
    const std::string folder_;
    MediaPuller puller_;
    FileAdmission admission_;
    std::function<std::vector<AddFilesProblem>(const std::vector<std::string>&)>
        takeLeftOutOfPages_;
    std::vector<std::string> copied_;  ///< documents that were taken
    std::vector<std::string> pages_;
    std::vector<std::string> others_;  ///< what the last copy needs in its turn
    TakenFiles result_;
};

/** Bytes written to a file of that name for as long as it lives. */
class PassingFile {
  public:
    PassingFile(const ProjectContext& context, std::string_view name, std::string_view bytes)
        : files_(context.frame.files), path_(BuildPath(context.frame.runFolder, name)) {
        stands_ = files_.Write(path_, bytes) == FileError::None;
    }
    ~PassingFile() { DeleteFile(files_, path_); }
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;

    /** "" when it could not be written. */
    std::string Path() const { return stands_ ? path_ : std::string(); }

  private:
    FileSystem& files_;
    std::string path_;
    bool stands_ = false;
};

std::string PastedName(std::string_view extension) {
    return "picture." + std::string(extension);
}

/** The copy's link, or none when it could not be made. */
std::optional<std::string> CopyToMedia(ProjectContext& context, const std::string& pageKey,
                                       const std::string& file) {
    const std::string folder = GetPageFolder(context, pageKey);
    const auto copied = MediaPuller(context).PullChosenFile(file, folder);
    if (copied.empty()) return std::nullopt;
    if (Page* page = GetPage(context, pageKey))
        for (const std::string& path : copied)
            AddSystemAttachment(context, path, *page, AttachmentOrigin::Placed);
    return RelativeLink(folder, copied.front());
}

std::optional<std::string> AdoptData(ProjectContext& context, const std::string& pageKey,
                                     const std::string& address) {
    constexpr std::string_view kScheme = "data:";
    constexpr std::string_view kBase64 = ";base64";
    const std::size_t comma = address.find(',');
    if (comma == std::string::npos || address.size() > kLargest) return std::nullopt;
    const std::string head = address.substr(0, comma);
    for (const PictureKind& kind : kPictures) {
        if (kind.mediaType.empty() || !EndsWithNoCase(head, kBase64)) continue;
        if (!StartsWithNoCase(head, std::string(kScheme) + std::string(kind.mediaType))) continue;
        const auto bytes = DecodeBase64(PercentDecode(address.substr(comma + 1)));
        if (!bytes || bytes->empty()) return std::nullopt;
        const PassingFile file(context, PastedName(kind.extension), *bytes);
        return file.Path().empty() ? std::nullopt : CopyToMedia(context, pageKey, file.Path());
    }
    return address;
}

std::optional<std::string> AdoptPicture(ProjectContext& context, const std::string& pageKey,
                                        const std::string& address) {
    if (StartsWithNoCase(address, "data:")) return AdoptData(context, pageKey, address);
    const std::string folder = GetPageFolder(context, pageKey);
    FileAdmission admission = AdmissionOfProject(context);
    admission.AllowPicturesByAddress();
    const auto picture = admission.Find({folder}, address, FileUse::Picture);
    if (!picture) return std::nullopt;
    const auto copied = MediaPuller(context).PullFile(*picture, folder, admission);
    if (copied.empty()) return std::nullopt;
    return RelativeLink(folder, copied.front());
}

std::optional<std::string> AdoptLink(ProjectContext& context, const std::string& pageKey,
                                     const std::string& address) {
    const std::string folder = GetPageFolder(context, pageKey);
    const std::string& root = context.frame.settings.PreviewFolder;
    const auto candidates = ReferenceCandidates(folder, address);
    const ReferenceCandidate* meant = nullptr;
    for (const ReferenceCandidate& candidate : candidates) {
        if (!IsInFolder(candidate.path, root)) continue;
        meant = &candidate;
        if (FileExists(context.frame.files, candidate.path)) break;
    }
    if (!meant) return std::nullopt;
    return RelativeLink(folder, meant->path) + meant->suffix;
}

}  // namespace

TakenFiles TakeFiles(ProjectContext& context, const std::string& pageKey,
                     const std::vector<std::string>& files) {
    TakenFiles failure;
    failure.problems = {"The files could not be taken in."};
    ErrorLog& log = context.frame.errorLog;
    return Trap(log, kModule, "TakeFiles", failure, [&] {
        const auto taking = std::make_shared<Taking>(context, pageKey);
        for (const std::string& file : files)
            taking->Take(file);
        TakenFiles taken = taking->Finish();
        taken.takeLeftOut = [taking, &log, problems = failure.problems](const auto& more) {
            return Trap(log, kModule, "TakeLeftOut", problems,
                        [&] { return taking->TakeLeftOut(more); });
        };
        return taken;
    });
}

TakenFiles TakePicture(ProjectContext& context, const std::string& pageKey, std::string_view bytes,
                       std::string_view extension) {
    TakenFiles failure;
    failure.problems = {"The picture could not be taken in."};
    return Trap(context.frame.errorLog, kModule, "TakePicture", failure, [&] {
        const PassingFile file(context, PastedName(extension), bytes);
        if (file.Path().empty()) return failure;
        Taking taking(context, pageKey);
        taking.TakeImage(file.Path(), "");
        return taking.Finish();
    });
}

AddressAdopter AdoptIntoPage(ProjectContext& context, const std::string& pageKey) {
    const auto adopt = [&context, pageKey](auto routine) {
        return [&context, pageKey, routine](const std::string& address) {
            return Trap(context.frame.errorLog, kModule, "AdoptIntoPage",
                        std::optional<std::string>(),
                        [&] { return routine(context, pageKey, address); });
        };
    };
    return {adopt(AdoptPicture), adopt(AdoptLink)};
}

}  // namespace pw
