#pragma once
// One list of fields for each kind of record. The schema, writing, reading and telling whether a
// record changed all follow these lists, so that a new field is one line here.
#include <concepts>

#include "project/omProj/Project.h"

namespace pw {

template <class T, class Record>
concept Holds = std::same_as<std::remove_const_t<T>, Record>;

template <class Visitor, Holds<ProjectProperties> P>
void VisitFields(Visitor&& visit, P& p) {
    visit("project_id", p.ProjectId);
    visit("name", p.Name);
    visit("description", p.Description);
    visit("version_major", p.VersionMajor);
    visit("version_minor", p.VersionMinor);
    visit("version_build", p.VersionBuild);
    visit("auto_version", p.AutoVersion);
    visit("created", p.Created);
    visit("created_by", p.CreatedBy);
    visit("modified", p.Modified);
    visit("modified_by", p.ModifiedBy);
    visit("author_name", p.AuthorName);
    visit("author_email", p.AuthorEmail);
    visit("author_location", p.AuthorLocation);
    visit("company_name", p.CompanyName);
    visit("company_tag_line", p.CompanyTagLine);
    visit("company_street", p.CompanyStreet);
    visit("company_city", p.CompanyCity);
    visit("company_state", p.CompanyState);
    visit("company_postal", p.CompanyPostal);
    visit("company_country", p.CompanyCountry);
    visit("company_web_site", p.CompanyWebSite);
    visit("company_email", p.CompanyEmail);
    visit("company_phone", p.CompanyPhone);
    visit("company_fax", p.CompanyFax);
    visit("media_folder_name", p.MediaFolderName);
    visit("client_version", p.ClientVersion);
    visit("project_type", p.ProjectType);
    visit("next_page_number", p.NextPageNumber);
    visit("publish_count", p.PublishCount);
    visit("skill_level", p.SkillLevel);
    visit("email_publish_status", p.EmailPublishStatus);
    visit("publish_state_changed", p.PublishStateChanged);
    visit("client_number", p.ClientNumber);
    visit("client_text", p.ClientText);
}

template <class Visitor, Holds<WebSite> S>
void VisitFields(Visitor&& visit, S& s) {
    visit("name", s.Name);
    visit("expanded", s.Expanded);
}

template <class Visitor, Holds<Folder> F>
void VisitFields(Visitor&& visit, F& f) {
    visit("name", f.Name);
    visit("description", f.Description);
    visit("folder_name", f.FolderName);
    visit("container_kind", f.ContainerKind);
    visit("expanded", f.Expanded);
}

template <class Visitor, Holds<Page> P>
void VisitFields(Visitor&& visit, P& p) {
    visit("path", p.Path);
    visit("name", p.Name);
    visit("title", p.Title);
    visit("description", p.Description);
    visit("keywords", p.Keywords);
    visit("frames_html", p.FramesHTML);
    visit("theme_name", p.ThemeName);
    visit("theme_file", p.ThemeFile);
    visit("created", p.Created);
    visit("created_by", p.CreatedBy);
    visit("modified", p.Modified);
    visit("modified_by", p.ModifiedBy);
    visit("number", p.Number);
    visit("page_type", p.PageType);
    visit("text_length", p.TextLength);
    visit("word_count", p.WordCount);
    visit("embeds", p.Embeds);
    visit("forms_count", p.FormsCount);
    visit("images", p.Images);
    visit("applets", p.Applets);
    visit("plugins", p.Plugins);
    visit("scripts", p.Scripts);
    visit("total_size", p.TotalSize);
    visit("read_only", p.ReadOnlyFlag);
    visit("is_default", p.IsDefault);
}

template <class Visitor, Holds<Attachment> A>
void VisitFields(Visitor&& visit, A& a) {
    visit("state", a.State);
    visit("kind", a.Kind);
    visit("description", a.Description);
    visit("size", a.Size);
    visit("origin", a.Origin);
}

template <class Visitor, Holds<MetaTag> M>
void VisitFields(Visitor&& visit, M& m) {
    visit("name", m.Name);
    visit("content", m.Content);
    visit("is_http_equiv", m.IsHttpEquiv);
}

template <class Visitor, Holds<FormRecord> F>
void VisitFields(Visitor&& visit, F& f) {
    visit("name", f.Name);
    visit("database_name", f.DatabaseName);
    visit("completed_message", f.CompletedMessage);
    visit("incomplete_message", f.IncompleteMessage);
    visit("echo_data", f.EchoData);
    visit("datestamp", f.Datestamp);
    visit("query_records", f.QueryRecords);
    visit("add_records", f.AddRecords);
    visit("edit_records", f.EditRecords);
    visit("delete_records", f.DeleteRecords);
    visit("action_type", f.ActionType);
}

template <class Visitor, Holds<FormField> F>
void VisitFields(Visitor&& visit, F& f) {
    visit("name", f.Name);
    visit("field_type", f.FieldType);
    visit("size", f.Size);
    visit("required", f.Required);
}

template <class Visitor, Holds<MergeVariable> M>
void VisitFields(Visitor&& visit, M& m) {
    visit("type", m.Type);
    visit("name", m.Name);
    visit("value", m.Value);
}

/** The key of a task stands in a column of its own. */
template <class Visitor, Holds<Task> T>
void VisitFields(Visitor&& visit, T& t) {
    visit("name", t.Name);
    visit("description", t.Description);
    visit("associated_with", t.AssociatedWith);
    visit("assigned_to", t.AssignedTo);
    visit("priority", t.Priority);
    visit("status", t.Status);
    visit("complete_by", t.CompleteBy);
    visit("publishing_dependent", t.PublishingDependent);
    visit("created", t.Created);
    visit("created_by", t.CreatedBy);
    visit("modified", t.Modified);
    visit("modified_by", t.ModifiedBy);
}

template <class Visitor, Holds<PublishRecord> R>
void VisitFields(Visitor&& visit, R& r) {
    visit("published", r.Published);
    visit("status", r.Status);
    visit("client_type", r.ClientType);
    visit("publish_kind", r.PublishKind);
    visit("content_type", r.ContentType);
    visit("page_count", r.PageCount);
    visit("size", r.Size);
    visit("post_date", r.PostDate);
    visit("campaign_code", r.CampaignCode);
    visit("licensee_guid", r.LicenseeGUID);
    visit("installation_number", r.InstallationNumber);
    visit("profile_guid", r.ProfileGUID);
    visit("provider_name", r.ProviderName);
    visit("profile_version", r.ProfileVersion);
    visit("customer_guid", r.CustomerGUID);
    visit("publish_server", r.PublishServer);
    visit("plan", r.Plan);
    visit("folder", r.Folder);
    visit("url", r.URL);
    visit("keywords", r.Keywords);
    visit("email", r.Email);
    visit("project_name", r.ProjectName);
    visit("project_guid", r.ProjectGUID);
    visit("project_filename", r.ProjectFilename);
    visit("project_version", r.ProjectVersion);
    visit("computer_name", r.ComputerName);
    visit("computer_user_name", r.ComputerUserName);
}

template <class Visitor, Holds<AddInRecord> A>
void VisitFields(Visitor&& visit, A& a) {
    visit("id", a.Id);
    visit("name", a.Name);
    visit("company", a.Company);
    visit("version", a.Version);
    visit("author", a.Author);
    visit("author_email", a.AuthorEmail);
    visit("style", a.Style);
    visit("notify_author", a.NotifyAuthor);
}

}  // namespace pw
