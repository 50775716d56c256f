#include "project/MergeVariables.h"

#include <unordered_map>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
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

bool UpdateClosedPage(ProjectContext& context, const Page& page) {
    FileSystem& files = context.frame.files;
    std::string bytes;
    if (!FileExists(files, page.Filename)) return true;
    if (files.Read(page.Filename, bytes) != FileError::None) return false;
    // Most pages have none, and parsing is the dear part. In an encoding of wide units the mark is
    // looked for in the text.
    const bool isWide = bytes.find('\0') != bytes.npos;
    if (FindNoCase(isWide ? dom::decode(bytes).text : bytes, kAnchorType) == std::string::npos)
        return true;
    const auto document = dom::Document::parse(bytes);
    if (!document) return true;
    if (UpdateMergeVariablesOnThisPage(context, *document) == 0) return true;
    return files.Write(page.Filename, document->bytes()) == FileError::None;
}

}  // namespace

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

bool UpdateMergeVariablesInClosedPages(ProjectContext& context, PagesToUpdate which) {
    const auto body = [&] {
        bool isWhole = true;
        for (const PageIndexEntry& entry : context.project.PageIndex()) {
            const bool isOpen = context.workspace.FindOpenPage(entry.Key()) != nullptr;
            if (which == PagesToUpdate::ClosedOnly && isOpen) continue;
            isWhole = UpdateClosedPage(context, *entry.Item) && isWhole;
        }
        return isWhole;
    };
    return Trap(context.frame.errorLog, kModule, "UpdateMergeVariablesInClosedPages", false, body);
}

void UpdateMergeVariablesInOpenPages(ProjectContext& context) {
    for (OpenPage* open : context.workspace.OpenPages()) {
        open->TakeOverEdits();
        UpdateMergeVariablesOnThisPage(context, open->Document());
    }
}

std::string EscapeHTML(std::string_view text) {
    std::string markup = ReplaceAll(text, "&", "&amp;");
    markup = ReplaceAll(markup, "<", "&lt;");
    markup = ReplaceAll(markup, ">", "&gt;");
    markup = ReplaceAll(markup, "\r\n", "<br>");
    return ReplaceAll(markup, "\r", "<br>");
}

}  // namespace pw
