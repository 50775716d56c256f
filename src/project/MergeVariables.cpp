#include "project/MergeVariables.h"

#include <algorithm>
#include <optional>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/FlatText.h"
#include "platform/dom/RangeEdit.h"
#include "platform/dom/TagScan.h"
#include "platform/dom/Tags.h"
#include "platform/dom/Writer.h"
#include "project/EditPage.h"
#include "project/omProj/Project.h"

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

// --- One anchor ---------------------------------------------------------------------------------

bool HoldsBlock(const dom::Node& anchor) {
    for (const dom::Node* node = anchor.following(&anchor); node; node = node->following(&anchor))
        if (node->isElement() && dom::isBlockTag(node->localName())) return true;
    return false;
}

/** What of an anchor's text is the value, and so is replaced: the bytes [begin, end). */
struct Stretch {
    std::size_t begin;
    std::size_t end;
};

/** A number that begins or ends with another one is not that one. */
bool IsWithinNumber(const std::string& text, std::size_t at) {
    const auto isDigit = [&](std::size_t i) { return text[i] >= '0' && text[i] <= '9'; };
    return at > 0 && at < text.size() && isDigit(at - 1) && isDigit(at);
}

/** Finds the value in a text that goes on in front of it or behind it. All of the text is the value
 *  when it holds none that the variable has or had at an end. */
Stretch ValueIn(const std::string& text, const MergeVariable& variable) {
    std::vector<std::string> values = variable.Former;
    values.push_back(variable.Value);
    // The longest first: one value may begin with another.
    std::stable_sort(values.begin(), values.end(),
                     [](const auto& a, const auto& b) { return a.size() > b.size(); });
    for (const std::string& value : values)
        if (value == text) return {0, text.size()};
    for (const std::string& value : values) {
        if (value.empty() || value.size() > text.size()) continue;
        const std::size_t rest = text.size() - value.size();
        if (text.starts_with(value) && !IsWithinNumber(text, value.size()))
            return {0, value.size()};
        if (text.ends_with(value) && !IsWithinNumber(text, rest)) return {rest, text.size()};
    }
    return {0, text.size()};
}

/** What stands in the anchor besides its value comes to stand beside it. */
void MoveRestOut(dom::Document& document, dom::Node& anchor, const MergeVariable& variable) {
    const dom::FlatText flat = dom::flatten(anchor);
    const Stretch value = ValueIn(flat.text, variable);
    dom::Node& parent = *anchor.parent();
    if (value.end < flat.text.size()) {
        dom::Node* rest = dom::splitElements(document, flat.endAt(value.end), anchor);
        dom::Node* place = anchor.next();
        while (rest) {
            dom::Node* next = rest->next();
            document.moveNode(parent, *rest, place);
            rest = next;
        }
    }
    if (value.begin > 0) {
        const dom::Node* kept = dom::splitElements(document, flat.positionAt(value.begin), anchor);
        while (anchor.firstChild() && anchor.firstChild() != kept)
            document.moveNode(parent, *anchor.firstChild(), &anchor);
    }
}

enum class AnchorUpdate { None, Changed, Left };

AnchorUpdate UpdateAnchor(dom::Document& document, dom::Node& anchor, const MergeVariable& variable,
                          bool buildMode) {
    const bool dissolve = buildMode && variable.Type == kCustom;
    if (document.innerText(anchor) == variable.Value) {
        if (!dissolve) return AnchorUpdate::None;
        document.setOuterHTML(anchor, document.innerHTML(anchor));
        return AnchorUpdate::Changed;
    }
    const std::string markup = EscapeHTML(variable.Value);
    if (!dissolve && document.innerHTML(anchor) == markup) return AnchorUpdate::None;
    if (HoldsBlock(anchor) || !dom::Writer::hasEndTag(anchor)) return AnchorUpdate::Left;
    MoveRestOut(document, anchor, variable);
    if (dissolve)
        document.setOuterHTML(anchor, markup);
    else if (document.innerHTML(anchor) != markup)
        document.setInnerHTML(anchor, markup);
    return AnchorUpdate::Changed;
}

// --- Pages --------------------------------------------------------------------------------------

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

/** As many as an open page can be behind, and more. */
constexpr std::size_t kMostFormerValues = 16;

void GiveValue(MergeVariable& variable, std::string value) {
    if (value == variable.Value) return;
    std::erase(variable.Former, variable.Value);
    variable.Former.push_back(std::move(variable.Value));
    if (variable.Former.size() > kMostFormerValues) variable.Former.erase(variable.Former.begin());
    variable.Value = std::move(value);
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
    const std::string text = ReplaceAll(ReplaceAll(Trim(value), "\r\n", "\n"), "\n", "\r\n");
    if (variable) {
        variable->Name = wanted;
        GiveValue(*variable, text);
    } else {
        variable = variables.Add();
        if (!variable) return context.project.LastMessage();
        *variable = {std::string(kCustom), wanted, text, {}};
    }
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

void ReplaceVariablesOfType(ProjectContext& context, std::string_view type,
                            const std::vector<VariableValue>& wanted) {
    MergeVariables& variables = context.project.MergeVariables();
    std::vector<MergeVariable> before;
    for (const MergeVariable& variable : variables)
        if (variable.Type == type) before.push_back(variable);
    RemoveVariablesOfType(context, type);
    for (const auto& [name, value] : wanted) {
        MergeVariable* variable = variables.Add();
        if (!variable) throw Failure(context.project.LastMessage());
        const auto known = std::find_if(before.begin(), before.end(), [&](const auto& each) {
            return EqualsNoCase(each.Name, name);
        });
        if (known != before.end())
            *variable = *known;
        else
            variable->Value = value;
        variable->Type = type;
        variable->Name = name;
        GiveValue(*variable, value);
    }
}

void UpdateProjectMergeVariables(ProjectContext& context) {
    Trap(context.frame.errorLog, kModule, "UpdateProjectMergeVariables", [&] {
        std::vector<VariableValue> values;
        for (const auto& standard : kStandardVariables)
            values.push_back({standard.name, standard.value(context)});
        ReplaceVariablesOfType(context, kStandard, values);
    });
}

VariablesOnPage UpdateMergeVariablesOnThisPage(ProjectContext& context, dom::Document& document) {
    return Trap(
        context.frame.errorLog, kModule, "UpdateMergeVariablesOnThisPage", VariablesOnPage(), [&] {
            VariablesOnPage result;
            const auto anchors = document.tags("A");
            const dom::Document::Step step(document);
            // From the last, since an anchor may vanish with the one that holds it.
            for (auto at = anchors.rbegin(); at != anchors.rend(); ++at) {
                dom::Node& anchor = **at;
                if (!document.isConnected(&anchor)) continue;
                if (!EqualsNoCase(anchor.getAttribute("type"), kAnchorType)) continue;
                const MergeVariable* variable = FindVariable(context, anchor.getAttribute("name"));
                if (!variable) continue;
                const auto update =
                    UpdateAnchor(document, anchor, *variable, context.project.BuildMode);
                if (update == AnchorUpdate::Changed) ++result.changed;
                if (update == AnchorUpdate::Left) result.left.push_back(variable->Name);
            }
            return result;
        });
}

VariablesInPages UpdateMergeVariablesInPages(ProjectContext& context) {
    VariablesInPages result;
    EditedPages edited = EditAllPages(
        context, PageStep::OfTheProject,
        [&](Page& page, dom::Document& document) {
            const auto onPage = UpdateMergeVariablesOnThisPage(context, document);
            for (const std::string& name : onPage.left)
                result.left.push_back(QuoteSingle(name) + " on page " + QuoteSingle(page.Name));
        },
        [&](const Page&, std::string_view bytes) { return MayHoldStaleVariable(context, bytes); });
    result.notUpdated = std::move(edited.left);
    result.problems = std::move(edited.problems);
    return result;
}

std::string LeftVariables(const VariablesInPages& update) {
    if (update.left.empty()) return {};
    std::string text =
        "These merge variables were left as they are, because they reach over whole paragraphs or "
        "have no end:";
    for (const std::string& variable : update.left)
        text += "\n" + variable;
    return text + "\n\nPlease remove them from the page and insert them anew.";
}

void UpdateMergeVariablesInAllPages(ProjectContext& context, const std::string& title) {
    const VariablesInPages update = UpdateMergeVariablesInPages(context);
    const auto tell = [&](const std::string& text) {
        context.frame.dialogs.MsgBox({text, title, Icon::Exclamation});
    };
    if (!update.notUpdated.empty()) {
        std::string text = "The merge variables could not be brought up to date on " +
                           ListOfNames(update.notUpdated) + ".\n";
        for (const std::string& problem : update.problems)
            text += "\n" + problem;
        tell(text + "\n\nPlease mend this and close the merge variables once more.");
    }
    if (!update.left.empty()) tell(LeftVariables(update));
}

std::string EscapeHTML(std::string_view text) {
    std::string markup = ReplaceAll(text, "&", "&amp;");
    markup = ReplaceAll(markup, "<", "&lt;");
    markup = ReplaceAll(markup, ">", "&gt;");
    markup = ReplaceAll(markup, "\r\n", "<br>");
    return ReplaceAll(markup, "\r", "<br>");
}

}  // namespace pw
