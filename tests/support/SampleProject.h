#pragma once
// A project with something in every field and every list, and its text form for comparing.
#include <string>

#include "platform/FileSystem.h"
#include "project/omProj/Fields.h"
#include "project/omProj/Project.h"
#include "support/TemporaryFolder.h"

namespace pw::test {

/** Fills every field of a record with a value of its own. */
struct FieldFiller {
    int next = 1;
    void operator()(const char* name, std::string& text) {
        text = std::string(name) + " \xC3\xA4'\" " + std::to_string(next++);
    }
    void operator()(const char*, double& number) { number = 36000.25 + next++; }
    void operator()(const char*, bool& flag) { flag = next++ % 2 == 0; }
    void operator()(const char*, int& number) { number = next++; }
    void operator()(const char*, std::int64_t& number) { number = 5'000'000'000 + next++; }
};

struct FieldPrinter {
    std::string& out;
    void operator()(const char* name, const std::string& text) { Line(name, text); }
    template <class Number>
    void operator()(const char* name, Number number) {
        Line(name, std::to_string(number));
    }
    void Line(const std::string& name, const std::string& value) {
        out.append("  ").append(name).append("=").append(value).append("\n");
    }
};

/** Everything that a project file keeps, as text. `open` tells which flag counts as open. */
class ProjectPrinter {
  public:
    static std::string Print(Project& project) {
        ProjectPrinter printer(project);
        return printer.out_;
    }

  private:
    explicit ProjectPrinter(Project& project) : root_(project.WorkingFolder) {
        const ProjectProperties& properties = project;
        Record("project", properties);
        out_ += "thumbnail " + Below(project.ThumbnailFilename) + "\n";
        for (const WebSite& site : project.WebSites()) {
            Record("site " + site.Key(), site);
            Container(site);
        }
        if (const Page* page = project.DefaultTemplate()) OnePage(*page);
        Files(project.Attachments());
        List("variable", project.MergeVariables());
        for (const Task& task : project.Tasks())
            Record("task " + task.Key, task);
        List("publish", project.PublishHistory());
        List("add-in", project.AddIns());
        out_ += "counters " + std::to_string(project.WebSites().NextNumber()) + "\n";
    }

    template <class Item>
    void Container(const Item& item) {
        out_ += "counters " + std::to_string(item.Pages().NextNumber()) + " " +
                std::to_string(item.Sections().NextNumber()) + "\n";
        for (const Page& page : item.Pages())
            OnePage(page);
        for (const Folder& folder : item.Sections()) {
            Record("folder " + folder.Key() + " at " + folder.WorkingFolder, folder);
            Container(folder);
        }
    }
    void OnePage(const Page& page) {
        Record("page " + page.Key() + " file " + Below(page.Filename), page);
        Files(page.Attachments());
        List("meta", page.MetaTags());
        for (const FormRecord& form : page.Forms()) {
            Record("form", form);
            List("field", form.Fields);
        }
    }
    void Files(const Attachments& attachments) {
        for (const Attachment& attachment : attachments)
            Record("attachment " + attachment.Key() + " " + Below(attachment.Filename()),
                   attachment);
        out_ += "next attachment " + std::to_string(attachments.NextNumber()) + "\n";
    }
    template <class Items>
    void List(const char* name, const Items& items) {
        for (const auto& item : items)
            Record(name, item);
    }
    template <class Item>
    void Record(const std::string& name, const Item& item) {
        out_ += name + "\n";
        VisitFields(FieldPrinter{out_}, item);
    }
    std::string Below(const std::string& path) const {
        return path.starts_with(root_) ? path.substr(root_.size()) : path;
    }

    std::string root_;
    std::string out_;
};

/** Adds a page with its file. `name` may lead into folders: "sub\\a.htm". */
inline Page* AddPage(Pages& pages, const TemporaryFolder& work, const std::string& name,
                     const std::string& html) {
    Page* page = pages.Add();
    page->Filename = work.Put(name, html);
    page->Name = name;
    return page;
}

/** A small project that uses everything; its files go below `work`. */
inline void FillSampleProject(Project& project, const TemporaryFolder& work) {
    FieldFiller fill;
    VisitFields(fill, static_cast<ProjectProperties&>(project));
    project.WorkingFolder = work.Path();
    project.ThumbnailFilename = work.Put("~pwthumb.jpg", "JPEG");
    WebSite* site = project.WebSites().Add();
    VisitFields(fill, *site);
    Page* index = AddPage(site->Pages(), work, "index.htm", "<p>index</p>");
    VisitFields(fill, *index);
    Folder* folder = site->Sections().Add();
    VisitFields(fill, *folder);
    folder->FolderName = "news";
    folder->WorkingFolder = "\\news";
    Folder* inner = folder->Sections().Add();
    VisitFields(fill, *inner);
    inner->FolderName = "old";
    inner->WorkingFolder = "\\news\\old";
    Page* old = AddPage(inner->Pages(), work, "news\\old\\a.htm", std::string(100'000, 'x'));
    VisitFields(fill, *old);
    old->IsOpen = true;
    site->Pages().Add();  // a number that goes with its page
    site->Pages().Remove(2);
    Attachment* media = old->Attachments().Add(work.Put("news\\old\\media\\b.gif", "GIF"));
    VisitFields(fill, *media);
    old->Attachments().Add(work.Path("news\\old\\media\\missing.gif"))->State =
        AttachmentState::InUse;
    VisitFields(fill, *old->MetaTags().Add());
    FormRecord* form = old->Forms().Add();
    VisitFields(fill, *form);
    VisitFields(fill, *form->Fields.Add());
    VisitFields(fill, *form->Fields.Add());
    VisitFields(fill, *project.Attachments().Add(work.Put("style.css", "p {}")));
    Page* blank = project.CreateDefaultTemplate();
    VisitFields(fill, *blank);
    blank->Filename = work.Put("tmp1.htm", "<p>template</p>");
    blank->Attachments().Add(work.Put("media\\tmp1.jpg", ""))->Kind =
        AttachmentKind::TemplateThumbnail;
    VisitFields(fill, *project.MergeVariables().Add());
    VisitFields(fill, *project.Tasks().Add("{guid}"));
    VisitFields(fill, *project.PublishHistory().Add());
    VisitFields(fill, *project.AddIns().Add());
}

}  // namespace pw::test
