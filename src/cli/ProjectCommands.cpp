// Commands about a project as a whole: new, info, set, variable, tasks, publish.
#include <algorithm>
#include <charconv>
#include <iostream>

#include "cli/Commands.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "frame/FunctionLibrary.h"
#include "frame/SaveQuestion.h"
#include "platform/Text.h"
#include "project/Lifecycle.h"
#include "project/MergeVariables.h"
#include "project/PublishHTML.h"
#include "project/Tasks.h"

namespace pw::cli {

namespace {

enum class Access { ReadWrite, ReadOnly };

/** A property of a project by the name that users write: one of the members is set. */
struct Property {
    const char* name;
    std::string ProjectProperties::*text = nullptr;
    int ProjectProperties::*number = nullptr;
    bool ProjectProperties::*flag = nullptr;
    DateTime ProjectProperties::*date = nullptr;
    Access access = Access::ReadWrite;
};

using P = ProjectProperties;

constexpr Property Text(const char* name, std::string P::*member,
                        Access access = Access::ReadWrite) {
    return {name, member, nullptr, nullptr, nullptr, access};
}
constexpr Property Number(const char* name, int P::*member) {
    return {name, nullptr, member, nullptr, nullptr, Access::ReadWrite};
}
constexpr Property Flag(const char* name, bool P::*member) {
    return {name, nullptr, nullptr, member, nullptr, Access::ReadWrite};
}
constexpr Property Date(const char* name, DateTime P::*member) {
    return {name, nullptr, nullptr, nullptr, member, Access::ReadOnly};
}

constexpr Property kProperties[] = {
    Text("Name", &P::Name),
    Text("Description", &P::Description),
    Text("AuthorName", &P::AuthorName),
    Text("AuthorEmail", &P::AuthorEmail),
    Text("AuthorLocation", &P::AuthorLocation),
    Number("VersionMajor", &P::VersionMajor),
    Number("VersionMinor", &P::VersionMinor),
    Number("VersionBuild", &P::VersionBuild),
    Flag("AutoVersion", &P::AutoVersion),
    Text("CompanyName", &P::CompanyName),
    Text("CompanyTagLine", &P::CompanyTagLine),
    Text("CompanyStreet", &P::CompanyStreet),
    Text("CompanyCity", &P::CompanyCity),
    Text("CompanyState", &P::CompanyState),
    Text("CompanyPostal", &P::CompanyPostal),
    Text("CompanyCountry", &P::CompanyCountry),
    Text("CompanyWebSite", &P::CompanyWebSite),
    Text("CompanyEmail", &P::CompanyEmail),
    Text("CompanyPhone", &P::CompanyPhone),
    Text("CompanyFax", &P::CompanyFax),
    Flag("EmailPublishStatus", &P::EmailPublishStatus),
    Date("Created", &P::Created),
    Text("CreatedBy", &P::CreatedBy, Access::ReadOnly),
    Date("Modified", &P::Modified),
    Text("ModifiedBy", &P::ModifiedBy, Access::ReadOnly),
    Text("ProjectId", &P::ProjectId, Access::ReadOnly),
    Text("ClientVersion", &P::ClientVersion, Access::ReadOnly),
};

std::string ValueText(const Project& project, const Property& property) {
    if (property.text) return project.*property.text;
    if (property.number) return std::to_string(project.*property.number);
    if (property.flag) return project.*property.flag ? "true" : "false";
    return DateText(project.*property.date);
}

void AddJson(JsonObject& json, const Project& project, const Property& property) {
    if (property.number) {
        json.Add(property.name, project.*property.number);
    } else if (property.flag) {
        json.Add(property.name, project.*property.flag);
    } else {
        json.Add(property.name, ValueText(project, property));
    }
}

bool ReadNumber(const std::string& value, int& number) {
    const char* end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return read.ec == std::errc() && read.ptr == end && number >= 0;
}

bool ReadFlag(const std::string& value, bool& flag) {
    static constexpr const char* yes[] = {"true", "yes", "on", "1"};
    static constexpr const char* no[] = {"false", "no", "off", "0"};
    const auto is = [&](const char* word) { return EqualsNoCase(value, word); };
    flag = std::any_of(std::begin(yes), std::end(yes), is);
    return flag || std::any_of(std::begin(no), std::end(no), is);
}

struct NamedValue {
    std::string name;
    std::string value;
};

NamedValue SplitAssignment(const std::string& word) {
    const auto equals = word.find('=');
    if (equals == word.npos || equals == 0)
        throw UsageError{"'" + word + "' is not of the form NAME=VALUE."};
    return {Trim(word.substr(0, equals)), word.substr(equals + 1)};
}

/** One "NAME=VALUE", checked and ready to be set. */
struct Assignment {
    const Property* property = nullptr;
    std::string text;
    int number = 0;
    bool flag = false;
};

Assignment ReadAssignment(const std::string& word) {
    const auto [name, value] = SplitAssignment(word);
    Assignment assignment;
    assignment.text = value;
    const auto at =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [&](const Property& property) { return EqualsNoCase(property.name, name); });
    if (at == std::end(kProperties))
        throw UsageError{"There is no property '" + name + "'.\n" + SettableNames()};
    if (at->access == Access::ReadOnly)
        throw UsageError{"The property " + std::string(at->name) + " can not be set."};
    if (at->number && !ReadNumber(assignment.text, assignment.number))
        throw UsageError{std::string(at->name) + " takes a number, such as 2."};
    if (at->flag && !ReadFlag(assignment.text, assignment.flag))
        throw UsageError{std::string(at->name) + " takes true or false."};
    if (at->text == &P::Name) {
        assignment.text = Trim(assignment.text);
        const auto isWelcome = [](unsigned char c) { return c >= 0x20 && IsFilenameKey(c); };
        if (assignment.text.empty() ||
            !std::all_of(assignment.text.begin(), assignment.text.end(), isWelcome))
            throw UsageError{
                "A project's name can not be empty, and can not contain any of the "
                "characters \" * / : < > ? \\ |."};
    }
    assignment.property = &*at;
    return assignment;
}

void Assign(Project& project, const Assignment& assignment) {
    const Property& property = *assignment.property;
    if (property.text) project.*property.text = assignment.text;
    if (property.number) project.*property.number = assignment.number;
    if (property.flag) project.*property.flag = assignment.flag;
}

/** Where the value of a standard variable comes from. */
struct VariableSource {
    const char* variable;
    const char* property;
};
constexpr VariableSource kVariableSources[] = {
    {"Project Name", "Name"},
    {"Project Description", "Description"},
    {"Author Name", "AuthorName"},
    {"Author E-mail", "AuthorEmail"},
    {"Author Location", "AuthorLocation"},
    {"Project Version Number", "VersionMajor"},
    {"Company Name", "CompanyName"},
    {"Company Tag Line", "CompanyTagLine"},
    {"Company Street", "CompanyStreet"},
    {"Company City", "CompanyCity"},
    {"Company Province/State", "CompanyState"},
    {"Company Country", "CompanyCountry"},
    {"Company ZIP/Postal Code", "CompanyPostal"},
    {"Company Phone", "CompanyPhone"},
    {"Company Fax", "CompanyFax"},
    {"Company Web Site", "CompanyWebSite"},
    {"Company E-mail", "CompanyEmail"},
};

/** What to do in place of setting a standard variable. */
std::string WhereToSet(const std::string& variable) {
    const std::string start = QuoteSingle(variable) + " is a standard variable. ";
    for (const auto& source : kVariableSources)
        if (EqualsNoCase(source.variable, variable))
            return start + "Change the property that it shows: `pagewick-cli set PROJECT.pwp " +
                   source.property + "=VALUE`.";
    return start + "The program keeps its value up to date by itself.";
}

void ListVariables(Project& project, bool asJson) {
    const auto kindOf = [](const MergeVariable& variable) {
        return variable.Type == "S" ? "standard" : "custom";
    };
    if (!asJson) {
        for (const MergeVariable& variable : project.MergeVariables())
            std::cout << kindOf(variable) << "\t" << OneField(variable.Name) << "\t"
                      << OneField(variable.Value) << "\n";
        return;
    }
    JsonArray list(std::cout);
    for (const MergeVariable& variable : project.MergeVariables()) {
        JsonObject json;
        json.Add("kind", kindOf(variable)).Add("name", variable.Name).Add("value", variable.Value);
        list.Add(json);
    }
}

/** All or nothing: the project file is written when every page could be. */
void WriteVariablesAndSave(Session& session) {
    const VariablesInPages update = UpdateMergeVariablesInPages(session.Context());
    if (!update.notUpdated.empty())
        throw CommandFailure{"The values can not be written into " +
                             ListOfNames(update.notUpdated) + "; nothing was changed."};
    session.Save();
    if (!update.left.empty()) std::cerr << LeftVariables(update) << "\n";
}

}  // namespace

std::string SettableNames() {
    std::string names = "The properties that can be set:\n";
    for (const auto& property : kProperties)
        if (property.access == Access::ReadWrite) names += std::string("  ") + property.name + "\n";
    return names;
}

void RunNew(const Invocation& invocation) {
    const std::string named = PathFromArgument(invocation.ProjectFile());
    const std::string file = WithExtension(named, kProjectExtension);
    const std::string name = invocation.arguments.Value("--name", GetBaseName(file));
    const Assignment checked = ReadAssignment("Name=" + name);
    Session session(invocation.profile);
    session.NewProject(file, checked.text);
    session.Save();
    // Where it is not called as the user has written it.
    if (file != named) std::cout << ToNativePath(file) << "\n";
}

void RunInfo(const Invocation& invocation) {
    // The header alone, with nothing around it: no settings, no run folder, and no lock either,
    // since a header is read whole or not at all.
    const auto files = MakePosixFileSystem();
    const std::string file = ProjectFromArgument(invocation.ProjectFile());
    Project project(*files);
    project.LoadMode = LoadMode::Header;
    if (project.Load(file) != ProjectResult::Success) throw CommandFailure{project.LastMessage()};

    if (invocation.arguments.Has("--json")) {
        JsonObject json;
        for (const auto& property : kProperties)
            AddJson(json, project, property);
        json.Add("PageCount", project.PageCount());
        json.Add("ProjectSize", static_cast<long long>(project.ProjectSize()));
        json.Add("FormatVersion", int(project.FormatVersion()));
        std::cout << json.Text() << "\n";
        return;
    }
    const auto print = [](const std::string& name, const std::string& value) {
        std::cout << name << ": " << OneField(value) << "\n";
    };
    for (const auto& property : kProperties) {
        const std::string value = ValueText(project, property);
        if (!value.empty()) print(property.name, value);
    }
    print("PageCount", std::to_string(project.PageCount()));
    print("ProjectSize", std::to_string(project.ProjectSize()));
    print("FormatVersion", std::to_string(project.FormatVersion()));
}

void RunSet(const Invocation& invocation) {
    std::vector<Assignment> assignments;
    for (const auto& word : invocation.Rest())
        assignments.push_back(ReadAssignment(word));
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    UpdateProjectMergeVariables(session.Context());  // what pages show now
    for (const auto& assignment : assignments)
        Assign(session.Project(), assignment);
    session.Project().IsDirty = true;
    // Pages show these values.
    UpdateProjectMergeVariables(session.Context());
    WriteVariablesAndSave(session);
}

void RunVariable(const Invocation& invocation) {
    const std::vector<std::string> words = invocation.Rest();
    std::vector<NamedValue> wanted;
    for (const auto& word : words)
        wanted.push_back(SplitAssignment(word));
    for (const auto& each : wanted)
        if (IsStandardVariable(each.name)) throw UsageError{WhereToSet(each.name)};
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    ProjectContext& context = session.Context();
    UpdateProjectMergeVariables(context);
    if (wanted.empty()) {
        ListVariables(context.project, invocation.arguments.Has("--json"));
        return;
    }
    for (const auto& each : wanted) {
        const std::string problem = SetCustomVariable(context, each.name, each.value);
        if (!problem.empty())
            throw CommandFailure{QuoteSingle(each.name) + " was not set. " + problem};
    }
    WriteVariablesAndSave(session);
}

void RunTasks(const Invocation& invocation) {
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    if (!invocation.arguments.Has("--json")) {
        for (const Task& task : session.Project().Tasks())
            std::cout << OneField(task.Name) << "\t" << PriorityText(task.Priority) << "\t"
                      << StatusText(task.Status) << "\t" << OneField(task.AssignedTo) << "\t"
                      << DayText(task.CompleteBy) << "\n";
        return;
    }
    JsonArray list(std::cout);
    for (const Task& task : session.Project().Tasks()) {
        JsonObject json;
        json.Add("key", task.Key).Add("name", task.Name).Add("description", task.Description);
        json.Add("associatedWith", task.AssociatedWith).Add("assignedTo", task.AssignedTo);
        json.Add("priority", PriorityText(task.Priority)).Add("status", StatusText(task.Status));
        json.Add("completeBy", DayText(task.CompleteBy));
        json.Add("publishingDependent", task.PublishingDependent);
        json.Add("created", DateText(task.Created)).Add("createdBy", task.CreatedBy);
        json.Add("modified", DateText(task.Modified)).Add("modifiedBy", task.ModifiedBy);
        list.Add(json);
    }
}

void RunPublish(const Invocation& invocation) {
    if (!invocation.arguments.Has("--html"))
        throw UsageError{"Where to? The option --html DIR tells."};
    const std::string folder = PathFromArgument(invocation.arguments.Value("--html"));
    Session session(invocation.profile);
    session.Open(ProjectFromArgument(invocation.ProjectFile()));
    const PublishResult result = PublishAsHTML(session.Context(), folder);
    if (!result.published) throw CommandFailure{"The site was not published. " + result.reason};
    for (const std::string& warning : result.warnings)
        std::cerr << warning << "\n";
    for (const std::string& link : result.deadLinks)
        std::cerr << "This link leads nowhere: " << link << "\n";
    std::cout << ToNativePath(result.folder) << "\n";
}

}  // namespace pw::cli
