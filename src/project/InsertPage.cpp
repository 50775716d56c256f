#include "project/InsertPage.h"

#include <optional>
#include <unordered_set>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/FileAdmission.h"
#include "project/Media.h"
#include "project/MergeVariables.h"
#include "project/Paths.h"
#include "project/References.h"
#include "project/RemovedFiles.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr std::string_view kTitleMark = "[%#TITLE#%]";
constexpr std::string_view kLanguageMark = "[%#LANGUAGE#%]";
constexpr const char* kPageExtension = ".htm";
constexpr int kDeepestFrame = 3;

/** As a browser shows it: blanks and line ends count as one blank. */
std::string CollapseBlanks(std::string_view text) {
    std::string collapsed;
    for (const char c : Trim(text)) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
        if (!isBlank) {
            collapsed += c;
        } else if (collapsed.back() != ' ') {
            collapsed += ' ';
        }
    }
    return collapsed;
}

/** Replaces in the texts of the page, never in its markup. */
void ReplaceInTexts(dom::Document& document, const std::string& what, const std::string& with) {
    for (dom::Node* node = document.root(); node; node = node->following()) {
        if (!node->isText() || node->data().find(what) == std::string::npos) continue;
        const bool isCode = node->parentElement() && (node->parentElement()->is("script") ||
                                                      node->parentElement()->is("style"));
        if (!isCode) document.setText(*node, ReplaceAll(node->data(), what, with));
    }
}

void ReplaceTitleMark(dom::Document& document, const std::string& title) {
    ReplaceInTexts(document, std::string(kTitleMark), title);
    const std::vector<dom::Node*> nodes = document.all();
    for (dom::Node* node : nodes) {
        const std::vector<dom::Attribute> attributes = node->attributes();
        for (const auto& attribute : attributes) {
            if (attribute.value.find(kTitleMark) == std::string::npos) continue;
            document.setAttribute(*node, attribute.name,
                                  ReplaceAll(attribute.value, kTitleMark, title));
        }
    }
}

/** A template for new pages leaves it to this program to say which language the pages are in. */
void FillLanguageMark(dom::Document& document, const std::string& language) {
    const std::vector<dom::Node*> roots = document.tags("HTML");
    for (dom::Node* root : roots)
        if (root->getAttribute("lang") == kLanguageMark)
            document.setAttribute(*root, "lang", language);
}

/** One insertion, from the file to the page in the tree. */
class Insertion {
  public:
    Insertion(ProjectContext& context, const InsertPageRequest& request)
        : context_(context),
          request_(request),
          files_(context.frame.files),
          own_(files_),
          admission_(request.admission ? *request.admission : own_) {
        if (request.admission) return;
        own_.AllowFile(request.sourceFile);
        own_.AllowFolder(GetParentFolder(request.sourceFile),
                         FileAdmission::Taking::WhatTagsAreFor);
    }

    Page* Run() {
        if (request_.again) return RunAgain();
        // 1. Nothing is done for a file that is not there.
        Load();
        // 2. and 3. A number, and a place in the tree.
        const int pageNumber = context_.project.NextPageNumber++;
        AddToTree(pageNumber);
        try {
            Fill(pageNumber);
        } catch (...) {
            // No name stays taken by a page that is none.
            static_cast<void>(MoveAside(context_, {page_->Filename}));
            container_.PageList().Remove(page_->Key());
            throw;
        }
        context_.project.IsDirty = true;
        Show();
        return page_;
    }

  private:
    Page* RunAgain() {
        Load();
        page_ = request_.again;
        targetFolder_ = GetParentFolder(page_->Filename);
        Fill(page_->Number);
        context_.project.IsDirty = true;
        return page_;
    }

    void Load() {
        admission_.page = request_.sourceFile;
        std::string real;
        if (admission_.Judge(request_.sourceFile, FileUse::Linked, &real) != Verdict::Admitted)
            throw Failure("it is no regular file in the folder that was named");
        std::string bytes;
        const FileError error = files_.ReadResolved(real, bytes);
        if (error != FileError::None) throw Failure("it can not be read: " + Describe(error));
        dom::ParseError problem;
        document_ = dom::Document::parse(bytes, &problem);
        if (!document_) throw Failure(problem.message);
    }

    void AddToTree(int pageNumber) {
        container_ = request_.folder ? request_.folder : GetContainer(context_, "");
        if (!container_) throw Failure("the project has no site");
        page_ = container_.PageList().Add();
        if (!page_) throw Failure(context_.project.LastMessage());
        page_->Number = pageNumber;
        if (container_.folder) container_.folder->Expanded = true;
        const std::string relative = container_.RelativePath();
        page_->Path = (relative.empty() ? "" : relative + "\\") + page_->Key();
        targetFolder_ = relative.empty()
                            ? context_.frame.settings.PreviewFolder
                            : BuildPath(context_.frame.settings.PreviewFolder, relative);
        page_->IsDefault = container_.site && !GetDefaultPage(context_, container_.Key());
    }

    void Fill(int pageNumber) {
        page_->PageType = document_->frames().empty() ? PageType::Ordinary : PageType::Frames;
        const auto media = RewriteReferences();
        UpdateProjectMergeVariables(context_);
        UpdateMergeVariablesOnThisPage(context_, *document_);
        FillLanguageMark(*document_, context_.frame.system.Language());
        const std::string title = SetTitle(pageNumber);
        Write();
        SetProperties(title);
        // Pictures are found again by every scan, the rest has to be kept by hand.
        for (const auto& file : media)
            AddSystemAttachment(context_, file, *page_);
        if (request_.show == ShowInsertedPage::No && request_.font == ApplyDefaultFont::No)
            SaveAttachments(context_, *document_, targetFolder_, *page_);
    }

    std::vector<std::string> RewriteReferences() {
        std::vector<std::string> folders;
        if (!request_.baseFolder.empty()) folders.push_back(request_.baseFolder);
        folders.push_back(GetParentFolder(request_.sourceFile));
        folders = TakeOverBase(*document_, folders, admission_);
        if (folders.empty()) return {};
        MediaPuller own(context_);
        MediaPuller& puller = request_.media ? *request_.media : own;
        auto media = RewriteReferencesIn(*document_, folders, puller);

        // What a frame page shows where there are no frames is a page in itself, and mere text to
        // the parser.
        for (dom::Node* noframes : document_->tags("NOFRAMES")) {
            dom::Node* text = noframes->firstChild();
            if (!text || !text->isText()) continue;
            if (const auto inner = RewriteInner(text->data(), folders, puller, media))
                document_->setText(*text, *inner);
        }
        return media;
    }

    /** A page that stands as text in another; none when nothing of it changes. */
    std::optional<std::string> RewriteInner(const std::string& text,
                                            const std::vector<std::string>& folders,
                                            MediaPuller& puller, std::vector<std::string>& media) {
        const auto inner = dom::Document::parseText(text, document_->encoding());
        if (!inner) return std::nullopt;
        const auto more = RewriteReferencesIn(*inner, folders, puller);
        media.insert(media.end(), more.begin(), more.end());
        return inner->isDirty() ? std::optional(inner->html()) : std::nullopt;
    }

    std::vector<std::string> RewriteReferencesIn(dom::Document& document,
                                                 const std::vector<std::string>& folders,
                                                 MediaPuller& puller) {
        if (request_.rewriteLinks)
            request_.rewriteLinks({document, *page_, folders.front(), targetFolder_, admission_});
        auto media = puller.Pull(document, folders, targetFolder_, admission_);
        // So is what a frame within a page holds in its own tag.
        const std::vector<dom::Node*> frames = document.tags("IFRAME");
        if (++depth_ <= kDeepestFrame) {
            for (dom::Node* frame : frames) {
                const std::string* page = frame->attribute("srcdoc");
                if (!page || HoldsServerCode(*page)) continue;
                if (const auto inner = RewriteInner(*page, folders, puller, media))
                    document.setAttribute(*frame, "srcdoc", *inner);
            }
        }
        --depth_;
        return media;
    }

    std::string SetTitle(int pageNumber) {
        std::string own = document_->title();
        const dom::Document::Step step(*document_);
        if (!request_.copyOfName.empty()) {
            own = "Copy of " + (Trim(own).empty() ? request_.copyOfName : own);
            document_->setTitle(own);
        }
        if (request_.title.empty()) {
            if (!Trim(own).empty() && own.find(kTitleMark) == std::string::npos)
                return CollapseBlanks(own);
            const std::string made = page_->IsDefault ? Trim(context_.project.Name + " Home Page")
                                                      : "Page " + std::to_string(pageNumber);
            const std::string title = Trim(own).empty() ? made : ReplaceAll(own, kTitleMark, made);
            ReplaceTitleMark(*document_, made);
            return CollapseBlanks(title);
        }
        if (!Trim(own).empty()) ReplaceInTexts(*document_, own, request_.title);
        if (document_->title() != request_.title) document_->setTitle(request_.title);
        ReplaceTitleMark(*document_, request_.title);
        return CollapseBlanks(request_.title);
    }

    std::string ChooseName() const {
        std::vector<FolderEntry> entries;
        std::unordered_set<std::string> taken;
        if (files_.List(targetFolder_, entries) != FileError::None) entries.clear();
        for (const auto& entry : entries)
            taken.insert(FoldCase(entry.name));
        return ChoosePageName(context_, request_.sourceFile, page_->IsDefault,
                              [&](const std::string& name) { return taken.count(FoldCase(name)); });
    }

    void Write() {
        if (!request_.again)
            page_->Filename = BuildPath(
                targetFolder_, request_.fileName.empty() ? ChooseName() : request_.fileName);
        FileError error = files_.MakeFolder(targetFolder_);
        if (error == FileError::None) error = files_.Write(page_->Filename, document_->bytes());
        if (error != FileError::None) throw Failure("it can not be written: " + Describe(error));
    }

    void SetProperties(const std::string& title) {
        ComputePageStatistics(context_, document_.get(), page_);
        page_->Name = title;
        page_->Title = title;
        page_->Created = page_->Modified = context_.frame.clock.Now();
        page_->CreatedBy = page_->ModifiedBy = CurrentAuthor(context_);
    }

    void Show() {
        if (request_.show == ShowInsertedPage::No) return;
        Workspace& workspace = context_.workspace;
        workspace.RefillProjectExplorer();
        workspace.SelectProjectNode(page_->Key());
        workspace.ShowPage(page_->Key(), page_->Name, page_->Filename, page_->PageType);
        if (request_.font == ApplyDefaultFont::Yes) {
            const Settings& settings = context_.frame.settings;
            workspace.ApplyDefaultFont(settings.DefaultFont, settings.DefaultFontSize);
        }
        workspace.ResetUI();
    }

    ProjectContext& context_;
    const InsertPageRequest& request_;
    FileSystem& files_;
    FileAdmission own_;
    FileAdmission& admission_;
    int depth_ = 0;  ///< of the frame that is being read
    std::unique_ptr<dom::Document> document_;
    Container container_;
    Page* page_ = nullptr;
    std::string targetFolder_;
};

}  // namespace

std::string ChoosePageName(const ProjectContext& context, const std::string& sourceFile,
                           bool isDefault, const std::function<bool(const std::string&)>& isTaken) {
    const bool isTemplate = EqualsNoCase(sourceFile, context.frame.settings.HTMLTemplateFilename);
    std::string name;
    if (isDefault) {
        name = std::string("index") + kPageExtension;
    } else if (!isTemplate) {
        name = ToLower(MakeValidUtf8(GetBaseName(sourceFile))) + kPageExtension;
        for (char& c : name) {
            const auto code = static_cast<unsigned char>(c);
            if (code < 0x20 || code == 0x7F || !IsFilenameKey(code)) c = '_';
        }
        if (!DiskNameProblem("file", name).empty()) name.clear();
    }
    if (!name.empty() && !isTaken(name)) return name;
    for (int number = 1;; ++number) {
        name = "page_" + std::to_string(number) + kPageExtension;
        if (!isTaken(name)) return name;
    }
}

Page* InsertPage(ProjectContext& context, const InsertPageRequest& request, std::string* reason) {
    const auto body = [&]() -> Page* {
        if (!FileExists(context.frame.files, request.sourceFile)) {
            if (reason) *reason = "File '" + ToNativePath(request.sourceFile) + "' does not exist.";
            return nullptr;
        }
        try {
            return Insertion(context, request).Run();
        } catch (const std::exception& problem) {
            if (reason)
                *reason = "File '" + ToNativePath(request.sourceFile) +
                          "' can not be taken in as a page: " + problem.what();
            throw;
        }
    };
    return Trap(context.frame.errorLog, kModule, "InsertPage", static_cast<Page*>(nullptr), body);
}

}  // namespace pw
