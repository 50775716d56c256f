#include "project/MergeVariables.h"

#include <algorithm>
#include <optional>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/TagScan.h"
#include "project/Pages.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr std::string_view kModule = "ProjectFunctions.";
constexpr std::string_view kAnchorType = "omMerge";
constexpr std::string_view kStandard = "S";
constexpr std::string_view kCustom = "C";

struct StandardVariable {
    const char* name;
    std::string (*value)(const ProjectContext&);
};

template <std::string ProjectProperties::*Property>
std::string TextOf(const ProjectContext& context) {
    return context.project.*Property;
}

template <DateTime ProjectProperties::*Property>
std::string DateOf(const ProjectContext& context) {
    return FormatDate(context.project.*Property, DateStyle::YYYYMMDD);
}

std::string VersionNumber(const ProjectContext& context) {
    const Project& project = context.project;
    return std::to_string(project.VersionMajor) + "." + std::to_string(project.VersionMinor) + "." +
           std::to_string(project.VersionBuild);
}

std::string ProjectFilename(const ProjectContext& context) {
    return GetFileName(context.frame.settings.ProjectFilename);
}

std::string PageCount(const ProjectContext& context) {
    return std::to_string(context.project.PageCount());
}

std::string ProjectSize(const ProjectContext& context) {
    return std::to_string(context.project.ProjectSize());
}

std::string ProviderName(const ProjectContext& context) {
    return context.provider.Name;
}

std::string ProviderWebAddress(const ProjectContext& context) {
    return context.provider.WebAddress;
}

using P = ProjectProperties;

// In the order in which the variables are listed.
constexpr StandardVariable kStandardVariables[] = {
    {"Project Name", TextOf<&P::Name>},
    {"Project Description", TextOf<&P::Description>},
    {"Author Name", TextOf<&P::AuthorName>},
    {"Author E-mail", TextOf<&P::AuthorEmail>},
    {"Author Location", TextOf<&P::AuthorLocation>},
    {"Project Version Number", VersionNumber},
    {"Project Filename", ProjectFilename},
    {"Project Pages", PageCount},
    {"Project Size", ProjectSize},
    {"Project Created", DateOf<&P::Created>},
    {"Project Created By", TextOf<&P::CreatedBy>},
    {"Project Modified", DateOf<&P::Modified>},
    {"Project Modified By", TextOf<&P::ModifiedBy>},
    {"Company Name", TextOf<&P::CompanyName>},
    {"Company Tag Line", TextOf<&P::CompanyTagLine>},
    {"Company Street", TextOf<&P::CompanyStreet>},
    {"Company City", TextOf<&P::CompanyCity>},
    {"Company Province/State", TextOf<&P::CompanyState>},
    {"Company Country", TextOf<&P::CompanyCountry>},
    {"Company ZIP/Postal Code", TextOf<&P::CompanyPostal>},
    {"Company Phone", TextOf<&P::CompanyPhone>},
    {"Company Fax", TextOf<&P::CompanyFax>},
    {"Company Web Site", TextOf<&P::CompanyWebSite>},
    {"Company E-mail", TextOf<&P::CompanyEmail>},
    {"WHP Name", ProviderName},
    {"WHP Web Address", ProviderWebAddress},
};

const MergeVariable* FindVariable(const ProjectContext& context, std::string_view name) {
    for (const MergeVariable& variable : context.project.MergeVariables())
        if (EqualsNoCase(variable.Name, name)) return &variable;
    return nullptr;
}

/** Brings one anchor up to date; true when it changed. */
bool UpdateAnchor(dom::Document& document, dom::Node& anchor, const MergeVariable& variable,
                  bool buildMode) {
    const bool dissolve = buildMode && variable.Type == kCustom;
    if (document.innerText(anchor) != variable.Value) {
        const std::string markup = EscapeHTML(variable.Value);
        if (dissolve) {
            document.setOuterHTML(anchor, markup);
        } else {
            if (document.innerHTML(anchor) == markup) return false;
            document.setInnerHTML(anchor, markup);
        }
        return true;
    }
    if (!dissolve) return false;
    document.setOuterHTML(anchor, document.innerHTML(anchor));
    return true;
}

/** Whether an anchor in the text of a page may show something else than its variable's value. */
bool MayBeStale(const ProjectContext& context, std::string_view page, const dom::TagInText& tag) {
    if (!tag.is("a")) return false;
    const auto type = tag.attribute("type");
    if (!type || !EqualsNoCase(*type, kAnchorType)) return false;
    const std::string name = tag.attribute("name").value_or("");
    const MergeVariable* variable = FindVariable(context, name);
    // Letters beyond ASCII have yet to be decoded.
    if (!variable) return !IsAscii(name);
    if (context.project.BuildMode && variable->Type == kCustom) return true;
    const std::string markup = EscapeHTML(variable->Value);
    const std::string_view shown = page.substr(tag.end());
    return !shown.starts_with(markup) || !StartsWithNoCase(shown.substr(markup.size()), "</a");
}

/** A look at the tags, since most pages have no variables, and parsing is the dear part. */
bool MayHoldStaleVariable(const ProjectContext& context, std::string_view bytes) {
    // As bytes the tags can be read in all encodings but those of wide units.
    const std::string decoded =
        bytes.find('\0') == bytes.npos ? std::string() : dom::decode(bytes).text;
    const std::string_view text = decoded.empty() ? bytes : decoded;
    dom::TagScan scan(text, dom::TagsFrom::Anywhere);
    while (const auto tag = scan.next())
        if (MayBeStale(context, text, *tag)) return true;
    return !scan.isComplete();
}

void UpdateClosedPage(ProjectContext& context, Page& page, std::string& bytes) {
    FileSystem& files = context.frame.files;
    const FileError read = files.Read(page.Filename, bytes);
    if (read == FileError::NotFound) return;
    if (read != FileError::None) throw Failure(page.Filename + ": " + Describe(read));
    if (!MayHoldStaleVariable(context, bytes)) return;
    const auto document = dom::Document::parse(bytes);
    if (!document || UpdateMergeVariablesOnThisPage(context, *document) == 0) return;
    const FileError written = files.Write(page.Filename, document->bytes());
    if (written != FileError::None) throw Failure(page.Filename + ": " + Describe(written));
    page.IsDirty = true;
    context.project.IsDirty = true;
}

}  // namespace

bool IsStandardVariable(std::string_view name) {
    return std::any_of(std::begin(kStandardVariables), std::end(kStandardVariables),
                       [&](const auto& standard) { return EqualsNoCase(standard.name, name); });
}

std::string VariableNameProblem(std::string_view name) {
    const bool isWelcome = std::none_of(name.begin(), name.end(), [](unsigned char c) {
        return c < 0x20 || c == '"' || c == '<' || c == '>';
    });
    return isWelcome && !Trim(name).empty() ? "" : "Invalid name.";
}

std::string SetCustomVariable(ProjectContext& context, std::string_view name,
                              std::string_view value) {
    const std::string wanted = Trim(name);
    const std::string problem = VariableNameProblem(wanted);
    if (!problem.empty()) return problem;
    if (IsStandardVariable(wanted))
        return QuoteSingle(wanted) +
               " is a standard variable, which shows a property of the project.";
    MergeVariables& variables = context.project.MergeVariables();
    MergeVariable* variable = nullptr;
    int customs = 0;
    for (MergeVariable& each : variables) {
        if (each.Type != kCustom) continue;
        ++customs;
        if (EqualsNoCase(each.Name, wanted)) variable = &each;
    }
    if (!variable && customs >= kMostCustomVariables)
        return "A project holds at most " + std::to_string(kMostCustomVariables) +
               " custom variables. Please remove one that is no longer used.";
    if (!variable) variable = variables.Add();
    if (!variable) return context.project.LastMessage();
    variable->Type = kCustom;
    variable->Name = wanted;
    variable->Value = ReplaceAll(ReplaceAll(Trim(value), "\r\n", "\n"), "\n", "\r\n");
    context.project.IsDirty = true;
    return {};
}

std::string VariableMarkup(std::string_view name, std::string_view value) {
    return "<A type=" + std::string(kAnchorType) +
           " name=" + QuoteDouble(dom::escapeAttribute(name, '"', "\n")) + ">" + EscapeHTML(value) +
           "</A>";
}

void RemoveVariablesOfType(ProjectContext& context, std::string_view type) {
    MergeVariables& variables = context.project.MergeVariables();
    for (int i = variables.Count(); i >= 1; --i)
        if (variables.Item(i)->Type == type) variables.Remove(i);
}

void UpdateProjectMergeVariables(ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "UpdateProjectMergeVariables", [&] {
        RemoveVariablesOfType(context, kStandard);
        for (const auto& standard : kStandardVariables) {
            MergeVariable* variable = context.project.MergeVariables().Add();
            if (!variable) return;
            variable->Type = kStandard;
            variable->Name = standard.name;
            variable->Value = standard.value(context);
        }
    });
}

int UpdateMergeVariablesOnThisPage(ProjectContext& context, dom::Document& document) {
    return Trap(context.frame.errorLog, kModule, "UpdateMergeVariablesOnThisPage", 0, [&] {
        int changed = 0;
        const auto anchors = document.tags("A");
        const dom::Document::Step step(document);
        // From the last, since an anchor may vanish with the one that holds it.
        for (auto at = anchors.rbegin(); at != anchors.rend(); ++at) {
            dom::Node& anchor = **at;
            if (!document.isConnected(&anchor)) continue;
            if (!EqualsNoCase(anchor.getAttribute("type"), kAnchorType)) continue;
            const MergeVariable* variable = FindVariable(context, anchor.getAttribute("name"));
            if (variable && UpdateAnchor(document, anchor, *variable, context.project.BuildMode))
                ++changed;
        }
        return changed;
    });
}

std::vector<std::string> UpdateMergeVariablesInClosedPages(ProjectContext& context,
                                                           PagesToUpdate which) {
    std::vector<std::string> notUpdated;
    std::string bytes;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        const bool isOpen = context.workspace.FindOpenPage(entry.Key()) != nullptr;
        if (which == PagesToUpdate::ClosedOnly && isOpen) continue;
        bool isDone = false;
        Trap(context.frame.errorLog, kModule, "UpdateMergeVariablesInClosedPages", [&] {
            UpdateClosedPage(context, *entry.Item, bytes);
            isDone = true;
        });
        if (!isDone) notUpdated.push_back(entry.Item->Name);
    }
    return notUpdated;
}

void UpdateMergeVariablesInOpenPages(ProjectContext& context) {
    for (OpenPage* open : context.workspace.OpenPages()) {
        open->TakeOverEdits();
        if (UpdateMergeVariablesOnThisPage(context, open->Document()) == 0) continue;
        context.project.IsDirty = true;
        if (Page* page = GetPage(context, open->PageKey())) page->IsDirty = true;
        // The other views show copies of the page.
        if (open->CurrentViewState() != ViewState::Normal)
            static_cast<void>(open->SetHTML(open->Document().html()));
    }
}

void UpdateMergeVariablesInAllPages(ProjectContext& context, const std::string& title) {
    UpdateMergeVariablesInOpenPages(context);
    const auto notUpdated = UpdateMergeVariablesInClosedPages(context, PagesToUpdate::ClosedOnly);
    if (notUpdated.empty()) return;
    context.frame.dialogs.MsgBox({"The merge variables could not be brought up to date on " +
                                      ListOfNames(notUpdated) +
                                      ".\n\nPlease make room on the disk and try again.",
                                  title, Icon::Exclamation});
}

std::string EscapeHTML(std::string_view text) {
    std::string markup = ReplaceAll(text, "&", "&amp;");
    markup = ReplaceAll(markup, "<", "&lt;");
    markup = ReplaceAll(markup, ">", "&gt;");
    markup = ReplaceAll(markup, "\r\n", "<br>");
    return ReplaceAll(markup, "\r", "<br>");
}

}  // namespace pw
